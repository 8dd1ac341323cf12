#include <kivcore/StringConversion.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace kivcore::string {
namespace {

using namespace std::string_view_literals;

struct Utf8Case {
    std::string_view bytes;
    std::u16string_view units;
    bool wellFormed;
};

constexpr Utf8Case kUtf8Cases[] = {
    {""sv, u""sv, true},
    {"a"sv, u"a"sv, true},
    {"plain ASCII of more than eight bytes"sv, u"plain ASCII of more than eight bytes"sv, true},
    {"a\0b"sv, u"a\0b"sv, true},
    {"\x7F"sv, u"\u007F"sv, true},
    // The first and last character of each length.
    {"\xC2\x80 \xDF\xBF"sv, u"\u0080 \u07FF"sv, true},
    {"\xE0\xA0\x80 \xED\x9F\xBF \xEE\x80\x80 \xEF\xBF\xBF"sv, u"\u0800 \uD7FF \uE000 \uFFFF"sv,
     true},
    {"\xF0\x90\x80\x80 \xF4\x8F\xBF\xBF"sv, u"\U00010000 \U0010FFFF"sv, true},
    // A character at every place of a block of eight.
    {"1234567\xC3\xA4"sv, u"1234567\u00E4"sv, true},
    {"12345678\xC3\xA4"
     "12345678\xF0\x9F\x98\x80z"sv,
     u"12345678\u00E412345678\U0001F600z"sv, true},
    // A byte-order mark is a character like any other.
    {"\xEF\xBB\xBFx"sv, u"\uFEFFx"sv, true},
    // The standard's examples of maximal subparts: overlong forms, surrogates, other ill-formed
    // bytes, characters that are cut short.
    {"\xC0\xAF\xE0\x80\xBF\xF0\x81\x82\x41"sv,
     u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA"sv, false},
    {"\xED\xA0\x80\xED\xBF\xBF\xED\xAF\x41"sv,
     u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA"sv, false},
    {"\xF4\x91\x92\x93\xFF\x41\x80\xBF\x42"sv, u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA\uFFFD\uFFFDB"sv,
     false},
    {"\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41"sv, u"\uFFFD\uFFFD\uFFFD\uFFFDA"sv, false},
    {"\x61\xF1\x80\x80\xE1\x80\xC2\x62\x80\x63\x80\xBF\x64"sv,
     u"a\uFFFD\uFFFD\uFFFDb\uFFFDc\uFFFD\uFFFDd"sv, false},
    // Above the last character, and lead bytes that never occur.
    {"\xF4\x90\x80\x80"sv, u"\uFFFD\uFFFD\uFFFD\uFFFD"sv, false},
    {"\xF5\x80\x80\x80"sv, u"\uFFFD\uFFFD\uFFFD\uFFFD"sv, false},
    {"\xC1\xBF"sv, u"\uFFFD\uFFFD"sv, false},
    // Cut at every length.
    {"\xF0\x9F\x98"sv, u"\uFFFD"sv, false},
    {"\xF0\x9F"sv, u"\uFFFD"sv, false},
    {"\xF0"sv, u"\uFFFD"sv, false},
    {"x\xE2\x82"sv, u"x\uFFFD"sv, false},
    {"\xC3"sv, u"\uFFFD"sv, false},
};

TEST(StringConversion, FromUtf8)
{
    for (const Utf8Case& row : kUtf8Cases) {
        SCOPED_TRACE(testing::PrintToString(row.bytes));
        // A block of exactly the text's size: a step behind it is found by the sanitizer.
        const std::vector<char> exact(row.bytes.begin(), row.bytes.end());
        const std::string_view text(exact.data(), exact.size());
        EXPECT_EQ(UTF8to16(text), row.units);
        EXPECT_EQ(IsWellFormedUTF8(text), row.wellFormed);
        if (row.wellFormed) {
            EXPECT_EQ(UTF16to8(row.units), row.bytes);
        }
    }
}

struct Utf16Case {
    std::vector<char16_t> units;
    std::string_view bytes;
};

TEST(StringConversion, LoneSurrogatesAreReplaced)
{
    const Utf16Case rows[] = {
        {{0xD83D}, "\xEF\xBF\xBD"},
        {{0xDE00}, "\xEF\xBF\xBD"},
        {{'a', 0xD83D, 'b'},
         "a\xEF\xBF\xBD"
         "b"},
        // The wrong way round.
        {{0xDE00, 0xD83D}, "\xEF\xBF\xBD\xEF\xBF\xBD"},
        // The second one begins a pair.
        {{0xD83D, 0xD83D, 0xDE00}, "\xEF\xBF\xBD\xF0\x9F\x98\x80"},
        {{'1', '2', '3', '4', 0xDBFF}, "1234\xEF\xBF\xBD"},
    };
    for (const Utf16Case& row : rows) {
        SCOPED_TRACE(row.bytes);
        EXPECT_EQ(UTF16to8(UStringView(row.units.data(), row.units.size())), row.bytes);
    }
}

/// The bytes of one character, by the bit patterns alone.
std::string Pattern(char32_t value, int length)
{
    constexpr unsigned kLeads[] = {0x00, 0xC0, 0xE0, 0xF0};
    std::string bytes(static_cast<std::size_t>(length), '\0');
    for (std::size_t index = bytes.size() - 1; index > 0; --index) {
        bytes[index] = static_cast<char>(0x80 | (value & 0x3F));
        value >>= 6;
    }
    bytes[0] = static_cast<char>(kLeads[length - 1] | value);
    return bytes;
}

TEST(StringConversion, EveryCharacterComesBack)
{
    for (char32_t value = 0; value <= 0x10FFFF; ++value) {
        const int length = value < 0x80 ? 1 : value < 0x800 ? 2 : value < 0x10000 ? 3 : 4;
        const std::string bytes = Pattern(value, length);
        const bool isSurrogate = value >= 0xD800 && value <= 0xDFFF;
        ASSERT_EQ(IsWellFormedUTF8(bytes), !isSurrogate) << static_cast<unsigned>(value);
        if (isSurrogate) {
            continue;
        }
        const UString units = UTF8to16(bytes);
        ASSERT_EQ(units.size(), value < 0x10000 ? 1U : 2U) << static_cast<unsigned>(value);
        ASSERT_EQ(UTF16to8(units), bytes) << static_cast<unsigned>(value);
    }
}

TEST(StringConversion, OverlongFormsAreIllFormed)
{
    for (char32_t value = 0; value < 0x10000; ++value) {
        const int shortest = value < 0x80 ? 1 : value < 0x800 ? 2 : 3;
        for (int length = shortest + 1; length <= 4; ++length) {
            ASSERT_FALSE(IsWellFormedUTF8(Pattern(value, length)))
                << static_cast<unsigned>(value) << ' ' << length;
        }
    }
}

TEST(StringConversion, BytesAreWidenedWithoutSign)
{
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        all.push_back(static_cast<char>(byte));
    }
    const UString wide = AsciiToUTF16(all);
    ASSERT_EQ(wide.size(), 256U);
    for (std::size_t index = 0; index < wide.size(); ++index) {
        EXPECT_EQ(wide[index], static_cast<char16_t>(index));
    }
    EXPECT_EQ(AsciiToUTF16(""), u"");
}

}  // namespace
}  // namespace kivcore::string
