#include <kivcore/Localizer.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <kivcore/Dir.h>
#include <kivcore/Locale.h>
#include <kivcore/StringConversion.h>

#include "framework/kivcore/tests/VirtualSlot.h"

namespace kivcore::config {
namespace {

class EchoLocalizer : public Localizer {
public:
    UString Localize(const std::string& key) override { return string::UTF8to16("<" + key + ">"); }
    void LoadDictionary(const UString& path) override { loaded.push_back(path); }

    std::vector<UString> loaded;
};

TEST(Localizer, NoneIsRegisteredAtFirst)
{
    EXPECT_FALSE(Localizer::Initialized());
    EXPECT_THROW(Localizer::Get(), std::logic_error);
}

TEST(Localizer, TheDestructorTakesTheRegisteredOneOut)
{
    auto first = std::make_unique<EchoLocalizer>();
    auto second = std::make_unique<EchoLocalizer>();
    Localizer::Set(first.get(), nullptr);
    EXPECT_EQ(Localizer::Get(), first.get());
    Localizer::Set(second.get(), nullptr);
    first.reset();
    EXPECT_EQ(Localizer::Get(), second.get());
    second.reset();
    EXPECT_FALSE(Localizer::Initialized());
}

TEST(Localizer, NullTakesTheRegisteredOneOut)
{
    EchoLocalizer localizer;
    Localizer::Set(&localizer, nullptr);
    Localizer::Set(nullptr, nullptr);
    EXPECT_FALSE(Localizer::Initialized());
    const filesupport::Dir folder(u"/dictionaries");
    Localizer::Set(nullptr, &folder);
    EXPECT_FALSE(Localizer::Initialized());
}

TEST(Localizer, TheDictionaryOfTheLanguageIsLoadedFromAFolder)
{
    EchoLocalizer localizer;
    Localizer::Set(&localizer, nullptr);
    const filesupport::Dir none;
    Localizer::Set(&localizer, &none);
    EXPECT_TRUE(localizer.loaded.empty());

    const filesupport::Dir folder(u"/dictionaries");
    Locale::Initialize(u"de-AT", filesupport::Dir());
    Localizer::Set(&localizer, &folder);
    Locale::Reset();
    EXPECT_EQ(localizer.loaded, std::vector<UString>{(folder / u"kiv_de_AT.dict").FullPath()});
}

struct DefaultCase {
    std::string_view key;
    std::u16string_view want;
};

constexpr DefaultCase kDefaultCases[] = {
    {"$$$/A/B=Hello", u"Hello"},
    {"$$$/A/B=a=b", u"a=b"},
    {"$$$/A/B=", u""},
    {"$$$/A/B=Gr\xC3\xB6\xC3\x9F"
     "e",
     u"Gr\u00F6\u00DFe"},
    {"$$$/A/B=(x)", u"(x)"},
    {"$$$/A/B", u"$$$/A/B"},
    {"($$$/A/B=Hello)", u"Hello"},
    {"($$$/A/B=Hello (you))", u"Hello (you)"},
    {"($$$/A/B=)", u""},
    {"($$$/A/B)", u"($$$/A/B)"},
    // Without its closing parenthesis it is no wrapped key.
    {"($$$/A/B=Hi", u"($$$/A/B=Hi"},
    {"Plain text", u"Plain text"},
    {"a=b", u"a=b"},
    {"$$$A=b", u"$$$A=b"},
    {"", u""},
    {"(", u"("},
    {"()", u"()"},
    {"=", u"="},
};

TEST(Localizer, WithoutOneTheDefaultOfTheKeyCounts)
{
    ASSERT_FALSE(Localizer::Initialized());
    for (const DefaultCase& row : kDefaultCases) {
        SCOPED_TRACE(row.key);
        EXPECT_EQ(Localize(row.key), row.want);
    }
}

TEST(Localizer, TheRegisteredOneGetsTheKeyAsItIs)
{
    EchoLocalizer localizer;
    Localizer::Set(&localizer, nullptr);
    EXPECT_EQ(Localize("($$$/A/B=Hello)"), u"<($$$/A/B=Hello)>");
}

TEST(Localizer, SlotsStandInTheirOrder)
{
    EXPECT_EQ(testing_support::VirtualSlot(&Localizer::Localize), 1);
    EXPECT_EQ(testing_support::VirtualSlot(&Localizer::LoadDictionary), 2);
}

}  // namespace
}  // namespace kivcore::config
