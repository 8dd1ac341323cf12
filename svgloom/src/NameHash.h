// A hash for names that come from artwork: SipHash with one round for each word and three at the
// end, under a key of this process, so that no file can choose names that all collide.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace SVGLoom {

/// The hash of `text` under a key of two words.
std::uint64_t KeyedHash(std::string_view text, std::uint64_t key0, std::uint64_t key1);

/// The hash under the key of this process.
struct NameHash {
    std::size_t operator()(std::string_view text) const;
};

}  // namespace SVGLoom
