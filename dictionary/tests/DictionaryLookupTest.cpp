#include "dictionary/Dictionary.h"
#include "dictionary/DictionaryException.h"
#include "dictionary/KeyEnd.h"
#include "dictionary/tests/TestSupport.h"

#include <algorithm>
#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace morvish {
namespace {

using dictionary_test::LoadText;
using dictionary_test::Text;

constexpr Dictionary::Format kFormats[] = {Dictionary::Format::kText, Dictionary::Format::kBinary};

struct RawResult {
    bool found;
    std::u16string text;
    bool operator==(const RawResult&) const = default;
};

RawResult Raw(const Dictionary& dictionary, const char* key)
{
    const char16_t* units = u"stale";
    std::size_t length = 5;
    const bool found = dictionary.RawLookup(key, units, length);
    EXPECT_EQ(found, units != nullptr);
    EXPECT_TRUE(found || length == 0);
    return {found, found ? std::u16string(units, length) : std::u16string()};
}

class FallbackGuard {
public:
    explicit FallbackGuard(Dictionary* dictionary) { Dictionary::SetFallback(dictionary); }
    ~FallbackGuard() { Dictionary::SetFallback(nullptr); }
};

struct LookupCase {
    const char* key;
    std::u16string want;
    bool raw;  // found by the raw lookup
};

// Against "/A=stored", "/Empty=", "=of the empty key".
const LookupCase kLookupCases[] = {
    {"$$$/A", u"stored", true},
    {"$$$/A=default", u"stored", true},
    {"/A", u"stored", true},
    {"/A=default", u"stored", true},
    {"$$$/Missing=Default", u"Default", false},
    {"/Missing=Default", u"Default", false},
    {"$$$/Missing", u"", false},
    {"$$$/Missing=", u"", false},
    // A stored empty text wins over the default.
    {"$$$/Empty=default", u"", true},
    // The default goes through the value passes, the stored text did when it was loaded.
    {"$$$/Missing=a\\n^Q#{copy}#{mswindows}W", u"W", false},
    {"$$$/Missing=x^Qy\\tz#{U+20AC}", u"x\"y\tz\u20AC", false},
    {"$$$/Missing=#{comment}only", u"", false},
    {"$$$/Missing=a=b", u"a=b", false},
    // Too few dollars: not even the default.
    {"$$/A=x", u"", false},
    {"$/A=x", u"", false},
    {"$", u"", false},
    {"$$", u"", false},
    // The empty key is one.
    {"$$$", u"of the empty key", true},
    {"=x", u"of the empty key", true},
    {"$$$=x", u"of the empty key", true},
    // But no key at all is none.
    {"", u"", false},
    {nullptr, u"", false},
    // Case and the whole length count.
    {"$$$/a=lower", u"lower", false},
    {"$$$/A/=longer", u"longer", false},
    {"$$$/=shorter", u"shorter", false},
};

TEST(DictionaryLookup, Cases)
{
    for (const auto format : kFormats) {
        Dictionary dictionary(format);
        LoadText(dictionary, "/A=stored\n/Empty=\n=of the empty key\n");
        for (const LookupCase& row : kLookupCases) {
            SCOPED_TRACE(testing::PrintToString(row.key));
            EXPECT_EQ(Text(dictionary, row.key), row.want);
            const RawResult want = {row.raw, row.raw ? row.want : std::u16string()};
            EXPECT_EQ(Raw(dictionary, row.key), want);
        }
    }
}

TEST(DictionaryLookup, KeyEndsAtItsFirstNul)
{
    Dictionary dictionary;
    LoadText(dictionary, "/A=stored\n");
    EXPECT_EQ(Text(dictionary, "$$$/A\0=x"), u"stored");
    EXPECT_EQ(Text(dictionary, "$$$/B=one\0two"), u"one");
}

// At every place in a block of exactly its size.
TEST(DictionaryLookup, KeyEndsAtItsFirstEqualsSignOrNul)
{
    for (std::size_t length = 0; length < 70; ++length) {
        const std::string plain(length, 'k');
        const std::string withDefault = plain + "=d=e";
        for (const std::string& text : {plain, withDefault}) {
            const auto block = std::make_unique<char[]>(text.size() + 1);
            std::copy(text.begin(), text.end(), block.get());
            EXPECT_EQ(morvish_private::FindKeyEnd(block.get()), block.get() + length);
        }
    }
}

TEST(DictionaryLookup, EmptyDictionaryGivesTheDefault)
{
    const Dictionary dictionary;
    EXPECT_EQ(Text(dictionary, "$$$/A=Default"), u"Default");
}

TEST(DictionaryLookup, InvalidDictionaryAnswers)
{
    Dictionary dictionary;
    LoadText(dictionary, "$bad\n/A=stored\n");
    EXPECT_FALSE(dictionary.Valid());
    EXPECT_EQ(Text(dictionary, "$$$/A"), u"stored");
}

TEST(DictionaryLookup, DefaultsAreWidenedWithSign)
{
    const Dictionary dictionary;
    const ConversionContext none{kSelectorNone};
    for (const ConversionContext* context : {static_cast<const ConversionContext*>(nullptr), &none})
        EXPECT_EQ(Text(dictionary, "$$$/A=\x7F\x80\xE9\xFF", context), u"\u007F\uFF80\uFFE9\uFFFF");
}

TEST(DictionaryLookup, DefaultsAreConvertedWithAContext)
{
    const Dictionary dictionary;
    const ConversionContext utf8{kSelectorUtf8};
    const ConversionContext ansi{2};
    EXPECT_EQ(Text(dictionary,
                   "$$$/A=Gr\xC3\xB6\xC3\x9F"
                   "e \xF0\x9F\x98\x80",
                   &utf8),
              u"Gr\u00F6\u00DFe \U0001F600");
    EXPECT_EQ(Text(dictionary, "$$$/A=\x80\x93\xE9", &ansi), u"\u20AC\u201C\u00E9");
    // The value passes follow the conversion.
    EXPECT_EQ(Text(dictionary, "$$$/A=\xC3\xA9^C\\n#{copyyear}", &utf8), u"\u00E9\u00A9\n2026");
    // Broken UTF-8 is replaced part by part.
    EXPECT_EQ(Text(dictionary,
                   "$$$/A=a\xE2\x82"
                   "b\xC0\xAF",
                   &utf8),
              u"a\uFFFDb\uFFFD\uFFFD");
    // The context concerns the default only.
    EXPECT_EQ(Text(dictionary, "$$$/A", &utf8), u"");
}

TEST(DictionaryLookup, FallbackAnswersWhatIsMissing)
{
    for (const auto format : kFormats) {
        for (const auto fallbackFormat : kFormats) {
            Dictionary own(format);
            LoadText(own, "/Own=own\n/Both=own\n");
            Dictionary fallback(fallbackFormat);
            LoadText(fallback, "/Both=fallback\n/Other=fallback\n/Empty=\n");
            const FallbackGuard guard(&fallback);
            EXPECT_EQ(Dictionary::Fallback(), &fallback);
            EXPECT_EQ(Text(own, "$$$/Own"), u"own");
            EXPECT_EQ(Text(own, "$$$/Both"), u"own");
            EXPECT_EQ(Text(own, "$$$/Other=default"), u"fallback");
            EXPECT_EQ(Text(own, "$$$/Empty=default"), u"");
            EXPECT_EQ(Text(own, "$$$/None=default"), u"default");
            EXPECT_EQ(Text(fallback, "$$$/Own=default"), u"default");
            EXPECT_EQ(Raw(own, "$$$/Other"), (RawResult{true, u"fallback"}));
            EXPECT_EQ(Raw(own, "$$$/Empty"), (RawResult{true, u""}));
            EXPECT_EQ(Raw(own, "$$$/None=default"), (RawResult{false, u""}));
        }
    }
}

TEST(DictionaryLookup, DestroyedFallbackIsSkipped)
{
    const Dictionary own;
    auto fallback = std::make_unique<Dictionary>();
    LoadText(*fallback, "/A=fallback\n");
    Dictionary::SetFallback(fallback.get());
    EXPECT_EQ(Text(own, "$$$/A=default"), u"fallback");
    {
        const Dictionary unrelated;
    }
    EXPECT_EQ(Text(own, "$$$/A=default"), u"fallback");
    fallback.reset();
    EXPECT_EQ(Dictionary::Fallback(), nullptr);
    EXPECT_EQ(Text(own, "$$$/A=default"), u"default");
}

TEST(DictionaryLookup, StringsOutliveTheirDictionary)
{
    for (const auto format : kFormats) {
        auto dictionary = std::make_unique<Dictionary>(format);
        LoadText(*dictionary, "/A=first\n");
        const DictionaryString first = dictionary->Lookup("$$$/A");
        LoadText(*dictionary, "/A=second\n");
        const DictionaryString second = dictionary->Lookup("$$$/A");
        EXPECT_NE(first, second);
        EXPECT_EQ(second, dictionary->Lookup("$$$/A"));
        dictionary.reset();
        EXPECT_EQ(first.View(), u"first");
        EXPECT_EQ(second.View(), u"second");
    }
}

TEST(DictionaryLookup, ByIndex)
{
    Dictionary dictionary(Dictionary::Format::kBinary);
    LoadText(dictionary, "/A=a\n/B=b\n/A=again\n/C=\n");
    EXPECT_EQ(dictionary.LookupIndex(0).View(), u"again");  // it keeps its number
    EXPECT_EQ(dictionary.LookupIndex(1).View(), u"b");
    EXPECT_EQ(dictionary.LookupIndex(2).View(), u"");
    EXPECT_EQ(dictionary.LookupIndex(3).View(), u"");
    EXPECT_EQ(dictionary.LookupIndex(0xFFFFFFFF).View(), u"");

    const char16_t* units = nullptr;
    std::size_t length = 0;
    EXPECT_TRUE(dictionary.RawLookupIndex(1, units, length));
    EXPECT_EQ(std::u16string(units, length), u"b");
    EXPECT_TRUE(dictionary.RawLookupIndex(2, units, length));
    EXPECT_EQ(length, 0u);
    EXPECT_FALSE(dictionary.RawLookupIndex(3, units, length));
    EXPECT_EQ(units, nullptr);
    EXPECT_FALSE(dictionary.RawLookupIndex(0xFFFFFFFF, units, length));
}

TEST(DictionaryLookup, ByIndexWithFallback)
{
    Dictionary binary(Dictionary::Format::kBinary);
    LoadText(binary, "/A=own\n");
    Dictionary text;
    LoadText(text, "/A=text\n/B=text\n");
    Dictionary larger(Dictionary::Format::kBinary);
    LoadText(larger, "/X=x\n/Y=y\n");
    const char16_t* units = nullptr;
    std::size_t length = 0;
    {
        const FallbackGuard guard(&larger);
        EXPECT_EQ(binary.LookupIndex(0).View(), u"own");
        EXPECT_EQ(binary.LookupIndex(1).View(), u"y");
        EXPECT_EQ(binary.LookupIndex(2).View(), u"");
        EXPECT_TRUE(binary.RawLookupIndex(1, units, length));
        EXPECT_EQ(std::u16string(units, length), u"y");
        // A text dictionary has no numbers, its fallback's do not count for it.
        EXPECT_EQ(text.LookupIndex(0).View(), u"");
        EXPECT_FALSE(text.RawLookupIndex(0, units, length));
    }
    const FallbackGuard guard(&text);
    EXPECT_EQ(binary.LookupIndex(1).View(), u"");
    EXPECT_FALSE(binary.RawLookupIndex(1, units, length));
}

}  // namespace
}  // namespace morvish
