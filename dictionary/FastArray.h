// The store of a binary dictionary: entries by number, found by key through an index. Copies of a
// dictionary share it.

#pragma once

#include "dictionary/ByteOrder.h"
#include "dictionary/DictionaryString.h"
#include "dictionary/FlatIndex.h"
#include "dictionary/FullHash.h"
#include "dictionary/TextArena.h"

#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>
#include <string_view>
#include <vector>

namespace morvish_private {

class ImageSource;
struct StoreTables;

/// What is shared by an atomic reference count.
class RefCountObj {
public:
    RefCountObj() = default;
    RefCountObj(const RefCountObj&) = delete;
    RefCountObj& operator=(const RefCountObj&) = delete;
    virtual ~RefCountObj() = default;
};

/// Always held by a std::shared_ptr: the strings that it hands out keep it alive.
class FastArray : public RefCountObj {
public:
    static constexpr std::uint32_t kNoIndex = 0xFFFFFFFF;

    std::uint32_t Count() const { return count_; }

    /// The number of the entry with this key, kNoIndex if there is none.
    std::uint32_t Find(std::string_view key) const
    {
        const auto* const found = index_.Find(
            FullHash(key), [&](std::uint32_t candidate) { return Key(candidate) == key; });
        return found != nullptr ? found->Get() : kNoIndex;
    }

    bool Exists(std::uint32_t index) const { return index < count_; }

    /// False for an entry of a plain image, which answers by number only.
    bool HasKey(std::uint32_t index) const { return Current(index).key != nullptr; }

    /// The key of an entry that exists; empty for one without.
    std::string_view Key(std::uint32_t index) const { return KeyOf(Current(index)); }

    /// The value of an entry that exists. It stands as long as this store, also when the entry is
    /// replaced.
    const ByteRunValue& RawValue(std::uint32_t index) const { return Current(index).value; }

    /// Adds an entry under the next free number. An entry of the same key keeps its number and
    /// takes the new value; strings that were handed out keep the old one. Throws std::length_error
    /// when a text or the store is full.
    /// @param value  processed already
    void Insert(std::string_view key, std::u16string_view value);

    /// Adds the entries of a store image, whole or not at all. What stands behind it is not looked
    /// at. A key that is there already takes the image's value and keeps its number.
    /// @param storeFlag  kept, see StoreFlag()
    /// @return false, having added nothing, if the image is cut short or contradicts itself
    bool LoadFromStream(std::istream& stream, std::uint8_t storeFlag, ByteOrder order);
    bool LoadFromMemory(const void* start, std::size_t sizeBytes, std::uint8_t storeFlag,
                        ByteOrder order);
    bool Load(ImageSource& source, std::uint8_t storeFlag, ByteOrder order);

    /// The flag that came with the image loaded last, 0 without one. It is kept for writing.
    std::uint8_t StoreFlag() const { return storeFlag_; }

    enum class Layout { kExtended, kPlain, kMixed };

    /// Plain is a store that holds nothing but entries without keys; one that mixes them with keyed
    /// ones cannot be written.
    Layout WrittenLayout() const;

    /// The entries' numbers in the order of images and exports: bucket by bucket, in a bucket the
    /// newest first, except that what one image brought keeps the order that it had there. A plain
    /// store is in the order of its numbers.
    std::vector<std::uint32_t> WrittenOrder() const;

    /// What the store takes, keys and values included.
    std::size_t ReservedBytes() const;

private:
    struct Record {
        ByteRunValue value;
        const char* key;  // null for an entry without
    };

    // Stands in a record for the length of its key when the entry was replaced: `key` then points
    // at its new record. The old one stays, because strings that were handed out share it.
    static constexpr std::uint32_t kReplaced = 0xFFFFFFFF;

    // Records never move, and a store of any size wastes less than one chunk.
    static constexpr std::uint32_t kChunkRecords = 64;

    // Entries that came in one way, up to the first entry of the next run.
    struct Run {
        std::uint32_t first;
        bool fromImage;
    };

    // Dense, for its share of an entry's memory.
    struct Dense {
        static constexpr std::size_t kFillPercent = 80;
        static constexpr std::size_t kGrowthPercent = 115;
        static constexpr std::size_t kReservedFillPercent = 54;
    };

    static std::string_view KeyOf(const Record& record)
    {
        return {record.key, record.value.keyLengthBytes};
    }

    Record& At(std::uint32_t index) const
    {
        return chunks_[index / kChunkRecords][index % kChunkRecords];
    }

    const Record& Current(std::uint32_t index) const
    {
        const Record& record = At(index);
        return record.value.keyLengthBytes != kReplaced
                   ? record
                   : *reinterpret_cast<const Record*>(record.key);
    }

    void ReserveRecords(std::size_t more);
    void Append(const Record& record);
    void Replace(std::uint32_t index, const Record& record);
    void BeginRun(bool fromImage);
    void Adopt(const StoreTables& tables, ByteOrder order);

    TextArena arena_;                                 // records, and the texts of Insert()
    std::vector<std::unique_ptr<char16_t[]>> pools_;  // the texts of images
    std::size_t poolBytes_ = 0;
    std::vector<Record*> chunks_;
    std::uint32_t count_ = 0;
    std::uint32_t bareCount_ = 0;  // entries without keys
    std::vector<Run> runs_;
    FlatIndex<std::uint32_t, kNoIndex, Dense> index_;
    std::uint8_t storeFlag_ = 0;
    bool plainLoaded_ = false;
};

}  // namespace morvish_private
