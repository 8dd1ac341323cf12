/* Another program that has a file open.
 *
 * usage: file_holder FILE none|read       what others may do with it meanwhile
 *
 * Prints "held" and lets go of it when standard input ends. */

#include <windows.h>

#include <stdio.h>
#include <wchar.h>

int wmain(int argc, wchar_t** argv)
{
    if (argc != 3) {
        fprintf(stderr, "usage: file_holder FILE none|read\n");
        return 2;
    }
    const DWORD sharing = wcscmp(argv[2], L"read") == 0 ? FILE_SHARE_READ : 0;
    const HANDLE file = CreateFileW(argv[1], GENERIC_READ, sharing, NULL, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, NULL);
    if (file == INVALID_HANDLE_VALUE) {
        fprintf(stderr, "not opened: Windows error %lu\n", GetLastError());
        return 1;
    }
    puts("held");
    fflush(stdout);
    while (getchar() != EOF) {
    }
    CloseHandle(file);
    return 0;
}
