#include "framework/kivmetadataui/src/LanguageNames.h"

#include <algorithm>

#include "framework/kivmetadataui/src/Texts.h"

#include <gtest/gtest.h>

namespace kivmetadataui {
namespace {

TEST(LanguageNames, KnowsTags)
{
    for (const char* const tag :
         {"de", "pt-BR", "x-default", "zh-Hant-TW", "de-1996", "i-klingon"}) {
        EXPECT_TRUE(IsLanguageTag(tag)) << tag;
    }
    for (const char* const tag :
         {"", "-", "de-", "-de", "de--DE", "1de", "de_DE", "deutschland", "d\xC3\xA9", "de DE"}) {
        EXPECT_FALSE(IsLanguageTag(tag)) << tag;
    }
}

TEST(LanguageNames, TidiesTags)
{
    EXPECT_EQ(TidyLanguageTag("DE"), "de");
    EXPECT_EQ(TidyLanguageTag("pt-br"), "pt-BR");
    EXPECT_EQ(TidyLanguageTag("ZH-hant-tw"), "zh-Hant-TW");
    EXPECT_EQ(TidyLanguageTag("de-1996"), "de-1996");
    EXPECT_EQ(TidyLanguageTag("X-Default"), "x-default");
    EXPECT_EQ(TidyLanguageTag("en-X-us"), "en-x-us");
}

TEST(LanguageNames, Labels)
{
    EXPECT_EQ(LanguageLabel("de"), u"Deutsch");
    EXPECT_EQ(LanguageLabel("PT-br"), u"Português (br)");
    EXPECT_EQ(LanguageLabel("x-default"), u"Default");
    EXPECT_EQ(LanguageLabel("qya"), u"qya");
}

TEST(LanguageNames, OffersSortedTags)
{
    const std::vector<std::string> tags = CommonLanguages();
    EXPECT_TRUE(std::is_sorted(tags.begin(), tags.end()));
    EXPECT_TRUE(std::all_of(tags.begin(), tags.end(), IsLanguageTag));
}

}  // namespace
}  // namespace kivmetadataui
