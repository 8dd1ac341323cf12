#include "tools/pemtext/TextForm.h"

#include <cstddef>

namespace pemtext {

namespace {

void AppendReference(char16_t unit, std::string& out)
{
    constexpr char kDigits[] = "0123456789ABCDEF";
    out += "#{U+";
    for (int shift = 12; shift >= 0; shift -= 4)
        out += kDigits[(unit >> shift) & 0xF];
    out += '}';
}

bool IsHigh(char16_t unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool IsLow(char16_t unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

// Characters that end a line somewhere or cannot be seen.
bool NeedsReference(char16_t unit)
{
    return unit < 0x20 || unit == 0x7F || unit == 0x2028 || unit == 0x2029 || unit == 0xFEFF ||
           IsHigh(unit) || IsLow(unit);
}

const char* ShortEscape(char16_t unit)
{
    switch (unit) {
        case u'"':
            return "\\\"";
        case u'\\':
            return "\\\\";
        case u'^':
            return "^^";
        case u'\n':
            return "\\n";
        case u'\r':
            return "\\r";
        case u'\t':
            return "\\t";
        case u'\b':
            return "\\b";
        default:
            return nullptr;
    }
}

// Key units count by their low byte only, so a byte that would end the key, the line or the file is
// written as a character of the same low byte.
void AppendKey(std::string_view key, std::string& out)
{
    for (const char byte : key) {
        const std::uint32_t value = static_cast<unsigned char>(byte);
        const bool breaks = value < 0x20 || byte == '"' || byte == '=' || byte == 0x7F;
        AppendUtf8(breaks ? 0x100 + value : value, out);
    }
}

std::string Line(std::string_view key, const std::string& value)
{
    std::string line = "\"$$$";
    AppendKey(key, line);
    line += '=';
    line += value;
    line += "\"\n";
    return line;
}

}  // namespace

void AppendUtf8(std::uint32_t character, std::string& out)
{
    const auto append = [&](std::uint32_t byte) { out += static_cast<char>(byte); };
    if (character < 0x80) {
        append(character);
        return;
    }
    if (character < 0x800) {
        append(0xC0 | (character >> 6));
    } else if (character < 0x10000) {
        append(0xE0 | (character >> 12));
        append(0x80 | ((character >> 6) & 0x3F));
    } else {
        append(0xF0 | (character >> 18));
        append(0x80 | ((character >> 12) & 0x3F));
        append(0x80 | ((character >> 6) & 0x3F));
    }
    append(0x80 | (character & 0x3F));
}

std::string EscapedValue(std::u16string_view value)
{
    std::string out;
    for (std::size_t i = 0; i < value.size(); ++i) {
        const char16_t unit = value[i];
        const bool last = i + 1 == value.size();
        // A marker that is none, and a backslash that would hide the closing quote.
        const bool misleads = last ? unit == u'\\' : unit == u'#' && value[i + 1] == u'{';
        const char* const escape = misleads ? nullptr : ShortEscape(unit);
        if (IsHigh(unit) && !last && IsLow(value[i + 1]))
            AppendUtf8(0x10000 + ((unit - 0xD800u) << 10) + (value[++i] - 0xDC00u), out);
        else if (escape != nullptr)
            out += escape;
        else if (misleads || NeedsReference(unit))
            AppendReference(unit, out);
        else
            AppendUtf8(unit, out);
    }
    return out;
}

std::string TextLine(std::string_view key, std::u16string_view value)
{
    return Line(key, EscapedValue(value));
}

std::string RawValue(std::u16string_view rawValue)
{
    std::string value;
    for (std::size_t i = 0; i < rawValue.size(); ++i) {
        const char16_t unit = rawValue[i];
        if (IsHigh(unit) && i + 1 < rawValue.size() && IsLow(rawValue[i + 1]))
            AppendUtf8(0x10000 + ((unit - 0xD800u) << 10) + (rawValue[++i] - 0xDC00u), value);
        else if (unit == u'"' && (i == 0 || rawValue[i - 1] != u'\\'))
            value += "\\\"";
        else if (unit == u'\n')
            value += "\\n";
        else if (unit != u'\t' && NeedsReference(unit))
            AppendReference(unit, value);
        else
            AppendUtf8(unit, value);
    }
    // A backslash there would hide the closing quote.
    if (value.ends_with('\\')) {
        const bool doubled = value.ends_with("\\\\");
        value.erase(value.size() - (doubled ? 2 : 1));
        AppendReference(u'\\', value);
    }
    return value;
}

std::string RawTextLine(std::string_view key, std::u16string_view rawValue)
{
    return Line(key, RawValue(rawValue));
}

}  // namespace pemtext
