#include <kivmetadata/Definitions.h>

#include <gmock/gmock.h>

#include "framework/kivmetadata/tests/DefinitionsFixture.h"

#include <kivcore/Config.h>

namespace kivmetadata {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DefinitionsTest : public DefinitionsFixture {};

TEST_F(DefinitionsTest, NothingBeforeLoading)
{
    UnloadViewDefinitions();
    ASSERT_NE(CommonViewDefinitions(), nullptr);
    EXPECT_TRUE(CommonViewDefinitions()->empty());
    EXPECT_TRUE(CommonSchemaDefinitions()->Begin().AtEnd());
    UnloadViewDefinitions();
    UnloadViewDefinitions();
}

TEST_F(DefinitionsTest, WithoutFilesThereIsNothingButAReason)
{
    LoadAllViewDefinitions();
    EXPECT_THAT(Views(), IsEmpty());
    EXPECT_THAT(Schemas(), IsEmpty());
    EXPECT_THAT(Trace(), ElementsAre("$APP/Required/Metadata: no built-in views there"));
}

TEST_F(DefinitionsTest, BuiltInOnesBelongToTheLibrary)
{
    Put("app/Required/Metadata/view/b.xml", View("b"));
    Put("app/Required/Metadata/view/a.xml", View("a"));
    Put("app/Required/Metadata/view/readme.txt", "no definition");
    Put("app/Required/Metadata/schema/t.xml", Schema("http://t/", "t"));
    Put("app/Required/Metadata/schema/s.xml", Schema("http://s/", "s"));
    LoadAllViewDefinitions();
    EXPECT_THAT(Views(), ElementsAre("com.orvan.xmp/a", "com.orvan.xmp/b"));
    EXPECT_THAT(Schemas(), ElementsAre("s", "t"));
    EXPECT_THAT(Trace(), IsEmpty());
}

TEST_F(DefinitionsTest, FoldersComeInOrder)
{
    PutBuiltIn();
    PutSet("prefs/Definitions/b", "org.b", "p");
    PutSet("prefs/Definitions/a", "org.a", "p");
    PutSet("app/Required/Definitions/z", "org.z", "r");
    PutSet("app/Required/Definitions/y", "org.y", "r");
    LoadAllViewDefinitions();
    EXPECT_THAT(Views(),
                ElementsAre("com.orvan.xmp/built-in", "org.y/r", "org.z/r", "org.a/p", "org.b/p"));
    EXPECT_THAT(Schemas(), ElementsAre("dc", "org.y", "org.z", "org.a", "org.b"));
    EXPECT_THAT(Trace(), IsEmpty());
}

TEST_F(DefinitionsTest, AFolderOfOnesOwnTakesThePlaceOfBoth)
{
    PutBuiltIn();
    PutSet("prefs/Definitions/a", "org.a", "p");
    PutSet("app/Required/Definitions/z", "org.z", "r");
    PutSet("own/s", "org.own", "o");
    const EnvironmentVariable own("KIV_DEFINITIONS_DIR", PathOf("own"));
    LoadAllViewDefinitions();
    EXPECT_THAT(Views(), ElementsAre("com.orvan.xmp/built-in", "org.own/o"));
    EXPECT_THAT(Trace(), IsEmpty());
}

TEST_F(DefinitionsTest, AFolderOfOnesOwnThatIsMissingIsTold)
{
    PutBuiltIn();
    PutSet("prefs/Definitions/a", "org.a", "p");
    const EnvironmentVariable own("KIV_DEFINITIONS_DIR", PathOf("missing"));
    LoadAllViewDefinitions();
    EXPECT_THAT(Views(), ElementsAre("com.orvan.xmp/built-in"));
    EXPECT_THAT(Trace(), ElementsAre("$/missing: there is no such folder"));
}

TEST_F(DefinitionsTest, WithoutAClientNameThereIsNoPreferencesFolder)
{
    PutBuiltIn();
    PutSet("app/Required/Definitions/z", "org.z", "r");
    const EnvironmentVariable none("KIV_PREF_DIR", std::nullopt);
    ASSERT_FALSE(kivcore::config::IsClientNameInitialized());
    LoadAllViewDefinitions();
    EXPECT_THAT(Views(), ElementsAre("com.orvan.xmp/built-in", "org.z/r"));
    EXPECT_THAT(Trace(), IsEmpty());
}

struct ManifestRow {
    const char* text;
    const char* reason;  // behind "$/own/s/manifest.xml"; null for a good one
};

TEST_F(DefinitionsTest, WithoutAReadableManifestNothingOfAFolderCounts)
{
    constexpr ManifestRow kRows[] = {
        {"<definitions owner='org.own'/>", nullptr},
        {"<definitions owner='org.own' name='N' version='1.0'/>", nullptr},
        {"<definitions/>", ":1: <definitions>: needs the attribute 'owner'"},
        {"<definitions owner=''/>", ":1: <definitions>: needs the attribute 'owner'"},
        {"<definitions owner='o' author='me'/>", ":1: <definitions>: unknown attribute 'author'"},
        {"<definitions owner='o'>\n<view/></definitions>", ":2: <view>: does not belong here"},
        {"<definitions owner='o'>text</definitions>",
         ":1: <definitions>: has text, which would be lost"},
        {"<manifest owner='o'/>", ":1: <manifest>: the root element must be <definitions>"},
        {"<definitions owner='com.orvan.xmp'/>",
         ":1: <definitions>: the owner 'com.orvan.xmp' is that of the built-in views"},
        {"owner=o", ":1:6: not well-formed (invalid token)"},
        {"", ":1:1: no element found"},
    };
    PutBuiltIn();
    PutSet("own/s", "org.own", "v");
    PutSet("own/t", "org.other", "v");
    const EnvironmentVariable own("KIV_DEFINITIONS_DIR", PathOf("own"));
    for (const ManifestRow& row : kRows) {
        SCOPED_TRACE(row.text);
        Put("own/s/manifest.xml", row.text);
        LoadAllViewDefinitions();
        if (row.reason == nullptr) {
            EXPECT_THAT(Views(), ElementsAre("com.orvan.xmp/built-in", "org.own/v", "org.other/v"));
            EXPECT_THAT(Trace(), IsEmpty());
        } else {
            EXPECT_THAT(Views(), ElementsAre("com.orvan.xmp/built-in", "org.other/v"));
            EXPECT_THAT(Schemas(), ElementsAre("dc", "org.other"));
            EXPECT_THAT(Trace(),
                        ElementsAre(std::string("$/own/s/manifest.xml") + row.reason,
                                    "$/own/s: left out, there is no manifest.xml that could be "
                                    "read"));
        }
    }
}

TEST_F(DefinitionsTest, AMissingManifestIsTold)
{
    PutBuiltIn();
    PutSet("own/s", "org.own", "v");
    Remove("own/s/manifest.xml");
    const EnvironmentVariable own("KIV_DEFINITIONS_DIR", PathOf("own"));
    LoadAllViewDefinitions();
    EXPECT_THAT(Views(), ElementsAre("com.orvan.xmp/built-in"));
    EXPECT_THAT(Trace(), ElementsAre("$/own/s: left out, there is no manifest.xml that could be "
                                     "read"));
}

TEST_F(DefinitionsTest, ABrokenFileIsLeftOutAndTheOthersCount)
{
    PutBuiltIn();
    Put("app/Required/Metadata/schema/a.xml", "<schema/>");
    Put("app/Required/Metadata/view/a.xml", "<view>");
    PutSet("own/s", "org.own", "v");
    Put("own/s/schema/broken.xml",
        "<schema namespace='n' prefix='p'>\n<property name='x'/></schema>");
    Put("own/s/view/broken.xml", "<view name='x' label='L'>\n<itme/></view>");
    Put("own/s/loc/en_US.xml", "<text/>");
    const EnvironmentVariable own("KIV_DEFINITIONS_DIR", PathOf("own"));
    LoadAllViewDefinitions();
    EXPECT_THAT(Views(), ElementsAre("com.orvan.xmp/built-in", "org.own/v"));
    EXPECT_THAT(Schemas(), ElementsAre("dc", "org.own"));
    EXPECT_THAT(Trace(),
                ElementsAre("$APP/Required/Metadata/schema/a.xml:1: <schema>: needs the attribute "
                            "'namespace'",
                            "$APP/Required/Metadata/view/a.xml:1:7: no element found",
                            "$/own/s/loc/en_US.xml:1: <text>: the root element must be <texts>",
                            "$/own/s/schema/broken.xml:2: <property>: needs the attribute 'label'",
                            "$/own/s/view/broken.xml:2: <itme>: does not belong here"));
}

// Preferences remember views by owner and name.
TEST_F(DefinitionsTest, AViewThatIsThereAlreadyIsLeftOut)
{
    PutBuiltIn();
    PutSet("app/Required/Definitions/a", "org.a", "v");
    PutSet("prefs/Definitions/a", "org.a", "v");
    PutSet("prefs/Definitions/b", "org.b", "v");
    LoadAllViewDefinitions();
    EXPECT_THAT(Views(), ElementsAre("com.orvan.xmp/built-in", "org.a/v", "org.b/v"));
    EXPECT_THAT(Trace(), ElementsAre("$PREFS/Definitions/a/view/v.xml: left out, there is a view "
                                     "'v' of 'org.a' already"));
}

TEST_F(DefinitionsTest, EachLoadReplacesTheOneBefore)
{
    PutBuiltIn();
    LoadAllViewDefinitions();
    const auto views = CommonViewDefinitions();
    const auto schemas = CommonSchemaDefinitions();
    LoadAllViewDefinitions();
    EXPECT_NE(CommonViewDefinitions(), views);
    EXPECT_THAT(Views(), ElementsAre("com.orvan.xmp/built-in"));
    EXPECT_THAT(Schemas(), ElementsAre("dc"));

    Put("app/Required/Metadata/view/w.xml", View("more"));
    LoadAllViewDefinitions();
    EXPECT_THAT(Views(), ElementsAre("com.orvan.xmp/built-in", "com.orvan.xmp/more"));

    UnloadViewDefinitions();
    EXPECT_THAT(Views(), IsEmpty());
    EXPECT_THAT(Schemas(), IsEmpty());
    // What is still held stays valid.
    EXPECT_EQ(views->size(), 1u);
    EXPECT_EQ(schemas->Begin().Current().prefix, "dc");
}

TEST_F(DefinitionsTest, TheIteratorWalksSchemasInOrder)
{
    const auto schema = [](const char* prefix) {
        auto made = std::make_shared<SchemaDefinition>();
        made->prefix = prefix;
        return made;
    };
    const SchemaDefinitions none({});
    EXPECT_TRUE(none.Begin().AtEnd());

    const SchemaDefinitions two({schema("a"), schema("b")});
    SchemaIterator at = two.Begin();
    ASSERT_FALSE(at.AtEnd());
    EXPECT_EQ(at.Current().prefix, "a");
    at.Next();
    ASSERT_FALSE(at.AtEnd());
    EXPECT_EQ(at.Current().prefix, "b");
    at.Next();
    EXPECT_TRUE(at.AtEnd());
    EXPECT_FALSE(two.Begin().AtEnd());
}

TEST_F(DefinitionsTest, WithoutAParserFactoryNothingIsReadAndNothingThrown)
{
    PutBuiltIn();
    kivcore::xml::ResetParserFactory();
    LoadAllViewDefinitions();
    EXPECT_THAT(Views(), IsEmpty());
    EXPECT_THAT(Trace(),
                ElementsAre("there is no XML parser factory", "there is no XML parser factory",
                            "$APP/Required/Metadata: no built-in views there"));
}

}  // namespace

}  // namespace kivmetadata
