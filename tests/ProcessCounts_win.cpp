#include "tests/ProcessCounts.h"

#include <algorithm>
#include <set>
#include <stdexcept>
#include <vector>

#include <windows.h>

#include <psapi.h>
#include <winternl.h>

namespace kivtests {

namespace {

// What the system answers when it is asked for all handles of all processes. Its counter for one
// process is 0 under Wine.
struct HandleEntry {
    void* object;
    ULONG_PTR processId;
    ULONG_PTR handle;
    ULONG access;
    USHORT creator;
    USHORT type;
    ULONG attributes;
    ULONG reserved;
};
struct HandleList {
    ULONG_PTR count;
    ULONG_PTR reserved;
    HandleEntry entries[1];
};
constexpr ULONG kAllHandles = 64;
constexpr auto kTooShort = static_cast<NTSTATUS>(0xC0000004);

// The declared one knows few of the kinds of information.
using Query = NTSTATUS(NTAPI*)(ULONG kind, void* block, ULONG size, ULONG* used);
Query FindQuery()
{
    return reinterpret_cast<Query>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
}

// Blocks of one heap that are in use; where its memory lies, used or not.
std::size_t BytesOf(HANDLE heap, std::set<void*>& areas)
{
    std::size_t bytes = 0;
    const unsigned char* areaBegin = nullptr;
    const unsigned char* areaEnd = nullptr;
    HeapLock(heap);
    PROCESS_HEAP_ENTRY entry = {};
    while (HeapWalk(heap, &entry) != 0) {
        if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) {
            bytes += entry.cbData;
        }
        const auto* const data = static_cast<const unsigned char*>(entry.lpData);
        if (data < areaBegin || data >= areaEnd) {
            MEMORY_BASIC_INFORMATION area = {};
            VirtualQuery(data, &area, sizeof area);
            areas.insert(area.AllocationBase);
            areaBegin = static_cast<const unsigned char*>(area.BaseAddress);
            areaEnd = areaBegin + area.RegionSize;
        }
    }
    HeapUnlock(heap);
    return bytes;
}

// Wine does not list large blocks, which have memory of their own.
std::size_t BytesOutside(const std::set<void*>& areas)
{
    std::size_t bytes = 0;
    MEMORY_BASIC_INFORMATION area = {};
    for (const unsigned char* place = nullptr; VirtualQuery(place, &area, sizeof area) != 0;
         place = static_cast<const unsigned char*>(area.BaseAddress) + area.RegionSize) {
        if (area.State == MEM_COMMIT && area.Type == MEM_PRIVATE &&
            area.Protect == PAGE_READWRITE && areas.count(area.AllocationBase) == 0) {
            bytes += area.RegionSize;
        }
    }
    return bytes;
}

}  // namespace

std::size_t OpenHandles()
{
    // Kept, so that counting does not change what is counted.
    static std::vector<ULONG_PTR>& block = *new std::vector<ULONG_PTR>(1 << 17);
    static const Query query = FindQuery();
    NTSTATUS status = 0;
    ULONG used = 0;
    while ((status = query(kAllHandles, block.data(),
                           static_cast<ULONG>(block.size() * sizeof(ULONG_PTR)), &used)) ==
           kTooShort) {
        block.resize(block.size() * 2);
    }
    if (status != 0) {
        throw std::runtime_error("the system does not list its handles");
    }
    const auto* const list = reinterpret_cast<const HandleList*>(block.data());
    const ULONG_PTR self = GetCurrentProcessId();
    return static_cast<std::size_t>(
        std::count_if(list->entries, list->entries + list->count,
                      [self](const HandleEntry& entry) { return entry.processId == self; }));
}

std::size_t HeapInUse()
{
    HANDLE heaps[256];
    const DWORD count = std::min<DWORD>(GetProcessHeaps(256, heaps), 256);
    std::size_t bytes = 0;
    std::set<void*> areas;
    for (DWORD i = 0; i < count; ++i) {
        bytes += BytesOf(heaps[i], areas);
    }
    return bytes + BytesOutside(areas);
}

bool IsLibraryLoaded(const std::string& name)
{
    HMODULE modules[1024];
    DWORD bytes = 0;
    if (EnumProcessModules(GetCurrentProcess(), modules, sizeof modules, &bytes) == 0) {
        throw std::runtime_error("the system does not list the modules");
    }
    const std::wstring wanted(name.begin(), name.end());
    for (DWORD i = 0; i < bytes / sizeof modules[0]; ++i) {
        wchar_t file[512] = {};
        GetModuleBaseNameW(GetCurrentProcess(), modules[i], file, 512);
        if (std::wstring(file).rfind(wanted, 0) == 0) {
            return true;
        }
    }
    return false;
}

// There are no sanitizer builds for Windows.
void AllowLeaksFromHere() {}

void CountLeaksAgain() {}

void KeepForeignLibraries() {}

}  // namespace kivtests
