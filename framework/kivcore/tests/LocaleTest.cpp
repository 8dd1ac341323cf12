#include <kivcore/Locale.h>

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include <kivcore/StringConversion.h>

namespace kivcore {
namespace {

UString Wide(std::string_view text)
{
    return string::UTF8to16(text);
}

struct NormalizeCase {
    std::string_view tag;
    std::string_view want;
};

constexpr NormalizeCase kNormalizeCases[] = {
    {"de", "de_DE"},
    {"de-DE", "de_DE"},
    {"de_DE", "de_DE"},
    {"de_DE.UTF-8", "de_DE"},
    {"de_DE@euro", "de_DE"},
    {"de_DE.ISO-8859-15@euro", "de_DE"},
    {"DE-de", "de_DE"},
    {"de_AT", "de_AT"},
    {"en", "en_US"},
    {"en_GB", "en_GB"},
    {"es-419", "es_419"},
    {"ja", "ja_JP"},
    {"pt", "pt_BR"},
    {"pt-PT", "pt_PT"},
    {"fil", "fil_PH"},
    {"eo", "eo_001"},
    // Scripts decide the likely region, and are not written.
    {"zh", "zh_CN"},
    {"zh-Hans", "zh_CN"},
    {"zh-Hant", "zh_TW"},
    {"zh-Hant-TW", "zh_TW"},
    {"zh-Hant-HK", "zh_HK"},
    {"zh_hANT_hk", "zh_HK"},
    {"sr-Latn", "sr_RS"},
    {"pa-Arab", "pa_PK"},
    {"uz-Arab", "uz_AF"},
    {"az-Cyrl", "az_AZ"},
    // Extended languages, variants, extensions and private parts.
    {"zh-yue", "yue_HK"},
    {"zh-cmn-Hant", "zh_TW"},
    {"de-CH-1901", "de_CH"},
    {"sl-rozaj-biske", "sl_SI"},
    {"de-u-co-phonebk", "de_DE"},
    {"de-DE-x-private", "de_DE"},
    {"de-AT-u-hc-h23-x-a-b", "de_AT"},
    {"de-AT-a-bc-u-co-phonebk", "de_AT"},
    // Older names.
    {"iw", "he_IL"},
    {"in_ID", "id_ID"},
    {"sh", "sr_RS"},
    // Languages without a likely region stay bare.
    {"tlh", "tlh"},
    {"tlh-DE", "tlh_DE"},
    // No language tags.
    {"", "en_US"},
    {"C", "en_US"},
    {"C.UTF-8", "en_US"},
    {"POSIX", "en_US"},
    {"und", "en_US"},
    {"i-klingon", "en_US"},
    {"x-private", "en_US"},
    {"english", "en_US"},
    {"not a language", "en_US"},
    {"d", "en_US"},
    {"d1", "en_US"},
    {"12", "en_US"},
    {"-", "en_US"},
    {"-de", "en_US"},
    {"de-", "en_US"},
    {"de--DE", "en_US"},
    {"de_DE_", "en_US"},
    {"de-DE-u", "en_US"},
    {"de-DE-u-x", "en_US"},
    {"de-x", "en_US"},
    {"de-DE-u-t-ab", "en_US"},
    {"de-DE-Latn", "en_US"},
    {"de-toolongapart", "en_US"},
    {"de DE", "en_US"},
    {" de", "en_US"},
    {"de_DE/../..", "en_US"},
    {"../de", "en_US"},
    {"d\xC3\xA9", "en_US"},
    {"de-\xC3\x84\xC3\x96", "en_US"},
};

TEST(Locale, Normalize)
{
    for (const NormalizeCase& row : kNormalizeCases) {
        SCOPED_TRACE(row.tag);
        EXPECT_EQ(string::UTF16to8(Locale::Normalize(Wide(row.tag))), row.want);
    }
    EXPECT_EQ(Locale::Normalize(UString(1000000, u'-')), u"en_US");
}

constexpr NormalizeCase kChainCases[] = {
    {"de_AT", "de_AT de_DE de en_US"},
    {"de", "de_DE de en_US"},
    {"en_US", "en_US en"},
    {"en_GB", "en_GB en_US en"},
    {"rubbish!", "en_US en"},
    {"tlh", "tlh en_US"},
    {"tlh_DE", "tlh_DE tlh en_US"},
    // Nearer than the likely region.
    {"es_MX", "es_MX es_419 es_ES es en_US"},
    {"pt_AO", "pt_AO pt_PT pt_BR pt en_US"},
    {"pt_PT", "pt_PT pt_BR pt en_US"},
    // Traditional Chinese does not fall back to the region of simplified Chinese.
    {"zh_MO", "zh_MO zh_HK zh_TW zh en_US"},
    {"zh_SG", "zh_SG zh_CN zh en_US"},
};

TEST(Locale, FallbackChain)
{
    for (const NormalizeCase& row : kChainCases) {
        SCOPED_TRACE(row.tag);
        std::string chain;
        for (const UString& name : Locale::FallbackChain(Wide(row.tag))) {
            chain += (chain.empty() ? "" : " ") + string::UTF16to8(name);
        }
        EXPECT_EQ(chain, row.want);
    }
}

struct DirectionCase {
    std::string_view tag;
    bool rightToLeft;
};

constexpr DirectionCase kDirectionCases[] = {
    {"ar", true},     {"ar_EG", true},    {"he_IL", true},  {"iw", true},      {"fa-IR", true},
    {"ur_PK", true},  {"yi", true},       {"ckb", true},    {"dv", true},      {"ug_CN", true},
    {"ug_KZ", false}, {"pa_PK", true},    {"pa_IN", false}, {"pa-Arab", true}, {"uz_AF", true},
    {"uz", false},    {"sd", true},       {"sd_IN", false}, {"az", false},     {"az-Arab", true},
    {"az_IR", true},  {"ks-Deva", false}, {"ku", false},    {"ku_IQ", true},   {"ar-Latn", false},
    {"en_US", false}, {"de", false},      {"zh_TW", false}, {"", false},       {"tlh", false},
};

TEST(Locale, RightToLeft)
{
    for (const DirectionCase& row : kDirectionCases) {
        SCOPED_TRACE(row.tag);
        EXPECT_EQ(Locale::IsRightToLeft(Wide(row.tag)), row.rightToLeft);
    }
}

TEST(Locale, TheFirstInitializeCountsUntilReset)
{
    ASSERT_FALSE(Locale::IsInitialized());
    EXPECT_EQ(Locale::ApplicationLanguage(), u"en_US");

    const filesupport::Dir folder(u"/dictionaries");
    Locale::Initialize(u"de", folder);
    EXPECT_TRUE(Locale::IsInitialized());
    EXPECT_EQ(Locale::ApplicationLanguage(), u"de_DE");
    EXPECT_EQ(Locale::DictionaryDir().FullPath(), folder.FullPath());

    Locale::Initialize(u"fr", filesupport::Dir());
    EXPECT_EQ(Locale::ApplicationLanguage(), u"de_DE");
    EXPECT_EQ(Locale::DictionaryDir().FullPath(), folder.FullPath());

    Locale::Reset();
    Locale::Reset();
    EXPECT_FALSE(Locale::IsInitialized());
    EXPECT_EQ(Locale::ApplicationLanguage(), u"en_US");
    EXPECT_TRUE(Locale::DictionaryDir().IsEmpty());
}

}  // namespace
}  // namespace kivcore
