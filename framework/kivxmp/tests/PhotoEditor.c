#include "framework/kivxmp/tests/PhotoEditor.h"

#include <kivxmp/kivxmp_file.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int Failed(const char* what)
{
    fprintf(stderr, "%s: %s\n", what, KivXmpLastErrorText());
    return 1;
}

int RunPhotoEditor(int argc, char** argv)
{
    __XMPMeta__* meta = NULL;
    int written = 0;
    int status = 0;
    if (argc < 2) {
        fprintf(stderr, "usage: kivxmp_photo_editor PHOTO [PATH=TEXT]...\n");
        return 2;
    }
    if (KivXmpOpenPhoto(argv[1], NULL, &meta) != kKivXmpOk) {
        return Failed("cannot be opened");
    }
    for (int i = 2; i < argc && status == 0; ++i) {
        char* text = strchr(argv[i], '=');
        if (text == NULL) {
            status = 2;
            continue;
        }
        *text = '\0';
        if (KivXmpSetText(meta, argv[i], text + 1) != kKivXmpOk) {
            status = Failed(argv[i]);
        }
    }
    if (status == 0 && KivXmpSavePhoto(meta, &written) != kKivXmpOk) {
        status = Failed("cannot be saved");
    }
    KivXmpRelease(meta);
    if (status == 0) {
        puts(written ? "saved" : "nothing to save");
    }
    return status;
}
