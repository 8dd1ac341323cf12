// ReplaceFileW puts the old file aside under a backup's name and moves the new one to its place:
// two steps, between which a power failure or a kill leaves no file under the photo's name. So the
// backup is not what a half-written new file is, and has a name that tells whose it is:
//
//   .kivsave-HASH-N            the new file, whole or not
//   .kivsave-HASH-N.photo.jpg  the old photo.jpg, whole
//   .kivsave-HASH-N-lock       open for as long as the writer lives; the system removes it with him
//
// The lock is a file of its own, because the system takes the new file only when nobody has it
// open. A backup is renamed back where its photo is missing; where it is not, the backup is removed
// once the photo could be read whole.

#include "framework/kivcore/src/FileExchange.h"

#include <algorithm>
#include <vector>

#include <windows.h>

#include <kivcore/StringConversion.h>
#include <kivcore/Trace.h>

#include "framework/kivcore/src/BesideNames.h"
#include "framework/kivcore/src/Path.h"
#include "framework/kivcore/src/Path_win.h"
#include "framework/kivcore/src/SystemCall_win.h"

namespace kivcore::filesupport {

namespace {

constexpr std::string_view kNoFileBeside = "no new file can be made beside it";
constexpr UStringView kLockSuffix = u"-lock";

// What a backup's name shows of its photo's, so that both together are no name too long. Of a
// longer one the backup is found only by who asks for that photo.
constexpr std::size_t kMaxShownUnits = 64;

constexpr std::size_t kBlockBytes = std::size_t{256} * 1024;

UString BackupPath(const UString& besidePath, const UString& target)
{
    UString name(NamePart(target).substr(0, kMaxShownUnits));
    // Not half of a character.
    if (!name.empty() && (name.back() & 0xFC00U) == 0xD800U) {
        name.pop_back();
    }
    return besidePath + u'.' + name;
}

/// Claims the names that begin with `besidePath`; not open where a living writer has them, or the
/// folder takes no file.
Handle Lock(const UString& besidePath)
{
    // Also the one that a power failure left is taken, and goes with us.
    const std::wstring native = NativePath(besidePath + UString(kLockSuffix));
    return Handle(CreateFileW(
        native.c_str(), GENERIC_READ | DELETE, /*dwShareMode=*/0, nullptr, OPEN_ALWAYS,
        FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
}

/// 0 or the system's error. Nothing is overwritten.
int Rename(const UString& from, const UString& to)
{
    const std::wstring nativeFrom = NativePath(from);
    const std::wstring nativeTo = NativePath(to);
    return MoveFileExW(nativeFrom.c_str(), nativeTo.c_str(), MOVEFILE_WRITE_THROUGH) ? 0
                                                                                     : LastError();
}

/// Reads the file to its end, and returns what it is. Throws FileError.
FileIdentity ReadWhole(const UString& path, const UString& shownPath)
{
    const std::shared_ptr<SystemFile> file = SystemFile::Open(path, shownPath);
    std::vector<char> block(kBlockBytes);
    std::uint64_t offset = 0;
    while (const std::size_t count =
               file->ReadAt(offset, block.data(), block.size(), FileStep::kVerify)) {
        offset += count;
    }
    const FileIdentity identity = file->Identity();
    if (offset != identity.sizeBytes) {
        throw FileError(FileError::Kind::kOther,
                        ErrorText(shownPath, "what was written does not read back the same"));
    }
    return identity;
}

void RemoveSilently(const UString& name) noexcept
{
    if (name.empty()) {
        return;
    }
    try {
        RemoveFile(name);
    } catch (const std::exception& error) {
        debug::Trace(0, "kivcore", error.what());
    }
}

/// Only with the lock in hand.
void SettleBackup(const UString& backup, const UString& target)
{
    if (!IsNameTaken(target)) {
        if (const int error = Rename(backup, target)) {
            ThrowSystemError(target, "its backup cannot be renamed back", error);
        }
        return;
    }
    ReadWhole(target, target);
    RemoveFile(backup);
}

/// True for a file that is neither a folder nor a link.
bool IsPlainFile(const UString& path)
{
    const DWORD attributes = GetFileAttributesW(NativePath(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES &&
           (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT)) == 0;
}

/// Clears `besidePath` and, where they are given, a backup and its target, unless a writer lives.
void ClearUnlessLocked(const UString& besidePath, const UString& backup, const UString& target)
{
    const Handle lock = Lock(besidePath);
    if (!lock.IsOpen()) {
        return;
    }
    // Looked at with the lock in hand: the writer may have come to its end just now.
    if (IsPlainFile(besidePath)) {
        RemoveSilently(besidePath);
    }
    if (backup.empty() || !IsPlainFile(backup)) {
        return;
    }
    try {
        SettleBackup(backup, target);
    } catch (const std::exception& error) {
        debug::Trace(0, "kivcore", error.what());  // it stays for another time
    }
}

/// The same file at another time. Some file systems number a file by its place in a folder.
bool IsSame(const FileIdentity& one, const FileIdentity& other)
{
    return one.device == other.device && one.sizeBytes == other.sizeBytes &&
           (one.number == other.number || one.modifiedNs == other.modifiedNs);
}

/// Why the system does not replace one file by another: it has errors of its own for that, also
/// where another program has one of them open.
int PlainReason(int error, const UString& from, const UString& to)
{
    for (const UString& path : {to, from}) {
        const std::wstring native = NativePath(path);
        const Handle file(CreateFileW(native.c_str(), DELETE | SYNCHRONIZE, kShareAll, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
        if (!file.IsOpen() && GetLastError() == ERROR_SHARING_VIOLATION) {
            return ERROR_SHARING_VIOLATION;
        }
    }
    return error;
}

/// Makes what was made and renamed in `folder` survive a power failure, where the system lets us.
int FlushFolder(const UString& folder)
{
    const std::wstring native = NativePath(folder);
    const Handle file(CreateFileW(native.c_str(), GENERIC_WRITE, kShareAll, nullptr, OPEN_EXISTING,
                                  FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    return Attempt(FileStep::kFlushFolder, [&file] {
        if (!file.IsOpen() || FlushFileBuffers(file.Get())) {
            return true;
        }
        const DWORD error = GetLastError();
        return error != ERROR_CRC && error != ERROR_IO_DEVICE && error != ERROR_DISK_FULL &&
               error != ERROR_WRITE_FAULT;
    });
}

}  // namespace

struct FileExchange::Names {
    UString target;
    UString shownPath;
    bool exists = false;
    // All names below are ours for as long as this is open.
    Handle lock;
    std::shared_ptr<SystemFile> file;  // closed before it takes its place
    UString newName;                   // while there is a file of it
    UString backup;                    // where the old file goes
    bool removeBackup = false;         // the new file is in its place, whole

    int ReplaceBySystem() const;
    void PutInPlace();
    void PutOldBack(const FileIdentity& written) noexcept;
};

/// 0 or the system's error.
int FileExchange::Names::ReplaceBySystem() const
{
    const std::wstring nativeNew = NativePath(newName);
    const std::wstring nativeTarget = NativePath(target);
    const std::wstring nativeBackup = NativePath(backup);
    bool called = false;
    const int error = Attempt(FileStep::kRename, [&] {
        called = true;
        if (!exists) {
            return MoveFileExW(nativeNew.c_str(), nativeTarget.c_str(), MOVEFILE_WRITE_THROUGH) !=
                   FALSE;
        }
        // Attributes, access lists and streams of the old file that the new one cannot take are no
        // reason to leave the user without the new one.
        return ReplaceFileW(nativeTarget.c_str(), nativeNew.c_str(), nativeBackup.c_str(),
                            REPLACEFILE_IGNORE_MERGE_ERRORS | REPLACEFILE_IGNORE_ACL_ERRORS,
                            nullptr, nullptr) != FALSE;
    });
    if (!called && exists && error == ERROR_UNABLE_TO_MOVE_REPLACEMENT_2) {
        Rename(target, backup);  // the fault switch: this error tells of work half done
    }
    return error;
}

void FileExchange::Names::PutInPlace()
{
    const int error = ReplaceBySystem();
    if (error == 0) {
        newName.clear();
        return;
    }
    // The number tells more than the reason below, which is the plain one.
    debug::Trace(0, "kivcore",
                 ErrorText(shownPath, "the system's replacing answers " + std::to_string(error)));
    if (exists && !IsNameTaken(target) && IsNameTaken(backup) && Rename(backup, target) != 0) {
        // The next one to read it will rename it back.
        throw FileError(FileError::Kind::kOther,
                        ErrorText(shownPath, std::string(StepText(FileStep::kRename)) +
                                                 ", and the old one could not be renamed back; it "
                                                 "is kept as " +
                                                 string::UTF16to8(NamePart(backup))));
    }
    ThrowSystemError(shownPath, StepText(FileStep::kRename),
                     exists ? PlainReason(error, newName, target) : error);
}

void FileExchange::Names::PutOldBack(const FileIdentity& written) noexcept
{
    try {
        const std::optional<FileIdentity> now = FindIdentity(target);
        if (now && !IsSame(*now, written)) {
            return;  // another writer's by now
        }
        if (!exists) {
            RemoveFile(target);
            return;
        }
        const std::wstring nativeBackup = NativePath(backup);
        const std::wstring nativeTarget = NativePath(target);
        if (!MoveFileExW(nativeBackup.c_str(), nativeTarget.c_str(),
                         MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
            ThrowSystemError(target, "its backup cannot be renamed back", LastError());
        }
    } catch (const std::exception& error) {
        debug::Trace(0, "kivcore", error.what());
    }
}

FileExchange::FileExchange(UString target, UString shownPath) : names_(std::make_unique<Names>())
{
    names_->target = std::move(target);
    names_->shownPath = std::move(shownPath);
}

FileExchange::~FileExchange()
{
    names_->file.reset();
    RemoveSilently(names_->newName);
    if (names_->removeBackup) {
        RemoveSilently(names_->backup);
    }
}

const std::shared_ptr<SystemFile>& FileExchange::Create(bool exists)
{
    names_->exists = exists;
    const std::optional<UString> original = exists ? std::optional(names_->target) : std::nullopt;
    int error = 0;
    for (std::size_t number = 0; number < kMaxBesideNumbers; ++number) {
        UString name = BesidePath(names_->target, number);
        UString backup = BackupPath(name, names_->target);
        names_->lock = Lock(name);
        if (!names_->lock.IsOpen()) {
            error = LastError();
            // A lock that is just being let go answers like a folder that takes no files.
            if (error != ERROR_SHARING_VIOLATION && error != ERROR_ACCESS_DENIED) {
                break;
            }
            continue;
        }
        error = 0;
        if (IsNameTaken(name) || IsNameTaken(backup)) {
            continue;
        }
        names_->file = SystemFile::CreateLocked(name, names_->shownPath, original);
        if (names_->file) {
            names_->newName = std::move(name);
            names_->backup = std::move(backup);
            return names_->file;
        }
    }
    if (error != 0 && error != ERROR_SHARING_VIOLATION) {
        ThrowSystemError(names_->shownPath, kNoFileBeside, error);
    }
    throw FileError(FileError::Kind::kOther,
                    ErrorText(names_->shownPath, "is being written by too many others"));
}

void FileExchange::KeepOld()
{
    // The system's own call does it.
}

FileIdentity FileExchange::Place()
{
    const FileIdentity written = names_->file->Identity();
    names_->file.reset();
    // Another program may have made or removed the target meanwhile; to a caller to whom that
    // matters it has been refused by now.
    names_->exists = IsNameTaken(names_->target);
    names_->PutInPlace();
    try {
        const UString folder(FolderPart(names_->target));
        if (const int error = FlushFolder(folder)) {
            ThrowSystemError(names_->shownPath, StepText(FileStep::kFlushFolder), error);
        }
        const FileIdentity placed = ReadWhole(names_->target, names_->shownPath);
        names_->removeBackup = names_->exists;
        return IsSame(placed, written) ? placed : written;
    } catch (const FileError&) {
        names_->PutOldBack(written);
        throw;
    }
}

void ClearLeftovers(const UString& folder)
{
    for (const UString& name : NamesInFolder(folder, EntryKind::kFile, kBesidePrefix)) {
        const std::size_t length = BesideNameLength(name);
        if (length == 0) {
            continue;
        }
        const UString besidePath =
            File(Dir(folder), UStringView(name).substr(0, length)).FullPath();
        const UStringView rest = UStringView(name).substr(length);
        if (rest.empty() || rest == kLockSuffix) {
            ClearUnlessLocked(besidePath, {}, {});
        } else if (rest.front() == u'.' && IsBesideNameOf(name, rest.substr(1))) {
            ClearUnlessLocked(besidePath, besidePath + UString(rest),
                              File(Dir(folder), rest.substr(1)).FullPath());
        }
    }
}

void RecoverLeftovers(const UString& target)
{
    std::size_t free = 0;
    for (std::size_t number = 0; number < kMaxBesideNumbers && free < 2; ++number) {
        const UString besidePath = BesidePath(target, number);
        const UString backup = BackupPath(besidePath, target);
        if (IsNameTaken(besidePath) || IsNameTaken(backup)) {
            ClearUnlessLocked(besidePath, backup, target);
            free = 0;
        } else {
            ++free;
        }
    }
}

}  // namespace kivcore::filesupport
