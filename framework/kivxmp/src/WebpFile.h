// WebP files: a packet lies in an XMP chunk of the RIFF file, and a flag in the VP8X chunk tells of
// it. Only the headers of other chunks are read.

#pragma once

#include <memory>

#include "framework/kivxmp/src/PhotoFormat.h"

namespace kivxmp::photo {

/// A broken structure is told by Refusal(); throws only where the file cannot be read.
std::unique_ptr<PhotoFormat> ReadWebp(ByteSource& source);

}  // namespace kivxmp::photo
