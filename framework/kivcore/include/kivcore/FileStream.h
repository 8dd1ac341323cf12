// Reading and writing files by byte ranges, and what identifies a file. All of the framework's file
// access goes through here, so that one switch can make any step of it fail.

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include <kivcore/Dir.h>
#include <kivcore/Export.h>
#include <kivcore/UString.h>

namespace kivcore::filesupport {

/// Tells one state of one file from another: which file, how long, when last written.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t number = 0;
    std::uint64_t sizeBytes = 0;
    std::int64_t modifiedNs = 0;
    bool operator==(const FileIdentity&) const = default;
};

/// The steps of file work, by which the fault switch names them.
enum class FileStep {
    kOpen,
    kRead,
    kCreate,
    kWrite,
    kFlush,
    kVerify,
    kRename,
    kFlushFolder,
    kRemove
};

class SystemFile;

/// A file open for reading. Others may read and write it meanwhile.
class KIVCORE_API InputFile {
public:
    /// Throws FileError, kNotFound where there is none; a folder or device is refused.
    explicit InputFile(const UString& path);
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;
    ~InputFile();

    /// As it was when the file was opened.
    std::uint64_t SizeBytes() const noexcept { return identity_.sizeBytes; }
    const FileIdentity& Identity() const noexcept { return identity_; }
    /// Reads up to `bytes` bytes at `offset`; less only at the end of the file. Throws FileError.
    std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t bytes);

private:
    friend class FileReplacement;
    InputFile(std::shared_ptr<SystemFile> file, FileStep step);

    std::shared_ptr<SystemFile> file_;
    FileStep step_;
    FileIdentity identity_;
};

/// Where a replacement's new content goes, from its beginning on.
class KIVCORE_API OutputFile {
public:
    virtual ~OutputFile();
    /// Appends. Throws FileError.
    virtual void Write(const void* data, std::size_t bytes) = 0;
    /// Appends a range of another file. Throws FileError; kChanged if the range is not there.
    virtual void CopyFrom(InputFile& source, std::uint64_t offset, std::uint64_t bytes) = 0;
    /// Bytes written so far.
    virtual std::uint64_t SizeBytes() const noexcept = 0;
};

/// As the error of a fault: the process ends on the spot, as if it had been killed.
inline constexpr int kKillProcess = -1;

/// Test switch: the `countdown`-th coming occurrence of `step` (1 is the next) fails as if the
/// system had answered with the errno `systemError`; 0 takes the switch away. On Windows the errno
/// is translated to the system's error, and other numbers (1175) are the system's own. The
/// environment variable KIV_FILE_FAULT="write:ENOSPC:1" sets it for a whole process; the steps are
/// called open, read, create, write, flush, verify, rename, flushfolder and remove, the errors by
/// their errno's names, the system's names ("ERROR_SHARING_VIOLATION") or numbers, or "KILL".
KIVCORE_API void SetFileFault(FileStep step, int systemError, int countdown);

}  // namespace kivcore::filesupport
