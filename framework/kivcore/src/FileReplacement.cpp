// Names of new files: ".kivsave-" + 16 hex digits of the target's name + "-" + a number. The number
// tells the writers of one file apart; it also names the second link under which the old file is
// kept from the rename until the folder is flushed, so that also a failure there can be undone.
// Readers look for the low numbers only, which costs them two questions; writers look through the
// whole folder.

#include <kivcore/FileReplacement.h>

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

#include <kivcore/Trace.h>

#include "framework/kivcore/src/FileFault.h"
#include "framework/kivcore/src/FileSystem.h"
#include "framework/kivcore/src/Path.h"
#include "framework/kivcore/src/SystemError.h"

namespace kivcore::filesupport {

namespace {

constexpr UStringView kPrefix = u".kivsave-";
constexpr UStringView kHexDigits = u"0123456789abcdef";
constexpr std::size_t kHashDigits = 16;
constexpr std::size_t kMaxNumbers = 100;

// What is written is cut into blocks of this size, and read back in the same blocks.
constexpr std::size_t kBlockBytes = std::size_t{256} * 1024;

UString BesideName(const UString& target, std::size_t number)
{
    std::uint64_t hash = 0xcbf29ce484222325U;
    for (const char16_t unit : NamePart(target)) {
        hash = (hash ^ unit) * 0x100000001b3U;
    }
    UString name(FolderPart(target));
    if (!name.empty() && !IsSeparator(name.back())) {
        name += kSeparator;
    }
    name += kPrefix;
    for (std::size_t digit = kHashDigits; digit-- > 0;) {
        name += kHexDigits[(hash >> (4 * digit)) & 0xF];
    }
    name += u'-';
    if (number >= 10) {
        name += static_cast<char16_t>(u'0' + number / 10);
    }
    name += static_cast<char16_t>(u'0' + number % 10);
    return name;
}

bool IsBesideName(UStringView name)
{
    if (!name.starts_with(kPrefix)) {
        return false;
    }
    name.remove_prefix(kPrefix.size());
    const UStringView number = name.substr(std::min(name.size(), kHashDigits + 1));
    return !number.empty() && number.size() <= 2 && name[kHashDigits] == u'-' &&
           name.substr(0, kHashDigits).find_first_not_of(kHexDigits) == UStringView::npos &&
           number.find_first_not_of(kHexDigits.substr(0, 10)) == UStringView::npos;
}

void ClearFolder(const UString& folder)
{
    for (const UString& name : NamesInFolder(folder, EntryKind::kFile, kPrefix)) {
        if (IsBesideName(name)) {
            RemoveUnlessLocked(File(Dir(folder), name).FullPath());
        }
    }
}

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

/// Writes in blocks and keeps the digest of them.
class BlockOutput final : public OutputFile {
public:
    BlockOutput(SystemFile& file, const UString& shownPath) : file_(file), shownPath_(shownPath) {}

