// What the library reads at its start: dictionaries, preferences, definitions. Whatever is wrong
// with them, it comes up.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "tests/LibraryFixture.h"

#include <kivcore/Localizer.h>
#include <kivcore/StringConversion.h>
#include <kivcore/Trace.h>
#include <kivui/PrefManager.h>

#ifndef KIV_TEST_DEFINITIONS
#error "the build names the folder of sample definitions"
#endif

namespace kivtests {
namespace {

namespace config = kivcore::config;
using kivui::ui::PrefManager;

std::string Text(const char* key)
{
    return kivcore::string::UTF16to8(config::Localize(key));
}

/// The bytes of ASCII as UTF-16, low byte first, behind a byte-order mark.
std::string Wide(std::string_view ascii)
{
    std::string bytes = "\xFF\xFE";
    for (const char unit : ascii) {
        bytes += {unit, '\0'};
    }
    return bytes;
}

class LibraryFilesTest : public LibraryFixture {
protected:
    void Put(const std::string& name, const std::string& content) const
    {
        std::filesystem::create_directories(folder.Of(name).parent_path());
        folder.Write(name, content);
    }

    /// Brings the library up and down again; the texts of two keys in between.
    std::string FirstAndLastText(const MetadataAPIInitParams& record) const
    {
        if (!api.initialize(&record)) {
            ADD_FAILURE() << LastFailure();
        }
        const std::string texts = Text("$$$/Test/First=default") + "|" +
                                  Text("$$$/Test/Last=default") + "|" + LastFailure();
        api.terminate();
        return texts;
    }
};

TEST_F(LibraryFilesTest, DictionariesWithAnythingInThem)
{
    const std::string first = "\"$$$/Test/First=one\"\n";
    const std::string last = "\"$$$/Test/Last=two\"\n";
    std::string allBytes;
    for (int byte = 0; byte < 256; ++byte) {
        allBytes += static_cast<char>(byte);
    }
    const struct {
        const char* name;
        std::string content;
        const char* want;
    } rows[] = {
        {"whole", first + last, "one|two|"},
        {"no line end", first + "\"$$$/Test/Last=two\"", "one|two|"},
        {"line ends of Windows", "\"$$$/Test/First=one\"\r\n" + last, "one|two|"},
        {"empty", "", "default|default|"},
        {"broken lines", first + "=\n\"\n$\n$$x=y\n\"$$$\n$$$/Test\n\\\n" + last, "one|two|"},
        {"no closing quote", "\"$$$/Test/First=one\n" + last, "one|two|"},
        {"open escapes", "\"$$$/Test/First=one\\\n\"$$$/Test/Other=#{U+\"\n" + last, "one\\|two|"},
        // Reading ends at the first line that is no UTF-8; the lines before it count.
        {"bad UTF-8", first + "\"$$$/Test/Bad=\xC3(\"\n" + last, "one|default|"},
        {"cut UTF-8", first + last + "\"$$$/Test/Bad=\xE3\x82", "one|two|"},
        {"surrogates in UTF-8", first + "\xED\xA0\x80\n" + last, "one|default|"},
        {"NUL", first + "\"$$$/Test/N=a" + std::string(1, '\0') + "b\"\n" + last, "one|two|"},
        {"every byte", allBytes + "\n" + last, "default|default|"},
        {"UTF-16", Wide(first + last), "one|two|"},
        {"UTF-16 with an odd last byte", Wide(first + last) + "x", "one|two|"},
        {"UTF-16 mark alone", "\xFF\xFE", "default|default|"},
        {"half a mark", "\xFF", "default|default|"},
        {"a long line", first + "\"$$$/Test/Long=" + std::string(1 << 20, 'x') + "\"\n" + last,
         "one|two|"},
        {"a huge number of lines", first + std::string(1 << 20, '\n') + last, "one|two|"},
    };
    const EnvironmentVariable application("KIV_APP_DIR", folder.Of("app").string());
    const MetadataAPIInitParams record = StartRecord();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Put("app/Required/Quillet/dict/kiv_en_US.dict", row.content);
        EXPECT_EQ(FirstAndLastText(record), row.want);
    }
}

TEST_F(LibraryFilesTest, DictionariesThatCannotBeRead)
{
    const EnvironmentVariable application("KIV_APP_DIR", folder.Of("app").string());
    const MetadataAPIInitParams record = StartRecord();
    EXPECT_EQ(FirstAndLastText(record), "default|default|") << "no data at all";
    std::filesystem::create_directories(folder.Of("app/Required/Quillet/dict/kiv_en_US.dict"));
    EXPECT_EQ(FirstAndLastText(record), "default|default|") << "a folder in its place";
    const EnvironmentVariable nowhere("KIV_APP_DIR", folder.Of("nowhere").string());
    EXPECT_EQ(FirstAndLastText(record), "default|default|");
}

// Only the exact language's file counts, and its texts go with the round.
TEST_F(LibraryFilesTest, TextsOfOneLanguageDoNotReachTheNextRound)
{
    const EnvironmentVariable application("KIV_APP_DIR", folder.Of("app").string());
    Put("app/Required/Quillet/dict/kiv_de_DE.dict", "$$$/Test/First=eins\n$$$/Test/Last=zwei\n");
    EXPECT_EQ(FirstAndLastText(StartRecord("Host", "de")), "eins|zwei|");
    EXPECT_EQ(FirstAndLastText(StartRecord("Host", "de_AT")), "default|default|");
    EXPECT_EQ(FirstAndLastText(StartRecord("Host", "en_US")), "default|default|");
    EXPECT_EQ(FirstAndLastText(StartRecord("Host", "tlh")), "default|default|");
    EXPECT_EQ(FirstAndLastText(StartRecord("Host", "de-DE")), "eins|zwei|");
}

class PreferenceTrace {
public:
    PreferenceTrace()
    {
        kivcore::debug::SetTraceLevel("kivui", 0);
        sink_ = kivcore::debug::AddTraceSink(
            [this](int, const char*, std::string_view text) { text_ += text; });
    }
    PreferenceTrace(const PreferenceTrace&) = delete;
    PreferenceTrace& operator=(const PreferenceTrace&) = delete;
    ~PreferenceTrace()
    {
        kivcore::debug::RemoveTraceSink(sink_);
        kivcore::debug::SetTraceLevel("kivui", -1);
    }
    const std::string& Text() const { return text_; }

private:
    int sink_ = 0;
    std::string text_;
};

TEST_F(LibraryFilesTest, BrokenPreferencesAreToldOnTheTraceAndKept)
{
    const struct {
        const char* name;
        std::string content;
    } rows[] = {
        {"empty", ""},
        {"no XML", "preferences"},
        {"broken XML", "<proplist version=\"1\"><bool"},
        {"another document", "<html/>"},
        {"bytes", "\xFF\xFE" + std::string(1, '\0') + "\x01"},
        {"entities that multiply",
         "<!DOCTYPE p [<!ENTITY a \"xxxxxxxxxxxxxxxx\"><!ENTITY b \"&a;&a;&a;&a;\">]>"
         "<proplist version=\"1\"><text name=\"&b;\">&b;</text></proplist"},
        {"too large", std::string((16 << 20) + 1, ' ')},
    };
    const MetadataAPIInitParams record = StartRecord();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Put("preferences/UIPrefs.xml", row.content);
        const PreferenceTrace trace;
        ASSERT_TRUE(api.initialize(&record));
        EXPECT_TRUE(PrefManager::Preferences().IsEmpty());
        EXPECT_THAT(trace.Text(), ::testing::HasSubstr("UIPrefs.xml"));
        api.terminate();
        EXPECT_EQ(folder.Read("preferences/UIPrefs.xml"), row.content) << "nobody asked to change";
    }
    std::filesystem::remove(folder.Of("preferences/UIPrefs.xml"));
    std::filesystem::create_directories(folder.Of("preferences/UIPrefs.xml/below"));
    ASSERT_TRUE(api.initialize(&record));
    EXPECT_TRUE(PrefManager::Preferences().IsEmpty());
    api.terminate();
}

