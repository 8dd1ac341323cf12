#include "localizer/DefaultLocalizer.h"

#include "dictionary/Dictionary.h"
#include "dictionary/DictionaryException.h"
#include "dictionary/StringConverters.h"
#include "dictionary/Utf8.h"

#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace kivmetadataapi {
namespace {

using kivcore::UString;
using kivcore::config::Localizer;
using namespace std::string_literals;

class DefaultLocalizerTest : public testing::Test {
protected:
    void SetUp() override
    {
        folder_ = std::filesystem::path(testing::TempDir()) /
                  ("kiv_localizer_" +
                   std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
        std::filesystem::create_directories(folder_);
    }
    void TearDown() override
    {
        std::filesystem::remove_all(folder_);
        morvish::SetConverterHooks({});
        Localizer::Set(nullptr, nullptr);
    }

    UString Path(const char* name) const
    {
        const std::u16string path = morvish_private::ConvertUtf8Lossy((folder_ / name).string());
        return UString(path.data(), path.size());
    }

    UString Write(const char* name, std::string_view bytes) const
    {
        std::ofstream(folder_ / name, std::ios::binary)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return Path(name);
    }

    std::u16string Localize(const std::string& key)
    {
        const UString text = localizer_.Localize(key);
        return {text.data(), text.size()};
    }

    std::filesystem::path folder_;
    DefaultLocalizer localizer_;
};

struct KeyCase {
    std::string key;
    std::u16string want;
};

const KeyCase kWithoutDictionary[] = {
    {"$$$/A/B=Hello", u"Hello"},
    {"($$$/A/B=Hello)", u"Hello"},
    {"$$$/A/B", u"$$$/A/B"},
    {"($$$/A/B)", u"($$$/A/B)"},
    {"($$$/A/B=Hi", u"($$$/A/B=Hi"},
    {"$$$/A/B=Hello)", u"Hello)"},
    {"$$$/A=x=y", u"x=y"},
    {"($$$/A=x=(y))", u"x=(y)"},
    {"$$$/A=", u""},
    {"($$$/A=)", u""},
    {"$$$/=x", u"x"},
    {"($$$/)", u"($$$/)"},
    {"($$$/", u"($$$/"},
    {"$$$A=x", u"$$$A=x"},
    {"$$$", u"$$$"},
    {"Plain text", u"Plain text"},
    {"Plain=text", u"Plain=text"},
    {"(Plain)", u"(Plain)"},
    {"", u""},
    // As it stands: no escapes, no markers.
    {"$$$/A=a\\n^Q#{copy}", u"a\\n^Q#{copy}"},
    // UTF-8, also broken.
    {"$$$/A=Gr\xC3\xB6\xC3\x9F"
     "e \xF0\x9F\x98\x80",
     u"Gr\u00F6\u00DFe \U0001F600"},
    {"$$$/A=a\xE2\x82z", u"a\uFFFDz"},
    {"caf\xC3\xA9 \xFF", u"caf\u00E9 \uFFFD"},
    {"$$$/A=a\0b"s, u"a\0b"s},
};

TEST_F(DefaultLocalizerTest, WithoutDictionary)
{
    for (const KeyCase& row : kWithoutDictionary) {
        SCOPED_TRACE(testing::PrintToString(row.key));
        EXPECT_EQ(Localize(row.key), row.want);
    }
}

constexpr char kDictionary[] =
    "\"$$$/A/B=Hallo ^C#{endl}Welt\"\n"
    "\"$$$/Empty=\"\n"
    "\"$$$/Umlaut=\xC3\xB6\"\n"
    "Plain text=Klartext\n"
    "($$$/Odd=odd\n";

const KeyCase kWithDictionary[] = {
    {"$$$/A/B=Hello", u"Hallo \u00A9\r\nWelt"},
    {"$$$/A/B", u"Hallo \u00A9\r\nWelt"},
    {"($$$/A/B=Hello)", u"Hallo \u00A9\r\nWelt"},
    {"$$$/Umlaut", u"\u00F6"},
    // The wrapped key without default asks for "/A/B" too.
    {"($$$/A/B)", u"Hallo \u00A9\r\nWelt"},
    // The key exactly as received goes first.
    {"($$$/Odd=x)", u"odd"},
    {"Plain text", u"Klartext"},
    {"Plain text=x", u"Klartext"},
    {"Other text", u"Other text"},
    {"(Other)", u"(Other)"},
    // An empty text that is stored is an answer to the exact look-up.
    {"$$$/Empty=default", u""},
    // To the one without parentheses it is none.
    {"($$$/Empty=default)", u"($$$/Empty=default)"},
    // The default, with escapes and markers.
    {"$$$/Missing=Say ^Qhi^Q\\n#{copyyear}", u"Say \"hi\"\n2026"},
    {"($$$/Missing=Hi)", u"Hi"},
    {"$$$/Missing=\xC3\xA9\xE2\x82z", u"\u00E9\uFFFDz"},
    // Nothing found and no default: the whole key.
    {"$$$/Missing", u"$$$/Missing"},
    {"($$$/Missing)", u"($$$/Missing)"},
    {"$$$/Missing=", u"$$$/Missing="},
    {"$$$/Missing=#{comment}only", u"$$$/Missing=#{comment}only"},
    {"($$$/A/B=open", u"($$$/A/B=open"},
    {"$$/A/B=x", u"$$/A/B=x"},
    {"", u""},
    // A look-up ends at the first NUL.
    {"$$$/A/B\0=x"s, u"Hallo \u00A9\r\nWelt"},
};

TEST_F(DefaultLocalizerTest, WithDictionary)
{
    localizer_.LoadDictionary(Write("kiv_de_DE.dict", kDictionary));
    for (const KeyCase& row : kWithDictionary) {
        SCOPED_TRACE(testing::PrintToString(row.key));
        EXPECT_EQ(Localize(row.key), row.want);
    }
}

TEST_F(DefaultLocalizerTest, MissingFilesAreSkipped)
{
    localizer_.LoadDictionary(Path("missing.dict"));
    localizer_.LoadDictionary(Path(""));  // the folder
    localizer_.LoadDictionary(UString());
    const char16_t lone[] = {0xD800};
    localizer_.LoadDictionary(UString(lone, 1));
    EXPECT_EQ(Localize("$$$/A=x"), u"x");
}

TEST_F(DefaultLocalizerTest, FilesAddUp)
{
    localizer_.LoadDictionary(Write("first.dict", "/A=a\n/B=b\n"));
    localizer_.LoadDictionary(Write("second.dict", "/B=new b\n/C=c\n"));
    EXPECT_EQ(Localize("$$$/A"), u"a");
    EXPECT_EQ(Localize("$$$/B"), u"new b");
    EXPECT_EQ(Localize("$$$/C"), u"c");
}

TEST_F(DefaultLocalizerTest, FileWithoutEntriesCountsAsNone)
{
    localizer_.LoadDictionary(Write("broken.dict", "$bad\n\xFF\n"));
    EXPECT_EQ(Localize("$$$/A=^Q"), u"^Q");
    localizer_.LoadDictionary(Write("good.dict", "/B=b\n"));
    EXPECT_EQ(Localize("$$$/A=^Q"), u"\"");
}

TEST_F(DefaultLocalizerTest, FallbackDictionaryIsAsked)
{
    localizer_.LoadDictionary(Write("a.dict", "/A=a\n"));
    morvish::Dictionary fallback;
    fallback.ParseLine(u"/F=fallback");
    morvish::Dictionary::SetFallback(&fallback);
    EXPECT_EQ(Localize("$$$/F=x"), u"fallback");
}

std::uint32_t FailingSize(const morvish::ConversionContext&, const char*, std::size_t, std::size_t*)
{
    return morvish::kCodeHuh;
}

TEST_F(DefaultLocalizerTest, NoExceptionLeaves)
{
    localizer_.LoadDictionary(Write("a.dict", "/A=a\n"));
    morvish::ConverterHooks hooks;
    hooks.multibyteToWideSize = FailingSize;
    morvish::SetConverterHooks(hooks);
    EXPECT_EQ(Localize("$$$/Missing=x"), u"$$$/Missing=x");
    EXPECT_EQ(Localize("$$$/A=x"), u"a");
}

TEST_F(DefaultLocalizerTest, ServesTheFramework)
{
    localizer_.LoadDictionary(Write("a.dict", "/A=a\n"));
    Localizer::Set(&localizer_, nullptr);
    EXPECT_EQ(Localizer::Get(), &localizer_);
    EXPECT_EQ(kivcore::config::Localize("$$$/A=x"), UString(u"a"));
}

TEST_F(DefaultLocalizerTest, UnregistersItselfOnly)
{
    auto mine = std::make_unique<DefaultLocalizer>();
    Localizer::Set(mine.get(), nullptr);
    mine.reset();
    EXPECT_FALSE(Localizer::Initialized());

    auto other = std::make_unique<DefaultLocalizer>();
    Localizer::Set(&localizer_, nullptr);
    other.reset();
    ASSERT_TRUE(Localizer::Initialized());
    EXPECT_EQ(Localizer::Get(), &localizer_);
}

TEST_F(DefaultLocalizerTest, BinaryDictionaries)
{
    morvish::Dictionary dictionary;
    dictionary.ParseLine(u"$$$/A=Bild");
    dictionary.ParseLine(u"$$$/Empty=");
    std::ostringstream image;
    dictionary.SerializeLittleEndian(image, /*asImage=*/true, /*storeFlag=*/false);
    localizer_.LoadDictionary(Write("a.dict", image.str()));
    EXPECT_EQ(Localize("$$$/A=Picture"), u"Bild");
    EXPECT_EQ(Localize("($$$/A=Picture)"), u"Bild");
    EXPECT_EQ(Localize("$$$/Empty=Picture"), u"");
    EXPECT_EQ(Localize("$$$/B=Caf\xC3\xA9"), u"Caf\u00E9");
    // Lines go into the image's store.
    localizer_.LoadDictionary(Write("b.dict", "$$$/B=Text\n"));
    EXPECT_EQ(Localize("$$$/B=Picture"), u"Text");
    EXPECT_EQ(Localize("$$$/A=Picture"), u"Bild");
}

}  // namespace
}  // namespace kivmetadataapi
