#include "dictionary/DictionaryString.h"

#include <algorithm>
#include <limits>
#include <new>
#include <stdexcept>

namespace morvish_private {

namespace {

constexpr char16_t kNoUnits[] = u"";
constexpr ByteRunValue kEmptyValue = {0, 0, kNoUnits};

constexpr std::size_t kMaxLengthUnits =
    std::numeric_limits<std::uint32_t>::max() / sizeof(char16_t);

}  // namespace

std::size_t PlacedUnitsBytes(std::size_t lengthUnits)
{
    if (lengthUnits > kMaxLengthUnits)
        throw std::length_error("dictionary: value longer than 4 GiB");
    return (lengthUnits + 1) * sizeof(char16_t);
}

ByteRunValue PlaceUnits(void* memory, std::u16string_view text)
{
    auto* const units = static_cast<char16_t*>(memory);
    *std::copy(text.begin(), text.end(), units) = 0;
    return {static_cast<std::uint32_t>(text.size() * sizeof(char16_t)), 0, units};
}

}  // namespace morvish_private

namespace morvish {

using morvish_private::ByteRunValue;

void DictionaryString::Assign(const char16_t* units, std::size_t lengthUnits)
{
    // One block for the record and its units.
    static_assert(sizeof(ByteRunValue) % sizeof(std::uint64_t) == 0);
    const std::size_t bytes = sizeof(ByteRunValue) + morvish_private::PlacedUnitsBytes(lengthUnits);
    const auto block = std::make_shared_for_overwrite<std::uint64_t[]>(
        (bytes + sizeof(std::uint64_t) - 1) / sizeof(std::uint64_t));
    std::uint64_t* const start = block.get();
    const auto* const value = new (start) ByteRunValue(morvish_private::PlaceUnits(
        start + sizeof(ByteRunValue) / sizeof(std::uint64_t), {units, lengthUnits}));
    value_ = std::shared_ptr<const ByteRunValue>(block, value);
}

void DictionaryString::Clear()
{
    // Nothing owns the empty value, so nothing is counted for it.
    value_ =
        std::shared_ptr<const ByteRunValue>(std::shared_ptr<void>(), &morvish_private::kEmptyValue);
}

}  // namespace morvish
