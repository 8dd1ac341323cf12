// The bucket hash of a dictionary key, on which images and the order of export rest.

#pragma once

#include <cstdint>
#include <string_view>

namespace morvish_private {

/// The number of buckets of every dictionary; a prime.
inline constexpr std::uint32_t kBucketCount = 1021;

/// The bucket of a key among `bucketCount`. It looks at no more than some five to nine bytes, so
/// similar keys crowd a few buckets: with numbered keys of one length 100,000 share 10 to 19.
std::uint32_t BucketHash(std::string_view key, std::uint32_t bucketCount);

}  // namespace morvish_private
