#include "svgloom/src/XMLChecks.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>

#include "svgloom/src/Characters.h"

namespace SVGLoom::xml {

namespace {

const char* Find(const char* current, const char* end, char c)
{
    return static_cast<const char*>(
        std::memchr(current, c, static_cast<std::size_t>(end - current)));
}

/// Moves behind `word`; false if it does not come.
bool SkipBehind(const char*& current, const char* end, std::string_view word)
{
    const std::string_view rest(current, static_cast<std::size_t>(end - current));
    const std::size_t found = rest.find(word);
    if (found == std::string_view::npos) {
        return false;
    }
    current += found + word.size();
    return true;
}

bool SkipWord(const char*& current, const char* end, std::string_view word)
{
    const std::string_view rest(current, static_cast<std::size_t>(end - current));
    if (!rest.starts_with(word)) {
        return false;
    }
    current += word.size();
    return true;
}

/// Behind "<!DOCTYPE ", up to behind its ">"; brackets nest.
bool SkipDoctype(const char*& current, const char* end)
{
    int depth = 0;
    for (; current != end; ++current) {
        if (*current == '[') {
            ++depth;
        } else if (*current == ']') {
            depth -= depth > 0 ? 1 : 0;
        } else if (*current == '>' && depth == 0) {
            ++current;
            return true;
        }
    }
    return false;
}

/// What follows "<!".
bool SkipDeclaration(const char*& current, const char* end)
{
    if (SkipWord(current, end, "--")) {
        return SkipBehind(current, end, "-->");
    }
    if (SkipWord(current, end, "[CDATA[")) {
        return SkipBehind(current, end, "]]>");
    }
    constexpr std::string_view kDoctype = "DOCTYPE";
    const char* behind = current;
    if (SkipWord(behind, end, kDoctype) && behind != end && IsSpace(*behind)) {
        current = behind + 1;
        return SkipDoctype(current, end);
    }
    return SkipBehind(current, end, ">");
}

/// The name and the attributes of a start tag, up to its ">" or "/>". `opens` tells which; false
/// where the library stops.
bool SkipTag(const char*& current, const char* end, bool& opens)
{
    while (current != end && IsElementNameCharacter(*current)) {
        ++current;
    }
    while (SkipSpace(current, end) && IsAttributeNameCharacter(*current)) {
        while (current != end && IsAttributeNameCharacter(*current)) {
            ++current;
        }
        if (!SkipSpace(current, end) || *current != '=') {
            return false;
        }
        ++current;
        if (!SkipSpace(current, end) || (*current != '"' && *current != '\'')) {
            return false;
        }
        const char* const close = Find(current + 1, end, *current);
        if (close == nullptr) {
            return false;
        }
        current = close + 1;
    }
    opens = current != end && *current == '>';
    return opens || SkipWord(current, end, "/>");
}

/// The value of the digits at `current`, at most that of 64 bits; the library takes hexadecimal
/// digits for both bases.
std::uint64_t ReadDigits(const char*& current, const char* end, std::uint64_t base)
{
    constexpr std::uint64_t kStop = std::numeric_limits<std::uint64_t>::max() / 32;
    std::uint64_t value = 0;
    for (; current != end && IsHexDigit(*current); ++current) {
        const char c = ToLower(*current);
        const auto digit = static_cast<std::uint64_t>(IsDigit(c) ? c - '0' : c - 'a' + 10);
        value = value < kStop ? value * base + digit : kStop;
    }
    return value;
}

}  // namespace

bool HasManyTags(const char* text, const char* end)
{
    constexpr std::ptrdiff_t kShortestTag = 3;
    if (end - text < kShortestTag * kMaxDepth) {
        return false;
    }
    // Counts of short pieces fit into bytes, of which a processor adds many at once.
    constexpr std::ptrdiff_t kPiece = 128;
    int tags = 0;
    while (end - text >= kPiece && tags <= kMaxDepth) {
        std::uint8_t count = 0;
        for (std::ptrdiff_t i = 0; i < kPiece; ++i) {
            count = static_cast<std::uint8_t>(count + (text[i] == '<' ? 1 : 0));
        }
        tags += count;
        text += kPiece;
    }
    return tags + std::count(text, end, '<') > kMaxDepth;
}

const char* FindTooDeep(const char* text, const char* end)
{
    int depth = 0;
    const char* current = text;
    while ((current = Find(current, end, '<')) != nullptr) {
        const char* const start = current;
        ++current;
        bool goesOn = current != end;
        bool opens = false;
        if (!goesOn) {
            return nullptr;
        }
        switch (*current) {
            case '/':
                do {
                    ++current;
                } while (current != end && IsElementNameCharacter(*current));
                depth -= depth > 0 ? 1 : 0;
                break;
            case '?':
                ++current;
                goesOn = SkipBehind(current, end, "?>");
                break;
            case '!':
                ++current;
                goesOn = SkipDeclaration(current, end);
                break;
            default:
                // An element without content is a level too: the library calls itself for it.
                if (depth >= kMaxDepth) {
                    return start;
                }
                goesOn = SkipTag(current, end, opens);
                depth += opens ? 1 : 0;
                break;
        }
        if (!goesOn) {
            return nullptr;
        }
    }
    return nullptr;
}

void TameReferences(char* text, char* end)
{
    constexpr std::string_view kInvalidDecimal = "1114112";  // one behind the last character
    constexpr std::string_view kInvalidHex = "110000";
    constexpr std::uint64_t kMost = std::numeric_limits<std::uint32_t>::max();
    const char* current = text;
    while ((current = Find(current, end, '&')) != nullptr) {
        ++current;
        if (!SkipWord(current, end, "#")) {
            continue;
        }
        const bool isHex = SkipWord(current, end, "x");
        const char* const digits = current;
        if (ReadDigits(current, end, isHex ? 16 : 10) > kMost) {
            const std::string_view number = isHex ? kInvalidHex : kInvalidDecimal;
            std::fill(text + (digits - text), text + (current - text), '0');
            std::copy(number.begin(), number.end(),
                      text + (current - text) - static_cast<std::ptrdiff_t>(number.size()));
        }
    }
}

}  // namespace SVGLoom::xml
