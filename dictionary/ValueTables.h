// The tables behind a dictionary value: backslash escapes, caret codes, #{name} markers and
// code-point references.

#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace morvish_private {

struct EscapeRow {
    char16_t unit;    // the unit behind the escape character
    char16_t result;  // what the two stand for
};

struct MarkerRow {
    std::size_t length;  // of the name, in units
    const char16_t* name;
    char16_t code;  // 0 for the special markers

    constexpr std::u16string_view Name() const { return {name, length}; }
};

struct CodePointPrefixRow {
    std::size_t length;  // in units
    const char16_t* text;

    constexpr std::u16string_view Text() const { return {text, length}; }
};

/// A code-point reference as it was read.
struct CodePointReference {
    const CodePointPrefixRow* prefix;  // null if there is no reference
    char16_t value;
    std::size_t consumed;  // units, the prefix included
};

/// The rows for what follows a '\'.
std::span<const EscapeRow> BackslashTable();

/// The rows for what follows a '^'. Decided at the first call, by `caretVariantSwitch`.
std::span<const EscapeRow> CaretTable();

/// The caret table with (17 rows) or without (16 rows) the code of U+00E9 in front.
std::span<const EscapeRow> CaretTableVariant(bool withAcute);

/// A program that wants "^e" sets this before the engine's first use. Nothing here does.
extern std::uint8_t caretVariantSwitch;

/// All markers in the order in which they are tried.
std::span<const MarkerRow> MarkerTable();

/// The first marker whose name stands at `text`; what follows the name is not looked at.
/// @param lengthUnits  the units that may be read
/// @return null if there is none
const MarkerRow* FindMarker(const char16_t* text, std::size_t lengthUnits);

/// Reads "U+", "u" or nothing, then one to four hexadecimal digits.
/// @param lengthUnits  the units that may be read
CodePointReference ParseCodePoint(const char16_t* text, std::size_t lengthUnits);

/// The meaning of the special markers, all of them with code 0.
enum class SpecialMarker {
    kNone,
    kEndl,
    kComment,
    kCopyYear,
    kOwnPlatform,
    kOtherPlatform,
};

SpecialMarker SpecialMarkerOf(const MarkerRow& row);

}  // namespace morvish_private
