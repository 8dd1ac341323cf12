/* A host that is linked to nothing of ours and lies in another folder: loads the library by its
 * full path, calls all five functions and unloads it, a hundred times, without handles that pile
 * up.
 *
 * usage: plain_host LIBRARY
 *
 * Prints "ok", or what is wrong, and then ends with 1. */

#include <windows.h>

#include <kivmetadataapi.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* The layouts are a binary interface: these are the numbers that hosts were compiled with. */
_Static_assert(offsetof(MetadataAPIInitParams, clientName) == 0, "clientName");
_Static_assert(offsetof(MetadataAPIInitParams, clientVersion) == 8, "clientVersion");
_Static_assert(offsetof(MetadataAPIInitParams, clientInternalVersion) == 16, "internal version");
_Static_assert(offsetof(MetadataAPIInitParams, clientBuildNumber) == 24, "clientBuildNumber");
_Static_assert(offsetof(MetadataAPIInitParams, language) == 32, "language");
_Static_assert(offsetof(MetadataAPIInitParams, reserved) == 40, "reserved");
_Static_assert(offsetof(MetadataAPIInitParams, instanceHandle) == 48, "instanceHandle");
_Static_assert(offsetof(MetadataAPIInitParams, startGdiPlus) == 56, "startGdiPlus");
_Static_assert(offsetof(MetadataAPIInitParams, uiScaleFactor) == 60, "uiScaleFactor");
_Static_assert(offsetof(MetadataAPIInitParams, loadCustomDefinitions) == 64, "definitions");
_Static_assert(offsetof(MetadataDialogRequest, text) == 0, "text");
_Static_assert(offsetof(MetadataDialogRequest, parentWindow) == 8, "parentWindow");
_Static_assert(offsetof(MetadataDialogRequest, brightnessPercent) == 16, "brightnessPercent");
_Static_assert(offsetof(MetadataDialogRequest, flags) == 20, "flags");
_Static_assert(offsetof(KIVMetadataRecord, viewText) == 0, "viewText");
_Static_assert(offsetof(KIVMetadataRecord, itemText) == 8, "itemText");
_Static_assert(offsetof(KIVMetadataRecord, itemKeyText) == 16, "itemKeyText");
_Static_assert(offsetof(KIVMetadataRecord, label) == 24, "label");
_Static_assert(offsetof(KIVMetadataRecord, propertyFlag) == 32, "propertyFlag");
_Static_assert(sizeof(KIVMetadataRecord) == 40, "records stand 40 bytes apart");

typedef bool (*Initialize)(const MetadataAPIInitParams*);
typedef void (*Terminate)(void);
typedef bool (*DoDialog)(__XMPMeta__*, const MetadataDialogRequest*);
typedef const void* (*GetVector)(void);
typedef size_t (*GetVectorSize)(void);
typedef void (*AnyFunction)(void);

static void Fail(const char* what)
{
    printf("%s (Windows error %lu)\n", what, GetLastError());
    exit(1);
}

/* The system's list of all handles: its counter for one process is 0 under Wine. */
static size_t OpenHandles(void)
{
    enum { kAllHandles = 64, kWordsEach = 5, kProcessWord = 1 };
    typedef LONG(WINAPI * Query)(ULONG, void*, ULONG, ULONG*);
    static size_t words = 1 << 17;
    static ULONG_PTR* block = NULL;
    const Query query = (Query)(AnyFunction)GetProcAddress(GetModuleHandleW(L"ntdll.dll"),
                                                           "NtQuerySystemInformation");
    LONG status;
    size_t count = 0;
    if (block == NULL) {
        block = malloc(words * sizeof *block);
    }
    while (block != NULL && (status = query(kAllHandles, block, (ULONG)(words * sizeof *block),
                                            NULL)) == (LONG)0xC0000004) {
        words *= 2;
        free(block);
        block = malloc(words * sizeof *block);
    }
    if (block == NULL || status != 0) {
        Fail("the system does not list its handles");
    }
    for (size_t i = 0; i < block[0]; ++i) {
        const ULONG_PTR* const entry = block + 2 + i * kWordsEach;
        count += entry[kProcessWord] == GetCurrentProcessId();
    }
    return count;
}

static void CheckThatHandlesCount(void)
{
    HANDLE handles[10];
    const size_t before = OpenHandles();
    for (int i = 0; i < 10; ++i) {
        handles[i] = CreateEventW(NULL, FALSE, FALSE, NULL);
    }
    if (OpenHandles() != before + 10) {
        Fail("ten more handles are not seen");
    }
    for (int i = 0; i < 10; ++i) {
        CloseHandle(handles[i]);
    }
    if (OpenHandles() != before) {
        Fail("ten fewer handles are not seen");
    }
}

static AnyFunction Find(HMODULE library, const char* name)
{
    const AnyFunction function = (AnyFunction)GetProcAddress(library, name);
    if (function == NULL) {
        Fail(name);
    }
    return function;
}

static void Round(const wchar_t* path)
{
    MetadataAPIInitParams start = {0};
    MetadataDialogRequest request = {0};
    const HMODULE library = LoadLibraryExW(path, NULL, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (library == NULL) {
        Fail("the library is not loaded");
    }
    const Initialize initialize = (Initialize)Find(library, "MetadataAPIInitialize");
    const Terminate terminate = (Terminate)Find(library, "MetadataAPITerminate");
    const DoDialog doDialog = (DoDialog)Find(library, "DoMetadataDialog");
    const GetVector getVector = (GetVector)Find(library, "GetGlobalKIVMetadataVector");
    const GetVectorSize getVectorSize =
        (GetVectorSize)Find(library, "GetGlobalKIVMetadataVectorSize");

    if (initialize(NULL)) {
        Fail("a null record is taken");
    }
    start.clientName = "Plain host";
    start.clientVersion = "1";
    start.clientInternalVersion = "1.0";
    if (initialize(&start)) {
        Fail("a record without a build number is taken"); /* an exception inside, contained there */
    }
    terminate();
    start.clientBuildNumber = "1";
    start.language = "de_DE";
    start.instanceHandle = GetModuleHandleW(NULL);
    start.startGdiPlus = 1;
    start.loadCustomDefinitions = 1;
    if (!initialize(&start)) {
        Fail("the library does not start");
    }
    if (doDialog(NULL, &request)) {
        Fail("a dialog without an object is confirmed");
    }
    if ((getVector() == NULL) != (getVectorSize() == 0)) {
        Fail("the list and its size do not agree");
    }
    terminate();
    if (getVector() != NULL || getVectorSize() != 0) {
        Fail("the list outlives the library");
    }
    if (!FreeLibrary(library)) {
        Fail("the library is not unloaded");
    }
    if (GetModuleHandleW(L"kivmetadataapi.dll") != NULL ||
        GetModuleHandleW(L"kivcore.dll") != NULL) {
        Fail("something of the library stays");
    }
}

int wmain(int argc, wchar_t** argv)
{
    enum { kFirstRounds = 3, kRounds = 100 };
    wchar_t path[1024];
    size_t handles;
    if (argc != 2 || GetFullPathNameW(argv[1], 1024, path, NULL) == 0) {
        Fail("usage: plain_host LIBRARY");
    }
    CheckThatHandlesCount();
    /* The system keeps some handles from the first time on. */
    for (int i = 0; i < kFirstRounds; ++i) {
        Round(path);
    }
    handles = OpenHandles();
    for (int i = 0; i < kRounds; ++i) {
        Round(path);
    }
    if (OpenHandles() != handles) {
        printf("%zu handles became %zu\n", handles, OpenHandles());
        return 1;
    }
    puts("ok");
    return 0;
}
