#include "framework/kivcore/src/FileSystem.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <limits>
#include <string>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "framework/kivcore/src/FileAccess_posix.h"
#include "framework/kivcore/src/Path.h"
#include "framework/kivcore/src/SystemCall_posix.h"

#include <kivcore/Trace.h>

namespace kivcore::filesupport {

namespace {

constexpr std::string_view kNoFileBeside = "no new file can be made beside it";
constexpr std::string_view kNotAFile = "is not a file";
constexpr int kMaxLinks = 40;

struct FolderCloser {
    void operator()(DIR* folder) const { closedir(folder); }
};

FileIdentity IdentityFrom(const struct stat& status)
{
    // Unsigned, because a file system can hold times that do not fit.
    const std::uint64_t modified =
        static_cast<std::uint64_t>(status.st_mtim.tv_sec) * 1'000'000'000U +
        static_cast<std::uint64_t>(status.st_mtim.tv_nsec);
    return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino),
            static_cast<std::uint64_t>(status.st_size), static_cast<std::int64_t>(modified)};
}

[[noreturn]] void RefuseKind(const UString& path, mode_t mode)
{
    if (S_ISDIR(mode)) {
        ThrowSystemError(path, StepText(FileStep::kOpen), EISDIR);
    }
    throw FileError(FileError::Kind::kRefused, ErrorText(path, kNotAFile));
}

bool HasKind(const UString& path, mode_t kind)
{
    struct stat status {};
    return stat(NativePath(path).c_str(), &status) == 0 && (status.st_mode & S_IFMT) == kind;
}

void TraceUnlessMissing(const UString& folder, int error)
{
    if (error == ENOENT) {
        return;
    }
    try {
        ThrowSystemError(folder, "cannot be listed", error);
    } catch (const FileError& failure) {
        debug::Trace(0, "kivcore", failure.what());
    }
}

}  // namespace

bool IsFile(const UString& path)
{
    return HasKind(path, S_IFREG);
}

bool IsFolder(const UString& path)
{
    return HasKind(path, S_IFDIR);
}

