// The full hash folds 16 bytes at a time through a 64 x 64 bit multiplication, whose two halves are
// combined, with the salt mixed into both factors.

#include "dictionary/KeyHash.h"

#include <chrono>
#include <cstddef>
#include <cstring>

namespace morvish_private {

namespace {

__extension__ using Wide = unsigned __int128;

constexpr std::uint64_t kMixA = 0x9E3779B97F4A7C15;
constexpr std::uint64_t kMixB = 0xD6E8FEB86659FD93;

struct Salt {
    std::uint64_t first;
    std::uint64_t second;
};

std::uint64_t Fold(std::uint64_t a, std::uint64_t b)
{
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

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

const Salt& ProcessSalt()
{
    static const Salt kSalt = MakeSalt();
    return kSalt;
}

std::uint64_t LoadWord(const char* bytes)
{
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

std::uint64_t LoadHalfWord(const char* bytes)
{
    std::uint32_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

template <typename Reduce>
std::uint32_t SampledHash(std::string_view key, Reduce reduce)
{
    std::size_t step = key.size() / 5;
    if (step == 0)
        step = 1;
    std::uint32_t hash = 0;
    for (std::size_t i = 0; i < key.size(); i += step)
        hash = reduce(static_cast<unsigned char>(key[i]) + (hash << 5));
    return hash;
}

}  // namespace

std::uint32_t BucketHash(std::string_view key, std::uint32_t bucketCount)
{
    // A division by a known number is a multiplication, and images are checked key by key.
    if (bucketCount == kBucketCount)
        return SampledHash(key, [](std::uint32_t value) { return value % kBucketCount; });
    return SampledHash(key, [bucketCount](std::uint32_t value) { return value % bucketCount; });
}

std::uint32_t FullHash(std::string_view key)
{
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
