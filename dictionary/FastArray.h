// The store of a binary dictionary: entries by number, found by key through an index. Copies of a
// dictionary share it.

#pragma once

#include "dictionary/DictionaryString.h"
#include "dictionary/FlatIndex.h"
#include "dictionary/TextArena.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace morvish_private {

/// What is shared by an atomic reference count.
class RefCountObj : public std::enable_shared_from_this<RefCountObj> {
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

    std::uint32_t Count() const { return static_cast<std::uint32_t>(records_.size()); }

    /// The number of the entry with this key, kNoIndex if there is none.
    std::uint32_t Find(std::string_view key) const;

    bool Exists(std::uint32_t index) const { return index < records_.size(); }

    /// The key of an entry that exists.
    std::string_view Key(std::uint32_t index) const;

    /// The value of an entry that exists; it stands as long as this store.
    const ByteRunValue& RawValue(std::uint32_t index) const { return *records_[index].value; }

    /// The same as a string that shares it.
    morvish::DictionaryString Value(std::uint32_t index) const;

    /// Adds an entry under the next free number. An entry of the same key keeps its number and
    /// takes the new value; strings that were handed out keep the old one. Throws std::length_error
    /// when a text or the store is full.
    /// @param value  processed already
    void Insert(std::string_view key, std::u16string_view value);

private:
    struct Record {
        const ByteRunValue* value;
        const char* key;
        std::uint32_t keyLength;
    };

    // Copies both texts into the arena.
    Record Place(std::string_view key, std::u16string_view text);

    TextArena arena_;
    std::vector<Record> records_;
    FlatIndex<std::uint32_t, kNoIndex> index_;
};

}  // namespace morvish_private