TEST_F(LibraryFilesTest, ChangedPreferencesReachTheNextRound)
{
    const MetadataAPIInitParams record = StartRecord();
    ASSERT_TRUE(api.initialize(&record));
    PrefManager::Preferences().Set("Count", kivcore::proplist::PropValue(3));
    api.terminate();
    ASSERT_TRUE(api.initialize(&record));
    EXPECT_EQ(PrefManager::Preferences().GetInt("Count", 0), 3);
    api.terminate();
}

TEST_F(LibraryFilesTest, PreferencesThatCannotBeWritten)
{
    folder.Write("preferences", "a file where the folder should be");
    const MetadataAPIInitParams record = StartRecord();
    const PreferenceTrace trace;
    ASSERT_TRUE(api.initialize(&record));
    PrefManager::Preferences().Set("Count", kivcore::proplist::PropValue(3));
    api.terminate();
    EXPECT_THAT(trace.Text(), ::testing::HasSubstr("not written"));
}

class LibraryDefinitionsTest : public LibraryFilesTest {
protected:
    LibraryDefinitionsTest() { record.loadCustomDefinitions = 1; }

    const KIVMetadataRecord* Records() const
    {
        return static_cast<const KIVMetadataRecord*>(api.getVector());
    }

    /// "view|property|label|flag", one line each.
    std::string List() const
    {
        std::string list;
        for (std::size_t i = 0; i < api.getVectorSize(); ++i) {
            const KIVMetadataRecord& entry = Records()[i];
            const auto* const label = reinterpret_cast<const char16_t*>(entry.label);
            list += std::string(entry.viewText) + "|" + entry.itemText + entry.itemKeyText + "|" +
                    kivcore::string::UTF16to8(label) + "|" + std::to_string(entry.propertyFlag) +
                    "\n";
        }
        return list;
    }

