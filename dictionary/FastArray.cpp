#include "dictionary/FastArray.h"

#include "dictionary/KeyHash.h"

#include <algorithm>
#include <limits>
#include <new>
#include <stdexcept>

namespace morvish_private {

std::uint32_t FastArray::Find(std::string_view key) const
{
    const auto* const found =
        index_.Find(FullHash(key), [&](std::uint32_t candidate) { return Key(candidate) == key; });
    return found != nullptr ? found->Get() : kNoIndex;
}

std::string_view FastArray::Key(std::uint32_t index) const
{
    return {records_[index].key, records_[index].keyLength};
}

morvish::DictionaryString FastArray::Value(std::uint32_t index) const
{
    return morvish::DictionaryString(
        std::shared_ptr<const ByteRunValue>(shared_from_this(), records_[index].value));
}

void FastArray::Insert(std::string_view key, std::u16string_view value)
{
    if (key.size() > std::numeric_limits<std::uint32_t>::max())
        throw std::length_error("dictionary: key longer than 4 GiB");
    const std::uint32_t known = Find(key);
    if (known != kNoIndex) {
        records_[known].value = Place({}, value).value;
        return;
    }
    if (records_.size() == kNoIndex)
        throw std::length_error("dictionary: too many entries");
    index_.ReserveOne();
    records_.push_back(Place(key, value));
    index_.Insert(FullHash(key), static_cast<std::uint32_t>(records_.size() - 1));
}

FastArray::Record FastArray::Place(std::string_view key, std::u16string_view text)
{
    const std::size_t keyBytes = key.size() + key.size() % alignof(char16_t);
    std::byte* const start =
        arena_.Allocate(sizeof(ByteRunValue) + keyBytes + PlacedUnitsBytes(text.size())).start;
    char* const keyStart = reinterpret_cast<char*>(start + sizeof(ByteRunValue));
    std::copy(key.begin(), key.end(), keyStart);
    const auto* const value =
        new (static_cast<void*>(start)) ByteRunValue(PlaceUnits(keyStart + keyBytes, text));
    return {value, keyStart, static_cast<std::uint32_t>(key.size())};
}

}  // namespace morvish_private
