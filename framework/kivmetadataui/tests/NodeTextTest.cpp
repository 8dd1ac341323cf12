#include "framework/kivmetadataui/src/NodeText.h"

#include <string>

#include "framework/kivmetadataui/tests/Samples.h"

#include <gtest/gtest.h>

namespace kivmetadataui {
namespace {

using samples::Utf8;

std::string Show(const std::string& property, const std::string& path)
{
    const auto meta = samples::Parse(property);
    const kivxmp::Node* const node = meta->Find(path);
    return node == nullptr ? "nothing there" : Utf8(NodeText(*node));
}

struct TextCase {
    const char* property;
    const char* path;
    const char* want;
};

constexpr TextCase kTextCases[] = {
    {"<xmp:Label>Red</xmp:Label>", "xmp:Label", "Red"},
    {"<dc:subject><rdf:Bag><rdf:li>sea</rdf:li><rdf:li>sky</rdf:li></rdf:Bag></dc:subject>",
     "dc:subject", "sea; sky"},
    {"<dc:title><rdf:Alt><rdf:li xml:lang='x-default'>Sea</rdf:li>"
     "<rdf:li xml:lang='de'>Meer</rdf:li></rdf:Alt></dc:title>",
     "dc:title", "x-default: Sea; de: Meer"},
    {"<Iptc4xmpCore:CreatorContactInfo rdf:parseType='Resource'>"
     "<Iptc4xmpCore:CiAdrCity>Bonn</Iptc4xmpCore:CiAdrCity>"
     "<Iptc4xmpCore:CiEmailWork>a@b.c</Iptc4xmpCore:CiEmailWork>"
     "</Iptc4xmpCore:CreatorContactInfo>",
     "Iptc4xmpCore:CreatorContactInfo", "CiAdrCity: Bonn; CiEmailWork: a@b.c"},
    {"<dc:subject><rdf:Bag/></dc:subject>", "dc:subject", ""},
};

TEST(NodeText, Cases)
{
    for (const TextCase& row : kTextCases) {
        SCOPED_TRACE(row.property);
        EXPECT_EQ(Show(row.property, row.path), row.want);
    }
}

TEST(NodeText, UsesTheDefinitionsLabels)
{
    const auto meta = samples::Parse(
        "<Iptc4xmpCore:CreatorContactInfo rdf:parseType='Resource'>"
        "<Iptc4xmpCore:CiAdrCity>Bonn</Iptc4xmpCore:CiAdrCity>"
        "</Iptc4xmpCore:CreatorContactInfo>");
    auto definition =
        samples::MakeProperty("CreatorContactInfo", kivmetadata::ValueType::kStructure);
    definition->membersNamespace = samples::kIptc;
    auto member = samples::MakeProperty("CiAdrCity", kivmetadata::ValueType::kText);
    member->label = u"Ort";
    definition->members = {member};
    const kivxmp::Node* const node = meta->Find("Iptc4xmpCore:CreatorContactInfo");
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(NodeText(*node, definition.get()), u"Ort: Bonn");
}

TEST(NodeText, CutsWhatNobodyReads)
{
    std::string text = "<xmp:Label>" + std::string(kMostShownUnits - 1, 'x');
    for (int i = 0; i < 10; ++i) {
        text += "\xF0\x9F\x98\x80";
    }
    text += "</xmp:Label>";
    const auto meta = samples::Parse(text);
    const kivcore::UString shown = NodeText(*meta->Find("xmp:Label"));
    EXPECT_EQ(shown.size(), kMostShownUnits) << "no pair of surrogates is cut in two";
    EXPECT_EQ(shown.back(), u'…');
    EXPECT_EQ(shown[shown.size() - 2], u'x');
}

struct CameraCase {
    const char* name;
    const char* value;
    const char* want;
};

constexpr CameraCase kCameraCases[] = {
    {"ExposureTime", "1/250", "1/250 s"},
    {"ExposureTime", "10/2500", "1/250 s"},
    {"ExposureTime", "1/3", "0.3 s"},
    {"ExposureTime", "25/10", "2.5 s"},
    {"ExposureTime", "30/1", "30 s"},
    {"ExposureTime", "0/0", ""},
    {"ExposureTime", "0/1", ""},
    {"ExposureTime", "soon", ""},
    {"ShutterSpeedValue", "8/1", "1/256 s"},
    {"FNumber", "28/10", "f/2.8"},
    {"FNumber", "8/1", "f/8"},
    {"ApertureValue", "3/1", "f/2.8"},
    {"FocalLength", "350/10", "35 mm"},
    {"FocalLengthIn35mmFilm", "52", "52 mm"},
    {"PhotographicSensitivity", "200", "ISO 200"},
    {"ExposureBiasValue", "1/3", "+0.33 EV"},
    {"ExposureBiasValue", "-2/3", "-0.67 EV"},
    {"ExposureBiasValue", "0/1", "0 EV"},
    {"GPSLatitude", "52,31.2N", "52° 31.2′ N"},
    {"GPSLongitude", "13,24,30E", "13° 24′ 30″ E"},
    {"GPSLatitude", "52N", ""},
    {"GPSLatitude", "52,31.2X", ""},
    {"GPSLatitude", "1,2,3,4N", ""},
    {"GPSAltitude", "350/10", "35 m"},
    {"SubjectDistance", "4294967295/1", ""},
    {"MeteringMode", "5", ""},
};

TEST(CameraText, Cases)
{
    for (const CameraCase& row : kCameraCases) {
        SCOPED_TRACE(std::string(row.name) + " " + row.value);
        const std::string name = std::string("exif:") + row.name;
        const auto meta = samples::Parse("<" + name + ">" + row.value + "</" + name + ">");
        EXPECT_EQ(Utf8(CameraText(samples::kExif, row.name, *meta->Find(name))), row.want);
    }
}

TEST(CameraText, TakesListsOfOne)
{
    const auto meta = samples::Parse(
        "<exif:ISOSpeedRatings><rdf:Seq><rdf:li>400</rdf:li></rdf:Seq></exif:ISOSpeedRatings>");
    EXPECT_EQ(CameraText(samples::kExif, "ISOSpeedRatings", *meta->Find("exif:ISOSpeedRatings")),
              u"ISO 400");
    EXPECT_EQ(CameraText(samples::kDc, "ISOSpeedRatings", *meta->Find("exif:ISOSpeedRatings")),
              u"");
}

}  // namespace
}  // namespace kivmetadataui
