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
    index.order_ = order == "MM" ? ByteOrder::kBig : ByteOrder::kLittle;
    const auto get = [bytes, &index](std::uint64_t at, std::size_t count) {
        return static_cast<std::uint32_t>(GetNumber(bytes, at, count, index.order_));
    };
    const std::uint32_t directory = get(4, 4);
    if (get(2, 2) != kTiffVersion || !HasBytes(bytes, directory, 2)) {
        return std::nullopt;
    }
    const std::uint64_t entries = get(directory, 2);
    if (!HasBytes(bytes, std::uint64_t{directory} + 2, entries * kDirectoryEntryBytes)) {
        return std::nullopt;
    }
    const std::uint64_t directoryEnd =
        std::uint64_t{directory} + 2 + entries * kDirectoryEntryBytes;
    bool found = false;
    for (std::uint64_t i = 0; i < entries; ++i) {
        const std::uint64_t entry = std::uint64_t{directory} + 2 + i * kDirectoryEntryBytes;
        if (get(entry, 2) != kTagPictureList) {
            continue;
        }
        const std::uint64_t listBytes = get(entry + 4, 4);
        const std::uint64_t list = get(entry + 8, 4);
        // A list that overlaps the directory would change it when it is corrected.
        const bool apart =
            list >= directoryEnd || (list >= kHeaderBytes && list + listBytes <= directory);
        if (found || !apart || get(entry + 2, 2) != kTypeUndefined || listBytes == 0 ||
            listBytes % kPictureEntryBytes != 0 || !HasBytes(bytes, list, listBytes)) {
            return std::nullopt;
        }
        found = true;
        for (std::uint64_t picture = list; picture < list + listBytes;
             picture += kPictureEntryBytes) {
            const std::uint32_t offset = get(picture + kOffsetInEntry, 4);
            // An offset of 0 is not a place: it stands for the picture that begins the file.
            if (offset == 0) {
                index.fields_.push_back({Meaning::kFirstPictureLength,
                                         base + picture + kLengthInEntry,
                                         get(picture + kLengthInEntry, 4)});
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

std::optional<std::vector<std::string>> MultiPictureIndex::Corrected(const SavePlan& plan) const
{
    const std::optional<std::uint64_t> newBase = MovedStart(plan, base_);
    if (!newBase) {
        return std::nullopt;
    }
    std::vector<std::string> values;
    values.reserve(fields_.size());
    for (const Field& field : fields_) {
        std::optional<std::uint64_t> value;
        if (field.meaning == Meaning::kPictureOffset) {
            value = MovedStart(plan, base_ + field.value);
            if (!value || *value < *newBase) {
                return std::nullopt;
            }
            *value -= *newBase;
        } else {
            value = MovedEnd(plan, field.value);
        }
        if (!value || *value > std::numeric_limits<std::uint32_t>::max() ||
            (*value == 0 && field.value != 0)) {
            return std::nullopt;
        }
        values.push_back(NumberBytes(*value, 4, order_));
    }
    return values;
}

}  // namespace kivxmp::photo
