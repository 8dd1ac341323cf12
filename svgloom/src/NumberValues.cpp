// Numbers, lengths and lists of them as whole values.

#include <algorithm>
#include <cstddef>

#include "svgloom/src/Characters.h"
#include "svgloom/src/NumberReader.h"
#include "svgloom/src/SVGStringParser.h"

namespace SVGLoom {

namespace {

/// ReadNumber for values, which are short and end with their text: ReadNumber would go step by step
/// there, because it looks at more bytes than there are.
bool ReadShortValue(const char*& current, const char* end, float& value)
{
    constexpr std::ptrdiff_t kMostDigits = 4;  // of each part, exact in a float
    const char* at = current;
    const bool negative = at != end && *at == '-';
    at += negative ? 1 : 0;
    const char* digits = at;
    int whole = 0;
    for (; at != end && IsDigit(*at); ++at) {
        whole = at - digits < kMostDigits ? whole * 10 + (*at - '0') : whole;
    }
    bool isUsual = at != digits && at - digits <= kMostDigits;
    auto result = static_cast<float>(whole);
    if (isUsual && at != end && *at == '.') {
        digits = ++at;
        for (; at != end && IsDigit(*at) && at - digits < kMostDigits; ++at) {
            result += number_reader::kFractions.rows[at - digits][*at - '0'];
        }
        isUsual = at != digits && (at == end || !IsDigit(*at));
    }
    if (!isUsual || (at != end && ToLower(*at) == 'e')) {
        return ReadNumber(current, end, value);
    }
    current = at;
    value = negative ? -result : result;
    return true;
}

/// The same; in icons most are a few digits.
inline bool ReadValue(const char*& current, const char* end, float& value)
{
    constexpr std::ptrdiff_t kMostDigits = 3;
    const char* at = current;
    int whole = 0;
    while (at != end && IsDigit(*at) && at - current < kMostDigits) {
        whole = whole * 10 + (*at - '0');
        ++at;
    }
    if (at == current || (at != end && *at != ' ')) {
        return ReadShortValue(current, end, value);
    }
    current = at;
    value = static_cast<float>(whole);
    return true;
}

// As an object, so that it is put where it is used.
constexpr auto kReadValue = [](const char*& current, const char* end, float& value) {
    return ReadValue(current, end, value);
};

struct UnitRow {
    std::string_view name;
    float factor;  // user units
};

// "%" is read apart, and "em" and "ex" never come here: the number reader fails at the "e".
constexpr UnitRow kUnits[] = {
    {"px", 1.0f},  {"pt", 4.0f / 3.0f},   {"pc", 16.0f},
    {"in", 96.0f}, {"cm", 96.0f / 2.54f}, {"mm", 96.0f / 25.4f},
};
constexpr std::ptrdiff_t kUnitLength = 2;

bool ReadLength(const char*& current, const char* end, float reference, float& value)
{
    float number = 0;
    if (!ReadValue(current, end, number)) {
        return false;
    }
    if (current != end && *current == '%') {
        ++current;
        number = number * reference / 100;
    } else if (end - current >= kUnitLength) {
        const std::string_view unit(current, kUnitLength);
        for (const UnitRow& row : kUnits) {
            if (row.name == unit) {
                current += kUnitLength;
                number *= row.factor;
                break;
            }
        }
    }
    value = number;
    return true;
}

/// Reads one value with `read` and white space around it; false if anything else is there.
template <class Read>
bool ReadWhole(std::string_view text, const Read& read, float& value)
{
    const char* current = text.data();
    const char* const end = current + text.size();
    float number = 0;
    SkipSpace(current, end);
    if (!read(current, end, number) || SkipSpace(current, end)) {
        return false;
    }
    value = number;
    return true;
}

/// Calls take(value) for each value; false where one cannot be read.
template <class Read, class Take>
bool ReadList(std::string_view text, const Read& read, const Take& take)
{
    const char* current = text.data();
    const char* const end = current + text.size();
    bool more = SkipSpace(current, end);
    while (more) {
        float value = 0;
        if (!read(current, end, value)) {
            return false;
        }
        take(value);
        more = SkipSpace(current, end);
        if (more && *current == ',') {
            ++current;
            SkipSpace(current, end);  // a value has to follow
        }
    }
    return true;
}

template <class Read>
bool ReadVector(std::string_view text, const Read& read, std::vector<float>& values)
{
    values.clear();
    // Most values take two characters at least, the separator included.
    constexpr std::size_t kUsualCount = 64;
    values.reserve(std::min((text.size() + 1) / 2, kUsualCount));
    const bool isRead = ReadList(text, read, [&values](float value) { values.push_back(value); });
    if (!isRead) {
        values.clear();
    }
    return isRead;
}

}  // namespace

bool SVGStringParser::ParseNumber(std::string_view text, float& value)
{
    return ReadWhole(text, kReadValue, value);
}

bool SVGStringParser::ParseLength(std::string_view text, float reference, float& value)
{
    return ReadWhole(
        text,
        [reference](const char*& current, const char* end, float& number) {
            return ReadLength(current, end, reference, number);
        },
        value);
}

bool SVGStringParser::ParseNumberList(std::string_view text, std::vector<float>& values)
{
    return ReadVector(text, kReadValue, values);
}

bool SVGStringParser::ParseNumberList(std::string_view text, std::span<float> values,
                                      std::size_t& count)
{
    count = 0;
    const bool isRead = ReadList(text, kReadValue, [values, &count](float value) {
        if (count < values.size()) {
            values[count] = value;
        }
        ++count;
    });
    count = isRead ? count : 0;
    return isRead;
}

bool SVGStringParser::ParseLengthList(std::string_view text, float reference,
                                      std::vector<float>& values)
{
    return ReadVector(
        text,
        [reference](const char*& current, const char* end, float& number) {
            return ReadLength(current, end, reference, number);
        },
        values);
}

std::vector<std::string_view> SVGStringParser::SplitWords(std::string_view text)
{
    std::vector<std::string_view> words;
    ForEachWord(text, [&words](std::string_view word) { words.push_back(word); });
    return words;
}

}  // namespace SVGLoom
