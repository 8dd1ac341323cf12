#include "framework/kivmetadataui/src/EditedText.h"

#include "framework/kivmetadataui/tests/Samples.h"

#include <gtest/gtest.h>

namespace kivmetadataui {
namespace {

TEST(EditedText, CleansLines)
{
    EXPECT_EQ(CleanText(u"a\r\nb\rc\nd\u2028e", Lines::kMany), u"a\nb\nc\nd\ne");
    EXPECT_EQ(CleanText(u"a\r\nb\tc", Lines::kOne), u"a b c");
    EXPECT_EQ(CleanText(u"a\tb", Lines::kMany), u"a\tb");
    // What XML cannot hold.
    EXPECT_EQ(CleanText(kivcore::UStringView(u"a\0b\x01\x7F\uFFFE", 6), Lines::kMany), u"ab");
}

TEST(EditedText, LineEndsAloneAreNoEdit)
{
    EXPECT_EQ(EditedText(u"a\r\nb", u"a\nb", Lines::kMany), u"a\r\nb");
    EXPECT_EQ(EditedText(u"a\nb", u"a b", Lines::kOne), u"a\nb");
    EXPECT_EQ(EditedText(u"a\r\nb", u"a\nc", Lines::kMany), u"a\nc");
}

TEST(EditedText, InsertsWhereTheOriginSays)
{
    FieldItems items{{{}, u"a", 1}, {{}, u"c", 3}, {{}, u"new", 0}};
    InsertByOrigin(items, {{}, u"b", 2});
    EXPECT_EQ(samples::Print(items), "a|b|c|new");
    InsertByOrigin(items, {{}, u"d", 4});
    EXPECT_EQ(samples::Print(items), "a|b|c|d|new");
    InsertByOrigin(items, {{}, u"e", 0});
    EXPECT_EQ(samples::Print(items), "a|b|c|d|new|e");
}

}  // namespace
}  // namespace kivmetadataui
