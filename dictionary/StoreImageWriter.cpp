#include "dictionary/StoreImageWriter.h"

#include "dictionary/FlatIndex.h"
#include "dictionary/FullHash.h"
#include "dictionary/KeyHash.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>

namespace morvish_private {

namespace {

constexpr std::size_t kMaxLength = std::numeric_limits<std::uint16_t>::max();
constexpr std::uint64_t kMaxPoolBytes = std::numeric_limits<std::uint32_t>::max();

std::string NameOf(std::string_view key)
{
    constexpr std::size_t kShownBytes = 60;
    std::string name = "\"";
    for (const char byte : key.substr(0, kShownBytes))
        name += byte >= ' ' && byte <= '~' ? byte : '?';
    return name + (key.size() > kShownBytes ? "...\"" : "\"");
}

std::string_view BytesOf(std::u16string_view text)
{
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(char16_t)};
}

void CheckPool(std::uint64_t sizeBytes, const char* what)
{
    if (sizeBytes > kMaxPoolBytes)
        throw std::length_error(std::string("dictionary: the ") + what +
                                " together take more than 4 GiB");
}

}  // namespace

StoreImageWriter::StoreImageWriter(std::vector<WrittenEntry> entries, Keys keys)
    : entries_(std::move(entries)), hasKeys_(keys == Keys::kWrite)
{
    if (entries_.size() > std::numeric_limits<std::uint32_t>::max())
        throw std::length_error("dictionary: too many entries");
    std::uint64_t keyBytes = 0;
    for (const WrittenEntry& entry : entries_) {
        if (entry.key.size() > kMaxLength)
            throw std::length_error("dictionary: key " + NameOf(entry.key) +
                                    " is longer than 65535 bytes");
        if (entry.value.size() > kMaxLength)
            throw std::length_error("dictionary: the value of " + NameOf(entry.key) +
                                    " is longer than 65535 UTF-16 units");
        keyBytes += entry.key.size();
    }
    CheckPool(keyBytes, "keys");
    keyPoolBytes_ = static_cast<std::uint32_t>(keyBytes);
    PlaceValues();
    if (hasKeys_)
        CountGroups();
}

void StoreImageWriter::PlaceValues()
{
    constexpr std::uint32_t kNone = 0xFFFFFFFF;
    FlatIndex<std::uint32_t, kNone> seen;
    seen.Reserve(entries_.size());
    valueOffsets_.reserve(entries_.size());
    std::uint64_t poolUnits = 0;
    for (std::uint32_t i = 0; i < entries_.size(); ++i) {
        const std::u16string_view value = entries_[i].value;
        const std::uint32_t hash = FullHash(BytesOf(value));
        const auto* const equal =
            seen.Find(hash, [&](std::uint32_t other) { return entries_[other].value == value; });
        if (equal != nullptr) {
            valueOffsets_.push_back(valueOffsets_[equal->Get()]);
            continue;
        }
        seen.Insert(hash, i);
        pooledValues_.push_back(i);
        valueOffsets_.push_back(static_cast<std::uint32_t>(poolUnits));
        poolUnits += value.size();
        CheckPool(poolUnits * sizeof(char16_t), "values");
    }
    valuePoolUnits_ = static_cast<std::uint32_t>(poolUnits);
}

void StoreImageWriter::CountGroups()
{
    for (const WrittenEntry& entry : entries_) {
        const auto bucket = static_cast<std::uint16_t>(BucketHash(entry.key, kBucketCount));
        if (groups_.empty() || groups_.back().bucket != bucket)
            groups_.push_back({bucket, 0});
        ++groups_.back().size;
    }
}

void StoreImageWriter::Write(ByteSink& sink) const
{
    const auto count = static_cast<std::uint32_t>(entries_.size());
    sink.Put32(0);  // for any store
    sink.Put8(hasKeys_ ? 'Y' : 'N');
    sink.Put32(count);
    sink.Put32(count);
    sink.Put32(static_cast<std::uint32_t>(groups_.size()));
    if (hasKeys_)
        sink.Put32(keyPoolBytes_);
    sink.Put32(valuePoolUnits_ * std::uint32_t{sizeof(char16_t)});

    if (hasKeys_) {
        std::uint32_t offset = 0;
        for (const WrittenEntry& entry : entries_) {
            sink.Put32(offset);
            offset += static_cast<std::uint32_t>(entry.key.size());
        }
        for (const WrittenEntry& entry : entries_)
            sink.Put16(static_cast<std::uint16_t>(entry.key.size()));
    }
    for (const std::uint32_t offset : valueOffsets_)
        sink.Put32(offset);
    for (const WrittenEntry& entry : entries_)
        sink.Put16(static_cast<std::uint16_t>(entry.value.size()));

    if (hasKeys_) {
        for (const WrittenEntry& entry : entries_)
            sink.Put(entry.key);
    }
    for (const std::uint32_t index : pooledValues_)
        sink.PutUnits(entries_[index].value);
    for (const Group& group : groups_)
        sink.Put16(group.bucket);
    for (const Group& group : groups_)
        sink.Put32(group.size);
}

}  // namespace morvish_private
