#include <kivcore/FileReplacement.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include <kivcore/Trace.h>

#include "framework/kivcore/src/FileExchange.h"
#include "framework/kivcore/src/FileSystem.h"
#include "framework/kivcore/src/Path.h"
#include "framework/kivcore/src/ReplacementChecks.h"
#include "framework/kivcore/src/SystemError.h"

namespace kivcore::filesupport {

namespace {

// What is written is cut into blocks of this size, and read back in the same blocks.
constexpr std::size_t kBlockBytes = std::size_t{256} * 1024;

constinit bool checksAreOn = true;

// Not a secure digest: it only has to tell what was written from what came back. Every step is
// one-to-one in the digest so far and in the word, so a single damaged word is always seen.
std::uint64_t Digest(std::uint64_t digest, const char* data, std::size_t bytes)
{
    const auto add = [&digest](std::uint64_t word) {
        digest = (digest ^ word) * 0x9E3779B97F4A7C15U;
        digest ^= digest >> 32;
    };
    for (; bytes >= sizeof(std::uint64_t); bytes -= sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, data, sizeof word);
        add(word);
        data += sizeof word;
    }
    std::uint64_t rest = 0;
    std::memcpy(&rest, data, bytes);
    add(rest);
    add(bytes);
    return digest;
}

/// Writes in blocks and keeps the digest of them, where that is asked for.
class BlockOutput final : public OutputFile {
public:
    /// Without a digest of its own if nobody `asksBack`.
    BlockOutput(SystemFile& file, const UString& shownPath, bool asksBack)
        : file_(file), shownPath_(shownPath), asksBack_(asksBack)
    {
    }

    void Write(const void* data, std::size_t bytes) override
    {
        const auto* current = static_cast<const char*>(data);
        while (bytes > 0) {
            const std::size_t count = std::min(bytes, kBlockBytes - used_);
            std::memcpy(block_.get() + used_, current, count);
            Took(count);
            current += count;
            bytes -= count;
        }
    }

    void CopyFrom(InputFile& source, std::uint64_t offset, std::uint64_t bytes) override
    {
        while (bytes > 0) {
            const auto count =
                static_cast<std::size_t>(std::min<std::uint64_t>(bytes, kBlockBytes - used_));
            if (source.ReadAt(offset, block_.get() + used_, count) != count) {
                throw FileError(
                    FileError::Kind::kChanged,
                    ErrorText(shownPath_, "what is to be copied is not there any more"));
            }
            Took(count);
            offset += count;
            bytes -= count;
        }
    }

    std::uint64_t SizeBytes() const noexcept override { return sizeBytes_; }

    void Flush()
    {
        PutOut();
        file_.Flush();
    }

    /// Compares what the system gives back with what it got.
    void ReadBack()
    {
        std::uint64_t digest = 0;
        std::uint64_t offset = 0;
        while (offset < sizeBytes_) {
            const std::size_t count =
                file_.ReadAt(offset, block_.get(), kBlockBytes, FileStep::kVerify);
            if (count == 0) {
                break;
            }
            digest = Digest(digest, block_.get(), count);
            offset += count;
        }
        if (digest != digest_ || file_.Identity().sizeBytes != sizeBytes_) {
            throw FileError(FileError::Kind::kOther,
                            ErrorText(shownPath_, "what was written does not read back the same"));
        }
    }

private:
    void Took(std::size_t count)
    {
        used_ += count;
        sizeBytes_ += count;
        if (used_ == kBlockBytes) {
            PutOut();
        }
    }

    void PutOut()
    {
        if (used_ > 0) {
            if (asksBack_) {
                digest_ = Digest(digest_, block_.get(), used_);
            }
            file_.Append(block_.get(), used_);
            used_ = 0;
        }
    }

    SystemFile& file_;
    const UString& shownPath_;
    const bool asksBack_;
    const std::unique_ptr<char[]> block_ = std::make_unique_for_overwrite<char[]>(kBlockBytes);
    std::size_t used_ = 0;
    std::uint64_t sizeBytes_ = 0;
    std::uint64_t digest_ = 0;
};

}  // namespace

/// One replacement.
class FileReplacement {
public:
    FileReplacement(const UString& path, const ReplaceOptions& options)
        : path_(path), target_(FollowLinks(path)), options_(options)
    {
    }
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    FileIdentity Run(const std::function<void(OutputFile& out)>& write) const
    {
        const std::optional<FileIdentity> identity = FindIdentity(path_);
        RefuseUnless(identity);
        const bool exists = identity.has_value();
        if (exists) {
            RefuseReadOnly(target_);
        }
        ClearLeftovers(UString(FolderPart(target_)));
        FileExchange exchange(target_, path_);
        Write(exchange.Create(exists), write);
        exchange.KeepOld();
        if (options_.expected) {
            RefuseUnless(FindIdentity(path_));
        }
        return exchange.Place();
    }

private:
    void RefuseUnless(const std::optional<FileIdentity>& identity) const
    {
        if (options_.expected && identity != options_.expected) {
            throw FileError(FileError::Kind::kChanged,
                            ErrorText(path_, "was changed since it was read; nothing was written"));
        }
    }

    void Write(const std::shared_ptr<SystemFile>& file,
               const std::function<void(OutputFile& out)>& write) const
    {
        const bool compares = checksAreOn && !options_.compare;
        BlockOutput out(*file, path_, compares);
        write(out);
        out.Flush();
        if (compares) {
            out.ReadBack();
        } else if (checksAreOn) {
            InputFile written(file, FileStep::kVerify);
            options_.compare(written);
        }
    }

    const UString path_;    // as the caller names it
    const UString target_;  // with symbolic links followed
    const ReplaceOptions& options_;
};

void SetReplacementChecks(bool areOn) noexcept
{
    checksAreOn = areOn;
}

FileIdentity ReplaceWholeFile(const UString& path,
                              const std::function<void(OutputFile& out)>& write,
                              const ReplaceOptions& options)
{
    return FileReplacement(AbsolutePath(path), options).Run(write);
}

void CheckReplaceable(const UString& path)
{
    RefuseReadOnly(FollowLinks(AbsolutePath(path)));
}

void RecoverReplacedFile(const UString& path) noexcept
{
    try {
        RecoverLeftovers(FollowLinks(AbsolutePath(path)));
    } catch (const std::exception& error) {
        debug::Trace(0, "kivcore", error.what());
    }
}

}  // namespace kivcore::filesupport
