#include "framework/kivxmp/src/Encoding.h"

#include <algorithm>
#include <iterator>

#include <kivcore/StringConversion.h>
#include <kivxmp/XMPError.h>

namespace kivxmp {
namespace {

struct EncodingRow {
    Encoding encoding;
    std::size_t unitBytes;
    bool bigEndian;
    std::uint32_t maxCharacter;
    const char* name;
};

constexpr EncodingRow kRows[] = {
    {Encoding::kUtf8, 1, false, 0x10FFFF, "UTF-8"},
    {Encoding::kUtf16Le, 2, false, 0x10FFFF, "UTF-16"},
    {Encoding::kUtf16Be, 2, true, 0x10FFFF, "UTF-16"},
    {Encoding::kUtf32Le, 4, false, 0x10FFFF, "UTF-32"},
    {Encoding::kUtf32Be, 4, true, 0x10FFFF, "UTF-32"},
    {Encoding::kLatin1, 1, false, 0xFF, "ISO-8859-1"},
    {Encoding::kAscii, 1, false, 0x7F, "US-ASCII"},
};

constexpr bool RowsStandByNumber()
{
    for (std::size_t i = 0; i < std::size(kRows); ++i) {
        if (kRows[i].encoding != static_cast<Encoding>(i)) {
            return false;
        }
    }
    return true;
}
static_assert(RowsStandByNumber());

const EncodingRow& RowOf(Encoding encoding) noexcept
{
    return kRows[static_cast<std::size_t>(encoding)];
}

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

bool IsSpace(char c) noexcept
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

char LowerAscii(char c) noexcept
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Value of "encoding" in the XML declaration, in lower case; empty where there is none.
std::string DeclaredEncoding(std::string_view bytes)
{
    if (bytes.substr(0, kUtf8Mark.size()) == kUtf8Mark) {
        return {};
    }
    if (bytes.substr(0, 5) != "<?xml" || bytes.size() < 6 || !IsSpace(bytes[5])) {
        return {};
    }
    const std::string_view declaration = bytes.substr(0, bytes.find("?>"));
    constexpr std::string_view kName = "encoding";
    std::size_t at = declaration.find(kName);
    if (at == std::string_view::npos) {
        return {};
    }
    at = declaration.find_first_of("\"'", at + kName.size());
    if (at == std::string_view::npos) {
        return {};
    }
    const std::size_t end = declaration.find(declaration[at], at + 1);
    std::string name(declaration.substr(at + 1, end == std::string_view::npos ? 0 : end - at - 1));
    std::transform(name.begin(), name.end(), name.begin(), LowerAscii);
    return name;
}

[[noreturn]] void ThrowBroken(Encoding encoding, std::size_t offset)
{
    throw XMP_Error(kKivXmpBadEncoding, std::string("the packet is not well-formed ") +
                                            RowOf(encoding).name + " at byte " +
                                            std::to_string(offset));
}

std::uint32_t UnitAt(std::string_view bytes, std::size_t offset, const EncodingRow& row) noexcept
{
    std::uint32_t unit = 0;
    for (std::size_t i = 0; i < row.unitBytes; ++i) {
        const std::size_t at = row.bigEndian ? offset + i : offset + row.unitBytes - 1 - i;
        unit = (unit << 8) | static_cast<unsigned char>(bytes[at]);
    }
    return unit;
}

void AppendUnit(std::string& bytes, std::uint32_t unit, const EncodingRow& row)
{
    for (std::size_t i = 0; i < row.unitBytes; ++i) {
        const std::size_t shift = row.bigEndian ? row.unitBytes - 1 - i : i;
        bytes.push_back(static_cast<char>((unit >> (8 * shift)) & 0xFF));
    }
}

constexpr bool IsHighSurrogate(std::uint32_t unit) noexcept
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

constexpr bool IsLowSurrogate(std::uint32_t unit) noexcept
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

}  // namespace

Encoding DetectEncoding(std::string_view bytes) noexcept
{
    const auto byteAt = [bytes](std::size_t at) -> unsigned {
        return at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 1u;
    };
    const unsigned first[2] = {byteAt(0), byteAt(1)};
    const bool isZero[4] = {byteAt(0) == 0, byteAt(1) == 0, byteAt(2) == 0, byteAt(3) == 0};
    if (isZero[0] && isZero[1]) {
        return Encoding::kUtf32Be;
    }
    if (first[0] == 0xFF && first[1] == 0xFE) {
        return isZero[2] && isZero[3] ? Encoding::kUtf32Le : Encoding::kUtf16Le;
    }
    if (first[0] == 0xFE && first[1] == 0xFF) {
        return Encoding::kUtf16Be;
    }
    if (isZero[0]) {
        return Encoding::kUtf16Be;
    }
    if (isZero[1]) {
        return isZero[2] && isZero[3] ? Encoding::kUtf32Le : Encoding::kUtf16Le;
    }
    const std::string declared = DeclaredEncoding(bytes);
    if (declared == "iso-8859-1" || declared == "latin1") {
        return Encoding::kLatin1;
    }
    return declared == "us-ascii" ? Encoding::kAscii : Encoding::kUtf8;
}

std::size_t UnitBytes(Encoding encoding) noexcept
{
    return RowOf(encoding).unitBytes;
}

std::uint32_t MaxCharacter(Encoding encoding) noexcept
{
    return RowOf(encoding).maxCharacter;
}

std::string DecodeToUtf8(std::string_view bytes, Encoding encoding)
{
    const EncodingRow& row = RowOf(encoding);
    if (bytes.size() % row.unitBytes != 0) {
        ThrowBroken(encoding, bytes.size() - bytes.size() % row.unitBytes);
    }
    std::string text;
    text.reserve(bytes.size() / row.unitBytes);
    for (std::size_t at = 0; at < bytes.size(); at += row.unitBytes) {
        std::uint32_t character = UnitAt(bytes, at, row);
        if (row.unitBytes == 2 && IsHighSurrogate(character) &&
            bytes.size() - at >= 2 * row.unitBytes) {
            const std::uint32_t low = UnitAt(bytes, at + row.unitBytes, row);
            if (IsLowSurrogate(low)) {
                character = 0x10000 + ((character - 0xD800) << 10) + (low - 0xDC00);
                at += row.unitBytes;
            }
        }
        if (character > row.maxCharacter || IsHighSurrogate(character) ||
            IsLowSurrogate(character)) {
            ThrowBroken(encoding, at);
        }
        AppendUtf8(text, character);
    }
    return text;
}

std::string EncodeFromUtf8(std::string_view text, Encoding encoding)
{
    const EncodingRow& row = RowOf(encoding);
    if (encoding == Encoding::kUtf8) {
        return std::string(text);
    }
    std::string bytes;
    bytes.reserve(text.size() * row.unitBytes);
    const char* current = text.data();
    const char* const end = current + text.size();
    while (current != end) {
        const std::uint32_t character = NextCharacter(current, end);
        if (character > row.maxCharacter) {
            throw XMP_Error(kKivXmpBadEncoding, std::string("a name has a character that ") +
                                                    row.name + " cannot hold");
        }
        if (row.unitBytes == 2 && character > 0xFFFF) {
            AppendUnit(bytes, 0xD800 + ((character - 0x10000) >> 10), row);
            AppendUnit(bytes, 0xDC00 + ((character - 0x10000) & 0x3FF), row);
        } else {
            AppendUnit(bytes, character, row);
        }
    }
    return bytes;
}

std::size_t EncodedBytes(std::string_view text, Encoding encoding) noexcept
{
    if (encoding == Encoding::kUtf8) {
        return text.size();
    }
    const EncodingRow& row = RowOf(encoding);
    std::size_t units = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        const bool isContinuation = (byte & 0xC0) == 0x80;
        const bool isPair = row.unitBytes == 2 && byte >= 0xF0;
        units += isContinuation ? 0u : isPair ? 2u : 1u;
    }
    return units * row.unitBytes;
}

