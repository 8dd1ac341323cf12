#include "tests/ProcessCounts.h"

#include <dlfcn.h>
#include <malloc.h>

#include <filesystem>
#include <fstream>

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

bool IsModuleLoaded(const std::string& part)
{
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        if (line.find(part) != std::string::npos) {
            return true;
        }
    }
    return false;
}

}  // namespace kivtests
