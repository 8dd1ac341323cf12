// One entry of a text dictionary: a key and the processed value.

#pragma once

#include "dictionary/DictionaryString.h"
#include "dictionary/HashItem.h"
#include "dictionary/TextArena.h"
#include "dictionary/ValuePasses.h"

#include <cstddef>
#include <string_view>

namespace morvish_private {

class DictionaryEntry : public ByteRunKey {
public:
    /// Makes an entry in `arena`, with copies of the key and of the value, which goes through the
    /// value passes. Entry, key and value lie in one run, so that an entry takes some 60 bytes
    /// beside its two texts. Its memory goes with the arena; there is nothing to delete.
    static DictionaryEntry* Create(TextArena& arena, std::string_view key,
                                   std::u16string_view rawValue, ValueProcessor& processor);

    DictionaryEntry(const DictionaryEntry&) = delete;
    DictionaryEntry& operator=(const DictionaryEntry&) = delete;

    /// The key, then the value's units.
    void Write(std::ostream& out, bool raw, ByteOrder order) const override;

    /// Stands as long as the arena.
    const ByteRunValue& Value() const { return value_; }

    // Entries live in an arena only.
    static void* operator new(std::size_t) = delete;
    static void operator delete(void*) noexcept {}

private:
    DictionaryEntry(std::string_view key, const ByteRunValue& value);

    static void* operator new(std::size_t, void* place) { return place; }
    static void operator delete(void*, void*) noexcept {}

    ByteRunValue value_;
};

}  // namespace morvish_private
