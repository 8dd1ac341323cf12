// Who may do what with a file, and its attributes, for a new file that is to take its place.

#pragma once

#include <vector>

#include <windows.h>

#include <kivcore/UString.h>

namespace kivcore::filesupport {

/// What a new file is made with, so that nobody reads in it meanwhile who may not read the old one.
class FileAccess {
public:
    /// What a file has that takes its rights from its folder.
    FileAccess() = default;
    /// What the file at `path` has, as far as the system tells.
    explicit FileAccess(const UString& path);

    DWORD Attributes() const { return attributes_; }
    /// For the system's call, good as long as this object; null for those of the folder.
    SECURITY_ATTRIBUTES* Security() { return descriptor_.empty() ? nullptr : &security_; }

    FileAccess(const FileAccess&) = delete;
    FileAccess& operator=(const FileAccess&) = delete;

private:
    DWORD attributes_ = FILE_ATTRIBUTE_NORMAL;
    std::vector<unsigned char> descriptor_;
    SECURITY_ATTRIBUTES security_{};
};

}  // namespace kivcore::filesupport
