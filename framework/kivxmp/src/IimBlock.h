// IIM data (the older of the two ways in which agencies describe pictures), as far as its structure
// can be followed.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kivxmp::photo {

/// The datasets in front of the first damaged one that can hold something for us: those longer than
/// kTagBytesLimit, those of records that tell nothing of the picture, and zeros and padding behind
/// the last one are left out. At most 4096.
std::string SoundIim(std::string_view iim);

/// The bytes of the first dataset of that record and number; empty where there is none.
std::string_view FirstDataset(std::string_view soundIim, unsigned record, unsigned number);

}  // namespace kivxmp::photo
