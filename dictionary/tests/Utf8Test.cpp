#include "dictionary/Utf8.h"

#include "dictionary/tests/TestSupport.h"

#include <gtest/gtest.h>

namespace morvish_private {
namespace {

using dictionary_test::ExactBlock;
using namespace std::string_literals;

struct Utf8Case {
    std::string bytes;
    bool wellFormed;
    std::u16string lossy;  // the strict result too, where well-formed
};

const Utf8Case kUtf8Cases[] = {
    {"", true, u""},
    {"plain text, longer than eight", true, u"plain text, longer than eight"},
    {"a\0b"s, true, u"a\0b"s},
    {"\x7F", true, u"\x7F"},
    // The first and the last of each length.
    {"\xC2\x80", true, u"\u0080"},
    {"\xDF\xBF", true, u"\u07FF"},
    {"\xE0\xA0\x80", true, u"\u0800"},
    {"\xED\x9F\xBF", true, u"\uD7FF"},
    {"\xEE\x80\x80", true, u"\uE000"},
    {"\xEF\xBF\xBF", true, u"\uFFFF"},
    {"\xF0\x90\x80\x80", true, u"\U00010000"},
    {"\xF4\x8F\xBF\xBF", true, u"\U0010FFFF"},
    {"\xF0\x9F\x98\x80!", true, u"\U0001F600!"},
    // Overlong forms.
    {"\xC0\xAF", false, u"\uFFFD\uFFFD"},
    {"\xC1\xBF", false, u"\uFFFD\uFFFD"},
    {"\xE0\x80\xAF", false, u"\uFFFD\uFFFD\uFFFD"},
    {"\xE0\x9F\xBF", false, u"\uFFFD\uFFFD\uFFFD"},
    {"\xF0\x80\x80\xAF", false, u"\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"\xF0\x8F\xBF\xBF", false, u"\uFFFD\uFFFD\uFFFD\uFFFD"},
    // Surrogates.
    {"\xED\xA0\x80", false, u"\uFFFD\uFFFD\uFFFD"},
    {"\xED\xBF\xBF", false, u"\uFFFD\uFFFD\uFFFD"},
    // Above U+10FFFF, and bytes that never occur.
    {"\xF4\x90\x80\x80", false, u"\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"\xF5\x80", false, u"\uFFFD\uFFFD"},
    {"\xFE\xFF", false, u"\uFFFD\uFFFD"},
    // Lone continuation bytes.
    {"a\x80\xBF z", false, u"a\uFFFD\uFFFD z"},
    // Cut sequences are one part as far as they could have gone on.
    {"\xC3", false, u"\uFFFD"},
    {"\xE2\x82", false, u"\uFFFD"},
    {"\xF0\x9F\x98", false, u"\uFFFD"},
    {"\xE2\x82z", false, u"\uFFFDz"},
    {"\xF0\x9F\x98z", false, u"\uFFFDz"},
    {"\xF0\x9F\xE2\x82\xAC", false, u"\uFFFD\u20AC"},
    {"\xC3\xC3\xA9", false, u"\uFFFD\u00E9"},
    // The example of the Unicode standard, table 3-8.
    {"\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41", false, u"\uFFFD\uFFFD\uFFFD\uFFFDA"},
};

TEST(Utf8, ToUtf16)
{
    for (const Utf8Case& row : kUtf8Cases) {
        SCOPED_TRACE(testing::PrintToString(row.bytes));
        const ExactBlock block(row.bytes);
        const std::string_view bytes(block.Start(), block.Size());
        std::u16string text;
        EXPECT_EQ(ConvertUtf8(bytes, text), row.wellFormed);
        if (row.wellFormed) {
            EXPECT_EQ(text, row.lossy);
        }
        EXPECT_EQ(ConvertUtf8Lossy(bytes), row.lossy);
    }
}

TEST(Utf8, RepairGivesWhatTheLossyConversionGives)
{
    for (const Utf8Case& row : kUtf8Cases) {
        SCOPED_TRACE(testing::PrintToString(row.bytes));
        const ExactBlock block(row.bytes);
        std::string repaired = "untouched";
        EXPECT_EQ(RepairUtf8({block.Start(), block.Size()}, repaired), !row.wellFormed);
        if (row.wellFormed) {
            EXPECT_EQ(repaired, "untouched");
        } else {
            std::u16string text;
            EXPECT_TRUE(ConvertUtf8(repaired, text));
            EXPECT_EQ(text, row.lossy);
        }
    }
}

TEST(Utf8, BrokenByteIsFoundAtEveryPlace)
{
    for (std::size_t place = 0; place < 40; ++place) {
        std::string bytes(40, 'x');
        bytes[place] = '\xFF';
        std::u16string text;
        EXPECT_FALSE(ConvertUtf8(bytes, text)) << place;
        std::u16string want(40, u'x');
        want[place] = 0xFFFD;
        EXPECT_EQ(ConvertUtf8Lossy(bytes), want) << place;
    }
}

struct Utf16Case {
    std::u16string text;
    bool paired;
    std::string bytes;
};

const Utf16Case kUtf16Cases[] = {
    {u"", true, ""},
    {u"a\0b"s, true, "a\0b"s},
    {u"\u007F\u0080\u07FF\u0800\uFFFF", true, "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF"},
    {u"\U00010000\U0010FFFF", true, "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
    {{u'a', 0xD83D}, false, ""},
    {{0xD83D, u'a'}, false, ""},
    {{0xDE00, u'a'}, false, ""},
    {{0xD83D, 0xD83D, 0xDE00}, false, ""},
};

TEST(Utf8, FromUtf16)
{
    for (const Utf16Case& row : kUtf16Cases) {
        SCOPED_TRACE(testing::PrintToString(row.text));
        std::string bytes;
        EXPECT_EQ(ConvertUtf16(row.text, bytes), row.paired);
        if (row.paired) {
            EXPECT_EQ(bytes, row.bytes);
        }
    }
}

}  // namespace
}  // namespace morvish_private
