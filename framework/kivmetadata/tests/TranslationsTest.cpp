#include "framework/kivmetadata/src/Translations.h"

#include <gmock/gmock.h>

#include "framework/kivcore/tests/TestFolder.h"
#include "framework/kivmetadata/tests/Dump.h"
#include "framework/kivmetadata/tests/TraceLog.h"

#include <kivcore/Locale.h>
#include <kivcore/Localizer.h>

namespace kivmetadata {

namespace {

using kivcore::Locale;
using kivcore::UString;
using testing::ElementsAre;
using testing::IsEmpty;

class TranslationsTest : public ReaderTest {
protected:
    ~TranslationsTest() override { Locale::Reset(); }

    static std::string Read(std::string_view text)
    {
        return TextOrError([&] {
            std::string all;
            for (const auto& [identifier, translation] : ReadTranslations(text, "l.xml")) {
                all += identifier + "=" + translation + ";";
            }
            return all;
        });
    }

    /// The label of `element`, whose file lies beside "loc".
    UString Label(const std::string& language, const std::string& element) const
    {
        Locale::Reset();
        Locale::Initialize(kivcore::string::UTF8to16(language), {});
        const FolderTexts texts{kivcore::filesupport::Dir(folder_.Path(""))};
        return texts.Text(ElementReader("d.xml").Parse(element, "e"), "label");
    }

    void Put(const std::string& language, const std::string& texts) const
    {
        folder_.Write(language + ".xml", "<texts>" + texts + "</texts>");
    }

    kivcore::testing::TestFolder folder_;
    TraceLog log_;
};

TEST_F(TranslationsTest, Files)
{
    struct Row {
        const char* text;
        const char* want;
    };
    constexpr Row kRows[] = {
        {"<texts/>", ""},
        {"<texts><text id='a'>A</text><text id='b.c'>\xE5\x86\x99\xE7\x9C\x9F &amp; "
         "B</text></texts>",
         "a=A;b.c=\xE5\x86\x99\xE7\x9C\x9F & B;"},
        {"<texts><text id='a'><![CDATA[<b>]]></text></texts>", "a=<b>;"},
        // White space around a text is layout of the file.
        {"<texts><text id='a'>\n    A  b\n  </text></texts>", "a=A  b;"},
        {"<texts><text id='a'/><text id='b'>  </text></texts>", "a=;b=;"},
        {"<texts><text>A</text></texts>", "l.xml:1: <text>: needs the attribute 'id'"},
        {"<texts>\n<text id=''>A</text></texts>", "l.xml:2: <text>: needs the attribute 'id'"},
        {"<texts><text id='a'>A</text>\n<text id='a'>B</text></texts>",
         "l.xml:2: <text>: 'a' is there already"},
        {"<texts><text id='a' lang='de'>A</text></texts>",
         "l.xml:1: <text>: unknown attribute 'lang'"},
        {"<texts language='de'/>", "l.xml:1: <texts>: unknown attribute 'language'"},
        {"<texts><string id='a'>A</string></texts>", "l.xml:1: <string>: does not belong here"},
        {"<texts><text id='a'>A<b/></text></texts>", "l.xml:1: <b>: does not belong here"},
        {"<texts>A</texts>", "l.xml:1: <texts>: has text, which would be lost"},
        {"<schema/>", "l.xml:1: <schema>: the root element must be <texts>"},
        {"<texts>", "l.xml:1:8: no element found"},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(Read(row.text), row.want);
    }
}

TEST_F(TranslationsTest, FollowsTheLanguagesFallback)
{
    Put("de_AT", "<text id='a'>a de_AT</text>");
    Put("de_DE", "<text id='a'>a de_DE</text><text id='b'>b de_DE</text>");
    Put("de", "<text id='b'>b de</text><text id='c'>c de</text>");
    Put("en_US", "<text id='c'>c en_US</text><text id='d'>d en_US</text>");
    struct Row {
        const char* language;
        const char* identifier;
        UString want;
    };
    const Row rows[] = {
        {"de_AT", "a", u"a de_AT"}, {"de_AT", "b", u"b de_DE"}, {"de_AT", "c", u"c de"},
        {"de_AT", "d", u"d en_US"}, {"de_AT", "e", u"own"},     {"de_CH", "a", u"a de_DE"},
        {"de", "a", u"a de_DE"},    {"de-AT", "a", u"a de_AT"}, {"en_US", "a", u"own"},
        {"en_US", "d", u"d en_US"}, {"fr_FR", "c", u"c en_US"}, {"ja_JP", "b", u"own"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.language) + ' ' + row.identifier);
        EXPECT_EQ(
            Label(row.language, std::string("<e label='own' label-id='") + row.identifier + "'/>"),
            row.want);
    }
    EXPECT_THAT(log_.Lines(), IsEmpty());
}

TEST_F(TranslationsTest, AnAttributeWithoutIdentifierIsTheText)
{
    Put("de_DE", "<text id='a'>A</text><text id=' '>B</text>");
    EXPECT_EQ(Label("de_DE", "<e label='own'/>"), u"own");
    EXPECT_EQ(Label("de_DE", "<e label='own' label-id=''/>"), u"own");
    EXPECT_EQ(Label("de_DE", "<e label='own' hint-id='a'/>"), u"own");
    EXPECT_EQ(Label("de_DE", "<e label-id='a'/>"), u"A");
    EXPECT_EQ(Label("de_DE", "<e/>"), u"");
    EXPECT_EQ(Label("de_DE", "<e label='$$$/Key=default'/>"), u"$$$/Key=default");
}

// A translator's tool writes an empty text for what is not translated yet.
TEST_F(TranslationsTest, AnEmptyTranslationIsNone)
{
    Put("de_AT", "<text id='a'/>");
    Put("de_DE", "<text id='a'>A</text><text id='b'> </text>");
    EXPECT_EQ(Label("de_AT", "<e label='own' label-id='a'/>"), u"A");
    EXPECT_EQ(Label("de_AT", "<e label='own' label-id='b'/>"), u"own");
}

TEST_F(TranslationsTest, ABrokenFileIsLeftOut)
{
    Put("de_AT", "<text id='a'>");
    Put("de_DE", "<text id='a'>A</text>");
    EXPECT_EQ(Label("de_AT", "<e label='own' label-id='a'/>"), u"A");
    EXPECT_THAT(log_.Lines(),
                ElementsAre(folder_.Of("de_AT.xml").string() + ":1:23: mismatched tag"));
}

TEST_F(TranslationsTest, BuiltInTextsAreKeys)
{
    const Element element =
        ElementReader("d.xml").Parse("<e label='$$$/Kiv/A=Own' label-id='a' hint='plain'/>", "e");
    const LocalizerTexts texts;
    EXPECT_EQ(texts.Text(element, "label"), u"Own");
    EXPECT_EQ(texts.Text(element, "hint"), u"plain");
    EXPECT_EQ(texts.Text(element, "unit"), u"");

    class Known : public kivcore::config::Localizer {
    public:
        UString Localize(const std::string& key) override
        {
            return u"<" + kivcore::string::UTF8to16(key) + u">";
        }
        void LoadDictionary(const UString&) override {}
    };
    Known known;
    kivcore::config::Localizer::Set(&known, nullptr);
    EXPECT_EQ(texts.Text(element, "label"), u"<$$$/Kiv/A=Own>");
    EXPECT_EQ(texts.Text(element, "unit"), u"");
    // Texts of folders never reach it.
    EXPECT_EQ(Label("de_DE", "<e label='$$$/Kiv/A=Own'/>"), u"$$$/Kiv/A=Own");
}

}  // namespace

}  // namespace kivmetadata
