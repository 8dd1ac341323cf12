// JPEG files: a packet lies in an APP1 segment before the first scan. Only the segments up to there
// are read.

#pragma once

#include "framework/kivxmp/src/PhotoFormat.h"

#include <cstddef>
#include <memory>

namespace kivxmp::photo {

/// Longest packet in one segment, as the XMP standard states it.
inline constexpr std::size_t kJpegPacketLimitBytes = 65502;

/// A broken structure is told by Refusal(); throws only where the file cannot be read.
std::unique_ptr<PhotoFormat> ReadJpeg(ByteSource& source);

}  // namespace kivxmp::photo
