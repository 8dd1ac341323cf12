#include "framework/kivxmp/src/TagText.h"

#include <cstddef>

#include <kivcore/StringConversion.h>
#include <kivcore/UString.h>

namespace kivxmp::photo {

using kivcore::UString;

namespace {

using namespace std::string_view_literals;

// 80 to 9F in Windows-1252; what has no meaning there stays the control character that it is in
// Latin-1, and is dropped as one.
constexpr char16_t kWindows1252[] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

bool IsSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

std::string_view Trimmed(std::string_view text)
{
    while (!text.empty() && IsSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && IsSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

std::string_view UpToZero(std::string_view bytes)
{
    return bytes.substr(0, bytes.find('\0'));
}

/// `utf8` is well-formed.
std::string Cleaned(std::string_view utf8)
{
    std::string text;
    text.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto byte = static_cast<unsigned char>(utf8[i]);
        const std::string_view rest = utf8.substr(i);
        if (byte == '\r') {
            text += '\n';
            i += rest.starts_with("\r\n") ? 1 : 0;
        } else if (byte >= 0x20 || byte == '\n' || byte == '\t') {
            // U+FFFE and U+FFFF are no characters to XML; U+0080 to U+009F and DEL are nobody's
            // text.
            if (rest.starts_with("\xEF\xBF\xBE"sv) || rest.starts_with("\xEF\xBF\xBF"sv)) {
                i += 2;
            } else if (byte == 0xC2 && static_cast<unsigned char>(rest[1]) < 0xA0) {
                i += 1;
            } else if (byte != 0x7F) {
                text += utf8[i];
            }
        }
    }
    return std::string(Trimmed(text));
}

std::string Widened(std::string_view bytes, bool isWindows)
{
    UString text;
    text.reserve(bytes.size());
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        const bool isSpecial = isWindows && byte >= 0x80 && byte < 0xA0;
        text.push_back(isSpecial ? kWindows1252[byte - 0x80] : char16_t{byte});
    }
    return Cleaned(kivcore::string::UTF16to8(text));
}

bool IsAscii(std::string_view bytes)
{
    for (const char c : bytes) {
        if (static_cast<unsigned char>(c) >= 0x80 || c == '\x1B') {
            return false;
        }
    }
    return true;
}

}  // namespace

std::string TextOf(std::string_view bytes)
{
    bytes = UpToZero(bytes);
    if (kivcore::string::IsWellFormedUTF8(bytes)) {
        constexpr std::string_view kMark = "\xEF\xBB\xBF";
        return Cleaned(bytes.starts_with(kMark) ? bytes.substr(kMark.size()) : bytes);
    }
    return Widened(bytes, /*isWindows=*/true);
}

std::string TextOfUtf16(std::string_view bytes, ByteOrder order)
{
    if (bytes.starts_with("\xFF\xFE"sv) || bytes.starts_with("\xFE\xFF"sv)) {
        order = bytes.front() == '\xFF' ? ByteOrder::kLittle : ByteOrder::kBig;
        bytes.remove_prefix(2);
    }
    UString text;
    text.reserve(bytes.size() / 2);
    for (std::size_t at = 0; at + 2 <= bytes.size(); at += 2) {
        const auto unit = static_cast<char16_t>(GetNumber(bytes, at, 2, order));
        if (unit == 0) {
            break;
        }
        text.push_back(unit);
    }
    return Cleaned(kivcore::string::UTF16to8(text));
}

std::string TextOfComment(std::string_view bytes, ByteOrder order)
{
    constexpr std::size_t kNameBytes = 8;
    if (bytes.size() <= kNameBytes) {
        return {};
    }
    const std::string_view name = bytes.substr(0, kNameBytes);
    const std::string_view content = bytes.substr(kNameBytes);
    if (name == "UNICODE\0"sv) {
        return TextOfUtf16(content, order);
    }
    if (name == "JIS\0\0\0\0\0"sv) {
        return IsAscii(UpToZero(content)) ? TextOf(content) : std::string();
    }
    if (name == "ASCII\0\0\0"sv || name == "\0\0\0\0\0\0\0\0"sv) {
        return TextOf(content);
    }
    return {};
}

IimEncoding IimEncodingOf(std::string_view announcement)
{
    struct Row {
        std::string_view announcement;
        IimEncoding encoding;
    };
    // UTF-8 with and without return to ISO 2022, in all its levels; Latin-1 as the upper set.
    static constexpr Row kRows[] = {
        {"\x1B%G", IimEncoding::kUtf8},   {"\x1B%/G", IimEncoding::kUtf8},
        {"\x1B%/H", IimEncoding::kUtf8},  {"\x1B%/I", IimEncoding::kUtf8},
        {"\x1B.A", IimEncoding::kLatin1}, {"\x1B-A", IimEncoding::kLatin1},
        {"\x1B/A", IimEncoding::kLatin1},
    };
    for (const Row& row : kRows) {
        if (announcement == row.announcement) {
            return row.encoding;
        }
    }
    return IimEncoding::kUnknown;
}

std::string TextOfIim(std::string_view bytes, IimEncoding encoding)
{
    return encoding == IimEncoding::kLatin1 ? Widened(UpToZero(bytes), /*isWindows=*/false)
                                            : TextOf(bytes);
}

std::vector<std::string> SplitList(std::string_view text)
{
    std::vector<std::string> parts;
    std::string part;
    bool isQuoted = false;
    const auto finish = [&] {
        if (const std::string_view trimmed = Trimmed(part); !trimmed.empty()) {
            parts.emplace_back(trimmed);
        }
        part.clear();
        isQuoted = false;
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '"' && isQuoted) {
            if (text.substr(i + 1).starts_with('"')) {
                part += c;
                ++i;
            } else {
                isQuoted = false;
            }
        } else if (c == '"' && Trimmed(part).empty() &&
                   text.find('"', i + 1) != std::string_view::npos) {
            // A quote that nothing closes, and one within a part, is a character like others.
            part.clear();
            isQuoted = true;
        } else if (c == ';' && !isQuoted) {
            finish();
        } else {
            part += c;
        }
    }
    finish();
    return parts;
}

}  // namespace kivxmp::photo
