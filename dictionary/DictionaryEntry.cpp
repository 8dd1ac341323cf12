#include "dictionary/DictionaryEntry.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace morvish_private {

DictionaryEntry* DictionaryEntry::Create(TextArena& arena, std::string_view key,
                                         std::u16string_view rawValue, ValueProcessor& processor)
{
    static_assert(sizeof(DictionaryEntry) % alignof(char16_t) == 0);
    if (key.size() > std::numeric_limits<std::uint32_t>::max())
        throw std::length_error("dictionary: key longer than 4 GiB");
    const std::u16string_view text = processor.Process(rawValue);
    // What a search touches stands together in front: entry, key.
    const std::size_t keyBytes = key.size() + key.size() % alignof(char16_t);
    std::byte* const start =
        arena.Allocate(sizeof(DictionaryEntry) + keyBytes + PlacedUnitsBytes(text.size()));
    char* const keyStart = reinterpret_cast<char*>(start + sizeof(DictionaryEntry));
    std::copy(key.begin(), key.end(), keyStart);
    return new (static_cast<void*>(start))
        DictionaryEntry({keyStart, key.size()}, PlaceUnits(keyStart + keyBytes, text));
}

DictionaryEntry::DictionaryEntry(std::string_view key, const ByteRunValue& value)
    : ByteRunKey(key, Bytes::kBorrow), value_(value)
{
}

void DictionaryEntry::Write(std::ostream& out, bool raw, ByteOrder order) const
{
    ByteRunKey::Write(out, raw, order);
    for (const char16_t unit : value_.View())
        WriteUnit(out, unit, order);
}

}  // namespace morvish_private
