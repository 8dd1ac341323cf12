// The one layer between kivcore and the system's files. Every call that can fail throws FileError
// with path, step and reason, and asks the fault switch first.

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include <kivcore/FileStream.h>
#include <kivcore/UString.h>

namespace kivcore::filesupport {

enum class EntryKind { kFile, kFolder };

/// Links are followed.
bool IsFile(const UString& path);
bool IsFolder(const UString& path);

/// Sorted by unit; none if the folder cannot be read, which is traced on "kivcore" where it is
/// there. Links are followed. Only names that begin with `prefix`.
std::vector<UString> NamesInFolder(const UString& folder, EntryKind kind, UStringView prefix = {});

/// One folder in one that is there; silent if another program was faster.
void MakeFolder(const UString& path);
/// An empty file, also where one with content was.
void MakeEmptyFile(const UString& path);
/// Silent where there is none.
void RemoveFile(const UString& path);

/// The file that `path` means once symbolic links are followed. It need not be there.
UString FollowLinks(const UString& path);
/// Empty where there is no file; what is no file (a folder, a device) is refused.
std::optional<FileIdentity> FindIdentity(const UString& path);
/// Throws kRefused if the file at `path` is not meant to be written: no write permission bit (or
/// the read-only attribute), or the system does not let us.
void RefuseReadOnly(const UString& path);

/// An open file.
class SystemFile {
public:
    /// `shownPath` is what messages name, here and below.
    static std::shared_ptr<SystemFile> Open(const UString& path, const UString& shownPath);
    /// Makes a new file and locks it for as long as it is open. Null if the name is taken. With
    /// `original` its owner, permissions and access lists are those of that file, as far as the
    /// system allows.
    static std::shared_ptr<SystemFile> CreateLocked(const UString& path, const UString& shownPath,
                                                    const std::optional<UString>& original);

    SystemFile(const SystemFile&) = delete;
    SystemFile& operator=(const SystemFile&) = delete;
    ~SystemFile();

    FileIdentity Identity() const;
    /// Reads up to `bytes` bytes at `offset`; less only at the end of the file.
    std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t bytes, FileStep step);
    void Append(const void* data, std::size_t bytes);
    void Flush();

private:
    SystemFile(std::intptr_t handle, UString shownPath)
        : handle_(handle), shownPath_(std::move(shownPath))
    {
    }

    std::intptr_t handle_;
    UString shownPath_;
};

/// True if there is something of that name, whatever it is.
bool IsNameTaken(const UString& path);

}  // namespace kivcore::filesupport
