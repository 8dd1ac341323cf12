#include <kivcore/PropList.h>

#include <cmath>
#include <limits>
#include <type_traits>

#include <gmock/gmock.h>

#include <kivcore/Xml.h>

#include "framework/kivcore/tests/TestFolder.h"

namespace kivcore::proplist {
namespace {

using filesupport::File;
using filesupport::FileError;
using kivcore::testing::TestFolder;
using kivcore::testing::TextOf;
using utils::LoadPropList;
using utils::ReadPropList;
using utils::SavePropList;
using utils::WritePropList;

// A text literal of bytes would silently become a bool.
static_assert(!std::is_constructible_v<PropValue, const char*>);
static_assert(std::is_constructible_v<PropValue, const char16_t*>);

PropList Sample()
{
    PropList inner;
    inner.Set("x", -12);
    inner.Set("empty", PropList());
    PropList list;
    list.Set("yes", true);
    list.Set("count", std::int64_t{42});
    list.Set("scale", 1.25);
    list.Set("title", u"Caf\u00e9 <&> \"quoted\"");
    list.Set("recent", PropValue::Array{u"first", 2, false, PropValue::Array{}, inner});
    list.Set("window", inner);
    return list;
}

constexpr std::string_view kSampleText =
    R"(<?xml version="1.0" encoding="UTF-8"?>
<proplist version="1">
  <int name="count">42</int>
  <array name="recent">
    <text>first</text>
    <int>2</int>
    <bool>false</bool>
    <array>
    </array>
    <list>
      <list name="empty">
      </list>
      <int name="x">-12</int>
    </list>
  </array>
  <real name="scale">1.25</real>
  <text name="title">Café &lt;&amp;&gt; &quot;quoted&quot;</text>
  <list name="window">
    <list name="empty">
    </list>
    <int name="x">-12</int>
  </list>
  <bool name="yes">true</bool>
</proplist>
)";

TEST(PropList, WrittenForm)
{
    EXPECT_EQ(WritePropList(Sample()), kSampleText);
    EXPECT_EQ(ReadPropList(kSampleText, "x"), Sample());
}

TEST(PropList, TypedAccess)
{
    const PropList list = Sample();
    EXPECT_TRUE(list.GetBool("yes", false));
    EXPECT_TRUE(list.GetBool("count", true));
    EXPECT_EQ(list.GetInt("count", 0), 42);
    EXPECT_EQ(list.GetInt("scale", 7), 7);
    EXPECT_EQ(list.GetNumber("scale", 0), 1.25);
    EXPECT_EQ(list.GetNumber("count", 0), 42.0);
    EXPECT_EQ(list.GetNumber("title", 3.5), 3.5);
    EXPECT_EQ(list.GetText("title", u""), u"Caf\u00e9 <&> \"quoted\"");
    EXPECT_EQ(list.GetText("missing", u"other"), u"other");
    EXPECT_EQ(list.GetList("window").GetInt("x", 0), -12);
    EXPECT_TRUE(list.GetList("count").IsEmpty());
}

TEST(PropList, SetFindRemove)
{
    PropList list;
    EXPECT_TRUE(list.IsEmpty());
    list.Set("a", 1);
    list.Set("a", u"x");
    EXPECT_EQ(list.Values().size(), 1U);
    EXPECT_EQ(list.GetText("a", u""), u"x");
    list.Remove("b");
    list.Remove("a");
    EXPECT_EQ(list.Find("a"), nullptr);
    list = Sample();
    list.Clear();
    EXPECT_TRUE(list.IsEmpty());
    // Names are UTF-8; what is not becomes it.
    list.Set("a\xFF", 1);
    EXPECT_NE(list.Find("a\xEF\xBF\xBD"), nullptr);
}

PropValue ThroughFile(const PropValue& value)
{
    PropList list;
    list.Set("v", value);
    const PropList read = ReadPropList(WritePropList(list), "x");
    return read.Find("v") ? *read.Find("v") : PropValue(u"lost");
}

TEST(PropList, NumbersComeBackExactly)
{
    using Int = std::numeric_limits<std::int64_t>;
    for (const std::int64_t number : {std::int64_t{0}, std::int64_t{-1}, Int::min(), Int::max()}) {
        EXPECT_EQ(ThroughFile(number), PropValue(number));
    }
    using Real = std::numeric_limits<double>;
    for (const double number :
         {0.0, 0.1, -1e300, 5.0, 1.0 / 3.0, Real::min(), Real::denorm_min(), Real::max(),
          Real::epsilon(), Real::infinity(), -Real::infinity()}) {
        EXPECT_EQ(ThroughFile(number), PropValue(number));
    }
    EXPECT_TRUE(std::signbit(std::get<double>(ThroughFile(-0.0).Get())));
    EXPECT_TRUE(std::isnan(std::get<double>(ThroughFile(Real::quiet_NaN()).Get())));
    EXPECT_TRUE(std::isnan(std::get<double>(ThroughFile(-Real::quiet_NaN()).Get())));
}

TEST(PropList, EveryUnitComesBack)
{
    // Each unit alone (half a surrogate pair among them), at the edges, doubled, and after a
    // backslash.
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        const auto character = static_cast<char16_t>(unit);
        const UString text = {character, u'a', character, character, u'\\', character};
        ASSERT_EQ(ThroughFile(text), PropValue(text)) << unit;
    }
    const UString pairs = u"\U0001F600\U0010FFFF \\u0041 \\\\ ";
    EXPECT_EQ(ThroughFile(pairs), PropValue(pairs));
    EXPECT_EQ(ThroughFile(UString()), PropValue(UString()));
    EXPECT_EQ(ThroughFile(u" \t\r\n x \r\n"), PropValue(u" \t\r\n x \r\n"));
}

