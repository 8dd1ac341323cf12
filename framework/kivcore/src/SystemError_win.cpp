#include "framework/kivcore/src/SystemError.h"

#include <cerrno>

#include <windows.h>

#include "framework/kivcore/src/SystemCall_win.h"

namespace kivcore::filesupport {

namespace {

using Kind = FileError::Kind;

// The texts of the other systems where the meaning is the same.
constexpr SystemErrorRow kErrorRows[] = {
    {ERROR_FILE_NOT_FOUND, "ERROR_FILE_NOT_FOUND", Kind::kNotFound, "no such file or folder"},
    {ERROR_PATH_NOT_FOUND, "ERROR_PATH_NOT_FOUND", Kind::kNotFound, "no such file or folder"},
    {ERROR_TOO_MANY_OPEN_FILES, "ERROR_TOO_MANY_OPEN_FILES", Kind::kOther, "too many open files"},
    {ERROR_ACCESS_DENIED, "ERROR_ACCESS_DENIED", Kind::kRefused, "permission denied"},
    {ERROR_INVALID_HANDLE, "ERROR_INVALID_HANDLE", Kind::kOther, "the file is not open"},
    {ERROR_NOT_ENOUGH_MEMORY, "ERROR_NOT_ENOUGH_MEMORY", Kind::kOther, "out of memory"},
    {ERROR_OUTOFMEMORY, "ERROR_OUTOFMEMORY", Kind::kOther, "out of memory"},
    {ERROR_INVALID_DRIVE, "ERROR_INVALID_DRIVE", Kind::kNotFound, "no such drive"},
    {ERROR_NOT_SAME_DEVICE, "ERROR_NOT_SAME_DEVICE", Kind::kOther, "on another file system"},
    {ERROR_WRITE_PROTECT, "ERROR_WRITE_PROTECT", Kind::kRefused, "the file system is read-only"},
    {ERROR_NOT_READY, "ERROR_NOT_READY", Kind::kOther, "the drive is not ready"},
    {ERROR_CRC, "ERROR_CRC", Kind::kOther, "the disk reports an error"},
    {ERROR_SEEK, "ERROR_SEEK", Kind::kOther, "the disk reports an error"},
    {ERROR_SECTOR_NOT_FOUND, "ERROR_SECTOR_NOT_FOUND", Kind::kOther, "the disk reports an error"},
    {ERROR_WRITE_FAULT, "ERROR_WRITE_FAULT", Kind::kOther, "the disk reports an error"},
    {ERROR_READ_FAULT, "ERROR_READ_FAULT", Kind::kOther, "the disk reports an error"},
    {ERROR_IO_DEVICE, "ERROR_IO_DEVICE", Kind::kOther, "the disk reports an error"},
    {ERROR_DISK_CORRUPT, "ERROR_DISK_CORRUPT", Kind::kOther, "the disk reports an error"},
    {ERROR_FILE_CORRUPT, "ERROR_FILE_CORRUPT", Kind::kOther, "the disk reports an error"},
    {ERROR_SHARING_VIOLATION, "ERROR_SHARING_VIOLATION", Kind::kOther, "in use by another program"},
    {ERROR_LOCK_VIOLATION, "ERROR_LOCK_VIOLATION", Kind::kOther, "in use by another program"},
    {ERROR_BUSY, "ERROR_BUSY", Kind::kOther, "in use by another program"},
    {ERROR_USER_MAPPED_FILE, "ERROR_USER_MAPPED_FILE", Kind::kOther, "in use by another program"},
    {ERROR_DELETE_PENDING, "ERROR_DELETE_PENDING", Kind::kOther, "it is being removed"},
    {ERROR_HANDLE_DISK_FULL, "ERROR_HANDLE_DISK_FULL", Kind::kNoSpace, "no space left on the disk"},
    {ERROR_DISK_FULL, "ERROR_DISK_FULL", Kind::kNoSpace, "no space left on the disk"},
    {kErrorDiskQuotaExceeded, "ERROR_DISK_QUOTA_EXCEEDED", Kind::kNoSpace,
     "the disk quota is used up"},
    {ERROR_NOT_ENOUGH_QUOTA, "ERROR_NOT_ENOUGH_QUOTA", Kind::kNoSpace, "the disk quota is used up"},
    {ERROR_NOT_SUPPORTED, "ERROR_NOT_SUPPORTED", Kind::kOther,
     "the file system does not support it"},
    {ERROR_INVALID_FUNCTION, "ERROR_INVALID_FUNCTION", Kind::kOther,
     "the file system does not support it"},
    {ERROR_INVALID_PARAMETER, "ERROR_INVALID_PARAMETER", Kind::kOther,
     "the file system does not allow it"},
    {ERROR_BAD_NETPATH, "ERROR_BAD_NETPATH", Kind::kNotFound, "no such server"},
    {ERROR_BAD_NET_NAME, "ERROR_BAD_NET_NAME", Kind::kNotFound, "no such folder on the server"},
    {ERROR_NETNAME_DELETED, "ERROR_NETNAME_DELETED", Kind::kOther, "the server does not answer"},
    {ERROR_SEM_TIMEOUT, "ERROR_SEM_TIMEOUT", Kind::kOther, "the server does not answer"},
    {ERROR_NETWORK_UNREACHABLE, "ERROR_NETWORK_UNREACHABLE", Kind::kOther,
     "the server does not answer"},
    {ERROR_FILE_EXISTS, "ERROR_FILE_EXISTS", Kind::kOther, "a file of that name exists"},
    {ERROR_ALREADY_EXISTS, "ERROR_ALREADY_EXISTS", Kind::kOther, "a file of that name exists"},
    {ERROR_INVALID_NAME, "ERROR_INVALID_NAME", Kind::kNotFound, "no file can have that name"},
    {ERROR_BAD_PATHNAME, "ERROR_BAD_PATHNAME", Kind::kNotFound, "no file can have that name"},
    {ERROR_FILENAME_EXCED_RANGE, "ERROR_FILENAME_EXCED_RANGE", Kind::kOther,
     "the name is too long"},
    {ERROR_BUFFER_OVERFLOW, "ERROR_BUFFER_OVERFLOW", Kind::kOther, "the name is too long"},
    {ERROR_FILE_TOO_LARGE, "ERROR_FILE_TOO_LARGE", Kind::kTooLarge, "the file would be too large"},
    {ERROR_DIRECTORY, "ERROR_DIRECTORY", Kind::kNotFound, "a part of the path is not a folder"},
    {kErrorDirectoryNotSupported, "ERROR_DIRECTORY_NOT_SUPPORTED", Kind::kRefused,
     "it is a folder"},
    {ERROR_CANT_RESOLVE_FILENAME, "ERROR_CANT_RESOLVE_FILENAME", Kind::kOther,
     "too many symbolic links"},
    {ERROR_PRIVILEGE_NOT_HELD, "ERROR_PRIVILEGE_NOT_HELD", Kind::kRefused, "not permitted"},
    {kErrorVirusInfected, "ERROR_VIRUS_INFECTED", Kind::kRefused, "the virus scanner refuses it"},
    {ERROR_UNABLE_TO_REMOVE_REPLACED, "ERROR_UNABLE_TO_REMOVE_REPLACED", Kind::kOther,
     "the old one cannot be put aside"},
    {ERROR_UNABLE_TO_MOVE_REPLACEMENT, "ERROR_UNABLE_TO_MOVE_REPLACEMENT", Kind::kOther,
     "the system does not move it"},
    {ERROR_UNABLE_TO_MOVE_REPLACEMENT_2, "ERROR_UNABLE_TO_MOVE_REPLACEMENT_2", Kind::kOther,
     "the system put the old one aside and does not move the new one"},
};

// The errors by which tests of all systems ask for a fault.
constexpr SystemErrorAlias kAliases[] = {
    {EACCES, "EACCES", ERROR_ACCESS_DENIED},
    {EBADF, "EBADF", ERROR_INVALID_HANDLE},
    {EBUSY, "EBUSY", ERROR_SHARING_VIOLATION},
    {EEXIST, "EEXIST", ERROR_FILE_EXISTS},
    {EFBIG, "EFBIG", ERROR_FILE_TOO_LARGE},
    {EINVAL, "EINVAL", ERROR_INVALID_PARAMETER},
    {EIO, "EIO", ERROR_IO_DEVICE},
    {EISDIR, "EISDIR", kErrorDirectoryNotSupported},
    {EMFILE, "EMFILE", ERROR_TOO_MANY_OPEN_FILES},
    {ENAMETOOLONG, "ENAMETOOLONG", ERROR_FILENAME_EXCED_RANGE},
    {ENOENT, "ENOENT", ERROR_FILE_NOT_FOUND},
    {ENOMEM, "ENOMEM", ERROR_NOT_ENOUGH_MEMORY},
    {ENOSPC, "ENOSPC", ERROR_DISK_FULL},
    {ENOTDIR, "ENOTDIR", ERROR_DIRECTORY},
    {ENOTSUP, "ENOTSUP", ERROR_NOT_SUPPORTED},
    {EPERM, "EPERM", ERROR_PRIVILEGE_NOT_HELD},
    {EROFS, "EROFS", ERROR_WRITE_PROTECT},
    {ETIMEDOUT, "ETIMEDOUT", ERROR_SEM_TIMEOUT},
    {EXDEV, "EXDEV", ERROR_NOT_SAME_DEVICE},
};

}  // namespace

std::span<const SystemErrorRow> SystemErrorRows() noexcept
{
    return kErrorRows;
}

std::span<const SystemErrorAlias> SystemErrorAliases() noexcept
{
    return kAliases;
}

void KillProcess() noexcept
{
    // The number by which the system says that a program was ended from outside.
    TerminateProcess(GetCurrentProcess(), STATUS_CONTROL_C_EXIT);
    for (;;) {
        Sleep(INFINITE);
    }
}

}  // namespace kivcore::filesupport
