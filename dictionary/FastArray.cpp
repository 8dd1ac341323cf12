#include "dictionary/FastArray.h"

#include "dictionary/KeyHash.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace morvish_private {

std::uint32_t FastArray::Find(std::string_view key) const
{
    const std::uint32_t* const found =
        index_.Find(FullHash(key), [&](std::uint32_t candidate) { return Key(candidate) == key; });
    return found != nullptr ? *found : kNoIndex;
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
    const std::size_t valueBytes = PlacedValueBytes(value.size());
    const std::uint32_t known = Find(key);
    if (known != kNoIndex) {
        records_[known].value = PlaceValue(arena_.Allocate(valueBytes).start, value);
        return;
    }
    if (records_.size() == kNoIndex)
        throw std::length_error("dictionary: too many entries");
    std::byte* const start = arena_.Allocate(valueBytes + key.size()).start;
    char* const keyStart = reinterpret_cast<char*>(start + valueBytes);
    std::copy(key.begin(), key.end(), keyStart);
    index_.ReserveOne();
    records_.push_back(
        {PlaceValue(start, value), keyStart, static_cast<std::uint32_t>(key.size())});
    index_.Insert(FullHash(key), static_cast<std::uint32_t>(records_.size() - 1));
}

}  // namespace morvish_private
