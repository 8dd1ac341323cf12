// What a TIFF file or stream tells of the photo, as a small TIFF stream of its own. The file may
// have any size and lie in any order, its directories may lead to each other and its values lie
// over each other; a decoder gets a stream that is sound, and no longer than what it holds.

#pragma once

#include <string>

#include "framework/kivxmp/src/ByteSource.h"

namespace kivxmp::photo {

struct CondensedTiff {
    /// The tags of the first directory, of its Exif and of its GPS directory, each up to
    /// kTagBytesLimit and all up to 1 MiB, and a few of the maker note. Left out is what leads
    /// elsewhere (image data, further directories). Empty where there is no directory.
    std::string stream;
    std::string iim;             ///< of the tag that holds IIM data alone
    std::string imageResources;  ///< Photoshop's
};

/// For classic TIFF only. Damaged parts are left out. Throws FileError.
CondensedTiff CondenseTiff(ByteSource& source);

}  // namespace kivxmp::photo
