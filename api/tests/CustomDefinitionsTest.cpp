#include "api/CustomDefinitions.h"

#include "api/tests/ApiFixture.h"

#include <kivcore/StringConversion.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using recording::Get;

class CustomDefinitions : public ApiTest {
protected:
    static void AddView(const char* owner, const char* name,
                        std::initializer_list<std::pair<const char*, const char*>> items)
    {
        auto view = std::make_shared<kivmetadata::ViewDefinition>();
        view->owner = owner;
        view->name = name;
        for (const auto& [uri, property] : items) {
            auto item = std::make_shared<kivmetadata::ViewItem>();
            item->namespaceUri = uri;
            item->propertyName = property;
            view->items.push_back(item);
        }
        Get().views.push_back(view);
    }

    struct Property {
        const char* name;
        const char* label;
        bool isReadOnly;
    };

    static void AddSchema(const char* uri, std::initializer_list<Property> properties)
    {
        auto schema = std::make_shared<kivmetadata::SchemaDefinition>();
        schema->namespaceUri = uri;
        for (const Property& row : properties) {
            auto property = std::make_shared<kivmetadata::PropertyDefinition>();
            property->name = row.name;
            property->label = kivcore::string::AsciiToUTF16(row.label);
            property->isReadOnly = row.isReadOnly;
            schema->properties.push_back(property);
        }
        Get().schemas.push_back(schema);
    }

    /// The exported vector, a line a record.
    static std::string Records()
    {
        const auto* record = static_cast<const KIVMetadataRecord*>(GetGlobalKIVMetadataVector());
        std::string text;
        for (std::size_t i = 0; i < GetGlobalKIVMetadataVectorSize(); ++i, ++record) {
            text += std::string(record->viewText) + "|" + record->itemText + "|" +
                    record->itemKeyText + "|";
            for (const std::uint16_t* unit = record->label; *unit != 0; ++unit) {
                text.push_back(static_cast<char>(*unit));
            }
            text += record->propertyFlag == 1 ? "|editable\n" : "|read-only\n";
        }
        return text;
    }

    static bool Initialize()
    {
        MetadataAPIInitParams params = Params();
        params.loadCustomDefinitions = 1;
        return MetadataAPIInitialize(&params);
    }
};

TEST_F(CustomDefinitions, NoneGivesNull)
{
    EXPECT_EQ(GetGlobalKIVMetadataVector(), nullptr);
    EXPECT_EQ(GetGlobalKIVMetadataVectorSize(), 0U);
    EXPECT_TRUE(Initialize());
    EXPECT_EQ(GetGlobalKIVMetadataVector(), nullptr);
    EXPECT_EQ(GetGlobalKIVMetadataVectorSize(), 0U);
    MetadataAPITerminate();
}

TEST_F(CustomDefinitions, NotAskedForGivesNull)
{
    AddView("org.example", "Archive", {{"urn:a", "box"}});
    AddSchema("urn:a", {{"box", "Box", false}});
    BringUp();
    EXPECT_EQ(GetGlobalKIVMetadataVector(), nullptr);
    MetadataAPITerminate();
}

TEST_F(CustomDefinitions, ItemsArePairedWithProperties)
{
    AddView("com.orvan.xmp", "Built in", {{"urn:a", "box"}});
    // Only the whole text counts.
    AddView("com.orvan.xmpx", "Nearly built in", {{"urn:a", "box"}});
    AddView("org.example", "Archive",
            {
                {"urn:a", "shelf"},
                {"", "box"},         // a text is missing
                {"urn:a", ""},       // the other one is
                {"urn:a", "Box"},    // no such property: case counts
                {"urn:a", "boxes"},  // nor this one
                {"urn:b", "box"},    // the first property of that name, whatever its schema
                {"urn:a", "shelf"},  // once more: a record of its own
            });
    AddSchema("urn:a", {{"box", "Box of A", false}, {"shelf", "Shelf", true}});
    AddSchema("urn:b", {{"box", "Box of B", true}});
    EXPECT_TRUE(Initialize());
    EXPECT_EQ(Records(),
              "Nearly built in|urn:a|box|Box of A|editable\n"
              "Archive|urn:a|shelf|Shelf|read-only\n"
              "Archive|urn:b|box|Box of A|editable\n"
              "Archive|urn:a|shelf|Shelf|read-only\n");
    MetadataAPITerminate();
    EXPECT_EQ(GetGlobalKIVMetadataVector(), nullptr);
    EXPECT_EQ(GetGlobalKIVMetadataVectorSize(), 0U);
}

TEST_F(CustomDefinitions, NestedCallDoesNotDuplicate)
{
    AddView("org.example", "Archive", {{"urn:a", "box"}});
    AddSchema("urn:a", {{"box", "Box", false}});
    EXPECT_TRUE(Initialize());
    const void* const vector = GetGlobalKIVMetadataVector();
    EXPECT_TRUE(Initialize());
    EXPECT_EQ(GetGlobalKIVMetadataVector(), vector);
    EXPECT_EQ(GetGlobalKIVMetadataVectorSize(), 1U);
    MetadataAPITerminate();
    EXPECT_EQ(GetGlobalKIVMetadataVectorSize(), 1U);  // up until the last terminate
    MetadataAPITerminate();
    EXPECT_EQ(GetGlobalKIVMetadataVectorSize(), 0U);
}

TEST_F(CustomDefinitions, NestedCallMayAskLater)
{
    AddView("org.example", "Archive", {{"urn:a", "box"}});
    AddSchema("urn:a", {{"box", "Box", false}});
    BringUp();
    EXPECT_TRUE(Initialize());
    EXPECT_EQ(GetGlobalKIVMetadataVectorSize(), 1U);
    MetadataAPITerminate();
    MetadataAPITerminate();
}

TEST_F(CustomDefinitions, NextRoundBuildsAnew)
{
    AddView("org.example", "Archive", {{"urn:a", "box"}});
    AddSchema("urn:a", {{"box", "Box", false}});
    EXPECT_TRUE(Initialize());
    MetadataAPITerminate();
    AddView("org.example", "More", {{"urn:a", "box"}});
    EXPECT_TRUE(Initialize());
    EXPECT_EQ(GetGlobalKIVMetadataVectorSize(), 2U);
    MetadataAPITerminate();
}

TEST_F(CustomDefinitions, LabelsKeepEveryUnit)
{
    AddView("org.example", "Archive", {{"urn:a", "box"}});
    auto schema = std::make_shared<kivmetadata::SchemaDefinition>();
    auto property = std::make_shared<kivmetadata::PropertyDefinition>();
    property->name = "box";
    property->label = u"\u7bb1\U0001F4E6";
    schema->properties.push_back(property);
    Get().schemas.push_back(schema);
    EXPECT_TRUE(Initialize());
    const auto* record = static_cast<const KIVMetadataRecord*>(GetGlobalKIVMetadataVector());
    ASSERT_NE(record, nullptr);
    const std::vector<std::uint16_t> units(record->label, record->label + 4);
    EXPECT_EQ(units, (std::vector<std::uint16_t>{0x7BB1, 0xD83D, 0xDCE6, 0}));
    MetadataAPITerminate();
}

}  // namespace
