#include "framework/kivcore/src/SystemError.h"

#include <cerrno>

#include <windows.h>

#include <gtest/gtest.h>

namespace kivcore::filesupport {
namespace {

struct TextCase {
    int error;
    FileError::Kind kind;
    const char* reason;
};

using Kind = FileError::Kind;

constexpr TextCase kTextCases[] = {
    {ERROR_FILE_NOT_FOUND, Kind::kNotFound, "no such file or folder"},
    {ERROR_PATH_NOT_FOUND, Kind::kNotFound, "no such file or folder"},
    {ERROR_INVALID_NAME, Kind::kNotFound, "no file can have that name"},
    {ERROR_ACCESS_DENIED, Kind::kRefused, "permission denied"},
    {ERROR_WRITE_PROTECT, Kind::kRefused, "the file system is read-only"},
    {ERROR_SHARING_VIOLATION, Kind::kOther, "in use by another program"},
    {ERROR_LOCK_VIOLATION, Kind::kOther, "in use by another program"},
    {ERROR_DISK_FULL, Kind::kNoSpace, "no space left on the disk"},
    {ERROR_HANDLE_DISK_FULL, Kind::kNoSpace, "no space left on the disk"},
    {ERROR_FILE_TOO_LARGE, Kind::kTooLarge, "the file would be too large"},
    {ERROR_UNABLE_TO_REMOVE_REPLACED, Kind::kOther, "the old one cannot be put aside"},
    {ERROR_UNABLE_TO_MOVE_REPLACEMENT, Kind::kOther, "the system does not move it"},
    {ERROR_UNABLE_TO_MOVE_REPLACEMENT_2, Kind::kOther,
     "the system put the old one aside and does not move the new one"},
    {4242, Kind::kOther, "system error 4242"},
};

std::string TextOfError(int error, Kind& kind)
{
    try {
        ThrowSystemError(u"C:\\p.jpg", "cannot be read", error);
    } catch (const FileError& failure) {
        kind = failure.GetKind();
        return failure.what();
    }
}

TEST(SystemError, KindsAndTexts)
{
    for (const TextCase& row : kTextCases) {
        Kind kind = Kind::kChanged;
        EXPECT_EQ(TextOfError(row.error, kind),
                  std::string("C:\\p.jpg: cannot be read: ") + row.reason);
        EXPECT_EQ(kind, row.kind) << row.reason;
    }
}

// What programs print is the same on all systems: these are the other systems' texts.
constexpr TextCase kErrnoCases[] = {
    {EACCES, Kind::kRefused, "permission denied"},
    {EBADF, Kind::kOther, "the file is not open"},
    {EBUSY, Kind::kOther, "in use by another program"},
    {EEXIST, Kind::kOther, "a file of that name exists"},
    {EFBIG, Kind::kTooLarge, "the file would be too large"},
    {EINVAL, Kind::kOther, "the file system does not allow it"},
    {EIO, Kind::kOther, "the disk reports an error"},
    {EISDIR, Kind::kRefused, "it is a folder"},
    {EMFILE, Kind::kOther, "too many open files"},
    {ENAMETOOLONG, Kind::kOther, "the name is too long"},
    {ENOENT, Kind::kNotFound, "no such file or folder"},
    {ENOMEM, Kind::kOther, "out of memory"},
    {ENOSPC, Kind::kNoSpace, "no space left on the disk"},
    {ENOTDIR, Kind::kNotFound, "a part of the path is not a folder"},
    {ENOTSUP, Kind::kOther, "the file system does not support it"},
    {EPERM, Kind::kRefused, "not permitted"},
    {EROFS, Kind::kRefused, "the file system is read-only"},
    {ETIMEDOUT, Kind::kOther, "the server does not answer"},
    {EXDEV, Kind::kOther, "on another file system"},
};

TEST(SystemError, AnErrnoHasTheSameText)
{
    for (const TextCase& row : kErrnoCases) {
        Kind kind = Kind::kChanged;
        EXPECT_EQ(TextOfError(SystemErrorByErrno(row.error), kind),
                  std::string("C:\\p.jpg: cannot be read: ") + row.reason);
        EXPECT_EQ(kind, row.kind) << row.reason;
    }
}

TEST(SystemError, Names)
{
    EXPECT_EQ(SystemErrorByName("ENOSPC"), ERROR_DISK_FULL);
    EXPECT_EQ(SystemErrorByName("ERROR_DISK_FULL"), ERROR_DISK_FULL);
    EXPECT_EQ(SystemErrorByName("ERROR_UNABLE_TO_MOVE_REPLACEMENT_2"), 1177);
    EXPECT_EQ(SystemErrorByName("1175"), 1175);
    EXPECT_EQ(SystemErrorByName("DISK_FULL"), 0);
    EXPECT_EQ(SystemErrorByName("NOSUCHERROR"), 0);
    EXPECT_EQ(SystemErrorByName(""), 0);
    EXPECT_EQ(SystemErrorByName("-5"), 0);
    EXPECT_EQ(SystemErrorByErrno(0), 0);
    EXPECT_EQ(SystemErrorByErrno(1176), 1176);
}

}  // namespace
}  // namespace kivcore::filesupport
