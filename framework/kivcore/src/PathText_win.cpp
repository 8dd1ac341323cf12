// File names are UTF-16 units here, as everywhere in the framework, and need not be well-formed: a
// lone surrogate is as good as any other unit. Their 8-bit form is UTF-8 in which a lone surrogate
// has the three bytes that its number gives (ED A0 80 to ED BF BF); well-formed text has none of
// these, so the way back is unambiguous.

#include <kivcore/Dir.h>

#include <string_view>

#include <kivcore/StringConversion.h>

namespace kivcore::filesupport {

namespace {

bool IsHighSurrogate(char16_t unit)
{
    return (unit & 0xFC00U) == 0xD800U;
}

bool IsSurrogate(char16_t unit)
{
    return (unit & 0xF800U) == 0xD800U;
}

/// The surrogate whose three bytes `text` begins with; 0 for none.
char16_t SurrogateAt(std::string_view text)
{
    const auto bits = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    if (text.size() < 3 || bits(0) != 0xED || bits(1) < 0xA0 || bits(1) > 0xBF ||
        (bits(2) & 0xC0U) != 0x80U) {
        return 0;
    }
    return static_cast<char16_t>(0xD000U | ((bits(1) & 0x3FU) << 6U) | (bits(2) & 0x3FU));
}

}  // namespace

UString PathFromUTF8(const std::string& path)
{
    if (string::IsWellFormedUTF8(path)) {
        return string::UTF8to16(path);
    }
    UString result;
    std::size_t begin = 0;  // of the text that waits to be converted
    for (std::size_t i = 0; i < path.size();) {
        const std::string_view rest = std::string_view(path).substr(i);
        if (const char16_t surrogate = SurrogateAt(rest)) {
            result += string::UTF8to16(std::string_view(path).substr(begin, i - begin));
            result += surrogate;
            i += 3;
            begin = i;
        } else {
            ++i;
        }
    }
    return result + string::UTF8to16(std::string_view(path).substr(begin));
}

std::string PathToUTF8(const UString& path)
{
    std::string result;
    std::size_t begin = 0;  // of the text that waits to be converted
    for (std::size_t i = 0; i < path.size(); ++i) {
        const char16_t unit = path[i];
        if (IsHighSurrogate(unit) && i + 1 < path.size() && (path[i + 1] & 0xFC00U) == 0xDC00U) {
            ++i;
        } else if (IsSurrogate(unit)) {
            result += string::UTF16to8(UStringView(path).substr(begin, i - begin));
            result += static_cast<char>(0xED);
            result += static_cast<char>(0x80U | ((unit >> 6U) & 0x3FU));
            result += static_cast<char>(0x80U | (unit & 0x3FU));
            begin = i + 1;
        }
    }
    return result + string::UTF16to8(UStringView(path).substr(begin));
}

}  // namespace kivcore::filesupport
