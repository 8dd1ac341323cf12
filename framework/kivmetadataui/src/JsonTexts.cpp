#include "framework/kivmetadataui/src/JsonTexts.h"

#include <charconv>
#include <cstddef>
#include <utility>

#include "framework/kivmetadataui/src/Texts.h"

namespace kivmetadataui {

namespace {

void SkipSpaces(std::string_view& rest)
{
    constexpr std::string_view kSpaces = " \t\r\n";
    while (!rest.empty() && kSpaces.find(rest.front()) != std::string_view::npos) {
        rest.remove_prefix(1);
    }
}

bool Skip(std::string_view& rest, char wanted)
{
    if (rest.empty() || rest.front() != wanted) {
        return false;
    }
    rest.remove_prefix(1);
    return true;
}

/// Four hexadecimal digits.
bool TakeUnit(std::string_view& rest, char16_t& unit)
{
    unsigned value = 0;
    if (rest.size() < 4) {
        return false;
    }
    const auto result = std::from_chars(rest.data(), rest.data() + 4, value, 16);
    if (result.ec != std::errc() || result.ptr != rest.data() + 4) {
        return false;
    }
    unit = static_cast<char16_t>(value);
    rest.remove_prefix(4);
    return true;
}

/// What follows a backslash. Escaped units go through `units`, so that pairs meet.
bool TakeEscape(std::string_view& rest, kivcore::UString& units, std::string& text)
{
    if (rest.empty()) {
        return false;
    }
    const char letter = rest.front();
    rest.remove_prefix(1);
    if (letter == 'u') {
        char16_t unit = 0;
        if (!TakeUnit(rest, unit)) {
            return false;
        }
        units.push_back(unit);
        return true;
    }
    constexpr std::string_view kLetters = "\"\\/bfnrt";
    constexpr std::string_view kMeanings = "\"\\/\b\f\n\r\t";
    const std::size_t index = kLetters.find(letter);
    if (index == std::string_view::npos) {
        return false;
    }
    text += Narrow(std::exchange(units, {}));
    text += kMeanings[index];
    return true;
}

bool TakeText(std::string_view& rest, std::string& text)
{
    if (!Skip(rest, '"')) {
        return false;
    }
    kivcore::UString units;
    while (!rest.empty()) {
        const char letter = rest.front();
        rest.remove_prefix(1);
        if (letter == '\\') {
            if (!TakeEscape(rest, units, text)) {
                return false;
            }
            continue;
        }
        text += Narrow(std::exchange(units, {}));
        if (letter == '"') {
            return true;
        }
        if (static_cast<unsigned char>(letter) < 0x20) {
            return false;
        }
        text += letter;
    }
    return false;
}

}  // namespace

bool ReadJsonTexts(std::string_view json, std::vector<std::string>& texts)
{
    std::vector<std::string> read;
    SkipSpaces(json);
    if (!Skip(json, '[')) {
        return false;
    }
    SkipSpaces(json);
    while (!Skip(json, ']')) {
        if (!read.empty() && !Skip(json, ',')) {
            return false;
        }
        SkipSpaces(json);
        read.emplace_back();
        if (!TakeText(json, read.back())) {
            return false;
        }
        SkipSpaces(json);
    }
    SkipSpaces(json);
    if (!json.empty()) {
        return false;
    }
    texts = std::move(read);
    return true;
}

}  // namespace kivmetadataui
