#include "dictionary/KeyHash.h"

#include <cstddef>

namespace morvish_private {

namespace {

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

}  // namespace morvish_private
