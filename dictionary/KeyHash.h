// The two hashes of a dictionary key: the bucket hash that images and export order rest on, and a
// full hash for finding keys quickly.

#pragma once

#include <cstdint>
#include <string_view>

namespace morvish_private {

/// The number of buckets of every dictionary; a prime.
inline constexpr std::uint32_t kBucketCount = 1021;

/// The bucket of a key among `bucketCount`. It looks at no more than some five to nine bytes, so
/// similar keys crowd a few buckets: with numbered keys of one length 100,000 share 10 to 19.
std::uint32_t BucketHash(std::string_view key, std::uint32_t bucketCount);

/// A hash over all bytes, salted once per process, so that no file can be made whose keys collide.
std::uint32_t FullHash(std::string_view key);

}  // namespace morvish_private
