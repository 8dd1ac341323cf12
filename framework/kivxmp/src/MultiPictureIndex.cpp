#include "framework/kivxmp/src/MultiPictureIndex.h"

#include <cstddef>
#include <limits>

namespace kivxmp::photo {

namespace {

// A directory as TIFF writes it.
constexpr std::size_t kHeaderBytes = 4 + 4;
constexpr std::size_t kDirectoryEntryBytes = 2 + 2 + 4 + 4;
constexpr std::uint16_t kTiffVersion = 42;
constexpr std::uint16_t kTypeUndefined = 7;
constexpr std::uint16_t kTagPictureList = 0xB002;

// One picture of the list: attributes, length, offset, two dependent pictures.
constexpr std::size_t kPictureEntryBytes = 4 + 4 + 4 + 2 + 2;
constexpr std::size_t kLengthInEntry = 4;
constexpr std::size_t kOffsetInEntry = 8;

class Numbers {
public:
    Numbers(std::string_view bytes, bool bigEndian) : bytes_(bytes), bigEndian_(bigEndian) {}

    bool Has(std::uint64_t at, std::uint64_t count) const
    {
        return at <= bytes_.size() && bytes_.size() - at >= count;
    }
    std::uint16_t Get16(std::uint64_t at) const { return static_cast<std::uint16_t>(Get(at, 2)); }
    std::uint32_t Get32(std::uint64_t at) const { return Get(at, 4); }

private:
    std::uint32_t Get(std::uint64_t at, std::size_t count) const
    {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t place = bigEndian_ ? i : count - 1 - i;
            value = value << 8 | static_cast<unsigned char>(bytes_[at + place]);
        }
        return value;
    }

    std::string_view bytes_;
    bool bigEndian_;
};

std::string Put32(std::uint32_t value, bool bigEndian)
{
    std::string bytes(4, '\0');
    for (std::size_t i = 0; i < 4; ++i) {
        bytes[bigEndian ? 3 - i : i] = static_cast<char>(value >> (8 * i) & 0xFF);
    }
    return bytes;
}

/// Where the byte at `position` stands after the change; nothing if it is replaced itself. What
/// begins where something is inserted moves behind it.
std::optional<std::uint64_t> MovedStart(std::uint64_t position, const LengthChange& change)
{
    if (position < change.replaced.offset) {
        return position;
    }
    if (position >= change.replaced.End()) {
        return position - change.replaced.bytes + change.freshBytes;
    }
    return std::nullopt;
}

/// The same for the end of a range.
std::optional<std::uint64_t> MovedEnd(std::uint64_t position, const LengthChange& change)
{
    if (position <= change.replaced.offset) {
        return position;
    }
    if (position >= change.replaced.End()) {
        return position - change.replaced.bytes + change.freshBytes;
    }
    return std::nullopt;
}

}  // namespace

std::optional<MultiPictureIndex> MultiPictureIndex::Read(std::string_view bytes, std::uint64_t base)
{
    if (bytes.size() < kHeaderBytes) {
        return std::nullopt;
    }
    MultiPictureIndex index;
    index.base_ = base;
    const std::string_view order = bytes.substr(0, 2);
    if (order != "MM" && order != "II") {
        return std::nullopt;
    }
    index.bigEndian_ = order == "MM";
    const Numbers numbers(bytes, index.bigEndian_);
    const std::uint32_t directory = numbers.Get32(4);
    if (numbers.Get16(2) != kTiffVersion || !numbers.Has(directory, 2)) {
        return std::nullopt;
    }
    const std::uint64_t entries = numbers.Get16(directory);
    if (!numbers.Has(std::uint64_t{directory} + 2, entries * kDirectoryEntryBytes)) {
        return std::nullopt;
    }
    const std::uint64_t directoryEnd =
        std::uint64_t{directory} + 2 + entries * kDirectoryEntryBytes;
    bool found = false;
    for (std::uint64_t i = 0; i < entries; ++i) {
        const std::uint64_t entry = std::uint64_t{directory} + 2 + i * kDirectoryEntryBytes;
        if (numbers.Get16(entry) != kTagPictureList) {
            continue;
        }
        const std::uint64_t listBytes = numbers.Get32(entry + 4);
        const std::uint64_t list = numbers.Get32(entry + 8);
        // A list that overlaps the directory would change it when it is corrected.
        const bool apart =
            list >= directoryEnd || (list >= kHeaderBytes && list + listBytes <= directory);
        if (found || !apart || numbers.Get16(entry + 2) != kTypeUndefined || listBytes == 0 ||
            listBytes % kPictureEntryBytes != 0 || !numbers.Has(list, listBytes)) {
            return std::nullopt;
        }
        found = true;
        for (std::uint64_t picture = list; picture < list + listBytes;
             picture += kPictureEntryBytes) {
            const std::uint32_t offset = numbers.Get32(picture + kOffsetInEntry);
            // An offset of 0 is not a place: it stands for the picture that begins the file.
            if (offset == 0) {
                index.fields_.push_back({Meaning::kFirstPictureLength,
                                         base + picture + kLengthInEntry,
                                         numbers.Get32(picture + kLengthInEntry)});
            } else {
                index.fields_.push_back(
                    {Meaning::kPictureOffset, base + picture + kOffsetInEntry, offset});
            }
        }
    }
    if (!found) {
        return std::nullopt;
    }
    return index;
}

std::vector<ByteRange> MultiPictureIndex::Fields() const
{
    std::vector<ByteRange> ranges;
    ranges.reserve(fields_.size());
    for (const Field& field : fields_) {
        ranges.push_back({field.position, 4});
    }
    return ranges;
}

std::vector<std::uint64_t> MultiPictureIndex::Targets() const
{
    std::vector<std::uint64_t> targets;
    targets.reserve(fields_.size());
    for (const Field& field : fields_) {
        targets.push_back(field.meaning == Meaning::kPictureOffset ? base_ + field.value
                                                                   : field.value);
    }
    return targets;
}

std::optional<std::vector<std::string>> MultiPictureIndex::Corrected(
    const LengthChange& change) const
{
    const std::optional<std::uint64_t> newBase = MovedStart(base_, change);
    if (!newBase) {
        return std::nullopt;
    }
    std::vector<std::string> values;
    values.reserve(fields_.size());
    for (const Field& field : fields_) {
        std::optional<std::uint64_t> value;
        if (field.meaning == Meaning::kPictureOffset) {
            value = MovedStart(base_ + field.value, change);
            if (!value || *value < *newBase) {
                return std::nullopt;
            }
            *value -= *newBase;
        } else {
            value = MovedEnd(field.value, change);
        }
        if (!value || *value > std::numeric_limits<std::uint32_t>::max() ||
            (*value == 0 && field.value != 0)) {
            return std::nullopt;
        }
        values.push_back(Put32(static_cast<std::uint32_t>(*value), bigEndian_));
    }
    return values;
}

}  // namespace kivxmp::photo
