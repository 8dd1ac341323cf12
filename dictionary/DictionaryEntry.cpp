#include "dictionary/DictionaryEntry.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <stdexcept>
#include <utility>

namespace morvish_private {

DictionaryEntry* DictionaryEntry::Create(TextArena& arena, std::string_view key,
                                         std::u16string_view rawValue, ValueProcessor& processor)
{
    static_assert(sizeof(DictionaryEntry) % alignof(ByteRunValue) == 0);
    if (key.size() > std::numeric_limits<std::uint32_t>::max())
        throw std::length_error("dictionary: key longer than 4 GiB");
    const std::u16string_view text = processor.Process(rawValue);
    // What a search touches stands together in front: entry, value record, key.
    const std::size_t keyBytes = key.size() + key.size() % alignof(char16_t);
    constexpr std::size_t kKeyOffset = sizeof(DictionaryEntry) + sizeof(ByteRunValue);
    const TextArena::Run run =
        arena.Allocate(kKeyOffset + keyBytes + PlacedUnitsBytes(text.size()));
    char* const keyStart = reinterpret_cast<char*>(run.start + kKeyOffset);
    std::copy(key.begin(), key.end(), keyStart);
    const auto* const value = new (static_cast<void*>(run.start + sizeof(DictionaryEntry)))
        ByteRunValue(PlaceUnits(keyStart + keyBytes, text));
    return new (static_cast<void*>(run.start)) DictionaryEntry(
        {keyStart, key.size()},
        morvish::DictionaryString(std::shared_ptr<const ByteRunValue>(*run.block, value)));
}

DictionaryEntry::DictionaryEntry(std::string_view key, morvish::DictionaryString value)
    : ByteRunKey(key, Bytes::kBorrow), value_(std::move(value))
{
}

void DictionaryEntry::Write(std::ostream& out, bool raw, ByteOrder order) const
{
    ByteRunKey::Write(out, raw, order);
    for (const char16_t unit : value_.View())
        WriteUnit(out, unit, order);
}

}  // namespace morvish_private
