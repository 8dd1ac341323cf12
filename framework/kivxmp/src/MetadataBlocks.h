// The Exif and IIM data of a photo, cut out of it for a decoder.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "framework/kivxmp/src/ByteSource.h"
#include "framework/kivxmp/src/PhotoFormat.h"

namespace kivxmp::photo {

/// A larger block than this is not looked at; in a JPEG file all of Exif is 64 KiB at most.
inline constexpr std::size_t kBlockBytesLimit = std::size_t{1} << 20;

struct MetadataBlocks {
    std::string exif;  ///< a sound TIFF stream (CondensedTiff.h); empty: there is none
    std::string iim;   ///< datasets; empty: there are none
};

/// What the blocks of `photo` hold; of several ones with Exif data the first counts. Damaged ones
/// are left out. Throws FileError.
MetadataBlocks ReadMetadataBlocks(const PhotoFormat& photo, ByteSource& source);

/// The IIM data in Photoshop's image resources, of all that hold some, in their order.
std::string CollectIim(std::string_view resources);

}  // namespace kivxmp::photo
