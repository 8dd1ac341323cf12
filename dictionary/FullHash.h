// The hash over whole keys that finds them quickly. It folds 16 bytes at a time through a 64 x 64
// bit multiplication, whose two halves are combined, with a salt mixed into both factors. All of it
// is inline: a look-up is not much longer than its hash.

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace morvish_private {

namespace full_hash {

__extension__ using Wide = unsigned __int128;

inline constexpr std::uint64_t kMixA = 0x9E3779B97F4A7C15;
inline constexpr std::uint64_t kMixB = 0xD6E8FEB86659FD93;

struct Salt {
    std::uint64_t first;
    std::uint64_t second;
};

/// Differs from process to process.
Salt MakeSalt();

inline const Salt& ProcessSalt()
{
    static const Salt kSalt = MakeSalt();
    return kSalt;
}

inline std::uint64_t Fold(std::uint64_t a, std::uint64_t b)
{
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

inline std::uint64_t LoadWord(const char* bytes)
{
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

inline std::uint64_t LoadHalfWord(const char* bytes)
{
    std::uint32_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

}  // namespace full_hash

/// A hash over all bytes, salted once per process, so that no file can be made whose keys collide.
inline std::uint32_t FullHash(std::string_view key)
{
    using namespace full_hash;
    const Salt& salt = ProcessSalt();
    const char* bytes = key.data();
    std::size_t left = key.size();
    std::uint64_t hash = salt.first ^ (left * kMixA);
    while (left > 16) {
        hash = Fold(LoadWord(bytes) ^ salt.second, LoadWord(bytes + 8) ^ hash);
        bytes += 16;
        left -= 16;
    }
    // The last bytes are read in pieces that may overlap; the length is in the hash already.
    std::uint64_t a = 0;
    std::uint64_t b = 0;
    if (left >= 8) {
        a = LoadWord(bytes);
        b = LoadWord(bytes + left - 8);
    } else if (left >= 4) {
        a = LoadHalfWord(bytes);
        b = LoadHalfWord(bytes + left - 4);
    } else if (left > 0) {
        a = static_cast<unsigned char>(bytes[0]);
        b = static_cast<unsigned char>(bytes[left / 2]) |
            (static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[left - 1])) << 8);
    }
    hash = Fold(a ^ salt.second, b ^ hash);
    return static_cast<std::uint32_t>(Fold(hash ^ kMixB, salt.first ^ kMixA) >> 32);
}

}  // namespace morvish_private