TEST(PropList, EveryNameComesBack)
{
    PropList list;
    for (const char* name : {"", " ", "a b", "<&>\"'", "\\", "\\u0041", "\t\r\n", "\x01", "\x7F",
                             "\xC3\xA9", "\xF0\x9F\x98\x80", "\xEF\xBF\xBF"}) {
        list.Set(name, 1);
    }
    EXPECT_EQ(list.Values().size(), 12U);
    EXPECT_EQ(ReadPropList(WritePropList(list), "x"), list);
}

PropValue NestedArrays(std::size_t levels)
{
    PropValue value = 1;
    for (std::size_t i = 1; i < levels; ++i) {
        value = PropValue::Array{value};
    }
    return value;
}

TEST(PropList, NestingHasALimitThatWriterAndReaderShare)
{
    EXPECT_EQ(ThroughFile(NestedArrays(255)), NestedArrays(255));
    PropList list;
    list.Set("v", NestedArrays(256));
    EXPECT_THROW(WritePropList(list), std::length_error);
}

struct MalformedCase {
    std::string_view content;  // of the root, or the whole text
    std::string_view want;
};

constexpr MalformedCase kMalformedCases[] = {
    {"", "x:1:1: no element found"},
    {"<proplist version='1'>", "x:1:23: no element found"},
    {"<other version='1'/>", "x:1:1: this is no property list"},
    {"<proplist/>", "x:1:1: this is no property list"},
    {"<proplist version='2'/>", "x:1:1: a property list of the unknown version \"2\""},
    {"<!DOCTYPE proplist [<!ENTITY e 'x'>]><proplist version='1'/>",
     "x:1:20: a document type is not allowed here"},
    {"<bool>true</bool>", "x:1:23: a value without a name"},
    {"<bool name='a\\'>true</bool>", "x:1:23: a broken name: \"a\\\""},
    {"<int name='a'>1</int><int name='a'>2</int>", "x:1:44: a second value of the name \"a\""},
    {"<date name='a'>1</date>", "x:1:23: <date> is no type of a property list"},
    {"<bool name='a'>yes</bool>", "x:1:41: neither true nor false: \"yes\""},
    {"<bool name='a'/>", "x:1:39: neither true nor false: \"\""},
    {"<int name='a'>1.5</int>", "x:1:40: not a whole number of 64 bits: \"1.5\""},
    {"<int name='a'> </int>", "x:1:38: not a whole number of 64 bits: \"\""},
    {"<int name='a'>9223372036854775808</int>",
     "x:1:56: not a whole number of 64 bits: \"9223372036854775808\""},
    {"<real name='a'>1,5</real>", "x:1:41: not a number: \"1,5\""},
    {"<real name='a'>1e999</real>", "x:1:43: not a number: \"1e999\""},
    {"<text name='a'>x\\u12</text>", "x:1:43: a broken text: \"x\\u12\""},
    {"<text name='a'>x\\u12G4</text>", "x:1:45: a broken text: \"x\\u12G4\""},
    {"<text name='a'>x\\n</text>", "x:1:41: a broken text: \"x\\n\""},
    {"<text name='a'><text>x</text></text>", "x:1:38: <text> inside a single value"},
    {"<array name='a'>x</array>", "x:1:39: text between values: \"x\""},
    {"x", "x:1:23: text between values: \"x\""},
};

