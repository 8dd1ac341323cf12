#include "host/Listing.h"

#include <vector>

#include <gtest/gtest.h>

namespace kivhost {
namespace {

struct Utf8Case {
    std::vector<std::uint16_t> units;
    const char* want;
};

TEST(Listing, LabelsBecomeUtf8)
{
    const Utf8Case cases[] = {
        {{}, ""},
        {{'A', 0x7F}, "A\x7F"},
        {{0x80, 0xE9, 0x7FF}, "\xC2\x80\xC3\xA9\xDF\xBF"},
        {{0x800, 0x5199, 0xFFFF}, "\xE0\xA0\x80\xE5\x86\x99\xEF\xBF\xBF"},
        {{0xD800, 0xDC00, 0xDBFF, 0xDFFF}, "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
        // Lone surrogates.
        {{0xD800}, "\xEF\xBF\xBD"},
        {{0xD83D, 'A', 0xDE00},
         "\xEF\xBF\xBD"
         "A\xEF\xBF\xBD"},
        {{0xD83D, 0xD83D, 0xDE00}, "\xEF\xBF\xBD\xF0\x9F\x98\x80"},
    };
    for (Utf8Case row : cases) {
        SCOPED_TRACE(row.want);
        row.units.push_back(0);
        EXPECT_EQ(ToUtf8(row.units.data()), row.want);
    }
}

TEST(Listing, JsonStrings)
{
    EXPECT_EQ(JsonString(""), R"("")");
    EXPECT_EQ(JsonString("a\"b\\c\n\r\t\x01\x1F"), R"("a\"b\\c\n\r\t\u0001\u001f")");
    EXPECT_EQ(JsonString("\xC3\xA9"), "\"\xC3\xA9\"");
}

}  // namespace
}  // namespace kivhost
