// TIFF, BigTIFF and DNG files: the first directory's tag 700 tells where the packet lies. Nothing
// else of a file is read, and nothing in it ever moves: what has no room goes to its end.

#pragma once

#include <memory>
#include <string_view>

#include "framework/kivxmp/src/PhotoFormat.h"

namespace kivxmp::photo {

/// A broken structure is told by Refusal(); throws only where the file cannot be read.
std::unique_ptr<PhotoFormat> ReadTiff(ByteSource& source);

/// What a file that is TIFF inside is: "TIFF" or "BigTIFF" if its extension (lower case, without
/// the dot) says so, "DNG" if its first directory does; null for a raw file of a camera maker,
/// which only looks like one.
const char* TiffName(ByteSource& source, std::string_view extension);

}  // namespace kivxmp::photo
