// Symbolic links, as the file system keeps them.

#pragma once

#include <cstddef>
#include <optional>

#include <kivcore/UString.h>

namespace kivcore::filesupport {

/// Where a symbolic link leads: absolute, or from the folder that it lies in.
struct LinkTarget {
    UString path;
    bool isRelative = false;
};

/// Reads the data of a reparse point; none if it is no symbolic link or broken.
std::optional<LinkTarget> ReadLinkTarget(const unsigned char* data, std::size_t bytes);

}  // namespace kivcore::filesupport
