// The new file takes a number of its own; a second number names the second link under which the old
// file is kept from the rename until the folder is flushed, so that also a failure there can be
// undone. Readers look for the low numbers only, which costs them two questions; writers look
// through the whole folder.

#include "framework/kivcore/src/FileExchange.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <kivcore/Trace.h>

#include "framework/kivcore/src/BesideNames.h"
#include "framework/kivcore/src/Path.h"
#include "framework/kivcore/src/SystemCall_posix.h"

namespace kivcore::filesupport {

namespace {

/// Opens the file at `path` and marks it as in use by a living writer, so that RemoveUnlessLocked
/// leaves all its names alone. Not open where that is not possible.
Descriptor Hold(const UString& path)
{
    Descriptor file(
        open(NativePath(path).c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY));
    // Several may hold one file.
    if (file.Get() == -1 || (flock(file.Get(), LOCK_SH | LOCK_NB) == -1 && errno == EWOULDBLOCK)) {
        return {};
    }
    return file;
}

/// Puts the file `from` in the place of `to`, in one step.
void RenameOver(const UString& from, const UString& to)
{
    const std::string nativeFrom = NativePath(from);
    const std::string nativeTo = NativePath(to);
    if (Attempt(FileStep::kRename, [&] { return rename(nativeFrom.c_str(), nativeTo.c_str()); }) ==
        -1) {
        ThrowSystemError(to, StepText(FileStep::kRename), errno);
    }
}

/// Makes what was made and renamed in `folder` survive a power failure.
void FlushFolder(const UString& folder, const UString& shownPath)
{
    const std::string native = NativePath(folder);
    const Descriptor file(open(native.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // A folder that may be written but not read cannot be opened, and some file systems flush no
    // folders: there is nothing more to be done then.
    if (file.Get() == -1 && errno == EACCES) {
        return;
    }
    if ((file.Get() == -1 ||
         Attempt(FileStep::kFlushFolder, [&] { return fsync(file.Get()); }) == -1) &&
        errno != EINVAL && errno != ENOTSUP) {
        ThrowSystemError(shownPath, StepText(FileStep::kFlushFolder), errno);
    }
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

/// Removes the file unless a living writer holds its lock.
void RemoveUnlessLocked(const UString& path)
{
    const std::string native = NativePath(path);
    const Descriptor file(
        open(native.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (file.Get() == -1 || fstat(file.Get(), &status) == -1 || !S_ISREG(status.st_mode)) {
        return;
    }
    // With the lock in hand, the name is looked at again: the writer may have come to its end and
    // let go of the lock just now, and then the open file is the replaced one under its own name.
    if (flock(file.Get(), LOCK_EX | LOCK_NB) == 0 && NamesOpenFile(native, file.Get())) {
        unlink(native.c_str());
    }
}

}  // namespace

struct FileExchange::Names {
    UString target;
    UString shownPath;
    bool exists = false;
    // A name beside the target is ours for as long as the file is open: all others leave it alone
    // then. Without that, a name that another writer cleared and took would be removed, or even
    // renamed over the target, half written.
    std::shared_ptr<SystemFile> file;
    Descriptor old;
    UString newName;             // of `file`, while it has one
    std::size_t freeNumber = 0;  // of beside names, the first that may be free
    UString keptName;            // of `old`, the second one, while it has it

    void PutOldBack() noexcept
    {
        try {
            if (FindIdentity(target) != file->Identity()) {
                return;  // another writer's by now
            }
            if (!exists) {
                RemoveFile(target);
            } else if (!keptName.empty()) {
                RenameOver(keptName, target);
                keptName.clear();
            }
        } catch (const std::exception& error) {
            debug::Trace(0, "kivcore", error.what());
        }
    }
};

FileExchange::FileExchange(UString target, UString shownPath) : names_(std::make_unique<Names>())
{
    names_->target = std::move(target);
    names_->shownPath = std::move(shownPath);
}

FileExchange::~FileExchange()
{
    // The files are still open here, and so the names still ours.
    RemoveSilently(names_->newName);
    RemoveSilently(names_->keptName);
}

const std::shared_ptr<SystemFile>& FileExchange::Create(bool exists)
{
    names_->exists = exists;
    const std::optional<UString> original = exists ? std::optional(names_->target) : std::nullopt;
    for (std::size_t number = 0; number < kMaxBesideNumbers; ++number) {
        UString name = BesidePath(names_->target, number);
        names_->file = SystemFile::CreateLocked(name, names_->shownPath, original);
        if (names_->file) {
            names_->newName = std::move(name);
            names_->freeNumber = number + 1;
            return names_->file;
        }
    }
    throw FileError(FileError::Kind::kOther,
                    ErrorText(names_->shownPath, "is being written by too many others"));
}

void FileExchange::KeepOld()
{
    if (!names_->exists) {
        return;
    }
    names_->old = Hold(names_->target);
    if (names_->old.Get() == -1) {
        return;
    }
    // By way of the open file, because another one may stand under its name by now.
    const std::string open = "/proc/self/fd/" + std::to_string(names_->old.Get());
    for (std::size_t number = names_->freeNumber; number < kMaxBesideNumbers; ++number) {
        UString name = BesidePath(names_->target, number);
        if (linkat(AT_FDCWD, open.c_str(), AT_FDCWD, NativePath(name).c_str(), AT_SYMLINK_FOLLOW) ==
            0) {
            names_->keptName = std::move(name);
            return;
        }
        if (errno != EEXIST) {
            return;  // a file system without hard links
        }
    }
}

FileIdentity FileExchange::Place()
{
    RenameOver(names_->newName, names_->target);
    names_->newName.clear();
    try {
        FlushFolder(UString(FolderPart(names_->target)), names_->shownPath);
    } catch (const FileError&) {
        names_->PutOldBack();
        throw;
    }
    return names_->file->Identity();
}

void ClearLeftovers(const UString& folder)
{
    for (const UString& name : NamesInFolder(folder, EntryKind::kFile, kBesidePrefix)) {
        if (BesideNameLength(name) == name.size()) {
            RemoveUnlessLocked(File(Dir(folder), name).FullPath());
        }
    }
}

void RecoverLeftovers(const UString& target)
{
    // Two in a row, because a writer uses up to two names and lets go of the lower one first.
    std::size_t free = 0;
    for (std::size_t number = 0; number < kMaxBesideNumbers && free < 2; ++number) {
        const UString name = BesidePath(target, number);
        if (IsNameTaken(name)) {
            RemoveUnlessLocked(name);
            free = 0;
        } else {
            ++free;
        }
    }
}

}  // namespace kivcore::filesupport
