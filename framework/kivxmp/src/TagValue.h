// The tags of a photo's Exif and IIM data, decoded and not yet interpreted.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "framework/kivxmp/src/ByteNumbers.h"

namespace kivxmp::photo {

/// A longer value than this is left out: no text that people write is as long.
inline constexpr std::size_t kTagBytesLimit = std::size_t{64} * 1024;

struct Ratio {
    std::int64_t numerator = 0;
    std::int64_t denominator = 1;
    bool operator==(const Ratio&) const = default;
};

/// A value has bytes (texts, bytes, undefined data) or numbers.
struct TagValue {
    std::string name;            ///< "Exif.Photo.FNumber", "Iptc.Application2.Caption"
    std::string bytes;           ///< as they stand in the photo
    std::vector<Ratio> numbers;  ///< whole ones over 1
};

/// In the order in which they stand in the photo.
struct TagList {
    std::vector<TagValue> values;
    ByteOrder order = ByteOrder::kLittle;  ///< of the data they come from
};

}  // namespace kivxmp::photo
