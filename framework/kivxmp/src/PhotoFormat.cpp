#include "framework/kivxmp/src/PhotoFormat.h"

#include <algorithm>

namespace kivxmp::photo {

namespace {

constexpr std::size_t kChunkBytes = 64 * 1024;

[[noreturn]] void ThrowFailed(const char* what)
{
    throw PhotoError(PhotoError::Kind::kFailed,
                     std::string("the copy was not put in place: ") + what);
}

[[noreturn]] void ThrowDifferent()
{
    ThrowFailed("bytes outside of the metadata packet differ from the original's");
}

/// Compares the copy with what it should be, in order.
class Comparison {
public:
    Comparison(ByteSource& original, ByteSource& written) : original_(original), written_(written)
    {
    }

    void Copied(ByteRange range)
    {
        std::uint64_t position = range.offset;
        while (position < range.End()) {
            const std::size_t wanted = static_cast<std::size_t>(
                std::min<std::uint64_t>(range.End() - position, kChunkBytes));
            if (original_.ReadAt(position, left_.get(), wanted) != wanted) {
                ThrowDifferent();
            }
            Expect(std::string_view(left_.get(), wanted));
            position += wanted;
        }
    }

    void Expect(std::string_view bytes)
    {
        while (!bytes.empty()) {
            const std::string_view part = bytes.substr(0, kChunkBytes);
            if (written_.ReadAt(position_, right_.get(), part.size()) != part.size() ||
                !std::equal(part.begin(), part.end(), right_.get())) {
                ThrowDifferent();
            }
            position_ += part.size();
            bytes.remove_prefix(part.size());
        }
    }

    std::uint64_t Position() const { return position_; }

private:
    ByteSource& original_;
    ByteSource& written_;
    std::uint64_t position_ = 0;
    const std::unique_ptr<char[]> left_ = std::make_unique_for_overwrite<char[]>(kChunkBytes);
    const std::unique_ptr<char[]> right_ = std::make_unique_for_overwrite<char[]>(kChunkBytes);
};

/// Ranges in file order, those that touch joined.
class Cover {
public:
    explicit Cover(const std::vector<ByteRange>& ranges)
    {
        for (const ByteRange& range : ranges) {
            if (!ranges_.empty() && ranges_.back().End() >= range.offset) {
                ranges_.back().bytes =
                    std::max(ranges_.back().End(), range.End()) - ranges_.back().offset;
            } else {
                ranges_.push_back(range);
            }
        }
    }

    bool Holds(const ByteRange& range) const
    {
        return range.bytes == 0 ||
               std::any_of(ranges_.begin(), ranges_.end(), [&range](const ByteRange& own) {
                   return own.offset <= range.offset && range.End() <= own.End();
               });
    }

private:
    std::vector<ByteRange> ranges_;
};

}  // namespace

PhotoFormat::~PhotoFormat() = default;

const char* PhotoFormat::NameOf(const char* signatureName, std::string_view) const
{
    return signatureName;
}

SavePlan PhotoFormat::Plan(const PacketParts& packet) const
{
    if (refusal_) {
        throw PhotoError(*refusal_);
    }
    if (packet.main.size() > limit_.bytes) {
        throw PhotoError(PhotoError::Kind::kRefused,
                         "the metadata takes " + std::to_string(packet.main.size()) + " bytes; " +
                             limit_.words + " " + std::to_string(limit_.bytes));
    }
    return PlanPlace(packet);
}

void PhotoFormat::Refuse(PhotoError::Kind kind, const std::string& reason)
{
    if (!refusal_) {
        refusal_.emplace(kind, reason);
    }
}

bool PhotoFormat::NotePacket(const ByteRange& packet)
{
    constexpr std::size_t kMaxPackets = 64;
    if (packets_.size() == kMaxPackets) {
        Refuse(PhotoError::Kind::kRefused, "it holds more metadata packets than any photo");
        return false;
    }
    packets_.push_back(packet);
    return true;
}

void PhotoFormat::NoteBlock(MetadataBlock::Kind kind, const ByteRange& range)
{
    constexpr std::size_t kMaxBlocks = 256;
    if (blocks_.size() < kMaxBlocks) {
        blocks_.push_back({kind, range});
    }
}

std::string PhotoFormat::ReadPacket(std::size_t number, ByteSource& source) const
{
    return ReadRange(source, Packets().at(number));
}

std::optional<std::string> PhotoFormat::TakeExtended(std::string_view, ByteSource&)
{
    return std::nullopt;
}

void CheckCopy(ByteSource& original, const PhotoFormat& originalFormat, const SavePlan& plan,
               ByteSource& written, const PhotoFormat& writtenFormat)
{
    Comparison comparison(original, written);
    ApplyPlan(
        plan, original.SizeBytes(), [&](ByteRange range) { comparison.Copied(range); },
        [&](std::string_view fresh) { comparison.Expect(fresh); });
    if (comparison.Position() != written.SizeBytes()) {
        ThrowDifferent();
    }

    const Cover replaceable(originalFormat.Changeable());
    const Cover fresh(writtenFormat.Changeable());
    std::uint64_t moved = 0;  // sum of what was put in before, less what was taken out
    for (const Patch& patch : plan) {
        const bool isAppended = patch.replaced.offset == original.SizeBytes();
        if (!replaceable.Holds(patch.replaced) ||
            !(isAppended || fresh.Holds({patch.replaced.offset + moved, patch.fresh.size()}))) {
            ThrowDifferent();
        }
        moved = moved + patch.fresh.size() - patch.replaced.bytes;
    }

    const std::vector<std::uint64_t> before = originalFormat.PointerTargets();
    const std::vector<std::uint64_t> after = writtenFormat.PointerTargets();
    if (!std::equal(before.begin(), before.end(), after.begin(), after.end(),
                    [&plan](std::uint64_t left, std::uint64_t right) {
                        return MovedStart(plan, left) == right || MovedEnd(plan, left) == right;
                    })) {
        ThrowFailed("a pointer in it leads elsewhere");
    }
    if (originalFormat.OtherContent() != writtenFormat.OtherContent()) {
        ThrowDifferent();
    }
}

}  // namespace kivxmp::photo
