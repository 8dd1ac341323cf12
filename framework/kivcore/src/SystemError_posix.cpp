#include "framework/kivcore/src/SystemError.h"

#include <cerrno>
#include <csignal>

#include <unistd.h>

namespace kivcore::filesupport {

namespace {

using Kind = FileError::Kind;

constexpr SystemErrorRow kErrorRows[] = {
    {EACCES, "EACCES", Kind::kRefused, "permission denied"},
    {EAGAIN, "EAGAIN", Kind::kOther, "temporarily not available"},
    {EBADF, "EBADF", Kind::kOther, "the file is not open"},
    {EBUSY, "EBUSY", Kind::kOther, "in use by another program"},
    {EDQUOT, "EDQUOT", Kind::kNoSpace, "the disk quota is used up"},
    {EEXIST, "EEXIST", Kind::kOther, "a file of that name exists"},
    {EFBIG, "EFBIG", Kind::kTooLarge, "the file would be too large"},
    {EINTR, "EINTR", Kind::kOther, "interrupted"},
    {EINVAL, "EINVAL", Kind::kOther, "the file system does not allow it"},
    {EIO, "EIO", Kind::kOther, "the disk reports an error"},
    {EISDIR, "EISDIR", Kind::kRefused, "it is a folder"},
    {ELOOP, "ELOOP", Kind::kOther, "too many symbolic links"},
    {EMFILE, "EMFILE", Kind::kOther, "too many open files"},
    {ENAMETOOLONG, "ENAMETOOLONG", Kind::kOther, "the name is too long"},
    {ENFILE, "ENFILE", Kind::kOther, "too many open files in the system"},
    {ENODEV, "ENODEV", Kind::kOther, "no such device"},
    {ENOENT, "ENOENT", Kind::kNotFound, "no such file or folder"},
    {ENOLCK, "ENOLCK", Kind::kOther, "no locks available"},
    {ENOMEM, "ENOMEM", Kind::kOther, "out of memory"},
    {ENOSPC, "ENOSPC", Kind::kNoSpace, "no space left on the disk"},
    {ENOTDIR, "ENOTDIR", Kind::kNotFound, "a part of the path is not a folder"},
    {ENOTSUP, "ENOTSUP", Kind::kOther, "the file system does not support it"},
    {ENXIO, "ENXIO", Kind::kOther, "no such device"},
    {EOVERFLOW, "EOVERFLOW", Kind::kTooLarge, "the file is too large"},
    {EPERM, "EPERM", Kind::kRefused, "not permitted"},
    {EROFS, "EROFS", Kind::kRefused, "the file system is read-only"},
    {ESTALE, "ESTALE", Kind::kOther, "the server no longer knows the file"},
    {ETIMEDOUT, "ETIMEDOUT", Kind::kOther, "the server does not answer"},
    {ETXTBSY, "ETXTBSY", Kind::kOther, "it is a running program"},
    {EXDEV, "EXDEV", Kind::kOther, "on another file system"},
};

}  // namespace

std::span<const SystemErrorRow> SystemErrorRows() noexcept
{
    return kErrorRows;
}

std::span<const SystemErrorAlias> SystemErrorAliases() noexcept
{
    return {};
}

void KillProcess() noexcept
{
    kill(getpid(), SIGKILL);
    // The signal comes before kill() returns, or at the latest here.
    for (;;) {
        pause();
    }
}

}  // namespace kivcore::filesupport
