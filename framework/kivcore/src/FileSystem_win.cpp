#include "framework/kivcore/src/FileSystem.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

#include <windows.h>

#include <winioctl.h>

#include <kivcore/Trace.h>

#include "framework/kivcore/src/FileAccess_win.h"
#include "framework/kivcore/src/FileFault.h"
#include "framework/kivcore/src/Path.h"
#include "framework/kivcore/src/Path_win.h"
#include "framework/kivcore/src/ReparsePoint_win.h"
#include "framework/kivcore/src/SystemCall_win.h"
#include "framework/kivcore/src/SystemError.h"

namespace kivcore::filesupport {

namespace {

constexpr std::string_view kNoFileBeside = "no new file can be made beside it";
constexpr int kMaxLinks = 40;
constexpr std::string_view kNotAFile = "is not a file";

// In one call.
constexpr std::size_t kMaxCallBytes = std::size_t{64} * 1024 * 1024;

struct SearchCloser {
    using pointer = HANDLE;
    void operator()(HANDLE search) const { FindClose(search); }
};

HANDLE AsHandle(std::intptr_t handle)
{
    return reinterpret_cast<HANDLE>(handle);
}

std::uint64_t Joined(DWORD high, DWORD low)
{
    return (std::uint64_t{high} << 32U) | low;
}

FileIdentity IdentityFrom(const BY_HANDLE_FILE_INFORMATION& info)
{
    // Of the system's 100 ns since 1601; unsigned, because they can hold times that do not fit.
    constexpr std::uint64_t kTicksTo1970 = 116'444'736'000'000'000U;
    const std::uint64_t ticks =
        Joined(info.ftLastWriteTime.dwHighDateTime, info.ftLastWriteTime.dwLowDateTime);
    return {info.dwVolumeSerialNumber, Joined(info.nFileIndexHigh, info.nFileIndexLow),
            Joined(info.nFileSizeHigh, info.nFileSizeLow),
            static_cast<std::int64_t>((ticks - kTicksTo1970) * 100)};
}

bool IsFolderAttribute(DWORD attributes)
{
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

/// What the file at `path` is, links followed. Not even a file that another program keeps to itself
/// refuses that. 0 or the system's error.
int Look(const UString& path, BY_HANDLE_FILE_INFORMATION& info)
{
    const std::wstring native = NativePath(path);
    const Handle file(CreateFileW(native.c_str(), FILE_READ_ATTRIBUTES, kShareAll, nullptr,
                                  OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (!file.IsOpen() || !GetFileInformationByHandle(file.Get(), &info)) {
        return LastError();
    }
    return 0;
}

bool HasKind(const UString& path, EntryKind kind)
{
    BY_HANDLE_FILE_INFORMATION info{};
    return Look(path, info) == 0 &&
           IsFolderAttribute(info.dwFileAttributes) == (kind == EntryKind::kFolder);
}

/// The system says of a folder no more than that access is denied.
int BetterError(int error, const UString& path)
{
    return error == ERROR_ACCESS_DENIED && IsFolder(path) ? kErrorDirectoryNotSupported : error;
}

void TraceUnlessMissing(const UString& folder, int error)
{
    if (IsNameTaken(folder)) {
        error = IsFolder(folder) ? error : ERROR_DIRECTORY;
    } else if (IsMissing(error)) {
        return;
    }
    try {
        ThrowSystemError(folder, "cannot be listed", error);
    } catch (const FileError& failure) {
        debug::Trace(0, "kivcore", failure.what());
    }
}

std::optional<LinkTarget> ReadLink(const UString& path)
{
    const std::wstring native = NativePath(path);
    const DWORD attributes = GetFileAttributesW(native.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
        return std::nullopt;
    }
    const Handle link(
        CreateFileW(native.c_str(), FILE_READ_ATTRIBUTES, kShareAll, nullptr, OPEN_EXISTING,
                    FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    unsigned char data[MAXIMUM_REPARSE_DATA_BUFFER_SIZE];
    DWORD bytes = 0;
    if (!link.IsOpen() || !DeviceIoControl(link.Get(), FSCTL_GET_REPARSE_POINT, nullptr, 0, data,
                                           sizeof data, &bytes, nullptr)) {
        return std::nullopt;
    }
    return ReadLinkTarget(data, bytes);
}

bool IsOfKind(const WIN32_FIND_DATAW& entry, const UString& folder, EntryKind kind)
{
    if ((entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
        return HasKind(File(Dir(folder), FromNative(entry.cFileName)).FullPath(), kind);
    }
    return IsFolderAttribute(entry.dwFileAttributes) == (kind == EntryKind::kFolder);
}

}  // namespace

bool IsFile(const UString& path)
{
    return HasKind(path, EntryKind::kFile);
}

bool IsFolder(const UString& path)
{
    return HasKind(path, EntryKind::kFolder);
}

std::vector<UString> NamesInFolder(const UString& folder, EntryKind kind, UStringView prefix)
{
    std::vector<UString> names;
    if (NativePath(folder).empty()) {
        return names;  // "\\*" would be another folder's
    }
    const std::wstring pattern = NativePath((Dir(folder) / u"*").FullPath());
    WIN32_FIND_DATAW entry{};
    HANDLE const search =
        FindFirstFileExW(pattern.c_str(), FindExInfoBasic, &entry, FindExSearchNameMatch, nullptr,
                         FIND_FIRST_EX_LARGE_FETCH);
    if (search == INVALID_HANDLE_VALUE) {
        TraceUnlessMissing(folder, LastError());
        return names;
    }
    const std::unique_ptr<HANDLE, SearchCloser> closer(search);
    do {
        UString name = FromNative(entry.cFileName);
        if (name.starts_with(prefix) && name != u"." && name != u".." &&
            IsOfKind(entry, folder, kind)) {
            names.push_back(std::move(name));
        }
    } while (FindNextFileW(search, &entry));
    std::sort(names.begin(), names.end());
    return names;
}

void MakeFolder(const UString& path)
{
    const std::wstring native = NativePath(path);
    const int error = Attempt(FileStep::kCreate,
                              [&] { return CreateDirectoryW(native.c_str(), nullptr) != FALSE; });
    if (error != 0 && (error != ERROR_ALREADY_EXISTS || !IsFolder(path))) {
        ThrowSystemError(path, StepText(FileStep::kCreate), error);
    }
}

void MakeEmptyFile(const UString& path)
{
    const std::wstring native = NativePath(path);
    // CREATE_ALWAYS would take a hidden file's attributes away, or be refused.
    const int error = Attempt(FileStep::kCreate, [&] {
        const Handle file(CreateFileW(native.c_str(), GENERIC_WRITE, kShareAll, nullptr,
                                      OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
        return file.IsOpen() && SetEndOfFile(file.Get());
    });
    if (error != 0) {
        ThrowSystemError(path, StepText(FileStep::kCreate), BetterError(error, path));
    }
}

void RemoveFile(const UString& path)
{
    const std::wstring native = NativePath(path);
    const int error =
        Attempt(FileStep::kRemove, [&] { return DeleteFileW(native.c_str()) != FALSE; });
    if (error != 0 && !IsMissing(error)) {
        ThrowSystemError(path, StepText(FileStep::kRemove), BetterError(error, path));
    }
}

UString FollowLinks(const UString& path)
{
    UString target = path;
    for (int links = 0; links < kMaxLinks; ++links) {
        const std::optional<LinkTarget> next = ReadLink(target);
        if (!next) {
            return target;
        }
        // ".." is taken back by the text alone on Windows, for links as for all paths; one that
        // begins with a separator is meant from the root of the link's drive.
        const bool fromRoot = next->isRelative && IsSeparator(next->path.front());
        const UString folder(fromRoot ? UStringView(target).substr(0, RootLength(target))
                                      : FolderPart(target));
        target = next->isRelative ? JoinPath(folder, next->path) : AbsolutePath(next->path);
    }
    ThrowSystemError(path, StepText(FileStep::kOpen), ERROR_CANT_RESOLVE_FILENAME);
}

std::optional<FileIdentity> FindIdentity(const UString& path)
{
    BY_HANDLE_FILE_INFORMATION info{};
    if (const int error = Look(path, info)) {
        if (IsMissing(error)) {
            return std::nullopt;
        }
        ThrowSystemError(path, StepText(FileStep::kOpen), error);
    }
    if (IsFolderAttribute(info.dwFileAttributes)) {
        ThrowSystemError(path, StepText(FileStep::kOpen), kErrorDirectoryNotSupported);
    }
    return IdentityFrom(info);
}

void RefuseReadOnly(const UString& path)
{
    BY_HANDLE_FILE_INFORMATION info{};
    if (const int error = Look(path, info)) {
        ThrowSystemError(path, StepText(FileStep::kOpen), error);
    }
    if ((info.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0) {
        throw FileError(FileError::Kind::kRefused, ErrorText(path, "is read-only"));
    }
    const std::wstring native = NativePath(path);
    const Handle file(CreateFileW(native.c_str(), FILE_WRITE_DATA, kShareAll, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    // That another program has it is not the file's own doing, and may be over by the time we
    // need it.
    if (const int error = file.IsOpen() ? 0 : LastError();
        error != 0 && error != ERROR_SHARING_VIOLATION) {
        ThrowSystemError(path, StepText(FileStep::kWrite), BetterError(error, path));
    }
}

std::shared_ptr<SystemFile> SystemFile::Open(const UString& path, const UString& shownPath)
{
    const std::wstring native = NativePath(path);
    Handle file;
    const int error = Attempt(FileStep::kOpen, [&] {
        file = Handle(CreateFileW(native.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
        return file.IsOpen();
    });
    if (error != 0) {
        ThrowSystemError(shownPath, StepText(FileStep::kOpen), BetterError(error, path));
    }
    if (GetFileType(file.Get()) != FILE_TYPE_DISK) {
        throw FileError(FileError::Kind::kRefused, ErrorText(shownPath, kNotAFile));
    }
    return std::shared_ptr<SystemFile>(
        new SystemFile(reinterpret_cast<std::intptr_t>(file.Release()), shownPath));
}

std::shared_ptr<SystemFile> SystemFile::CreateLocked(const UString& path, const UString& shownPath,
                                                     const std::optional<UString>& original)
{
    const std::wstring native = NativePath(path);
    const auto access =
        original ? std::make_unique<FileAccess>(*original) : std::make_unique<FileAccess>();
    Handle file;
    const int error = Attempt(FileStep::kCreate, [&] {
        file = Handle(CreateFileW(native.c_str(), GENERIC_READ | GENERIC_WRITE, /*dwShareMode=*/0,
                                  access->Security(), CREATE_NEW, access->Attributes(), nullptr));
        return file.IsOpen();
    });
    if (error == ERROR_FILE_EXISTS) {
        return nullptr;
    }
    if (error != 0) {
        ThrowSystemError(shownPath, kNoFileBeside, error);
    }
    return std::shared_ptr<SystemFile>(
        new SystemFile(reinterpret_cast<std::intptr_t>(file.Release()), shownPath));
}

SystemFile::~SystemFile()
{
    CloseHandle(AsHandle(handle_));
}

FileIdentity SystemFile::Identity() const
{
    BY_HANDLE_FILE_INFORMATION info{};
    if (!GetFileInformationByHandle(AsHandle(handle_), &info)) {
        ThrowSystemError(shownPath_, StepText(FileStep::kOpen), LastError());
    }
    return IdentityFrom(info);
}

std::size_t SystemFile::ReadAt(std::uint64_t offset, void* buffer, std::size_t bytes, FileStep step)
{
    constexpr std::uint64_t kLimit = std::numeric_limits<std::int64_t>::max();
    std::size_t done = 0;
    while (done < bytes && offset < kLimit && done < kLimit - offset) {
        OVERLAPPED place{};
        place.Offset = static_cast<DWORD>((offset + done) & 0xFFFFFFFFU);
        place.OffsetHigh = static_cast<DWORD>((offset + done) >> 32U);
        const auto wanted = static_cast<DWORD>(std::min(bytes - done, kMaxCallBytes));
        DWORD count = 0;
        const int error = Attempt(step, [&] {
            return ReadFile(AsHandle(handle_), static_cast<char*>(buffer) + done, wanted, &count,
                            &place) != FALSE;
        });
        if (error != 0 && error != ERROR_HANDLE_EOF) {
            ThrowSystemError(shownPath_, StepText(step), error);
        }
        if (error != 0 || count == 0) {
            break;
        }
        done += count;
    }
    return done;
}

void SystemFile::Append(const void* data, std::size_t bytes)
{
    std::size_t done = 0;
    while (done < bytes) {
        OVERLAPPED end{};  // whatever was read meanwhile
        end.Offset = end.OffsetHigh = 0xFFFFFFFFU;
        const auto wanted = static_cast<DWORD>(std::min(bytes - done, kMaxCallBytes));
        DWORD count = 0;
        const int error = Attempt(FileStep::kWrite, [&] {
            return WriteFile(AsHandle(handle_), static_cast<const char*>(data) + done, wanted,
                             &count, &end) != FALSE;
        });
        if (error != 0) {
            ThrowSystemError(shownPath_, StepText(FileStep::kWrite), error);
        }
        done += count;
    }
}

void SystemFile::Flush()
{
    if (const int error = Attempt(
            FileStep::kFlush, [this] { return FlushFileBuffers(AsHandle(handle_)) != FALSE; })) {
        ThrowSystemError(shownPath_, StepText(FileStep::kFlush), error);
    }
}

bool IsNameTaken(const UString& path)
{
    return GetFileAttributesW(NativePath(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

}  // namespace kivcore::filesupport
