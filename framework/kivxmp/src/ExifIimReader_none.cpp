// For builds without a library that decodes Exif and IIM data.

#include "framework/kivxmp/src/ExifIimReader.h"

namespace kivxmp::photo {

TagList ReadExifTags(std::string_view, TagFilter)
{
    return {};
}

TagList ReadIimTags(std::string_view, TagFilter)
{
    return {};
}

}  // namespace kivxmp::photo
