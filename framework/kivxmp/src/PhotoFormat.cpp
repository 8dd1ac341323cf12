#include "framework/kivxmp/src/PhotoFormat.h"

#include <algorithm>

namespace kivxmp::photo {

namespace {

constexpr std::size_t kChunkBytes = 64 * 1024;

/// Reads the bytes of a file that no save may change, as one run.
class KeptBytes {
public:
    KeptBytes(ByteSource& source, std::vector<ByteRange> changeable)
        : source_(source), changeable_(std::move(changeable)), size_(source.SizeBytes())
    {
        std::uint64_t sum = 0;
        changeableBefore_.reserve(changeable_.size());
        for (const ByteRange& range : changeable_) {
            changeableBefore_.push_back(sum);
            sum += range.bytes;
        }
    }

    /// Fills `buffer` as far as kept bytes are left, and returns how many there are.
    std::size_t Read(std::string& buffer)
    {
        std::size_t filled = 0;
        while (filled < buffer.size()) {
            while (next_ < changeable_.size() && changeable_[next_].offset <= position_) {
                position_ = std::max(position_, changeable_[next_].End());
                ++next_;
            }
            const std::uint64_t end =
                next_ < changeable_.size() ? std::min(changeable_[next_].offset, size_) : size_;
            if (position_ >= end) {
                if (position_ >= size_) {
                    break;
                }
                continue;
            }
            const std::size_t wanted = static_cast<std::size_t>(
                std::min<std::uint64_t>(end - position_, buffer.size() - filled));
            const std::size_t got = source_.ReadAt(position_, buffer.data() + filled, wanted);
            if (got == 0) {
                break;
            }
            filled += got;
            position_ += got;
        }
        return filled;
    }

    /// How many kept bytes stand before `position`.
    std::uint64_t CountBefore(std::uint64_t position) const
    {
        const auto next = std::lower_bound(
            changeable_.begin(), changeable_.end(), position,
            [](const ByteRange& range, std::uint64_t value) { return range.offset < value; });
        if (next == changeable_.begin()) {
            return position;
        }
        const ByteRange& last = *(next - 1);
        const std::uint64_t inLast = std::min(last.bytes, position - last.offset);
        return position -
               changeableBefore_[static_cast<std::size_t>(next - 1 - changeable_.begin())] - inLast;
    }

private:
    ByteSource& source_;
    std::vector<ByteRange> changeable_;
    std::vector<std::uint64_t> changeableBefore_;  // sums of the lengths
    std::uint64_t size_;
    std::uint64_t position_ = 0;
    std::size_t next_ = 0;
};

[[noreturn]] void ThrowDifferent(const char* what)
{
    throw PhotoError(PhotoError::Kind::kFailed,
                     std::string("the copy was not put in place: ") + what);
}

}  // namespace

PhotoFormat::~PhotoFormat() = default;

void ApplyPlan(const SavePlan& plan, std::uint64_t originalBytes,
               const std::function<void(ByteRange range)>& copy,
               const std::function<void(std::string_view bytes)>& write)
{
    std::uint64_t position = 0;
    for (const Patch& patch : plan) {
        if (patch.replaced.offset > position) {
            copy({position, patch.replaced.offset - position});
        }
        write(patch.fresh);
        position = patch.replaced.End();
    }
    if (position < originalBytes) {
        copy({position, originalBytes - position});
    }
}

void CheckKeptBytes(ByteSource& original, const PhotoFormat& originalFormat, ByteSource& written,
                    const PhotoFormat& writtenFormat)
{
    KeptBytes before(original, originalFormat.Changeable());
    KeptBytes after(written, writtenFormat.Changeable());

    const std::vector<std::uint64_t> targetsBefore = originalFormat.PointerTargets();
    const std::vector<std::uint64_t> targetsAfter = writtenFormat.PointerTargets();
    const bool samePlaces =
        std::equal(targetsBefore.begin(), targetsBefore.end(), targetsAfter.begin(),
                   targetsAfter.end(), [&](std::uint64_t left, std::uint64_t right) {
                       return before.CountBefore(left) == after.CountBefore(right);
                   });
    if (!samePlaces) {
        ThrowDifferent("a pointer in it leads elsewhere");
    }

    std::string left(kChunkBytes, '\0');
    std::string right(kChunkBytes, '\0');
    for (;;) {
        const std::size_t leftBytes = before.Read(left);
        const std::size_t rightBytes = after.Read(right);
        if (leftBytes != rightBytes ||
            !std::equal(left.data(), left.data() + leftBytes, right.data())) {
            ThrowDifferent("bytes outside of the metadata packet differ from the original's");
        }
        if (leftBytes == 0) {
            return;
        }
    }
}

}  // namespace kivxmp::photo
