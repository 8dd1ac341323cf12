#include "framework/kivxmp/tests/PhotoEditor.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <stdio.h>
#include <stdlib.h>

int wmain(int argc, wchar_t** wideArguments)
{
    char** const arguments = calloc((size_t)argc + 1, sizeof *arguments);
    int status = 2;
    if (arguments == NULL) {
        return status;
    }
    for (int i = 0; i < argc; ++i) {
        const int size = WideCharToMultiByte(CP_UTF8, 0, wideArguments[i], -1, NULL, 0, NULL, NULL);
        arguments[i] = calloc((size_t)size + 1, 1);
        WideCharToMultiByte(CP_UTF8, 0, wideArguments[i], -1, arguments[i], size, NULL, NULL);
    }
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    status = RunPhotoEditor(argc, arguments);
    for (int i = 0; i < argc; ++i) {
        free(arguments[i]);
    }
    free(arguments);
    return status;
}
