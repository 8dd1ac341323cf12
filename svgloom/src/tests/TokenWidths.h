// Compares tokens of path data that are found by looking at different numbers of bytes together.

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

#include "svgloom/src/PathTokens.h"

namespace SVGLoom::testing_support {

inline bool IsSame(const PathTokens& a, const PathTokens& b)
{
    const auto countOf = [](const PathTokens::Place* places, PathTokens::Place end) {
        return static_cast<std::size_t>(std::find(places, places + end, end) - places);
    };
    const std::size_t commands = countOf(a.Commands(), a.End());
    const std::size_t numbers = countOf(a.Numbers(), a.End());
    return a.End() == b.End() &&
           std::equal(a.Commands(), a.Commands() + commands + 1, b.Commands()) &&
           std::equal(a.Numbers(), a.Numbers() + numbers + PathTokens::kMostNumbers, b.Numbers()) &&
           std::memcmp(a.Values(), b.Values(), numbers * sizeof(float)) == 0;
}

/// Whether all pieces of `text`, from the first "M" on, have the same tokens in each way that this
/// processor supports.
inline bool AreTokensAlike(std::string_view text)
{
    using Width = PathTokens::Width;
    if (!PathTokens::Supports(Width::k16) || !PathTokens::Supports(Width::k64)) {
        return true;
    }
    const auto by16 = std::make_unique<PathTokens>();
    const auto by64 = std::make_unique<PathTokens>();
    text.remove_prefix(std::min(text.find_first_of("Mm"), text.size()));
    while (!text.empty()) {
        const char* const end = text.data() + text.size();
        by16->Find(text.data(), end, Width::k16);
        by64->Find(text.data(), end, Width::k64);
        if (!IsSame(*by16, *by64)) {
            return false;
        }
        if (by16->End() == 0) {
            break;
        }
        text.remove_prefix(by16->End());
    }
    return true;
}

}  // namespace SVGLoom::testing_support
