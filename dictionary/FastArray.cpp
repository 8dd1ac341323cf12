// Texts of an image stay in its two pools, which are copied as a whole: values that share room in
// the image share it here too, so that a store takes no more than a few times the bytes that it was
// loaded from. What is inserted gets a copy in the arena.

#include "dictionary/FastArray.h"

#include "dictionary/ImageSource.h"
#include "dictionary/KeyHash.h"
#include "dictionary/StoreTables.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <new>
#include <numeric>
#include <stdexcept>
#include <utility>

namespace morvish_private {

namespace {

void RequireRoom(std::uint64_t wantedCount)
{
    if (wantedCount > FastArray::kNoIndex)
        throw std::length_error("dictionary: too many entries");
}

}  // namespace

void FastArray::Insert(std::string_view key, std::u16string_view value)
{
    if (key.size() >= kReplaced)
        throw std::length_error("dictionary: key longer than 4 GiB");
    if (value.size() > std::numeric_limits<std::uint32_t>::max() / sizeof(char16_t))
        throw std::length_error("dictionary: value longer than 4 GiB");
    const std::uint32_t known = Find(key);
    if (known == kNoIndex) {
        RequireRoom(std::uint64_t{count_} + 1);
        ReserveRecords(1);
        index_.ReserveNext(1);
        BeginRun(/*fromImage=*/false);
    }

    // The extra byte gives the empty key of an empty value a place too.
    const std::size_t valueBytes = value.size() * sizeof(char16_t);
    std::byte* const start = arena_.Allocate(valueBytes + key.size() + 1, alignof(char16_t));
    auto* const units = reinterpret_cast<char16_t*>(start);
    std::copy(value.begin(), value.end(), units);
    char* const keyStart = reinterpret_cast<char*>(start + valueBytes);
    std::copy(key.begin(), key.end(), keyStart);
    const Record record = {
        {static_cast<std::uint32_t>(valueBytes), static_cast<std::uint32_t>(key.size()), units},
        keyStart};
    if (known != kNoIndex) {
        Replace(known, record);
        return;
    }
    index_.InsertReserved(FullHash(key), count_);
    Append(record);
}

bool FastArray::LoadFromStream(std::istream& stream, std::uint8_t storeFlag, ByteOrder order)
{
    StreamImageSource source(stream);
    return Load(source, storeFlag, order);
}

bool FastArray::LoadFromMemory(const void* start, std::size_t sizeBytes, std::uint8_t storeFlag,
                               ByteOrder order)
{
    MemoryImageSource source(start, sizeBytes);
    return Load(source, storeFlag, order);
}

bool FastArray::Load(ImageSource& source, std::uint8_t storeFlag, ByteOrder order)
{
    StoreTables tables;
    if (!tables.Read(source, order))
        return false;
    RequireRoom(std::uint64_t{count_} + tables.count);
    ReserveRecords(tables.count);
    if (tables.hasKeys)
        index_.Reserve(tables.count);
    BeginRun(/*fromImage=*/true);
    poolBytes_ += tables.poolBytes;
    pools_.push_back(std::move(tables.pool));
    Adopt(tables, order);
    plainLoaded_ |= !tables.hasKeys;
    storeFlag_ = storeFlag;
    return true;
}

void FastArray::Adopt(const StoreTables& tables, ByteOrder order)
{
    const auto recordOf = [&](std::uint32_t i, std::string_view key) {
        const std::u16string_view value = tables.Value(i, order);
        return Record{{static_cast<std::uint32_t>(value.size() * sizeof(char16_t)),
                       static_cast<std::uint32_t>(key.size()), value.data()},
                      key.data()};
    };
    if (!tables.hasKeys) {
        for (std::uint32_t i = 0; i < tables.count; ++i)
            Append(recordOf(i, {}));
        bareCount_ += tables.count;
        return;
    }
    // The index is larger than the processor's caches and met at random: its places are fetched
    // some entries ahead.
    constexpr std::uint32_t kAhead = 32;
    std::array<std::uint32_t, kAhead> hashes{};
    for (std::uint32_t first = 0; first < tables.count; first += kAhead) {
        const std::uint32_t batch = std::min(kAhead, tables.count - first);
        for (std::uint32_t i = 0; i < batch; ++i) {
            hashes[i] = FullHash(tables.Key(first + i, order));
            index_.Prefetch(hashes[i]);
        }
        for (std::uint32_t i = 0; i < batch; ++i) {
            const std::string_view key = tables.Key(first + i, order);
            const Record record = recordOf(first + i, key);
            const auto* const known = index_.Find(
                hashes[i], [&](std::uint32_t candidate) { return Key(candidate) == key; });
            if (known != nullptr) {
                Replace(known->Get(), record);
                continue;
            }
            index_.InsertReserved(hashes[i], count_);
            Append(record);
        }
    }
}

void FastArray::ReserveRecords(std::size_t more)
{
    const std::size_t wantedChunks = (count_ + more + kChunkRecords - 1) / kChunkRecords;
    if (wantedChunks <= chunks_.size())
        return;
    const std::size_t newChunks = wantedChunks - chunks_.size();
    chunks_.reserve(std::max(wantedChunks, chunks_.size() + chunks_.size() / 2));
    auto* const first = reinterpret_cast<Record*>(
        arena_.Allocate(newChunks * kChunkRecords * sizeof(Record), alignof(Record)));
    for (std::size_t i = 0; i < newChunks; ++i)
        chunks_.push_back(first + i * kChunkRecords);
}

void FastArray::Append(const Record& record)
{
    new (static_cast<void*>(&At(count_))) Record(record);
    ++count_;
}

void FastArray::Replace(std::uint32_t index, const Record& record)
{
    const auto* const current =
        new (static_cast<void*>(arena_.Allocate(sizeof(Record), alignof(Record)))) Record(record);
    Record& old = At(index);
    old.key = reinterpret_cast<const char*>(current);
    old.value.keyLengthBytes = kReplaced;
}

void FastArray::BeginRun(bool fromImage)
{
    // A new image is a run of its own, entries that are inserted one by one prolong theirs.
    if (fromImage || runs_.empty() || runs_.back().fromImage)
        runs_.push_back({count_, fromImage});
}

FastArray::Layout FastArray::WrittenLayout() const
{
    if (bareCount_ == 0 && (count_ != 0 || !plainLoaded_))
        return Layout::kExtended;
    return bareCount_ == count_ ? Layout::kPlain : Layout::kMixed;
}

std::vector<std::uint32_t> FastArray::WrittenOrder() const
{
    std::vector<std::uint32_t> order(count_);
    std::iota(order.begin(), order.end(), 0u);
    if (WrittenLayout() == Layout::kPlain)
        return order;

    // From the newest run to the oldest, backwards through what was inserted; then the buckets are
    // told apart, which keeps that order inside each.
    auto out = order.begin();
    std::uint32_t end = count_;
    for (auto run = runs_.rbegin(); run != runs_.rend(); ++run) {
        const auto runEnd = out + (end - run->first);
        std::iota(out, runEnd, run->first);
        if (!run->fromImage)
            std::reverse(out, runEnd);
        out = runEnd;
        end = run->first;
    }
    std::vector<std::uint16_t> buckets(count_);
    std::array<std::uint32_t, kBucketCount + 1> starts{};
    for (std::uint32_t i = 0; i < count_; ++i) {
        buckets[i] = static_cast<std::uint16_t>(BucketHash(Key(i), kBucketCount));
        ++starts[buckets[i] + 1u];
    }
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    std::vector<std::uint32_t> sorted(count_);
    for (const std::uint32_t index : order)
        sorted[starts[buckets[index]]++] = index;
    return sorted;
}

std::size_t FastArray::ReservedBytes() const
{
    return arena_.ReservedBytes() + poolBytes_ + chunks_.capacity() * sizeof(void*) +
           index_.ReservedBytes();
}

}  // namespace morvish_private
