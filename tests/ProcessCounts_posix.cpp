#include "tests/ProcessCounts.h"

#include <malloc.h>

#include <filesystem>
#include <fstream>

// The sanitizers' own count, where they have taken the heap over.
extern "C" std::size_t __attribute__((weak)) __sanitizer_get_current_allocated_bytes();

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
    if (__sanitizer_get_current_allocated_bytes != nullptr) {
        return __sanitizer_get_current_allocated_bytes();
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
