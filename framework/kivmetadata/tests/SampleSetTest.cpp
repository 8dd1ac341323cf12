// The sample set of the documentation, in the languages it has.

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

#include <gmock/gmock.h>

#include "framework/kivmetadata/tests/DefinitionsFixture.h"

#include <kivcore/Locale.h>

namespace kivmetadata {

namespace {

constexpr const char* kSamples = KIV_TEST_DEFINITIONS_DIR;

std::string ReadFile(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class SampleSetTest : public DefinitionsFixture {
protected:
    SampleSetTest() { PutBuiltIn(); }
    ~SampleSetTest() override { kivcore::Locale::Reset(); }

    void Load(const kivcore::UString& language)
    {
        kivcore::Locale::Reset();
        kivcore::Locale::Initialize(language, {});
        LoadAllViewDefinitions();
        EXPECT_THAT(Trace(), testing::IsEmpty());
    }

    static const SchemaDefinition& ArchiveSchema()
    {
        auto at = CommonSchemaDefinitions()->Begin();
        at.Next();
        return at.Current();
    }

    EnvironmentVariable own_{"KIV_DEFINITIONS_DIR", kSamples};
};

constexpr const char* kEnglishSchema =
    R"(arc http://ns.example.org/archive/1.0/ "Photo archive"
  Signature text "Signature" hint="Unique within the archive" placeholder="F-1962-0147"
  Caption language-alternative "Archival caption"
  Provenance long-text "Provenance" placeholder="How the picture came to us"
  People bag "People shown"
  FormerSignatures sequence "Former signatures"
  Carrier choice "Carrier" closed
    negative-film="Negative, film"
    negative-glass="Negative, glass"
    slide="Slide"
    print="Print"
  Condition choice "Condition"
    good="Good"
    faded="Faded"
    damaged="Damaged"
  Acquired date "Acquired"
  Copies integer "Copies" 1..999
  Width number "Width" unit="cm" 0.1..500
  Height number "Height" unit="cm" 0.1..500
  ReproductionScale rational "Reproduction scale"
  Publishable boolean "May be published"
  Importance rating "Importance"
  FindingAid uri "Finding aid" placeholder="https://"
  Box structure "Shelf" of http://ns.example.org/archive/1.0/
    Room text "Room"
    Number integer "Box" 1..9999
  Loans structure-list "Loans" read-only of http://ns.example.org/archive/1.0/
    Borrower text "Borrower"
    Returned date "Returned"
  RecordNumber text "Record number" read-only
)";

constexpr const char* kEnglishView = R"(org.example.archive/history "History" icon=history
  [] {http://ns.example.org/archive/1.0/}Provenance {http://ns.example.org/archive/1.0/}Acquired {http://ns.example.org/archive/1.0/}FormerSignatures {http://ns.example.org/archive/1.0/}FindingAid {http://ns.example.org/archive/1.0/}Publishable {http://ns.example.org/archive/1.0/}Loans
)";

TEST_F(SampleSetTest, EnglishStandsInTheDefinitions)
{
    Load(u"en_US");
    ASSERT_THAT(Views(),
                testing::ElementsAre("com.orvan.xmp/built-in", "org.example.archive/holdings",
                                     "org.example.archive/history"));
    EXPECT_EQ(Dump(ArchiveSchema()), kEnglishSchema);
    EXPECT_EQ(Dump(*CommonViewDefinitions()->at(2)), kEnglishView);
}

TEST_F(SampleSetTest, OtherLanguagesAreTranslations)
{
    struct Row {
        kivcore::UString language;
        kivcore::UString schema;
        kivcore::UString hint;
        kivcore::UString carrier;
        kivcore::UString view;
        kivcore::UString group;
    };
    const Row rows[] = {
        {u"en_US", u"Photo archive", u"Unique within the archive", u"Slide", u"Holdings",
         u"Object"},
        {u"de_DE", u"Fotoarchiv", u"Im Archiv nur einmal vergeben", u"Dia", u"Bestand", u"Objekt"},
        {u"de_AT", u"Fotoarchiv", u"Im Archiv nur einmal vergeben", u"Dia", u"Bestand", u"Objekt"},
        {u"ja_JP", u"\u5199\u771F\u30A2\u30FC\u30AB\u30A4\u30D6",
         u"\u30A2\u30FC\u30AB\u30A4\u30D6\u5185\u3067\u4E00\u610F\u306E\u8A18\u53F7",
         u"\u30B9\u30E9\u30A4\u30C9", u"\u6240\u8535\u8CC7\u6599", u"\u8CC7\u6599"},
        {u"fr_FR", u"Photo archive", u"Unique within the archive", u"Slide", u"Holdings",
         u"Object"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(kivcore::string::UTF16to8(row.language));
        Load(row.language);
        const SchemaDefinition& schema = ArchiveSchema();
        EXPECT_EQ(schema.label, row.schema);
        EXPECT_EQ(schema.properties.at(0)->description, row.hint);
        EXPECT_EQ(schema.properties.at(5)->choices.at(2).label, row.carrier);
        const ViewDefinition& view = *CommonViewDefinitions()->at(1);
        EXPECT_EQ(view.label, row.view);
        EXPECT_EQ(view.groups.at(1).heading, row.group);
    }
}

// Every text has its translation, and every translation its text.
TEST_F(SampleSetTest, TranslationsAreComplete)
{
    const std::filesystem::path folder = std::filesystem::path(kSamples) / "archive";
    std::set<std::string> wanted;
    for (const char* const part : {"schema", "view"}) {
        for (const auto& entry : std::filesystem::directory_iterator(folder / part)) {
            const std::string text = ReadFile(entry.path());
            constexpr std::string_view kMark = "-id=\"";
            for (std::size_t at = 0; (at = text.find(kMark, at)) != std::string::npos;) {
                at += kMark.size();
                wanted.insert(text.substr(at, text.find('"', at) - at));
            }
        }
    }
    EXPECT_EQ(wanted.size(), 36u);
    for (const char* const language : {"de_DE", "ja_JP"}) {
        SCOPED_TRACE(language);
        const std::filesystem::path file = folder / "loc" / (std::string(language) + ".xml");
        std::set<std::string> have;
        for (const auto& [identifier, text] : ReadTranslations(ReadFile(file), file.string())) {
            have.insert(identifier);
            EXPECT_FALSE(text.empty()) << identifier;
        }
        EXPECT_EQ(have, wanted);
    }
}

}  // namespace

}  // namespace kivmetadata
