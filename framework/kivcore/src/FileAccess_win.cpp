#include "framework/kivcore/src/FileAccess_win.h"

#include "framework/kivcore/src/Path_win.h"

namespace kivcore::filesupport {

namespace {

// Those that can be given to a new file. Read-only is left out: such a file is not replaced.
constexpr DWORD kKeptAttributes = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                                  FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED |
                                  FILE_ATTRIBUTE_ENCRYPTED;

}  // namespace

FileAccess::FileAccess(const UString& path)
{
    const std::wstring native = NativePath(path);
    if (const DWORD attributes = GetFileAttributesW(native.c_str());
        attributes != INVALID_FILE_ATTRIBUTES && (attributes & kKeptAttributes) != 0) {
        attributes_ = attributes & kKeptAttributes;
    }
    DWORD bytes = 0;
    GetFileSecurityW(native.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &bytes);
    descriptor_.resize(bytes);
    if (bytes == 0 || !GetFileSecurityW(native.c_str(), DACL_SECURITY_INFORMATION,
                                        descriptor_.data(), bytes, &bytes)) {
        descriptor_.clear();
        return;
    }
    security_.nLength = sizeof security_;
    security_.lpSecurityDescriptor = descriptor_.data();
}

}  // namespace kivcore::filesupport
