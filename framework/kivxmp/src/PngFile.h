// PNG files: a packet lies in an iTXt chunk with the keyword XML:com.adobe.xmp. Only the headers of
// other chunks are read.

#pragma once

#include <memory>

#include "framework/kivxmp/src/PhotoFormat.h"

namespace kivxmp::photo {

/// A broken structure is told by Refusal(); throws only where the file cannot be read.
std::unique_ptr<PhotoFormat> ReadPng(ByteSource& source);

}  // namespace kivxmp::photo
