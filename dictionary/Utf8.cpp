#include "dictionary/Utf8.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

namespace morvish_private {

namespace {

constexpr char16_t kReplacement = 0xFFFD;
constexpr std::string_view kReplacementUtf8 = "\xEF\xBF\xBD";

// The sequences of two and more bytes. The range of the second byte is what rules out overlong
// forms, surrogates and values above U+10FFFF.
struct SequenceRow {
    unsigned char firstLow;
    unsigned char firstHigh;
    unsigned char secondLow;
    unsigned char secondHigh;
    unsigned char length;
    unsigned char firstMask;
};

constexpr SequenceRow kSequenceRows[] = {
    {0xC2, 0xDF, 0x80, 0xBF, 2, 0x1F}, {0xE0, 0xE0, 0xA0, 0xBF, 3, 0x0F},
    {0xE1, 0xEC, 0x80, 0xBF, 3, 0x0F}, {0xED, 0xED, 0x80, 0x9F, 3, 0x0F},
    {0xEE, 0xEF, 0x80, 0xBF, 3, 0x0F}, {0xF0, 0xF0, 0x90, 0xBF, 4, 0x07},
    {0xF1, 0xF3, 0x80, 0xBF, 4, 0x07}, {0xF4, 0xF4, 0x80, 0x8F, 4, 0x07},
};

// For each byte from 0x80 up, the row that it begins a sequence of; null for none.
constexpr auto kRowsByFirst = [] {
    std::array<const SequenceRow*, 0x80> rows{};
    for (const SequenceRow& row : kSequenceRows) {
        for (unsigned first = row.firstLow; first <= row.firstHigh; ++first)
            rows[first - 0x80] = &row;
    }
    return rows;
}();

// Reads one sequence that begins with a byte above 0x7F, and moves `current` past it.
// On false it is past the maximal ill-formed part: at least one byte, and all those that could have
// begun a sequence.
bool DecodeSequence(const unsigned char*& current, const unsigned char* end, std::uint32_t& value)
{
    const unsigned char first = *current++;
    const SequenceRow* const row = kRowsByFirst[first - 0x80u];
    if (row == nullptr)
        return false;

    value = first & row->firstMask;
    unsigned char low = row->secondLow;
    unsigned char high = row->secondHigh;
    for (unsigned char i = 1; i < row->length; ++i) {
        if (current == end || *current < low || *current > high)
            return false;
        value = (value << 6) | (*current++ & 0x3Fu);
        low = 0x80;
        high = 0xBF;
    }
    return true;
}

char16_t* AppendCodePoint(std::uint32_t value, char16_t* out)
{
    if (value < 0x10000) {
        *out++ = static_cast<char16_t>(value);
    } else {
        *out++ = static_cast<char16_t>(0xD800 + ((value - 0x10000) >> 10));
        *out++ = static_cast<char16_t>(0xDC00 + ((value - 0x10000) & 0x3FF));
    }
    return out;
}

// Moves past ASCII, eight bytes at a time where it can.
const unsigned char* SkipAscii(const unsigned char* current, const unsigned char* end)
{
    while (end - current >= 8) {
        std::uint64_t word;
        std::memcpy(&word, current, sizeof word);
        if ((word & 0x8080808080808080u) != 0)
            break;
        current += 8;
    }
    while (current != end && *current < 0x80)
        ++current;
    return current;
}

enum class Broken { kFail, kReplace };

bool Convert(std::string_view bytes, Broken broken, std::u16string& text)
{
    // No sequence gives more units than it has bytes, and neither does a replaced part.
    text.resize(bytes.size());
    char16_t* out = text.data();
    const auto* current = reinterpret_cast<const unsigned char*>(bytes.data());
    const unsigned char* const end = current + bytes.size();
    while (current != end) {
        const unsigned char* const ascii = SkipAscii(current, end);
        while (current != ascii)
            *out++ = *current++;
        if (current == end)
            break;
        std::uint32_t value = 0;
        if (DecodeSequence(current, end, value))
            out = AppendCodePoint(value, out);
        else if (broken == Broken::kFail)
            return false;
        else
            *out++ = kReplacement;
    }
    text.resize(static_cast<std::size_t>(out - text.data()));
    return true;
}

}  // namespace

bool ConvertUtf8(std::string_view bytes, std::u16string& text)
{
    return Convert(bytes, Broken::kFail, text);
}

std::u16string ConvertUtf8Lossy(std::string_view bytes)
{
    std::u16string text;
    Convert(bytes, Broken::kReplace, text);
    return text;
}

bool RepairUtf8(std::string_view bytes, std::string& repaired)
{
    std::string result;
    bool broken = false;
    const auto* current = reinterpret_cast<const unsigned char*>(bytes.data());
    const unsigned char* const end = current + bytes.size();
    const unsigned char* copied = current;  // what stands before it is in `result`
    const auto copyUpTo = [&](const unsigned char* limit) {
        result.append(reinterpret_cast<const char*>(copied),
                      static_cast<std::size_t>(limit - copied));
    };
    while ((current = SkipAscii(current, end)) != end) {
        const unsigned char* const start = current;
        std::uint32_t value = 0;
        if (DecodeSequence(current, end, value))
            continue;
        broken = true;
        copyUpTo(start);
        result += kReplacementUtf8;
        copied = current;
    }
    if (!broken)
        return false;
    copyUpTo(end);
    repaired = std::move(result);
    return true;
}

bool ConvertUtf16(std::u16string_view text, std::string& bytes)
{
    bytes.clear();
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::uint32_t value = text[i];
        if (value >= 0xD800 && value <= 0xDFFF) {
            const bool paired = value <= 0xDBFF && text.size() - i > 1 && text[i + 1] >= 0xDC00 &&
                                text[i + 1] <= 0xDFFF;
            if (!paired)
                return false;
            value = 0x10000 + ((value - 0xD800) << 10) + (text[++i] - 0xDC00u);
        }
        if (value < 0x80) {
            bytes += static_cast<char>(value);
            continue;
        }
        if (value < 0x800) {
            bytes += static_cast<char>(0xC0 | (value >> 6));
        } else if (value < 0x10000) {
            bytes += static_cast<char>(0xE0 | (value >> 12));
            bytes += static_cast<char>(0x80 | ((value >> 6) & 0x3F));
        } else {
            bytes += static_cast<char>(0xF0 | (value >> 18));
            bytes += static_cast<char>(0x80 | ((value >> 12) & 0x3F));
            bytes += static_cast<char>(0x80 | ((value >> 6) & 0x3F));
        }
        bytes += static_cast<char>(0x80 | (value & 0x3F));
    }
    return true;
}

}  // namespace morvish_private
