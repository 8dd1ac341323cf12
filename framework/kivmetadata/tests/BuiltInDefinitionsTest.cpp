// The built-in definitions against the standards: XMP (ISO 16684-1, and the further properties that
// are published with it), IPTC Photo Metadata Standard (Core), Exif metadata for XMP (CIPA DC-010).

#include <algorithm>
#include <iterator>
#include <set>
#include <string>

#include <gmock/gmock.h>

#include "framework/kivmetadata/tests/DefinitionsFixture.h"

namespace kivmetadata {

namespace {

using enum ValueType;

class BuiltInDefinitionsTest : public DefinitionsFixture {
protected:
    BuiltInDefinitionsTest()
    {
        std::filesystem::create_directories(PathOf("app/Required"));
        std::filesystem::copy(KIV_RESOURCES_DIR "/definitions", PathOf("app/Required/Metadata"),
                              std::filesystem::copy_options::recursive);
        LoadAllViewDefinitions();
    }

    /// Null where there is none.
    static std::shared_ptr<const PropertyDefinition> Find(const std::string& uri,
                                                          const std::string& name)
    {
        const auto schemas = CommonSchemaDefinitions();
        for (auto at = schemas->Begin(); !at.AtEnd(); at.Next()) {
            for (const auto& property : at.Current().properties) {
                if (at.Current().namespaceUri == uri && property->name == name) {
                    return property;
                }
            }
        }
        return nullptr;
    }

