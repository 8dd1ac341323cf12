#include "tools/common/Json.h"

#include <kivcore/StringConversion.h>

#include <charconv>
#include <cmath>
#include <cstdint>

namespace tools {

namespace {

struct ShortEscape {
    char16_t unit;
    char letter;
};

constexpr ShortEscape kShortEscapes[] = {{u'\b', 'b'}, {u'\t', 't'}, {u'\n', 'n'}, {u'\f', 'f'},
                                         {u'\r', 'r'}, {u'"', '"'},  {u'\\', '\\'}};

void AppendUnit(char16_t unit, std::string& out)
{
    for (const ShortEscape& row : kShortEscapes) {
        if (row.unit == unit) {
            out += '\\';
            out += row.letter;
            return;
        }
    }
    if (unit >= 0x20 && unit <= 0x7E) {
        out += static_cast<char>(unit);
        return;
    }
    constexpr char kDigits[] = "0123456789abcdef";
    out += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4)
        out += kDigits[(unit >> shift) & 0xF];
}

// @return -1 for no digit
int HexValue(char16_t unit)
{
    if (unit >= u'0' && unit <= u'9')
        return unit - u'0';
    if (unit >= u'a' && unit <= u'f')
        return unit - u'a' + 10;
    if (unit >= u'A' && unit <= u'F')
        return unit - u'A' + 10;
    return -1;
}

// Reads what follows a backslash.
bool ParseEscape(std::u16string_view line, std::size_t& at, std::u16string& text)
{
    const char16_t letter = at < line.size() ? line[at++] : u'\0';
    if (letter == u'/') {
        text += letter;
        return true;
    }
    if (letter != u'u') {
        for (const ShortEscape& row : kShortEscapes) {
            if (letter == static_cast<unsigned char>(row.letter)) {
                text += row.unit;
                return true;
            }
        }
        return false;
    }
    if (line.size() - at < 4)
        return false;
    std::uint32_t value = 0;
    for (const std::size_t end = at + 4; at < end; ++at) {
        const int digit = HexValue(line[at]);
        if (digit < 0)
            return false;
        value = value * 16 + static_cast<std::uint32_t>(digit);
    }
    text += static_cast<char16_t>(value);
    return true;
}

constexpr std::u16string_view kWhiteSpace = u" \t\r\n";

}  // namespace

std::string JsonString(std::u16string_view text)
{
    std::string out = "\"";
    for (const char16_t unit : text)
        AppendUnit(unit, out);
    return out + '"';
}

std::string JsonByteString(std::string_view bytes)
{
    std::string out = "\"";
    for (const char byte : bytes)
        AppendUnit(static_cast<unsigned char>(byte), out);
    return out + '"';
}

std::string JsonUtf8String(std::string_view text)
{
    return JsonString(kivcore::string::UTF8to16(text));
}

bool ParseJsonString(std::string_view bytes, std::u16string& text, std::string& reason)
{
    if (!kivcore::string::IsWellFormedUTF8(bytes)) {
        reason = "is not well-formed UTF-8";
        return false;
    }
    const kivcore::UString line = kivcore::string::UTF8to16(bytes);
    text.clear();
    std::size_t at = line.find_first_not_of(kWhiteSpace);
    reason = "is no JSON string";
    if (at == std::string_view::npos || line[at++] != u'"')
        return false;
    while (at < line.size() && line[at] != u'"') {
        const char16_t unit = line[at++];
        if (unit < 0x20)
            return false;
        if (unit != u'\\') {
            text += unit;
        } else if (!ParseEscape(line, at, text)) {
            reason = "holds an escape that JSON does not know";
            return false;
        }
    }
    return at < line.size() &&
           line.find_first_not_of(kWhiteSpace, at + 1) == std::string_view::npos;
}

std::string JsonNumber(float value)
{
    if (std::isnan(value))
        return "\"nan\"";
    if (std::isinf(value))
        return value < 0 ? "\"-inf\"" : "\"inf\"";
    constexpr int kDigits = 9;  // read back to the same float
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, static_cast<double>(value),
                                      std::chars_format::general, kDigits);
    return {buffer, result.ptr};
}

bool ToBytes(std::u16string_view text, std::string& bytes)
{
    bytes.clear();
    for (const char16_t unit : text) {
        if (unit > 0xFF)
            return false;
        bytes += static_cast<char>(unit);
    }
    return true;
}

}  // namespace tools