std::uint32_t NextCharacter(const char*& current, const char* end) noexcept
{
    const auto first = static_cast<unsigned char>(*current++);
    if (first < 0xC0) {
        return first;
    }
    const int more = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
    if (end - current < more) {
        return first;
    }
    std::uint32_t character = first & (0x3Fu >> more);
    for (int i = 0; i < more; ++i) {
        character = (character << 6) | (static_cast<unsigned char>(*current++) & 0x3Fu);
    }
    return character;
}

void AppendUtf8(std::string& text, std::uint32_t character)
{
    const auto put = [&text](std::uint32_t byte) { text.push_back(static_cast<char>(byte)); };
    if (character < 0x80) {
        put(character);
    } else if (character < 0x800) {
        put(0xC0 | (character >> 6));
        put(0x80 | (character & 0x3F));
    } else if (character < 0x10000) {
        put(0xE0 | (character >> 12));
        put(0x80 | ((character >> 6) & 0x3F));
        put(0x80 | (character & 0x3F));
    } else {
        put(0xF0 | (character >> 18));
        put(0x80 | ((character >> 12) & 0x3F));
        put(0x80 | ((character >> 6) & 0x3F));
        put(0x80 | (character & 0x3F));
    }
}

bool IsXmlText(std::string_view text) noexcept
{
    if (!kivcore::string::IsWellFormedUTF8(text)) {
        return false;
    }
    const char* current = text.data();
    const char* const end = current + text.size();
    while (current != end) {
        const std::uint32_t c = NextCharacter(current, end);
        const bool isControl = c < 0x20 && c != '\t' && c != '\n' && c != '\r';
        if (isControl || c == 0xFFFE || c == 0xFFFF) {
            return false;
        }
    }
    return true;
}

}  // namespace kivxmp
