/* The bare surface in one screen: reads a photo's metadata, shows the dialog, saves what was
 * confirmed. */

#include <kivcore/LastFailure.h>
#include <kivmetadataapi.h>
#include <kivxmp/kivxmp.h>
#include <kivxmp/kivxmp_file.h>
#include <stdio.h>

int main(int argc, char** argv)
{
    MetadataAPIInitParams start = {0};
    MetadataDialogRequest request = {0};
    __XMPMeta__* meta = NULL;
    int status = 1;

    if (argc != 2) {
        fprintf(stderr, "usage: %s PHOTO\n", argv[0]);
        return 1;
    }
    if (KivXmpOpenPhoto(argv[1], NULL, &meta) != kKivXmpOk) {
        fprintf(stderr, "%s\n", KivXmpLastErrorText());
        return 1;
    }
    start.clientName = "Minimal host";
    start.clientVersion = "1";
    start.clientInternalVersion = "1.0";
    start.clientBuildNumber = "1";
    start.startGdiPlus = 1;
    request.text = argv[1];
    request.brightnessPercent = 50;

    if (MetadataAPIInitialize(&start)) {
        if (!DoMetadataDialog(meta, &request)) {
            fprintf(stderr, "not confirmed %s\n", KivLastFailureText());
        } else if (KivXmpSavePhoto(meta, NULL) != kKivXmpOk) {
            fprintf(stderr, "%s\n", KivXmpLastErrorText());
        } else {
            status = 0;
        }
    } else {
        fprintf(stderr, "%s\n", KivLastFailureText());
    }
    MetadataAPITerminate(); /* also balances a MetadataAPIInitialize that failed */
    KivXmpRelease(meta);
    return status;
}
