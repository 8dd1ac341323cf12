#include "framework/kivmetadataui/src/Texts.h"

#include <algorithm>

#include <kivcore/Localizer.h>
#include <kivcore/StringConversion.h>

namespace kivmetadataui {

using kivcore::UString;
using kivcore::UStringView;

namespace {

bool IsSpace(char16_t unit)
{
    // U+00A0 and U+3000 come with pasted text.
    return unit == u' ' || (unit >= u'\t' && unit <= u'\r') || unit == 0x00A0 || unit == 0x3000;
}

char16_t FoldUnit(char16_t unit)
{
    if ((unit >= u'A' && unit <= u'Z') || (unit >= 0x00C0 && unit <= 0x00DE && unit != 0x00D7) ||
        (unit >= 0x0391 && unit <= 0x03A9) || (unit >= 0x0410 && unit <= 0x042F)) {
        return static_cast<char16_t>(unit + 0x20);
    }
    if (unit >= 0x0400 && unit <= 0x040F) {
        return static_cast<char16_t>(unit + 0x50);
    }
    if (unit == 0x0178) {
        return 0x00FF;
    }
    // In Latin Extended-A capital letters have even numbers, but for two runs where they are odd.
    const bool isOddRun = (unit >= 0x0139 && unit <= 0x0148) || (unit >= 0x0179 && unit <= 0x017E);
    const bool isEvenRun = (unit >= 0x0100 && unit <= 0x0137) || (unit >= 0x014A && unit <= 0x0177);
    if ((isOddRun && unit % 2 == 1) || (isEvenRun && unit % 2 == 0)) {
        return static_cast<char16_t>(unit + 1);
    }
    return unit;
}

char FoldAscii(char letter) noexcept
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 0x20) : letter;
}

}  // namespace

UString DialogText(std::string_view key, std::initializer_list<UStringView> values)
{
    const UString text = kivcore::config::Localize(key);
    UString result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::size_t index =
            text[i] == u'^' && i + 1 < text.size() && text[i + 1] >= u'0' && text[i + 1] <= u'9'
                ? static_cast<std::size_t>(text[i + 1] - u'0')
                : values.size();
        if (index < values.size()) {
            result.append(*(values.begin() + index));
            ++i;
        } else {
            result.push_back(text[i]);
        }
    }
    return result;
}

UString Widen(std::string_view text)
{
    return kivcore::string::UTF8to16(text);
}

std::string Narrow(UStringView text)
{
    return kivcore::string::UTF16to8(text);
}

UString NumberText(std::size_t number)
{
    return Widen(std::to_string(number));
}

UStringView Trimmed(UStringView text)
{
    while (!text.empty() && IsSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && IsSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

UString FoldCase(UStringView text)
{
    UString result(text);
    std::transform(result.begin(), result.end(), result.begin(), FoldUnit);
    return result;
}

std::vector<UString> Words(UStringView text)
{
    std::vector<UString> words;
    bool isInWord = false;
    for (const char16_t unit : text) {
        if (IsSpace(unit)) {
            isInWord = false;
            continue;
        }
        if (!isInWord) {
            words.emplace_back();
        }
        words.back().push_back(unit);
        isInWord = true;
    }
    return words;
}

bool EqualsIgnoringCase(std::string_view left, std::string_view right) noexcept
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return FoldAscii(a) == FoldAscii(b); });
}

}  // namespace kivmetadataui
