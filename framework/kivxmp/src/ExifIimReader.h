// Decodes Exif and IIM data through the library that the build was given for it. This header knows
// none; a build without one finds no tags.

#pragma once

#include <string_view>

#include "framework/kivxmp/src/TagValue.h"

namespace kivxmp::photo {

/// Whether a tag is of use.
using TagFilter = bool (*)(std::string_view name);

/// The tags of a TIFF stream, of the camera maker's own directories among them. Values longer than
/// kTagBytesLimit are left out. What is damaged gives fewer tags or none, and a trace.
TagList ReadExifTags(std::string_view tiff, TagFilter isWanted);

/// The datasets of sound IIM data (IimBlock.h), likewise.
TagList ReadIimTags(std::string_view iim, TagFilter isWanted);

}  // namespace kivxmp::photo