std::vector<UString> NamesInFolder(const UString& folder, EntryKind kind, UStringView prefix)
{
    std::vector<UString> names;
    const std::string native = NativePath(folder);
    const std::unique_ptr<DIR, FolderCloser> stream(opendir(native.c_str()));
    if (!stream) {
        TraceUnlessMissing(folder, errno);
        return names;
    }
    const std::string nativePrefix = NativePath(UString(prefix));
    const mode_t wanted = kind == EntryKind::kFile ? S_IFREG : S_IFDIR;
    while (const dirent* entry = readdir(stream.get())) {
        const std::string name = entry->d_name;
        if (!name.starts_with(nativePrefix) || name == "." || name == "..") {
            continue;
        }
        struct stat status {};
        if (fstatat(dirfd(stream.get()), entry->d_name, &status, 0) == 0 &&
            (status.st_mode & S_IFMT) == wanted) {
            names.push_back(PathFromUTF8(name));
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

void MakeFolder(const UString& path)
{
    const std::string native = NativePath(path);
    if (Attempt(FileStep::kCreate, [&] { return mkdir(native.c_str(), 0777); }) == -1) {
        const int error = errno;
        if (error != EEXIST || !IsFolder(path)) {
            ThrowSystemError(path, StepText(FileStep::kCreate), error);
        }
    }
}

void MakeEmptyFile(const UString& path)
{
    const std::string native = NativePath(path);
    const Descriptor file(Attempt(FileStep::kCreate, [&] {
        return open(native.c_str(),
                    O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0666);
    }));
    if (file.Get() == -1) {
        ThrowSystemError(path, StepText(FileStep::kCreate), errno);
    }
}

void RemoveFile(const UString& path)
{
    const std::string native = NativePath(path);
    if (Attempt(FileStep::kRemove, [&] { return unlink(native.c_str()); }) == -1 &&
        errno != ENOENT) {
        ThrowSystemError(path, StepText(FileStep::kRemove), errno);
    }
}

UString FollowLinks(const UString& path)
{
    UString target = path;
    std::vector<char> buffer(PATH_MAX);
    for (int links = 0; links < kMaxLinks; ++links) {
        const ssize_t length = readlink(NativePath(target).c_str(), buffer.data(), buffer.size());
        if (length < 0) {
            return target;
        }
        const UString next =
            PathFromUTF8(std::string(buffer.data(), static_cast<std::size_t>(length)));
        // What follows a link may climb out of a linked folder, so the system resolves it: the text
        // is only put behind the folder.
        target = RootLength(next) > 0 ? next : UString(FolderPart(target)) + u"/" + next;
    }
    ThrowSystemError(path, StepText(FileStep::kOpen), ELOOP);
}

std::optional<FileIdentity> FindIdentity(const UString& path)
{
    struct stat status {};
    if (stat(NativePath(path).c_str(), &status) == -1) {
        if (errno == ENOENT) {
            return std::nullopt;
        }
        ThrowSystemError(path, StepText(FileStep::kOpen), errno);
    }
    if (!S_ISREG(status.st_mode)) {
        RefuseKind(path, status.st_mode);
    }
    return IdentityFrom(status);
}

void RefuseReadOnly(const UString& path)
{
    const std::string native = NativePath(path);
    struct stat status {};
    if (stat(native.c_str(), &status) == -1) {
        ThrowSystemError(path, StepText(FileStep::kOpen), errno);
    }
    // An administrator passes every permission check, so the bits are looked at by themselves.
    if ((status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0) {
        throw FileError(FileError::Kind::kRefused, ErrorText(path, "is read-only"));
    }
    if (faccessat(AT_FDCWD, native.c_str(), W_OK, AT_EACCESS) == -1) {
        ThrowSystemError(path, StepText(FileStep::kWrite), errno);
    }
}

std::shared_ptr<SystemFile> SystemFile::Open(const UString& path, const UString& shownPath)
{
    const std::string native = NativePath(path);
    // Without O_NONBLOCK a named pipe would hold us here.
    Descriptor file(Attempt(FileStep::kOpen, [&] {
        return open(native.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    }));
    struct stat status {};
    if (file.Get() == -1 || fstat(file.Get(), &status) == -1) {
        ThrowSystemError(shownPath, StepText(FileStep::kOpen), errno);
    }
    if (!S_ISREG(status.st_mode)) {
        RefuseKind(shownPath, status.st_mode);
    }
    return std::shared_ptr<SystemFile>(new SystemFile(file.Release(), shownPath));
}

std::shared_ptr<SystemFile> SystemFile::CreateLocked(const UString& path, const UString& shownPath,
                                                     const std::optional<UString>& original)
{
    const std::string native = NativePath(path);
    Descriptor file(Attempt(FileStep::kCreate, [&] {
        return open(native.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW,
                    original ? S_IRUSR | S_IWUSR : 0666);
    }));
    if (file.Get() == -1) {
        if (errno == EEXIST) {
            return nullptr;
        }
        ThrowSystemError(shownPath, kNoFileBeside, errno);
    }
    // Between the two calls another program can take the file for a leftover: either it holds the
    // lock now, or the name is no longer ours. Where the system has no locks nobody gets one, and
    // so nobody removes the file.
    if (flock(file.Get(), LOCK_EX | LOCK_NB) == -1 && errno == EWOULDBLOCK) {
        return nullptr;
    }
    if (!NamesOpenFile(native, file.Get())) {
        return nullptr;
    }
    if (original) {
        CopyAccess(NativePath(*original), file.Get());
    }
    return std::shared_ptr<SystemFile>(new SystemFile(file.Release(), shownPath));
}

SystemFile::~SystemFile()
{
    close(static_cast<int>(handle_));
}

FileIdentity SystemFile::Identity() const
{
    struct stat status {};
    if (fstat(static_cast<int>(handle_), &status) == -1) {
        ThrowSystemError(shownPath_, StepText(FileStep::kOpen), errno);
    }
    return IdentityFrom(status);
}

std::size_t SystemFile::ReadAt(std::uint64_t offset, void* buffer, std::size_t bytes, FileStep step)
{
    constexpr std::uint64_t kLimit = std::numeric_limits<off_t>::max();
    std::size_t done = 0;
    while (done < bytes && offset < kLimit && done < kLimit - offset) {
        const ssize_t count = Attempt(step, [&] {
            return pread(static_cast<int>(handle_), static_cast<char*>(buffer) + done, bytes - done,
                         static_cast<off_t>(offset + done));
        });
        if (count == -1) {
            ThrowSystemError(shownPath_, StepText(step), errno);
        }
        if (count == 0) {
            break;
        }
        done += static_cast<std::size_t>(count);
    }
    return done;
}

void SystemFile::Append(const void* data, std::size_t bytes)
{
    std::size_t done = 0;
    while (done < bytes) {
        const ssize_t count = Attempt(FileStep::kWrite, [&] {
            return write(static_cast<int>(handle_), static_cast<const char*>(data) + done,
                         bytes - done);
        });
        if (count == -1) {
            ThrowSystemError(shownPath_, StepText(FileStep::kWrite), errno);
        }
        done += static_cast<std::size_t>(count);
    }
}

void SystemFile::Flush()
{
    if (Attempt(FileStep::kFlush, [&] { return fsync(static_cast<int>(handle_)); }) == -1) {
        ThrowSystemError(shownPath_, StepText(FileStep::kFlush), errno);
    }
}

bool IsNameTaken(const UString& path)
{
    struct stat status {};
    return lstat(NativePath(path).c_str(), &status) == 0;
}

bool NamesOpenFile(const std::string& name, int descriptor)
{
    struct stat named {};
    struct stat open {};
    return lstat(name.c_str(), &named) == 0 && fstat(descriptor, &open) == 0 &&
           named.st_dev == open.st_dev && named.st_ino == open.st_ino;
}

}  // namespace kivcore::filesupport
