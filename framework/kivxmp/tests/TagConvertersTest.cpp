#include "framework/kivxmp/src/TagConverters.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "framework/kivxmp/tests/TagSamples.h"

namespace kivxmp::photo {
namespace {

using namespace std::string_view_literals;

struct PropertyCase {
    const char* name;
    std::vector<Value> values;
    const char* property;
    const char* want;
};

void Check(const std::vector<PropertyCase>& rows)
{
    for (const PropertyCase& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(MapOne(row.values, row.property), row.want);
    }
}

TEST(TagConverters, Precedence)
{
    const Value caption = Named("Exif.Image.ImageDescription", Text("by Exif"));
    const Value blank = Named("Exif.Image.ImageDescription", Text("        "));
    const Value iim = Named("Iptc.Application2.Caption", Text("by IIM"));
    const Value windows = Named("Exif.Image.XPSubject", Text("w\0"sv));
    Check({
        {"Exif first",
         {iim, windows, caption},
         "dc:description",
         "dc:description[@x-default] = by Exif (Exif.Image.ImageDescription)"},
        {"a blank says nothing",
         {windows, blank, iim},
         "dc:description",
         "dc:description[@x-default] = by IIM (Iptc.Application2.Caption)"},
        {"Windows last",
         {windows},
         "dc:description",
         "dc:description[@x-default] = w (Exif.Image.XPSubject)"},
        {"whole lists, never joined",
         {Named("Exif.Image.Artist", Text("Jo")), Named("Iptc.Application2.Byline", Text("Jo")),
          Named("Iptc.Application2.Byline", Text("Kim"))},
         "dc:creator",
         "dc:creator seq = Jo (Exif.Image.Artist)"},
        {"dates",
         {Named("Iptc.Application2.DateCreated", Text("20200101")),
          Named("Exif.Photo.DateTimeOriginal", Text("0000:00:00 00:00:00"))},
         "photoshop:DateCreated",
         "photoshop:DateCreated = 2020-01-01 (Iptc.Application2.DateCreated)"},
        {"the standard's lens before the maker's",
         {Named("Exif.Canon.LensModel", Text("maker's")),
          Named("Exif.Photo.LensModel", Text("standard"))},
         "aux:Lens",
         "aux:Lens = standard (Exif.Photo.LensModel)"},
        {"of doubled tags the first",
         {Named("Exif.Image.Make", Text("one")), Named("Exif.Image.Make", Text("two"))},
         "tiff:Make",
         "tiff:Make = one (Exif.Image.Make)"},
        {"a tag that nobody knows", {Named("Exif.Image.Unknown", Text("x"))}, "tiff:Unknown", ""},
    });
}

TEST(TagConverters, Texts)
{
    const Value utf8 = Named("Iptc.Envelope.CharacterSet", Text("\x1B%G"));
    const Value latin = Named("Iptc.Envelope.CharacterSet", Text("\x1B.A"));
    const auto keyword = [](std::string_view text) {
        return Named("Iptc.Application2.Keywords", Text(text));
    };
    const auto rights = [](std::string_view text) {
        return Named("Exif.Image.Copyright", Text(text));
    };
    Check({
        {"keywords",
         {keyword("sea"), keyword("  "), keyword("sky ")},
         "dc:subject",
         "dc:subject bag = sea | sky (Iptc.Application2.Keywords)"},
        {"UTF-8",
         {utf8, keyword("\xC3\xA4")},
         "dc:subject",
         "dc:subject bag = \xC3\xA4 (Iptc.Application2.Keywords)"},
        {"Latin-1",
         {latin, keyword("\xE4")},
         "dc:subject",
         "dc:subject bag = \xC3\xA4 (Iptc.Application2.Keywords)"},
        {"each by itself",
         {keyword("\xE4"), keyword("\xC3\xA4")},
         "dc:subject",
         "dc:subject bag = \xC3\xA4 | \xC3\xA4 (Iptc.Application2.Keywords)"},
        {"photographer and editor",
         {rights("(c) Jo\0(c) Press\0"sv)},
         "dc:rights",
         "dc:rights[@x-default] = (c) Jo\n(c) Press (Exif.Image.Copyright)"},
        {"editor alone",
         {rights(" \0(c) Press\0"sv)},
         "dc:rights",
         "dc:rights[@x-default] = (c) Press (Exif.Image.Copyright)"},
        {"artists in quotes",
         {Named("Exif.Image.Artist", Text(R"("Doe; Jo"; Kim)"))},
         "dc:creator",
         "dc:creator seq = Doe; Jo | Kim (Exif.Image.Artist)"},
        {"no genre",
         {Named("Iptc.Application2.ObjectAttribute", Text("035:"))},
         "Iptc4xmpCore:IntellectualGenre",
         ""},
        {"no genre's number",
         {Named("Iptc.Application2.ObjectAttribute", Text("Interview"))},
         "Iptc4xmpCore:IntellectualGenre",
         ""},
        {"subjects",
         {Named("Iptc.Application2.Subject", Text("IPTC:15054000:sport::")),
          Named("Iptc.Application2.Subject", Text("IPTC:1505:short:")),
          Named("Iptc.Application2.Subject", Text("no code"))},
         "Iptc4xmpCore:SubjectCode",
         "Iptc4xmpCore:SubjectCode bag = 15054000 (Iptc.Application2.Subject)"},
        {"urgency beyond the scale",
         {Named("Iptc.Application2.Urgency", Text("9"))},
         "photoshop:Urgency",
         ""},
        {"a version that is none",
         {Named("Exif.Photo.ExifVersion", Text("v2.3"))},
         "exif:ExifVersion",
         ""},
        {"big-endian UTF-16 is not how Windows writes",
         {Named("Exif.Image.XPTitle", Text("H\0\xE4\0\0\0"sv))},
         "dc:title",
         "dc:title[@x-default] = H\xC3\xA4 (Exif.Image.XPTitle)"},
    });
}

TEST(TagConverters, Dates)
{
    const Value taken = Named("Exif.Photo.DateTimeOriginal", Text("2024:05:03 12:34:56\0"sv));
    Check({
        {"fraction and zone",
         {taken, Named("Exif.Photo.SubSecTimeOriginal", Text("123\0"sv)),
          Named("Exif.Photo.OffsetTimeOriginal", Text("+02:00\0"sv))},
         "exif:DateTimeOriginal",
         "exif:DateTimeOriginal = 2024-05-03T12:34:56.123+02:00 (Exif.Photo.DateTimeOriginal)"},
        {"of another date",
         {taken, Named("Exif.Photo.SubSecTime", Text("5")),
          Named("Exif.Photo.OffsetTimeDigitized", Text("+02:00"))},
         "exif:DateTimeOriginal",
         "exif:DateTimeOriginal = 2024-05-03T12:34:56 (Exif.Photo.DateTimeOriginal)"},
        {"digitized",
         {Named("Exif.Photo.DateTimeDigitized", Text("2024:05:03 12:34:56")),
          Named("Exif.Photo.SubSecTimeDigitized", Text("5")),
          Named("Exif.Photo.OffsetTimeDigitized", Text("-03:00"))},
         "xmp:CreateDate",
         "xmp:CreateDate = 2024-05-03T12:34:56.5-03:00 (Exif.Photo.DateTimeDigitized)"},
        {"changed",
         {Named("Exif.Image.DateTime", Text("2024:05:03 12:34:56")),
          Named("Exif.Photo.SubSecTime", Text("5")),
          Named("Exif.Photo.OffsetTime", Text("+00:00"))},
         "xmp:ModifyDate",
         "xmp:ModifyDate = 2024-05-03T12:34:56.5+00:00 (Exif.Image.DateTime)"},
        {"IIM's date and time",
         {Named("Iptc.Application2.DateCreated", Text("20240503")),
          Named("Iptc.Application2.TimeCreated", Text("123456+0200"))},
         "photoshop:DateCreated",
         "photoshop:DateCreated = 2024-05-03T12:34:56+02:00 (Iptc.Application2.DateCreated)"},
        {"IIM's digitization",
         {Named("Iptc.Application2.DigitizationDate", Text("20240503")),
          Named("Iptc.Application2.DigitizationTime", Text("123456")),
          Named("Iptc.Application2.TimeCreated", Text("000000+0200"))},
         "xmp:CreateDate",
         "xmp:CreateDate = 2024-05-03T12:34:56 (Iptc.Application2.DigitizationDate)"},
        {"a time alone",
         {Named("Iptc.Application2.TimeCreated", Text("123456+0200"))},
         "photoshop:DateCreated",
         ""},
        {"satellites without a date: the day of the photo",
         {taken, Named("Exif.GPSInfo.GPSTimeStamp", Ratios({{10, 1}, {34, 1}, {56, 1}}))},
         "exif:GPSTimeStamp",
         "exif:GPSTimeStamp = 2024-05-03T10:34:56Z (Exif.GPSInfo.GPSTimeStamp)"},
        {"nobody tells the day",
         {Named("Exif.GPSInfo.GPSTimeStamp", Ratios({{10, 1}, {34, 1}, {56, 1}}))},
         "exif:GPSTimeStamp",
         ""},
    });
}

TEST(TagConverters, Places)
{
    const auto at = [](std::vector<Ratio> parts, const char* side) {
        return std::vector<Value>{Named("Exif.GPSInfo.GPSLatitude", Ratios(std::move(parts))),
                                  Named("Exif.GPSInfo.GPSLatitudeRef", Text(side))};
    };
    const auto want = [](const std::string& place) {
        return "exif:GPSLatitude = " + place + " (Exif.GPSInfo.GPSLatitude)";
    };
    struct Row {
        std::vector<Ratio> parts;
        const char* side;
        std::string want;
    };
    const Row rows[] = {
        {{{48, 1}, {51, 1}, {30, 1}}, "N", want("48,51.5000N")},
        {{{33, 1}, {515, 10}, {0, 1}}, "S", want("33,51.5000S")},
        {{{488583, 10000}, {0, 1}, {0, 1}}, "N", want("48,51.4980N")},
        {{{0, 1}, {0, 1}, {1, 1000}}, "N", want("0,0.00001667N")},
        {{{90, 1}, {0, 1}, {0, 1}}, "N", want("90,0.0000N")},
        {{{48, 1}, {59, 1}, {5999999999, 100000000}}, "N", want("49,0.0000N")},
        // Given in degrees, or in degrees and minutes, only.
        {{{48, 1}}, "N", want("48,0.0000N")},
        {{{48, 1}, {30, 1}, {0, 0}}, "N", want("48,30.0000N")},
        // Nothing.
        {{{90, 1}, {0, 1}, {1, 1}}, "N", ""},
        {{{48, 0}, {30, 1}, {0, 1}}, "N", ""},
        {{{48, 1}, {30, 0}, {0, 1}}, "N", ""},
        {{{0, 0}, {0, 0}, {0, 0}}, "N", ""},
        {{{48, 1}, {51, 1}, {30, 1}}, "E", ""},
        {{{48, 1}, {51, 1}, {30, 1}}, "", ""},
        {{{-48, 1}, {51, 1}, {30, 1}}, "N", ""},
        {{}, "N", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.want);
        EXPECT_EQ(MapOne(at(row.parts, row.side), "exif:GPSLatitude"), row.want);
    }
    Check({
        {"a longitude goes farther",
         {Named("Exif.GPSInfo.GPSLongitude", Ratios({{179, 1}, {59, 1}, {0, 1}})),
          Named("Exif.GPSInfo.GPSLongitudeRef", Text("W\0"sv))},
         "exif:GPSLongitude",
         "exif:GPSLongitude = 179,59.0000W (Exif.GPSInfo.GPSLongitude)"},
        {"no side",
         {Named("Exif.GPSInfo.GPSLongitude", Ratios({{179, 1}, {59, 1}, {0, 1}}))},
         "exif:GPSLongitude",
         ""},
    });
}

TEST(TagConverters, Numbers)
{
    Check({
        {"no denominator",
         {Named("Exif.Photo.ExposureBiasValue", Ratios({{1, 0}}))},
         "exif:ExposureBiasValue",
         ""},
        {"zero is a bias",
         {Named("Exif.Photo.ExposureBiasValue", Ratios({{0, 2}}))},
         "exif:ExposureBiasValue",
         "exif:ExposureBiasValue = 0/2 (Exif.Photo.ExposureBiasValue)"},
        {"and no exposure",
         {Named("Exif.Photo.ExposureTime", Ratios({{0, 1}}))},
         "exif:ExposureTime",
         ""},
        {"nor less", {Named("Exif.Photo.FNumber", Ratios({{-28, 10}}))}, "exif:FNumber", ""},
        {"unknown sensitivity",
         {Named("Exif.Photo.ISOSpeedRatings", Whole({0}))},
         "exif:ISOSpeedRatings",
         ""},
        {"two sensitivities",
         {Named("Exif.Photo.ISOSpeedRatings", Whole({100, 200}))},
         "exif:ISOSpeedRatings",
         "exif:ISOSpeedRatings seq = 100 | 200 (Exif.Photo.ISOSpeedRatings)"},
        {"a ratio for a whole",
         {Named("Exif.Image.Orientation", Ratios({{6, 2}}))},
         "tiff:Orientation",
         ""},
        {"a text for a number", {Named("Exif.Photo.FNumber", Text("2.8"))}, "exif:FNumber", ""},
        {"no numbers", {Named("Exif.Photo.FNumber", Ratios({}))}, "exif:FNumber", ""},
        {"not rated", {Named("Exif.Image.Rating", Whole({0}))}, "xmp:Rating", ""},
        {"rated beyond the scale", {Named("Exif.Image.Rating", Whole({99}))}, "xmp:Rating", ""},
        {"a lens nobody knows",
         {Named("Exif.Photo.LensSpecification", Ratios({{0, 0}, {0, 0}, {0, 0}, {0, 0}}))},
         "aux:LensInfo",
         ""},
        {"half a lens",
         {Named("Exif.Photo.LensSpecification", Ratios({{24, 1}, {70, 1}}))},
         "aux:LensInfo",
         ""},
        {"flash off",
         {Named("Exif.Photo.Flash", Whole({0x10}))},
         "exif:Flash",
         "exif:Flash {Fired=False Return=0 Mode=2 Function=False RedEyeMode=False} "
         "(Exif.Photo.Flash)"},
        {"red eyes, no flash there",
         {Named("Exif.Photo.Flash", Whole({0x67}))},
         "exif:Flash",
         "exif:Flash {Fired=True Return=3 Mode=0 Function=True RedEyeMode=True} "
         "(Exif.Photo.Flash)"},
        {"no flash's number", {Named("Exif.Photo.Flash", Whole({65535}))}, "exif:Flash", ""},
        {"the size of a preview",
         {Named("Exif.Image.ImageWidth", Whole({160})),
          Named("Exif.Image.NewSubfileType", Whole({1}))},
         "tiff:ImageWidth",
         ""},
        {"the size of the picture",
         {Named("Exif.Image.ImageWidth", Whole({6000})),
          Named("Exif.Image.NewSubfileType", Whole({0}))},
         "tiff:ImageWidth",
         "tiff:ImageWidth = 6000 (Exif.Image.ImageWidth)"},
        {"satellites' version cut",
         {Named("Exif.GPSInfo.GPSVersionID", Text("\2\3"))},
         "exif:GPSVersionID",
         ""},
    });
}

TEST(TagConverters, ManyDatasets)
{
    std::vector<Value> values(5000, Named("Iptc.Application2.Keywords", Text("x")));
    const std::vector<MappedProperty> mapped = Map(values);
    ASSERT_EQ(mapped.size(), 1u);
    EXPECT_EQ(mapped[0].texts.size(), 1024u);
}

}  // namespace
}  // namespace kivxmp::photo
