// TIFF, BigTIFF and DNG files: the first directory's tag 700 tells where the packet lies. Nothing
// else of a file is read, and nothing in it ever moves: what has no room goes to its end.

#pragma once

#include <memory>

#include "framework/kivxmp/src/PhotoFormat.h"

namespace kivxmp::photo {

/// A broken structure is told by Refusal(); throws only where the file cannot be read. The file is
/// "DNG" if its first directory says so, a TIFF file if its extension does; all others are raw
/// files of camera makers, which only look like one.
std::unique_ptr<PhotoFormat> ReadTiff(ByteSource& source);

}  // namespace kivxmp::photo
