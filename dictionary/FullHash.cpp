#include "dictionary/FullHash.h"

#include <chrono>

namespace morvish_private::full_hash {

// The place where the system loaded us and the time of the first use are unknown to whoever wrote
// the file.
Salt MakeSalt()
{
    static const char kPlace = 0;
    const auto place = reinterpret_cast<std::uintptr_t>(&kPlace);
    const auto stack = reinterpret_cast<std::uintptr_t>(&place);
    const auto now =
        static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    const std::uint64_t first = Fold(place ^ kMixA, now ^ kMixB);
    return {first, Fold(stack ^ kMixB, first ^ kMixA)};
}

}  // namespace morvish_private::full_hash
