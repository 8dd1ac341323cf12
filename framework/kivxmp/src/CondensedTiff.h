// What a TIFF file tells of the photo, as a small TIFF stream of its own: the file may have any
// size and lie in any order, and a decoder gets it whole.

#pragma once

#include <string>

#include "framework/kivxmp/src/ByteSource.h"

namespace kivxmp::photo {

struct CondensedTiff {
    /// The tags of the first directory, of its Exif and of its GPS directory, each up to
    /// kTagBytesLimit. Left out is what leads elsewhere (image data, further directories) or counts
    /// offsets from places that are gone (maker notes). Empty where there is no directory.
    std::string stream;
    std::string iim;             ///< of the tag that holds IIM data alone
    std::string imageResources;  ///< Photoshop's
};

/// For classic TIFF only. Damaged parts are left out. Throws FileError.
CondensedTiff CondenseTiff(ByteSource& source);

}  // namespace kivxmp::photo
