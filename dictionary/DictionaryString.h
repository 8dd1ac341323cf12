// A text that a lookup returned: UTF-16 units that are shared by reference count. It outlives the
// dictionary that it came from, and keeps its store.

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>

namespace morvish_private {

/// The units of a value and their length. Both lie in a block that whoever points here shares.
struct ByteRunValue {
    std::uint32_t lengthBytes;
    std::uint32_t keyLengthBytes;  // of the key beside it, in a binary store; 0 elsewhere
    const char16_t* units;

    std::size_t LengthUnits() const { return lengthBytes / sizeof(char16_t); }
    std::u16string_view View() const { return {units, LengthUnits()}; }
};

/// The bytes that PlaceUnits() takes for a value of `lengthUnits` units and its NUL.
/// Throws std::length_error for a length that a value record cannot hold.
std::size_t PlacedUnitsBytes(std::size_t lengthUnits);

/// Copies a value's units and a NUL to `memory`, which is PlacedUnitsBytes() long and aligned for
/// units.
/// @return the record for them
ByteRunValue PlaceUnits(void* memory, std::u16string_view text);

}  // namespace morvish_private

namespace morvish {

class DictionaryString {
public:
    /// The empty text.
    DictionaryString() { Clear(); }

    /// Shares `value`, which must not be null.
    explicit DictionaryString(std::shared_ptr<const morvish_private::ByteRunValue> value)
        : value_(std::move(value))
    {
    }

    /// Makes a new value that holds a copy of `lengthUnits` units.
    void Assign(const char16_t* units, std::size_t lengthUnits);

    /// Refers to the one empty value of the process from now on.
    void Clear();

    /// Never null. No NUL need stand behind the last unit.
    const char16_t* Units() const { return value_->units; }
    std::size_t LengthUnits() const { return value_->LengthUnits(); }
    std::u16string_view View() const { return value_->View(); }
    const morvish_private::ByteRunValue& Value() const { return *value_; }

    /// Equal are strings that share their data, not those that spell the same text.
    bool operator==(const DictionaryString& other) const
    {
        return value_->units == other.value_->units;
    }

private:
    std::shared_ptr<const morvish_private::ByteRunValue> value_;  // never null
};

static_assert(sizeof(DictionaryString) == 2 * sizeof(void*));

}  // namespace morvish
