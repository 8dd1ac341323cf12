#include "framework/kivcore/src/PropListText.h"

#include <charconv>

#include <kivcore/StringConversion.h>

namespace kivcore::proplist {

namespace {

constexpr std::string_view kHexDigits = "0123456789ABCDEF";
constexpr std::size_t kUnitDigits = 4;

bool IsHighSurrogate(char16_t unit)
{
    return (unit & 0xFC00U) == 0xD800U;
}

bool IsLowSurrogate(char16_t unit)
{
    return (unit & 0xFC00U) == 0xDC00U;
}

/// For a unit that is no part of a surrogate pair.
bool CanStand(char16_t unit)
{
    return unit >= 0x20 && unit != u'\\' && (unit & 0xF800U) != 0xD800U && unit < 0xFFFE;
}

}  // namespace

std::string SpellText(UStringView text)
{
    std::string spelled;
    std::size_t begin = 0;  // of what waits to be converted
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        if (CanStand(unit)) {
            continue;
        }
        if (IsHighSurrogate(unit) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
            ++i;
            continue;
        }
        spelled += string::UTF16to8(text.substr(begin, i - begin));
        begin = i + 1;
        if (unit == u'\\') {
            spelled += "\\\\";
            continue;
        }
        spelled += "\\u";
        for (std::size_t digit = kUnitDigits; digit-- > 0;) {
            spelled += kHexDigits[(unit >> (4 * digit)) & 0xFU];
        }
    }
    return spelled + string::UTF16to8(text.substr(begin));
}

std::optional<UString> ReadText(std::string_view spelled)
{
    UString text;
    for (;;) {
        const std::size_t run = std::min(spelled.find('\\'), spelled.size());
        text += string::UTF8to16(spelled.substr(0, run));
        spelled.remove_prefix(run);
        if (spelled.empty()) {
            return text;
        }
        if (spelled.starts_with("\\\\")) {
            text += u'\\';
            spelled.remove_prefix(2);
            continue;
        }
        if (!spelled.starts_with("\\u") || spelled.size() < 2 + kUnitDigits) {
            return std::nullopt;
        }
        const char* const digits = spelled.data() + 2;
        std::uint16_t unit = 0;
        if (std::from_chars(digits, digits + kUnitDigits, unit, 16).ptr != digits + kUnitDigits) {
            return std::nullopt;
        }
        text += static_cast<char16_t>(unit);
        spelled.remove_prefix(2 + kUnitDigits);
    }
}

}  // namespace kivcore::proplist
