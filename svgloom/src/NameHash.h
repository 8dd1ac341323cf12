// A hash for names that come from artwork: SipHash with one round for each word and three at the
// end, under a key of this process, so that no file can choose names that all collide.

#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace SVGLoom {

/// The hash of `text` under a key of two words.
std::uint64_t KeyedHash(std::string_view text, std::uint64_t key0, std::uint64_t key1);

struct NameHash {
    using is_transparent = void;
    // Not noexcept: the standard library keeps the hash beside each entry then.
    std::size_t operator()(std::string_view text) const;
};

template <class Value>
using NameMap = std::unordered_map<std::string, Value, NameHash, std::equal_to<>>;

/// The names are not owned.
template <class Value>
using NameViewMap = std::unordered_map<std::string_view, Value, NameHash, std::equal_to<>>;

}  // namespace SVGLoom