std::string Whole(std::string_view content)
{
    if (content.empty() || content.find("proplist") != std::string_view::npos ||
        content.starts_with("<other")) {
        return std::string(content);
    }
    return "<proplist version='1'>" + std::string(content) + "</proplist>";
}

TEST(PropList, MalformedTextsAreToldApart)
{
    for (const MalformedCase& row : kMalformedCases) {
        SCOPED_TRACE(row.content);
        EXPECT_EQ(TextOf<xml::ParseError>([&] { ReadPropList(Whole(row.content), "x"); }),
                  row.want);
    }
}

TEST(PropList, ReadsWhatAHandMayHaveWritten)
{
    const PropList list = ReadPropList(
        "<proplist version='1'><!-- mine --><int name='a'>\n 5 \n</int><array name='b'><int "
        "name='ignored'>6</int></array><text name='c'>1 <![CDATA[<2>]]></text></proplist>",
        "x");
    EXPECT_EQ(list.GetInt("a", 0), 5);
    EXPECT_EQ(*list.Find("b"), PropValue(PropValue::Array{6}));
    EXPECT_EQ(list.GetText("c", u""), u"1 <2>");
}

TEST(PropList, CutAtEveryLengthIsAnError)
{
    const std::string_view whole = kSampleText.substr(0, kSampleText.find_last_of('>'));
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const std::vector<char> cut(whole.begin(),
                                    whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_THROW(ReadPropList({cut.data(), cut.size()}, "x"), xml::ParseError) << length;
    }
}

TEST(PropListFile, SavesWithoutAParserFactoryAndMakesFolders)
{
    xml::ResetParserFactory();
    const TestFolder folder;
    const File file(folder.Path("a/b/prefs.xml"));
    SavePropList(file, Sample());
    EXPECT_EQ(folder.Read("a/b/prefs.xml"), kSampleText);
    PropList list;
    list.Set("gone", 1);
    LoadPropList(file.FullPath(), list, /*merge=*/false);
    EXPECT_EQ(list, Sample());
}

TEST(PropListFile, MergeKeepsOtherNames)
{
    const TestFolder folder;
    SavePropList(File(folder.Path("prefs.xml")), Sample());
    PropList list;
    list.Set("kept", 1);
    list.Set("count", 1);
    LoadPropList(folder.Path("prefs.xml"), list, /*merge=*/true);
    PropList want = Sample();
    want.Set("kept", 1);
    EXPECT_EQ(list, want);
}

TEST(PropListFile, AFileThatCannotBeReadLeavesTheListAsItWas)
{
    const TestFolder folder;
    PropList list = Sample();
    for (const bool merge : {false, true}) {
        folder.Write("prefs.xml", "<proplist version='1'><int name='new'>1</int><int");
        EXPECT_EQ(
            TextOf<xml::ParseError>([&] { LoadPropList(folder.Path("prefs.xml"), list, merge); }),
            folder.Of("prefs.xml").string() + ":1:46: unclosed token");
        EXPECT_EQ(list, Sample());
        EXPECT_THROW(LoadPropList(folder.Path("missing.xml"), list, merge), FileError);
        EXPECT_EQ(list, Sample());
    }
}

TEST(PropListFile, LimitOfSixteenMebibytes)
{
    constexpr std::size_t kLimit = std::size_t{16} * 1024 * 1024;
    const TestFolder folder;
    PropList list;
    list.Set("t", UString(kLimit, u'x'));
    const auto kindOf = [](const auto& work) {
        try {
            work();
        } catch (const FileError& error) {
            return error.GetKind();
        }
        return FileError::Kind::kOther;
    };
    EXPECT_EQ(kindOf([&] { SavePropList(File(folder.Path("p")), list); }),
              FileError::Kind::kTooLarge);
    EXPECT_FALSE(File(folder.Path("p")).Exists());
    folder.Write("p", WritePropList(list));
    EXPECT_EQ(kindOf([&] { LoadPropList(folder.Path("p"), list, false); }),
              FileError::Kind::kTooLarge);
    EXPECT_THROW(ReadPropList(WritePropList(list), "x"), xml::ParseError);

    // The largest that is allowed makes the whole way.
    const std::size_t overhead = WritePropList(list).size() - kLimit;
    list.Set("t", UString(kLimit - overhead, u'x'));
    SavePropList(File(folder.Path("p")), list);
    PropList read;
    LoadPropList(folder.Path("p"), read, false);
    EXPECT_TRUE(read == list);
}

}  // namespace
}  // namespace kivcore::proplist
