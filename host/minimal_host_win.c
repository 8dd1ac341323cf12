/* The bare surface in one screen, on Windows: reads a photo's metadata, shows the dialog over a
 * window of the host's own, saves what was confirmed. */

#include <windows.h>
/* The types of <windows.h> come first; the library's header declares the same ones. */
#include <kivcore/LastFailure.h>
#include <kivmetadataapi.h>
#include <kivxmp/kivxmp.h>
#include <kivxmp/kivxmp_file.h>
#include <stdio.h>

int wmain(int argc, wchar_t** argv)
{
    MetadataAPIInitParams start = {0};
    MetadataDialogRequest request = {0};
    __XMPMeta__* meta = NULL;
    char photo[4096]; /* the library takes names in UTF-8 */
    int status = 1;

    if (argc != 2 || WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, argv[1], -1, photo,
                                         sizeof photo, NULL, NULL) == 0) {
        fprintf(stderr, "usage: minimal_host PHOTO\n");
        return 1;
    }
    if (KivXmpOpenPhoto(photo, NULL, &meta) != kKivXmpOk) {
        fprintf(stderr, "%s\n", KivXmpLastErrorText());
        return 1;
    }
    start.clientName = "Minimal host";
    start.clientVersion = "1";
    start.clientInternalVersion = "1.0";
    start.clientBuildNumber = "1";
    start.instanceHandle = GetModuleHandleW(NULL);
    start.startGdiPlus = 1;
    request.text = photo;
    request.brightnessPercent = 50;
    request.parentWindow =
        CreateWindowExW(0, L"STATIC", L"Minimal host", WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                        CW_USEDEFAULT, 0, 900, 700, NULL, NULL, start.instanceHandle, NULL);

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
    DestroyWindow(request.parentWindow);
    return status;
}
