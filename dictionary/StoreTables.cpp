// A store image, behind the header of a dictionary image (numbers and units in the image's order):
//
//     identifier 4, layout 1 ('Y' or 'N'), entry count 4, second count 4, group count 4,
//     key pool size in bytes 4 (only 'Y'), value pool size in bytes 4,
//     key offsets 4 each, key lengths 2 each (only 'Y'),
//     value offsets 4 each, value lengths 2 each (in units),
//     key pool (only 'Y'), value pool,
//     group numbers 2 each, group sizes 4 each (only 'Y')

#include "dictionary/StoreTables.h"

#include "dictionary/KeyHash.h"

#include <array>

namespace morvish_private {

namespace {

constexpr std::size_t kOffsetBytes = 4;
constexpr std::size_t kLengthBytes = 2;
constexpr std::size_t kTableBytes = kOffsetBytes + kLengthBytes;
constexpr std::size_t kGroupBytes = 2 + 4;
constexpr std::uint32_t kUnitBytes = sizeof(char16_t);

bool IsInside(std::uint32_t offset, std::uint32_t length, std::uint32_t size)
{
    return offset <= size && length <= size - offset;
}

}  // namespace

bool StoreTables::Read(ImageSource& source, ByteOrder order)
{
    if (!ReadCounts(source, order))
        return false;
    const std::uint64_t tableBytes = (hasKeys ? 2 : 1) * kTableBytes * std::uint64_t{count};
    const std::uint64_t groupBytes = kGroupBytes * std::uint64_t{groupCount_};
    poolBytes = std::size_t{unitCount_} * sizeof(char16_t) + keyPoolBytes_;
    if (tableBytes + groupBytes + poolBytes > source.LeftBytes())
        return false;

    const unsigned char* const tables = source.View(tableBytes, tablesBuffer_);
    if (tables == nullptr)
        return false;
    valueOffsets_ = tables;
    if (hasKeys) {
        keyOffsets_ = tables;
        keyLengths_ = keyOffsets_ + kOffsetBytes * count;
        valueOffsets_ = keyLengths_ + kLengthBytes * count;
    }
    valueLengths_ = valueOffsets_ + kOffsetBytes * count;
    if (!ReadPools(source, order) || !CheckValues(order))
        return false;
    if (!hasKeys)
        return true;
    const unsigned char* const groups = source.View(groupBytes, groupsBuffer_);
    return groups != nullptr && CheckGroups(groups, order);
}

bool StoreTables::ReadCounts(ImageSource& source, ByteOrder order)
{
    std::array<unsigned char, 4> number{};
    const auto readNumber = [&](std::uint32_t& value) {
        const bool done = source.Read(number.data(), number.size());
        value = Load32(number.data(), order);
        return done;
    };
    // An identifier ties an image to one store. No store of ours has one, so only "any" (0) fits.
    std::uint32_t identifier = 0;
    unsigned char layout = 0;
    if (!readNumber(identifier) || identifier != 0 || !source.Read(&layout, 1) ||
        (layout != 'Y' && layout != 'N')) {
        return false;
    }
    hasKeys = layout == 'Y';
    std::uint32_t secondCount = 0;  // the first one once more in images of ours; says nothing
    std::uint32_t valuePoolBytes = 0;
    if (!readNumber(count) || !readNumber(secondCount) || !readNumber(groupCount_) ||
        (hasKeys && !readNumber(keyPoolBytes_)) || !readNumber(valuePoolBytes)) {
        return false;
    }
    if (!hasKeys)
        groupCount_ = 0;
    unitCount_ = valuePoolBytes / kUnitBytes;
    return groupCount_ <= kBucketCount && valuePoolBytes % kUnitBytes == 0;
}

bool StoreTables::ReadPools(ImageSource& source, ByteOrder order)
{
    // One block. A key never stands at null, not even an empty one.
    const std::size_t keyUnits = keyPoolBytes_ / sizeof(char16_t) + 1;
    pool = std::make_unique_for_overwrite<char16_t[]>(unitCount_ + keyUnits);
    units_ = pool.get();
    if (!source.Read(pool.get() + unitCount_, keyPoolBytes_) ||
        !source.Read(pool.get(), std::size_t{unitCount_} * sizeof(char16_t))) {
        return false;
    }
    if (order != kMachineOrder) {
        for (std::uint32_t i = 0; i < unitCount_; ++i)
            pool[i] = static_cast<char16_t>((pool[i] << 8) | (pool[i] >> 8));
    }
    return true;
}

bool StoreTables::CheckValues(ByteOrder order) const
{
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint32_t offset = Load32(valueOffsets_ + kOffsetBytes * i, order);
        const std::uint32_t length = Load16(valueLengths_ + kLengthBytes * i, order);
        if (!IsInside(offset, length, unitCount_))
            return false;
    }
    return true;
}

bool StoreTables::CheckGroups(const unsigned char* groups, ByteOrder order) const
{
    const unsigned char* const sizes = groups + std::size_t{2} * groupCount_;
    std::uint32_t next = 0;  // the first entry of the group
    std::uint32_t lowest = 0;
    for (std::uint32_t group = 0; group < groupCount_; ++group) {
        const std::uint32_t bucket = Load16(groups + std::size_t{2} * group, order);
        const std::uint32_t size = Load32(sizes + std::size_t{4} * group, order);
        if (bucket < lowest || bucket >= kBucketCount || size == 0 || size > count - next)
            return false;
        lowest = bucket + 1;
        for (const std::uint32_t end = next + size; next < end; ++next) {
            const std::uint32_t offset = Load32(keyOffsets_ + kOffsetBytes * next, order);
            const std::uint32_t length = Load16(keyLengths_ + kLengthBytes * next, order);
            if (!IsInside(offset, length, keyPoolBytes_) ||
                BucketHash({KeyPool() + offset, length}, kBucketCount) != bucket) {
                return false;
            }
        }
    }
    return next == count;
}

std::string_view StoreTables::Key(std::uint32_t index, ByteOrder order) const
{
    return {KeyPool() + Load32(keyOffsets_ + kOffsetBytes * index, order),
            Load16(keyLengths_ + kLengthBytes * index, order)};
}

std::u16string_view StoreTables::Value(std::uint32_t index, ByteOrder order) const
{
    return {units_ + Load32(valueOffsets_ + kOffsetBytes * index, order),
            Load16(valueLengths_ + kLengthBytes * index, order)};
}

}  // namespace morvish_private