    void Write(const void* data, std::size_t bytes) override
    {
        const auto* current = static_cast<const char*>(data);
        while (bytes > 0) {
            const std::size_t count = std::min(bytes, kBlockBytes - used_);
            std::memcpy(block_.data() + used_, current, count);
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
            if (source.ReadAt(offset, block_.data() + used_, count) != count) {
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

    /// Flushes, and compares what the system gives back with what it got.
    void Finish()
    {
        PutOut();
        file_.Flush();
        std::uint64_t digest = 0;
        std::uint64_t offset = 0;
        while (offset < sizeBytes_) {
            const std::size_t count =
                file_.ReadAt(offset, block_.data(), kBlockBytes, FileStep::kVerify);
            if (count == 0) {
                break;
            }
            digest = Digest(digest, block_.data(), count);
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
            digest_ = Digest(digest_, block_.data(), used_);
            file_.Append(block_.data(), used_);
            used_ = 0;
        }
    }

    SystemFile& file_;
    const UString& shownPath_;
    std::vector<char> block_ = std::vector<char>(kBlockBytes);
    std::size_t used_ = 0;
    std::uint64_t sizeBytes_ = 0;
    std::uint64_t digest_ = 0;
};

}  // namespace

/// One replacement. Whatever ends it, nothing of it is left beside the target.
class FileReplacement {
public:
    FileReplacement(const UString& path, const ReplaceOptions& options)
        : path_(path), target_(FollowLinks(path)), options_(options)
    {
    }
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;
    ~FileReplacement()
    {
        // The files are still open here, and so the names still ours.
        RemoveSilently(newName_);
        RemoveSilently(keptName_);
    }

    FileIdentity Run(const std::function<void(OutputFile& out)>& write)
    {
        exists_ = FindIdentity(path_).has_value();
        RefuseChanged();
        if (exists_) {
            RefuseReadOnly(target_);
        }
        const UString folder(FolderPart(target_));
        ClearFolder(folder);
        Create();
        BlockOutput out(*file_, path_);
        write(out);
        out.Finish();
        if (options_.check) {
            InputFile written(file_);
            options_.check(written);
        }
        KeepOld();
        RefuseChanged();
        RenameOver(newName_, target_);
        newName_.clear();
        try {
            FlushFolder(folder, path_);
        } catch (const FileError&) {
            PutOldBack();
            throw;
        }
        return file_->Identity();
    }

private:
    void RefuseChanged() const
    {
        if (options_.expected && FindIdentity(path_) != options_.expected) {
            throw FileError(FileError::Kind::kChanged,
                            ErrorText(path_, "was changed since it was read; nothing was written"));
        }
    }

    void Create()
    {
        const std::optional<UString> original = exists_ ? std::optional(target_) : std::nullopt;
        for (std::size_t number = 0; number < kMaxNumbers; ++number) {
            UString name = BesideName(target_, number);
            file_ = SystemFile::CreateLocked(name, path_, original);
            if (file_) {
                newName_ = std::move(name);
                return;
            }
        }
        throw FileError(FileError::Kind::kOther,
                        ErrorText(path_, "is being written by too many others"));
    }

    void KeepOld()
    {
        old_ = exists_ ? SystemFile::Hold(target_) : nullptr;
        LinkResult result = old_ ? LinkResult::kTaken : LinkResult::kFailed;
        for (std::size_t number = 0; result == LinkResult::kTaken && number < kMaxNumbers;
             ++number) {
            UString name = BesideName(target_, number);
            result = old_->Link(name);
            if (result == LinkResult::kMade) {
                keptName_ = std::move(name);
            }
        }
    }

    void PutOldBack() noexcept
    {
        try {
            if (FindIdentity(target_) != file_->Identity()) {
                return;  // another writer's by now
            }
            if (!exists_) {
                RemoveFile(target_);
            } else if (!keptName_.empty()) {
                RenameOver(keptName_, target_);
                keptName_.clear();
            }
        } catch (const std::exception& error) {
            debug::Trace(0, "kivcore", error.what());
        }
    }

    static void RemoveSilently(const UString& name) noexcept
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

    const UString path_;    // as the caller names it
    const UString target_;  // with symbolic links followed
    const ReplaceOptions& options_;
    bool exists_ = false;
    // A name beside the target is ours for as long as the file is open: all others leave it alone
    // then. Without that, a name that another writer cleared and took would be removed, or even
    // renamed over the target, half written.
    std::shared_ptr<SystemFile> file_;
    std::shared_ptr<SystemFile> old_;
    UString newName_;   // of file_, while it has one
    UString keptName_;  // of old_, the second one, while it has it
};

FileIdentity ReplaceFile(const UString& path, const std::function<void(OutputFile& out)>& write,
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
        const UString target = FollowLinks(AbsolutePath(path));
        // Two in a row, because a writer uses up to two names and lets go of the lower one first.
        std::size_t free = 0;
        for (std::size_t number = 0; number < kMaxNumbers && free < 2; ++number) {
            const UString name = BesideName(target, number);
            if (IsNameTaken(name)) {
                RemoveUnlessLocked(name);
                free = 0;
            } else {
                ++free;
            }
        }
    } catch (const std::exception& error) {
        debug::Trace(0, "kivcore", error.what());
    }
}

}  // namespace kivcore::filesupport
