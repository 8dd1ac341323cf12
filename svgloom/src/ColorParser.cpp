// Colours: "#" and hexadecimal digits, rgb(), var(), names, and the current-colour marker.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "svgloom/src/Characters.h"
#include "svgloom/src/ColorConversion.h"
#include "svgloom/src/NamedColors.h"
#include "svgloom/src/SVGStringParser.h"

namespace SVGLoom {

namespace {

constexpr std::string_view kRgb = "rgb(";
constexpr std::string_view kVar = "var(";
constexpr std::string_view kCurrentColor = "currentcolor";
constexpr unsigned kMostByte = 255;

/// `word` is in lower case.
bool IsWordAt(const char* current, const char* end, std::string_view word)
{
    return static_cast<std::size_t>(end - current) >= word.size() &&
           std::equal(word.begin(), word.end(), current,
                      [](char want, char have) { return want == ToLower(have); });
}

bool SkipCharacter(const char*& current, const char* end, char c)
{
    if (current == end || *current != c) {
        return false;
    }
    ++current;
    return true;
}

constexpr std::uint8_t kNoDigit = 0xFF;

constexpr std::array<std::uint8_t, 256> MakeHexDigits()
{
    std::array<std::uint8_t, 256> digits{};
    for (std::size_t i = 0; i < digits.size(); ++i) {
        const auto c = static_cast<char>(i);
        const int value = IsDigit(c) ? c - '0' : IsHexDigit(c) ? ToLower(c) - 'a' + 10 : kNoDigit;
        digits[i] = static_cast<std::uint8_t>(value);
    }
    return digits;
}

// Digits and letters of colours come in no order that a processor could foresee.
constexpr std::array<std::uint8_t, 256> kHexDigits = MakeHexDigits();

std::uint8_t HexDigit(char c)
{
    return kHexDigits[static_cast<unsigned char>(c)];
}

/// The value of hexadecimal digits. As std::stoi, which would need a copy of the text.
int HexNumber(std::string_view digits)
{
    constexpr std::size_t kMostDigits = 7;
    if (digits.size() > kMostDigits) {
        throw std::out_of_range("HexNumber");
    }
    int number = 0;
    for (const char c : digits) {
        number = number * 16 + HexDigit(c);
    }
    return number;
}

/// The colour of three or six digits.
Color HexColor(int number, std::size_t digits)
{
    const int bits = digits == 3 ? 4 : 8;
    const int most = (1 << bits) - 1;
    const auto part = [number, bits, most](int place) {
        return static_cast<float>((number >> (place * bits)) & most) / static_cast<float>(most);
    };
    return {part(2), part(1), part(0), 1};
}

/// The digits behind a "#", which has been consumed.
bool ReadHex(const char*& current, const char* end, Color& color)
{
    const char* const start = current;
    while (current != end && HexDigit(*current) != kNoDigit) {
        ++current;
    }
    const std::ptrdiff_t length = current - start;
    if (length != 3 && length != 6) {
        return false;
    }
    int number = 0;
    if (!ConvertOrAssert([start, end = current, &number] {
            number = HexNumber({start, static_cast<std::size_t>(end - start)});
        })) {
        return false;
    }
    color = HexColor(number, static_cast<std::size_t>(length));
    return true;
}

/// Whole decimal digits; whatever their number, too much is 255.
bool ReadComponent(const char*& current, const char* end, float& component)
{
    if (current == end || !IsDigit(*current)) {
        return false;
    }
    unsigned value = 0;
    for (; current != end && IsDigit(*current); ++current) {
        value = std::min(value * 10 + static_cast<unsigned>(*current - '0'), kMostByte);
    }
    component = static_cast<float>(value) / static_cast<float>(kMostByte);
    return true;
}

/// What follows "rgb(". Percentages, signs, fractions and an alpha are not accepted.
bool ReadRgb(const char*& current, const char* end, Color& color)
{
    float parts[3] = {};
    if (!SkipSpace(current, end)) {
        return false;
    }
    for (int i = 0; i < 3; ++i) {
        const bool separated =
            i == 0 || (SkipSpace(current, end) && SkipCharacter(current, end, ',') &&
                       SkipSpace(current, end));
        if (!separated || !ReadComponent(current, end, parts[i])) {
            return false;
        }
    }
    if (!SkipSpace(current, end) || !SkipCharacter(current, end, ')')) {
        return false;
    }
    color = {parts[0], parts[1], parts[2], 1};
    return true;
}

/// Everything but var(); white space has been skipped and something is left.
bool ReadPlainColor(const char*& current, const char* end, bool allowCurrentColor,
                    ColorValue& value, ParseResult& result)
{
    result = ParseResult::kInvalid;
    Color color;
    if (*current == '#') {
        ++current;
        if (!ReadHex(current, end, color)) {
            return false;
        }
        value = color;
    } else if (IsWordAt(current, end, kRgb)) {
        current += kRgb.size();
        if (!ReadRgb(current, end, color)) {
            return false;
        }
        value = color;
    } else if (allowCurrentColor && IsWordAt(current, end, kCurrentColor)) {
        // No colour's name begins this word.
        current += kCurrentColor.size();
        value = CurrentColor();
    } else if (const NamedColor* const named =
                   FindNamedColor({current, static_cast<std::size_t>(end - current)})) {
        current += named->name.size();
        value = named->color;
    } else {
        return false;
    }
    result = ParseResult::kSuccess;
    return true;
}

bool IsNameCharacter(char c)
{
    return IsLetter(c) || IsDigit(c) || c == '_' || c == '-';
}

/// White space, "--" and a name that ends before the text does.
bool ReadVariableName(const char*& current, const char* end, std::string_view& name)
{
    if (!SkipSpace(current, end) || end - current < 2 || current[0] != '-' || current[1] != '-') {
        return false;
    }
    current += 2;
    const char* const start = current;
    while (current != end && IsNameCharacter(*current)) {
        ++current;
    }
    name = {start, static_cast<std::size_t>(current - start)};
    return !name.empty() && current != end;
}

/// What follows "var(". Fallbacks may be variables themselves, to any depth, so the depth is
/// counted instead of calling again.
bool ReadVariable(const char*& current, const char* end, ColorValue& value)
{
    std::string_view name;
    // A fallback that is a variable or the current colour is replaced by black, on purpose.
    Color fallback;
    std::size_t open = 1;
    if (!ReadVariableName(current, end, name) || !SkipSpace(current, end)) {
        return false;
    }
    while (SkipCharacter(current, end, ',')) {
        if (!SkipSpace(current, end)) {
            return false;
        }
        if (IsWordAt(current, end, kVar)) {
            current += kVar.size();
            ++open;
            std::string_view innerName;
            if (!ReadVariableName(current, end, innerName) || !SkipSpace(current, end)) {
                return false;
            }
            continue;
        }
        ColorValue plain;
        ParseResult ignored{};
        if (!ReadPlainColor(current, end, /*allowCurrentColor=*/true, plain, ignored)) {
            return false;
        }
        if (const Color* const color = std::get_if<Color>(&plain); color != nullptr && open == 1) {
            fallback = *color;
        }
        break;
    }
    for (; open > 0; --open) {
        if (!SkipSpace(current, end) || !SkipCharacter(current, end, ')')) {
            return false;
        }
    }
    value = ColorVariable{std::string(name), fallback};
    return true;
}

}  // namespace

bool SVGStringParser::ParseHexColor(std::string_view text, Color& color)
{
    if ((text.size() != 4 && text.size() != 7) || text.front() != '#') {
        return false;
    }
    text.remove_prefix(1);
    std::uint8_t all = 0;
    int number = 0;
    for (const char c : text) {
        const std::uint8_t digit = HexDigit(c);
        all |= digit;
        number = number * 16 + digit;
    }
    if (all > 0xF) {
        return false;
    }
    color = HexColor(number, text.size());
    return true;
}

bool SVGStringParser::ParseColor(const char*& current, const char* end, ColorValue& value,
                                 bool allowCurrentColor, ParseResult& result)
{
    if (!SkipSpace(current, end)) {
        return false;
    }
    if (!IsWordAt(current, end, kVar)) {
        return ReadPlainColor(current, end, allowCurrentColor, value, result);
    }
    current += kVar.size();
    const bool read = ReadVariable(current, end, value);
    result = read ? ParseResult::kSuccess : ParseResult::kInvalid;
    return read;
}

}  // namespace SVGLoom