    MetadataAPIInitParams record = StartRecord();
};

constexpr char kEnglishList[] =
    "holdings|http://ns.example.org/archive/1.0/Signature|Signature|1\n"
    "holdings|http://ns.example.org/archive/1.0/RecordNumber|Record number|0\n"
    "holdings|http://ns.example.org/archive/1.0/Caption|Archival caption|1\n"
    "holdings|http://ns.example.org/archive/1.0/Carrier|Carrier|1\n"
    "holdings|http://ns.example.org/archive/1.0/Condition|Condition|1\n"
    "holdings|http://ns.example.org/archive/1.0/Width|Width|1\n"
    "holdings|http://ns.example.org/archive/1.0/Height|Height|1\n"
    "holdings|http://ns.example.org/archive/1.0/Copies|Copies|1\n"
    "holdings|http://ns.example.org/archive/1.0/ReproductionScale|Reproduction scale|1\n"
    "holdings|http://ns.example.org/archive/1.0/Box|Shelf|1\n"
    "holdings|http://ns.example.org/archive/1.0/People|People shown|1\n"
    "holdings|http://purl.org/dc/elements/1.1/subject|Keywords|1\n"
    "holdings|http://ns.example.org/archive/1.0/Importance|Importance|1\n"
    "history|http://ns.example.org/archive/1.0/Provenance|Provenance|1\n"
    "history|http://ns.example.org/archive/1.0/Acquired|Acquired|1\n"
    "history|http://ns.example.org/archive/1.0/FormerSignatures|Former signatures|1\n"
    "history|http://ns.example.org/archive/1.0/FindingAid|Finding aid|1\n"
    "history|http://ns.example.org/archive/1.0/Publishable|May be published|1\n"
    "history|http://ns.example.org/archive/1.0/Loans|Loans|0\n";

TEST_F(LibraryDefinitionsTest, TheListOfASampleSet)
{
    const EnvironmentVariable definitions("KIV_DEFINITIONS_DIR", KIV_TEST_DEFINITIONS);
    ASSERT_TRUE(api.initialize(&record));
    EXPECT_EQ(List(), kEnglishList);
    api.terminate();
    EXPECT_EQ(Records(), nullptr);
    EXPECT_EQ(api.getVectorSize(), 0U);
}

TEST_F(LibraryDefinitionsTest, LabelsAreInTheRoundsLanguage)
{
    const EnvironmentVariable definitions("KIV_DEFINITIONS_DIR", KIV_TEST_DEFINITIONS);
    record.language = "de_DE";
    ASSERT_TRUE(api.initialize(&record));
    EXPECT_THAT(List(), ::testing::HasSubstr("Carrier|Träger|1\n"));
    api.terminate();
    record.language = "ja_JP";
    ASSERT_TRUE(api.initialize(&record));
    EXPECT_THAT(List(), ::testing::HasSubstr("Carrier|媒体|1\n"));
    api.terminate();
    record.language = "nl_NL";
    ASSERT_TRUE(api.initialize(&record));
    EXPECT_EQ(List(), kEnglishList) << "the texts in the definitions";
    api.terminate();
}

