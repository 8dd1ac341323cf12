#include "tests/ProcessCounts.h"

#include <dlfcn.h>
#include <link.h>
#include <malloc.h>

#include <filesystem>
#include <fstream>
#include <vector>

// Of the leak sanitizer's runtime; null in other builds.
extern "C" __attribute__((weak)) void __lsan_disable();
extern "C" __attribute__((weak)) void __lsan_enable();

namespace kivtests {

std::size_t OpenHandles()
{
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry :
         std::filesystem::directory_iterator("/proc/self/fd")) {
        ++count;
    }
    return count;
}

std::size_t HeapInUse()
{
    // Sanitizers take the heap over, and count by themselves.
    if (void* const count = dlsym(RTLD_DEFAULT, "__sanitizer_get_current_allocated_bytes")) {
        return reinterpret_cast<std::size_t (*)()>(count)();
    }
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

bool IsLibraryLoaded(const std::string& name)
{
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        if (line.find("/lib" + name) != std::string::npos) {
            return true;
        }
    }
    return false;
}

void AllowLeaksFromHere()
{
    if (&__lsan_disable != nullptr) {
        __lsan_disable();
    }
}

void CountLeaksAgain()
{
    if (&__lsan_enable != nullptr) {
        __lsan_enable();
    }
}

void KeepForeignLibraries()
{
    if (&__lsan_disable == nullptr) {
        return;
    }
    std::vector<std::string> paths;
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* found) {
            const std::filesystem::path path = info->dlpi_name;
            if (!path.filename().string().starts_with("libkiv")) {
                static_cast<std::vector<std::string>*>(found)->push_back(path.string());
            }
            return 0;
        },
        &paths);
    for (const std::string& path : paths) {
        dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
    }
}

}  // namespace kivtests
