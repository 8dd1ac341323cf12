#include "svgloom/src/PathTokens.h"

#include <algorithm>

#include "svgloom/src/NumberReader.h"

namespace SVGLoom {

#if defined(__x86_64__)

bool PathTokens::Supports(Width width)
{
    const bool supports16 = __builtin_cpu_supports("avx") && __builtin_cpu_supports("bmi") &&
                            __builtin_cpu_supports("bmi2");
    return supports16 && (width == Width::k16 || (__builtin_cpu_supports("avx512vbmi") &&
                                                  __builtin_cpu_supports("avx512vbmi2") &&
                                                  __builtin_cpu_supports("avx512bw")));
}

void PathTokens::Find(const char* text, const char* end, Width width)
{
    if (width == Width::k64) {
        FindBy64(text, end);
    } else {
        FindBy16(text, end);
    }
}

#else

bool PathTokens::Supports(Width)
{
    return false;
}

void PathTokens::Find(const char*, const char*, Width)
{
    end_ = commands_[0] = 0;
    std::fill_n(numbers_, kMostNumbers, end_);
}

#endif

/// Reads numbers of a block again of which some have many digits. Returns how many numbers there
/// are before the first one that cannot be read.
[[gnu::noinline]] std::size_t PathTokens::ReadLongNumbers(const char* end, std::size_t first,
                                                          std::size_t count)
{
    for (std::size_t i = first; i < count; ++i) {
        const char* current = text_ + numbers_[i];
        if (!ReadNumber(current, end, values_[i])) {
            return i;
        }
    }
    return count;
}

}  // namespace SVGLoom
