#include "framework/kivmetadataui/src/Texts.h"

#include <gtest/gtest.h>

namespace kivmetadataui {
namespace {

TEST(Texts, PutsValuesIn)
{
    EXPECT_EQ(DialogText("$$$/Kiv/Test=plain"), u"plain");
    EXPECT_EQ(DialogText("$$$/Kiv/Test=^0 of ^1", {u"a", u"b"}), u"a of b");
    EXPECT_EQ(DialogText("$$$/Kiv/Test=^1 before ^0", {u"a", u"b"}), u"b before a");
    // A value is not looked at again, and what has no value stays.
    EXPECT_EQ(DialogText("$$$/Kiv/Test=^0^1", {u"^1", u"x"}), u"^1x");
    EXPECT_EQ(DialogText("$$$/Kiv/Test=^0 ^1 ^", {u"a"}), u"a ^1 ^");
}

TEST(Texts, FoldsCase)
{
    EXPECT_EQ(FoldCase(u"ABC xyz 123"), u"abc xyz 123");
    EXPECT_EQ(FoldCase(u"ÄÖÜ × Þ"), u"äöü × þ");
    EXPECT_EQ(FoldCase(u"ŁÓDŹ Ÿ"), u"łódź ÿ");
    EXPECT_EQ(FoldCase(u"ΑΩ ЁЖ"), u"αω ёж");
    EXPECT_EQ(FoldCase(u"日本"), u"日本");
}

TEST(Texts, SplitsWords)
{
    EXPECT_EQ(Words(u"  two\twords\u3000三 "),
              (std::vector<kivcore::UString>{u"two", u"words", u"三"}));
    EXPECT_TRUE(Words(u" \n ").empty());
    EXPECT_EQ(Trimmed(u"\u00A0 a b \n"), u"a b");
}

}  // namespace
}  // namespace kivmetadataui
