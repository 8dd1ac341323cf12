// Most texts are plain ASCII, so every conversion first moves past eight ASCII bytes (or four
// units) at a time, and decodes one by one only from the first other one on.

#include <kivcore/StringConversion.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kivcore::string {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

/// What one step of decoding yields: a character, or U+FFFD for a maximal ill-formed part.
struct Decoded {
    char32_t character = kReplacement;
    std::size_t length = 1;
    bool wellFormed = false;
};

// Which second bytes a lead byte takes, and how many bytes follow it in all (Unicode Standard,
// table 3-7). Lead bytes of no row begin nothing.
struct LeadRow {
    std::uint8_t first, last;
    std::uint8_t secondLow, secondHigh;
    std::uint8_t following;
};

constexpr LeadRow kLeadRows[] = {
    {0xC2, 0xDF, 0x80, 0xBF, 1}, {0xE0, 0xE0, 0xA0, 0xBF, 2}, {0xE1, 0xEC, 0x80, 0xBF, 2},
    {0xED, 0xED, 0x80, 0x9F, 2}, {0xEE, 0xEF, 0x80, 0xBF, 2}, {0xF0, 0xF0, 0x90, 0xBF, 3},
    {0xF1, 0xF3, 0x80, 0xBF, 3}, {0xF4, 0xF4, 0x80, 0x8F, 3},
};

/// Decodes at `current`; current < end.
Decoded Decode(const unsigned char* current, const unsigned char* end)
{
    Decoded result;
    const unsigned char lead = *current;
    if (lead < 0x80) {
        result.character = lead;
        result.wellFormed = true;
        return result;
    }
    const auto* const row =
        std::find_if(std::begin(kLeadRows), std::end(kLeadRows), [lead](const LeadRow& candidate) {
            return lead >= candidate.first && lead <= candidate.last;
        });
    if (row == std::end(kLeadRows)) {
        return result;
    }
    char32_t character = lead & (0x3FU >> row->following);
    std::uint8_t low = row->secondLow;
    std::uint8_t high = row->secondHigh;
    const std::size_t wanted = std::size_t{1} + row->following;
    for (; result.length < wanted; ++result.length) {
        if (static_cast<std::size_t>(end - current) == result.length) {
            return result;
        }
        const unsigned char byte = current[result.length];
        if (byte < low || byte > high) {
            return result;
        }
        character = (character << 6) | (byte & 0x3FU);
        low = 0x80;
        high = 0xBF;
    }
    result.character = character;
    result.wellFormed = true;
    return result;
}

/// Length of the run of ASCII bytes at `current`.
std::size_t AsciiRun(const unsigned char* current, const unsigned char* end)
{
    const unsigned char* const start = current;
    while (end - current >= 8) {
        std::uint64_t block = 0;
        std::memcpy(&block, current, sizeof block);
        if ((block & 0x8080808080808080U) != 0) {
            break;
        }
        current += 8;
    }
    while (current != end && *current < 0x80) {
        ++current;
    }
    return static_cast<std::size_t>(current - start);
}

std::size_t AsciiRun(const char16_t* current, const char16_t* end)
{
    const char16_t* const start = current;
    while (end - current >= 4) {
        std::uint64_t block = 0;
        std::memcpy(&block, current, sizeof block);
        if ((block & 0xFF80FF80FF80FF80U) != 0) {
            break;
        }
        current += 4;
    }
    while (current != end && *current < 0x80) {
        ++current;
    }
    return static_cast<std::size_t>(current - start);
}

const unsigned char* Bytes(std::string_view text)
{
    return reinterpret_cast<const unsigned char*>(text.data());
}

bool IsHighSurrogate(char16_t unit)
{
    return (unit & 0xFC00U) == 0xD800U;
}

bool IsLowSurrogate(char16_t unit)
{
    return (unit & 0xFC00U) == 0xDC00U;
}

void AppendUTF8(std::string& text, char32_t character)
{
    const auto append = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
    if (character < 0x80) {
        append(character);
    } else if (character < 0x800) {
        append(0xC0 | (character >> 6));
        append(0x80 | (character & 0x3F));
    } else if (character < 0x10000) {
        append(0xE0 | (character >> 12));
        append(0x80 | ((character >> 6) & 0x3F));
        append(0x80 | (character & 0x3F));
    } else {
        append(0xF0 | (character >> 18));
        append(0x80 | ((character >> 12) & 0x3F));
        append(0x80 | ((character >> 6) & 0x3F));
        append(0x80 | (character & 0x3F));
    }
}

}  // namespace

UString AsciiToUTF16(std::string_view text)
{
    UString result(text.size(), u'\0');
    std::copy_n(Bytes(text), text.size(), result.begin());
    return result;
}

UString UTF8to16(std::string_view text)
{
    const unsigned char* current = Bytes(text);
    const unsigned char* const end = current + text.size();
    // No part gives more units than it has bytes.
    UString result(text.size(), u'\0');
    char16_t* out = result.data();
    while (current != end) {
        const std::size_t run = AsciiRun(current, end);
        out = std::copy_n(current, run, out);
        current += run;
        if (current == end) {
            break;
        }
        const Decoded part = Decode(current, end);
        current += part.length;
        if (part.character < 0x10000) {
            *out++ = static_cast<char16_t>(part.character);
        } else {
            *out++ = static_cast<char16_t>(0xD800 + ((part.character - 0x10000) >> 10));
            *out++ = static_cast<char16_t>(0xDC00 + ((part.character - 0x10000) & 0x3FF));
        }
    }
    result.resize(static_cast<std::size_t>(out - result.data()));
    return result;
}

std::string UTF16to8(UStringView text)
{
    const char16_t* current = text.data();
    const char16_t* const end = current + text.size();
    std::string result;
    result.reserve(text.size());
    while (current != end) {
        const std::size_t run = AsciiRun(current, end);
        std::transform(current, current + run, std::back_inserter(result),
                       [](char16_t unit) { return static_cast<char>(unit); });
        current += run;
        if (current == end) {
            break;
        }
        const char16_t unit = *current++;
        char32_t character = unit;
        if (IsHighSurrogate(unit) && current != end && IsLowSurrogate(*current)) {
            const char32_t high = unit & 0x3FFU;
            const char32_t low = *current++ & 0x3FFU;
            character = 0x10000 + ((high << 10) | low);
        } else if (IsHighSurrogate(unit) || IsLowSurrogate(unit)) {
            character = kReplacement;
        }
        AppendUTF8(result, character);
    }
    return result;
}

bool IsWellFormedUTF8(std::string_view text) noexcept
{
    const unsigned char* current = Bytes(text);
    const unsigned char* const end = current + text.size();
    while (current != end) {
        current += AsciiRun(current, end);
        if (current == end) {
            break;
        }
        const Decoded part = Decode(current, end);
        if (!part.wellFormed) {
            return false;
        }
        current += part.length;
    }
    return true;
}

}  // namespace kivcore::string