TEST_F(LibraryDefinitionsTest, ANestedCallDoesNotBuildTheListAgain)
{
    const EnvironmentVariable definitions("KIV_DEFINITIONS_DIR", KIV_TEST_DEFINITIONS);
    ASSERT_TRUE(api.initialize(&record));
    const KIVMetadataRecord* const records = Records();
    ASSERT_NE(records, nullptr);
    ASSERT_TRUE(api.initialize(&record));
    EXPECT_EQ(Records(), records);
    EXPECT_EQ(List(), kEnglishList);
    api.terminate();
    EXPECT_EQ(List(), kEnglishList) << "not the last terminate";
    api.terminate();
}

TEST_F(LibraryDefinitionsTest, ANestedCallMayBeTheFirstToAsk)
{
    const EnvironmentVariable definitions("KIV_DEFINITIONS_DIR", KIV_TEST_DEFINITIONS);
    const MetadataAPIInitParams without = StartRecord();
    ASSERT_TRUE(api.initialize(&without));
    EXPECT_EQ(Records(), nullptr);
    EXPECT_EQ(api.getVectorSize(), 0U);
    ASSERT_TRUE(api.initialize(&record));
    EXPECT_EQ(List(), kEnglishList);
    api.terminate();
    api.terminate();
}

TEST_F(LibraryDefinitionsTest, WithoutCustomDefinitionsThereIsNoList)
{
    ASSERT_TRUE(api.initialize(&record));
    EXPECT_EQ(Records(), nullptr);
    EXPECT_EQ(api.getVectorSize(), 0U);
    api.terminate();
}

// They also lie under the preferences, where the start-up record's name decides.
TEST_F(LibraryDefinitionsTest, DefinitionsOfTheUser)
{
    std::filesystem::create_directories(folder.Of("preferences/Definitions"));
    std::filesystem::copy(KIV_TEST_DEFINITIONS, folder.Of("preferences/Definitions"),
                          std::filesystem::copy_options::recursive);
    ASSERT_TRUE(api.initialize(&record));
    EXPECT_EQ(List(), kEnglishList);
    api.terminate();
}

TEST_F(LibraryDefinitionsTest, BrokenOnesAreLeftOut)
{
    std::filesystem::create_directories(folder.Of("sets"));
    std::filesystem::copy(KIV_TEST_DEFINITIONS, folder.Of("sets"),
                          std::filesystem::copy_options::recursive);
    Put("sets/archive/view/30-broken.xml", "<view name=\"broken");
    Put("sets/archive/loc/fr_FR.xml", "\xFF");
    Put("sets/broken/manifest.xml", "<definitions");
    Put("sets/empty/manifest.xml", "");
    std::filesystem::create_directories(folder.Of("sets/nothing"));
    const EnvironmentVariable definitions("KIV_DEFINITIONS_DIR", folder.Of("sets").string());
    ASSERT_TRUE(api.initialize(&record));
    EXPECT_EQ(List(), kEnglishList);
    api.terminate();
    record.language = "fr_FR";
    ASSERT_TRUE(api.initialize(&record));
    EXPECT_EQ(List(), kEnglishList);
    api.terminate();
}

TEST_F(LibraryDefinitionsTest, ItemsAndPropertiesArePairedByName)
{
    Put("sets/pair/manifest.xml",
        "<definitions owner=\"org.example\" name=\"Pair\" version=\"1\"/>");
    Put("sets/pair/schema/1.xml",
        "<schema namespace=\"http://a.example/\" prefix=\"paa\" label=\"A\">"
        "<property name=\"Both\" label=\"First\" read-only=\"yes\"/></schema>");
    Put("sets/pair/schema/2.xml",
        "<schema namespace=\"http://b.example/\" prefix=\"pab\" label=\"B\">"
        "<property name=\"Both\" label=\"Second\"/></schema>");
    Put("sets/pair/view/1.xml",
        "<view name=\"v\" label=\"V\">"
        "<item namespace=\"http://a.example/\" property=\"Both\"/>"
        "<item namespace=\"http://b.example/\" property=\"Both\"/>"
        "</view>");
    const EnvironmentVariable definitions("KIV_DEFINITIONS_DIR", folder.Of("sets").string());
    ASSERT_TRUE(api.initialize(&record));
    // Two items that name one property give two records, each with the first of that name.
    EXPECT_EQ(List(), "v|http://a.example/Both|First|0\nv|http://b.example/Both|First|0\n");
    api.terminate();
}

}  // namespace
}  // namespace kivtests
