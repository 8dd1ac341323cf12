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
    const std::size_t valueBytes = PlacedValueBytes(text.size());

    const TextArena::Run run = arena.Allocate(sizeof(DictionaryEntry) + valueBytes + key.size());
    std::byte* const valueStart = run.start + sizeof(DictionaryEntry);
    const ByteRunValue* const value = PlaceValue(valueStart, text);
    char* const keyStart = reinterpret_cast<char*>(valueStart + valueBytes);
    std::copy(key.begin(), key.end(), keyStart);
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