    /// "prefix:name" of all properties.
    static std::set<std::string> Names()
    {
        std::set<std::string> names;
        const auto schemas = CommonSchemaDefinitions();
        for (auto at = schemas->Begin(); !at.AtEnd(); at.Next()) {
            for (const auto& property : at.Current().properties) {
                names.insert(at.Current().prefix + ':' + property->name);
            }
        }
        return names;
    }
};

struct NamespaceRow {
    const char* prefix;
    const char* uri;
};

constexpr NamespaceRow kNamespaceRows[] = {
    {"dc", "http://purl.org/dc/elements/1.1/"},
    {"xmp", "http://ns.adobe.com/xap/1.0/"},
    {"xmpRights", "http://ns.adobe.com/xap/1.0/rights/"},
    {"photoshop", "http://ns.adobe.com/photoshop/1.0/"},
    {"Iptc4xmpCore", "http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/"},
    {"tiff", "http://ns.adobe.com/tiff/1.0/"},
    {"exif", "http://ns.adobe.com/exif/1.0/"},
    {"aux", "http://ns.adobe.com/exif/1.0/aux/"},
    {"exifEX", "http://cipa.jp/exif/1.0/"},
};

enum class Access { kEditable, kReadOnly };

struct PropertyRow {
    const char* name;  // with prefix
    ValueType type;
    Access access = Access::kEditable;
    const char* choices = "";  // values of a closed choice
};

constexpr Access kRO = Access::kReadOnly;

constexpr PropertyRow kPropertyRows[] = {
    {"dc:contributor", kBag},
    {"dc:coverage", kText},
    {"dc:creator", kSequence},
    {"dc:date", kSequence},
    {"dc:description", kLanguageAlternative},
    {"dc:format", kText, kRO},
    {"dc:identifier", kText},
    {"dc:language", kBag},
    {"dc:publisher", kBag},
    {"dc:relation", kBag},
    {"dc:rights", kLanguageAlternative},
    {"dc:source", kText},
    {"dc:subject", kBag},
    {"dc:title", kLanguageAlternative},
    {"dc:type", kBag},
    {"xmp:BaseURL", kText},
    {"xmp:CreateDate", kDate},
    {"xmp:CreatorTool", kText, kRO},
    {"xmp:Identifier", kBag},
    {"xmp:Label", kText},
    {"xmp:MetadataDate", kDate, kRO},
    {"xmp:ModifyDate", kDate, kRO},
    {"xmp:Nickname", kText},
    {"xmp:Rating", kRating},
    {"xmpRights:Certificate", kText},
    {"xmpRights:Marked", kBoolean},
    {"xmpRights:Owner", kBag},
    {"xmpRights:UsageTerms", kLanguageAlternative},
    {"xmpRights:WebStatement", kText},
    {"photoshop:AuthorsPosition", kText},
    {"photoshop:CaptionWriter", kText},
    {"photoshop:Category", kText},
    {"photoshop:City", kText},
    {"photoshop:Country", kText},
    {"photoshop:Credit", kText},
    {"photoshop:DateCreated", kDate},
    {"photoshop:Headline", kText},
    {"photoshop:Instructions", kLongText},
    {"photoshop:Source", kText},
    {"photoshop:State", kText},
    {"photoshop:SupplementalCategories", kBag},
    {"photoshop:TransmissionReference", kText},
    {"photoshop:Urgency", kInteger},
    {"Iptc4xmpCore:AltTextAccessibility", kLanguageAlternative},
    {"Iptc4xmpCore:CountryCode", kText},
    {"Iptc4xmpCore:CreatorContactInfo", kStructure},
    {"Iptc4xmpCore:ExtDescrAccessibility", kLanguageAlternative},
    {"Iptc4xmpCore:IntellectualGenre", kText},
    {"Iptc4xmpCore:Location", kText},
    {"Iptc4xmpCore:Scene", kBag},
    {"Iptc4xmpCore:SubjectCode", kBag},
    {"tiff:ImageLength", kInteger, kRO},
    {"tiff:ImageWidth", kInteger, kRO},
    {"tiff:Make", kText, kRO},
    {"tiff:Model", kText, kRO},
    {"tiff:Orientation", kChoice, kRO, "1 2 3 4 5 6 7 8"},
    {"tiff:ResolutionUnit", kChoice, kRO, "2 3"},
    {"tiff:Software", kText, kRO},
    {"tiff:XResolution", kRational, kRO},
    {"tiff:YResolution", kRational, kRO},
    {"exif:ColorSpace", kChoice, kRO, "1 65535"},
    {"exif:DateTimeDigitized", kDate, kRO},
    {"exif:DateTimeOriginal", kDate, kRO},
    {"exif:ExposureBiasValue", kRational, kRO},
    {"exif:ExposureMode", kChoice, kRO, "0 1 2"},
    {"exif:ExposureProgram", kChoice, kRO, "0 1 2 3 4 5 6 7 8"},
    {"exif:ExposureTime", kRational, kRO},
    {"exif:FNumber", kRational, kRO},
    {"exif:FocalLength", kRational, kRO},
    {"exif:FocalLengthIn35mmFilm", kInteger, kRO},
    {"exif:GPSAltitude", kRational, kRO},
    {"exif:GPSAltitudeRef", kChoice, kRO, "0 1"},
    {"exif:GPSImgDirection", kRational, kRO},
    {"exif:GPSLatitude", kText, kRO},
    {"exif:GPSLongitude", kText, kRO},
    {"exif:GPSTimeStamp", kDate, kRO},
    {"exif:ISOSpeedRatings", kSequence, kRO},
    {"exif:LightSource", kChoice, kRO,
     "0 1 2 3 4 9 10 11 12 13 14 15 16 17 18 19 20 21 22 23 24 255"},
    {"exif:MeteringMode", kChoice, kRO, "0 1 2 3 4 5 6 255"},
    {"exif:PixelXDimension", kInteger, kRO},
    {"exif:PixelYDimension", kInteger, kRO},
    {"exif:SceneCaptureType", kChoice, kRO, "0 1 2 3"},
    {"exif:SubjectDistance", kRational, kRO},
    {"exif:WhiteBalance", kChoice, kRO, "0 1"},
    {"aux:Firmware", kText, kRO},
    {"aux:Lens", kText, kRO},
    {"aux:LensInfo", kText, kRO},
    {"aux:SerialNumber", kText, kRO},
    {"exifEX:BodySerialNumber", kText, kRO},
    {"exifEX:LensMake", kText, kRO},
    {"exifEX:LensModel", kText, kRO},
    {"exifEX:LensSerialNumber", kText, kRO},
    {"exifEX:PhotographicSensitivity", kInteger, kRO},
};

std::string UriOf(const std::string& prefix)
{
    const auto* const row =
        std::find_if(std::begin(kNamespaceRows), std::end(kNamespaceRows),
                     [&](const NamespaceRow& each) { return each.prefix == prefix; });
    return row == std::end(kNamespaceRows) ? std::string() : row->uri;
}

TEST_F(BuiltInDefinitionsTest, EveryFileIsRead)
{
    EXPECT_THAT(Trace(), testing::IsEmpty());
    EXPECT_THAT(Views(), testing::ElementsAre("com.orvan.xmp/description", "com.orvan.xmp/origin",
                                              "com.orvan.xmp/rights", "com.orvan.xmp/iptc",
                                              "com.orvan.xmp/dublin-core", "com.orvan.xmp/camera"));
}

TEST_F(BuiltInDefinitionsTest, NamespacesAreThoseOfTheStandards)
{
    const auto schemas = CommonSchemaDefinitions();
    auto at = schemas->Begin();
    for (const NamespaceRow& row : kNamespaceRows) {
        ASSERT_FALSE(at.AtEnd());
        EXPECT_EQ(at.Current().prefix, row.prefix);
        EXPECT_EQ(at.Current().namespaceUri, row.uri);
        EXPECT_FALSE(at.Current().label.empty());
        at.Next();
    }
    EXPECT_TRUE(at.AtEnd());
}

TEST_F(BuiltInDefinitionsTest, TypesAreThoseOfTheStandards)
{
    std::set<std::string> names = Names();
    for (const PropertyRow& row : kPropertyRows) {
        const std::string name = row.name;
        SCOPED_TRACE(name);
        const std::size_t colon = name.find(':');
        const auto property = Find(UriOf(name.substr(0, colon)), name.substr(colon + 1));
        ASSERT_NE(property, nullptr);
        names.erase(name);
        EXPECT_EQ(property->type, row.type);
        EXPECT_EQ(property->isReadOnly, row.access == Access::kReadOnly);
        std::string choices;
        for (const ChoiceDefinition& choice : property->choices) {
            choices += (choices.empty() ? "" : " ") + choice.value;
        }
        EXPECT_EQ(choices, row.choices);
        EXPECT_EQ(property->isClosedChoice, row.type == kChoice);
    }
    EXPECT_THAT(names, testing::IsEmpty()) << "these stand in no row";
}

TEST_F(BuiltInDefinitionsTest, ContactIsTheStructureOfTheStandard)
{
    const std::string uri = UriOf("Iptc4xmpCore");
    const auto contact = Find(uri, "CreatorContactInfo");
    ASSERT_NE(contact, nullptr);
    EXPECT_EQ(contact->membersNamespace, uri);
    std::set<std::string> members;
    for (const auto& member : contact->members) {
        members.insert(member->name);
    }
    EXPECT_THAT(members,
                testing::ElementsAre("CiAdrCity", "CiAdrCtry", "CiAdrExtadr", "CiAdrPcode",
                                     "CiAdrRegion", "CiEmailWork", "CiTelWork", "CiUrlWork"));
    // A postal address has lines.
    EXPECT_EQ(contact->members.front()->name, "CiAdrExtadr");
    EXPECT_EQ(contact->members.front()->type, kLongText);
}

TEST_F(BuiltInDefinitionsTest, UrgencyHasTheStandardsLimits)
{
    const auto urgency = Find(UriOf("photoshop"), "Urgency");
    ASSERT_NE(urgency, nullptr);
    EXPECT_EQ(urgency->minimum, 1);
    EXPECT_EQ(urgency->maximum, 8);
}

// A property that no view shows would be of no use, and one that two views show is one too many.
TEST_F(BuiltInDefinitionsTest, ViewsShowEachPropertyOnce)
{
    std::set<std::string> missing = Names();
    for (const auto& view : *CommonViewDefinitions()) {
        for (const auto& item : view->items) {
            const auto* const row = std::find_if(
                std::begin(kNamespaceRows), std::end(kNamespaceRows),
                [&](const NamespaceRow& each) { return each.uri == item->namespaceUri; });
            ASSERT_NE(row, std::end(kNamespaceRows)) << item->namespaceUri;
            EXPECT_EQ(missing.erase(row->prefix + (':' + item->propertyName)), 1u)
                << view->name << ": " << row->prefix << ':' << item->propertyName;
        }
    }
    EXPECT_THAT(missing, testing::IsEmpty());
}

TEST_F(BuiltInDefinitionsTest, OnlyTheCameraViewIsLeftOutOfAPlainDialog)
{
    for (const auto& view : *CommonViewDefinitions()) {
        SCOPED_TRACE(view->name);
        EXPECT_EQ(view->isCamera, view->name == "camera");
        EXPECT_FALSE(view->icon.empty());
        const bool showsReadOnlyOnly =
            std::all_of(view->items.begin(), view->items.end(), [](const auto& item) {
                return Find(item->namespaceUri, item->propertyName)->isReadOnly;
            });
        EXPECT_EQ(showsReadOnlyOnly, view->isCamera);
    }
}

}  // namespace

}  // namespace kivmetadata
