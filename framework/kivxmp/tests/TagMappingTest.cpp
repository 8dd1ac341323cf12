#include "framework/kivxmp/src/TagMapping.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "framework/kivxmp/tests/TagSamples.h"

namespace kivxmp::photo {
namespace {

using namespace std::string_view_literals;

// Where a row of the table is from.
constexpr char kMwg[] = "Metadata Working Group, Guidelines for Handling Image Metadata 2.0";
constexpr char kXmp2[] = "XMP Specification Part 2: TIFF, Exif, additional Exif";
constexpr char kCipa[] = "CIPA DC-010, Exif 2.3 metadata for XMP";
constexpr char kIptc[] = "IPTC Photo Metadata Standard: IIM and XMP of each property";
constexpr char kDng[] = "DNG Specification, with XMP Part 2 for the meaning of aux";
constexpr char kTiffEp[] = "ISO 12234-2 (TIFF/EP), by the name of Exif's tag";
constexpr char kMakerNotes[] = "XMP Part 2: aux comes from maker notes; tags as Exiv2 lists them";
constexpr char kWindows[] = "Windows photo metadata policies, for tags beside the standards";

struct MappingCase {
    std::string_view tag;
    Value value;
    std::string_view want;
    const char* from;
};

// One row for each row of the table.
std::vector<MappingCase> MappingCases()
{
    return {
        {"Exif.Image.ImageDescription", Text("A caption"), "dc:description[@x-default] = A caption",
         kMwg},
        {"Exif.Image.Artist", Text("Jo Doe; Kim"), "dc:creator seq = Jo Doe | Kim", kMwg},
        {"Exif.Image.Copyright", Text("(c) Jo"sv), "dc:rights[@x-default] = (c) Jo", kMwg},
        {"Exif.Photo.UserComment", Text("ASCII\0\0\0Hello"sv),
         "exif:UserComment[@x-default] = Hello", kXmp2},
        {"Exif.Image.Rating", Whole({4}), "xmp:Rating = 4", kWindows},
        {"Exif.Photo.DateTimeOriginal", Text("2024:05:03 12:34:56"),
         "exif:DateTimeOriginal = 2024-05-03T12:34:56", kXmp2},
        {"Exif.Photo.DateTimeOriginal", Text("2024:05:03 12:34:56"),
         "photoshop:DateCreated = 2024-05-03T12:34:56", kMwg},
        {"Exif.Image.DateTimeOriginal", Text("2024:05:03 12:34:56"),
         "exif:DateTimeOriginal = 2024-05-03T12:34:56", kTiffEp},
        {"Exif.Image.DateTimeOriginal", Text("2024:05:03 12:34:56"),
         "photoshop:DateCreated = 2024-05-03T12:34:56", kTiffEp},
        {"Exif.Photo.DateTimeDigitized", Text("2024:05:03 12:34:56"),
         "exif:DateTimeDigitized = 2024-05-03T12:34:56", kXmp2},
        {"Exif.Photo.DateTimeDigitized", Text("2024:05:03 12:34:56"),
         "xmp:CreateDate = 2024-05-03T12:34:56", kMwg},
        {"Exif.Image.DateTime", Text("2024:05:03 12:34:56"), "xmp:ModifyDate = 2024-05-03T12:34:56",
         kMwg},
        {"Exif.Image.Make", Text("Kivo"), "tiff:Make = Kivo", kXmp2},
        {"Exif.Image.Model", Text("Kivo 5"), "tiff:Model = Kivo 5", kXmp2},
        {"Exif.Image.Software", Text("Value "), "tiff:Software = Value", kXmp2},
        {"Exif.Image.Software", Text("Value "), "xmp:CreatorTool = Value", kMwg},
        {"Exif.Photo.CameraOwnerName", Text("Value "), "exifEX:CameraOwnerName = Value", kCipa},
        {"Exif.Photo.CameraOwnerName", Text("Value "), "aux:OwnerName = Value", kXmp2},
        {"Exif.Photo.BodySerialNumber", Text("Value "), "exifEX:BodySerialNumber = Value", kCipa},
        {"Exif.Photo.BodySerialNumber", Text("Value "), "aux:SerialNumber = Value", kXmp2},
        {"Exif.Photo.LensMake", Text("Value "), "exifEX:LensMake = Value", kCipa},
        {"Exif.Photo.LensModel", Text("Value "), "exifEX:LensModel = Value", kCipa},
        {"Exif.Photo.LensModel", Text("K 50mm F1.8  "), "aux:Lens = K 50mm F1.8", kXmp2},
        {"Exif.Photo.LensSerialNumber", Text("Value "), "exifEX:LensSerialNumber = Value", kCipa},
        {"Exif.Photo.LensSpecification", Ratios({{24, 1}, {70, 1}, {28, 10}, {0, 0}}),
         "exifEX:LensSpecification seq = 24/1 | 70/1 | 28/10 | 0/0", kCipa},
        {"Exif.Photo.LensSpecification", Ratios({{24, 1}, {70, 1}, {28, 10}, {0, 0}}),
         "aux:LensInfo = 24/1 70/1 28/10 0/0", kXmp2},
        {"Exif.Image.ImageWidth", Whole({3}), "tiff:ImageWidth = 3", kXmp2},
        {"Exif.Image.ImageLength", Whole({3}), "tiff:ImageLength = 3", kXmp2},
        {"Exif.Image.Orientation", Whole({6}), "tiff:Orientation = 6", kXmp2},
        {"Exif.Image.XResolution", Ratios({{72, 1}}), "tiff:XResolution = 72/1", kXmp2},
        {"Exif.Image.YResolution", Ratios({{72, 1}}), "tiff:YResolution = 72/1", kXmp2},
        {"Exif.Image.ResolutionUnit", Whole({2}), "tiff:ResolutionUnit = 2", kXmp2},
        {"Exif.Image.YCbCrPositioning", Whole({3}), "tiff:YCbCrPositioning = 3", kXmp2},
        {"Exif.Photo.PixelXDimension", Whole({3}), "exif:PixelXDimension = 3", kXmp2},
        {"Exif.Photo.PixelYDimension", Whole({3}), "exif:PixelYDimension = 3", kXmp2},
        {"Exif.Photo.ColorSpace", Whole({1}), "exif:ColorSpace = 1", kXmp2},
        {"Exif.Photo.CompressedBitsPerPixel", Ratios({{72, 1}}),
         "exif:CompressedBitsPerPixel = 72/1", kXmp2},
        {"Exif.Photo.Gamma", Ratios({{72, 1}}), "exifEX:Gamma = 72/1", kCipa},
        {"Exif.Photo.ImageUniqueID", Text("Value "), "exif:ImageUniqueID = Value", kXmp2},
        {"Exif.Photo.RelatedSoundFile", Text("Value "), "exif:RelatedSoundFile = Value", kXmp2},
        {"Exif.Photo.ExifVersion", Text("0232"), "exif:ExifVersion = 0232", kXmp2},
        {"Exif.Photo.FlashpixVersion", Text("0232"), "exif:FlashpixVersion = 0232", kXmp2},
        {"Exif.Photo.ExposureTime", Ratios({{1, 125}}), "exif:ExposureTime = 1/125", kXmp2},
        {"Exif.Photo.FNumber", Ratios({{28, 10}}), "exif:FNumber = 28/10", kXmp2},
        {"Exif.Photo.ExposureProgram", Whole({2}), "exif:ExposureProgram = 2", kXmp2},
        {"Exif.Photo.SpectralSensitivity", Text("Value "), "exif:SpectralSensitivity = Value",
         kXmp2},
        {"Exif.Photo.ISOSpeedRatings", Whole({400}), "exif:ISOSpeedRatings seq = 400", kXmp2},
        {"Exif.Photo.ISOSpeedRatings", Whole({3}), "exifEX:PhotographicSensitivity = 3", kCipa},
        {"Exif.Photo.SensitivityType", Whole({3}), "exifEX:SensitivityType = 3", kCipa},
        {"Exif.Photo.StandardOutputSensitivity", Whole({3}), "exifEX:StandardOutputSensitivity = 3",
         kCipa},
        {"Exif.Photo.RecommendedExposureIndex", Whole({3}), "exifEX:RecommendedExposureIndex = 3",
         kCipa},
        {"Exif.Photo.ISOSpeed", Whole({3}), "exifEX:ISOSpeed = 3", kCipa},
        {"Exif.Photo.ISOSpeedLatitudeyyy", Whole({3}), "exifEX:ISOSpeedLatitudeyyy = 3", kCipa},
        {"Exif.Photo.ISOSpeedLatitudezzz", Whole({3}), "exifEX:ISOSpeedLatitudezzz = 3", kCipa},
        {"Exif.Photo.ShutterSpeedValue", Ratios({{-1, 2}}), "exif:ShutterSpeedValue = -1/2", kXmp2},
        {"Exif.Photo.ApertureValue", Ratios({{72, 1}}), "exif:ApertureValue = 72/1", kXmp2},
        {"Exif.Photo.BrightnessValue", Ratios({{-30, 10}}), "exif:BrightnessValue = -30/10", kXmp2},
        {"Exif.Photo.ExposureBiasValue", Ratios({{-1, 3}}), "exif:ExposureBiasValue = -1/3", kXmp2},
        {"Exif.Photo.MaxApertureValue", Ratios({{72, 1}}), "exif:MaxApertureValue = 72/1", kXmp2},
        {"Exif.Photo.SubjectDistance", Ratios({{72, 1}}), "exif:SubjectDistance = 72/1", kXmp2},
        {"Exif.Photo.MeteringMode", Whole({5}), "exif:MeteringMode = 5", kXmp2},
        {"Exif.Photo.LightSource", Whole({3}), "exif:LightSource = 3", kXmp2},
        {"Exif.Photo.Flash", Whole({0x1D}),
         "exif:Flash {Fired=True Return=2 Mode=3 Function=False RedEyeMode=False}", kXmp2},
        {"Exif.Photo.FocalLength", Ratios({{50, 1}}), "exif:FocalLength = 50/1", kXmp2},
        {"Exif.Photo.FocalLengthIn35mmFilm", Whole({3}), "exif:FocalLengthIn35mmFilm = 3", kCipa},
        {"Exif.Photo.SubjectArea", Whole({10, 20, 30}), "exif:SubjectArea seq = 10 | 20 | 30",
         kXmp2},
        {"Exif.Photo.SubjectLocation", Whole({10, 20, 30}),
         "exif:SubjectLocation seq = 10 | 20 | 30", kXmp2},
        {"Exif.Photo.FlashEnergy", Ratios({{72, 1}}), "exif:FlashEnergy = 72/1", kXmp2},
        {"Exif.Photo.FocalPlaneXResolution", Ratios({{72, 1}}), "exif:FocalPlaneXResolution = 72/1",
         kXmp2},
        {"Exif.Photo.FocalPlaneYResolution", Ratios({{72, 1}}), "exif:FocalPlaneYResolution = 72/1",
         kXmp2},
        {"Exif.Photo.FocalPlaneResolutionUnit", Whole({3}), "exif:FocalPlaneResolutionUnit = 3",
         kXmp2},
        {"Exif.Photo.ExposureIndex", Ratios({{72, 1}}), "exif:ExposureIndex = 72/1", kXmp2},
        {"Exif.Photo.SensingMethod", Whole({3}), "exif:SensingMethod = 3", kXmp2},
        {"Exif.Photo.FileSource", Text("\x03"), "exif:FileSource = 3", kXmp2},
        {"Exif.Photo.SceneType", Text("\x01"), "exif:SceneType = 1", kXmp2},
        {"Exif.Photo.CustomRendered", Whole({3}), "exif:CustomRendered = 3", kXmp2},
        {"Exif.Photo.ExposureMode", Whole({3}), "exif:ExposureMode = 3", kXmp2},
        {"Exif.Photo.WhiteBalance", Whole({3}), "exif:WhiteBalance = 3", kXmp2},
        {"Exif.Photo.DigitalZoomRatio", Ratios({{72, 1}}), "exif:DigitalZoomRatio = 72/1", kXmp2},
        {"Exif.Photo.SceneCaptureType", Whole({3}), "exif:SceneCaptureType = 3", kXmp2},
        {"Exif.Photo.GainControl", Whole({3}), "exif:GainControl = 3", kXmp2},
        {"Exif.Photo.Contrast", Whole({3}), "exif:Contrast = 3", kXmp2},
        {"Exif.Photo.Saturation", Whole({3}), "exif:Saturation = 3", kXmp2},
        {"Exif.Photo.Sharpness", Whole({3}), "exif:Sharpness = 3", kXmp2},
        {"Exif.Photo.SubjectDistanceRange", Whole({3}), "exif:SubjectDistanceRange = 3", kXmp2},
        {"Exif.GPSInfo.GPSVersionID", Text("\2\3\0\0"sv), "exif:GPSVersionID = 2.3.0.0", kXmp2},
        {"Exif.GPSInfo.GPSLatitude", Ratios({{48, 1}, {51, 1}, {2988, 100}}),
         "exif:GPSLatitude = 48,51.4980N", kXmp2},
        {"Exif.GPSInfo.GPSLongitude", Ratios({{2, 1}, {1767, 100}, {0, 1}}),
         "exif:GPSLongitude = 2,17.6700E", kXmp2},
        {"Exif.GPSInfo.GPSAltitudeRef", Text("\x01"), "exif:GPSAltitudeRef = 1", kXmp2},
        {"Exif.GPSInfo.GPSAltitude", Ratios({{3542, 100}}), "exif:GPSAltitude = 3542/100", kXmp2},
        {"Exif.GPSInfo.GPSTimeStamp", Ratios({{10, 1}, {34, 1}, {56, 1}}),
         "exif:GPSTimeStamp = 2024-05-03T10:34:56Z", kXmp2},
        {"Exif.GPSInfo.GPSSatellites", Text("Value "), "exif:GPSSatellites = Value", kXmp2},
        {"Exif.GPSInfo.GPSStatus", Text("Value "), "exif:GPSStatus = Value", kXmp2},
        {"Exif.GPSInfo.GPSMeasureMode", Text("Value "), "exif:GPSMeasureMode = Value", kXmp2},
        {"Exif.GPSInfo.GPSDOP", Ratios({{72, 1}}), "exif:GPSDOP = 72/1", kXmp2},
        {"Exif.GPSInfo.GPSSpeedRef", Text("Value "), "exif:GPSSpeedRef = Value", kXmp2},
        {"Exif.GPSInfo.GPSSpeed", Ratios({{72, 1}}), "exif:GPSSpeed = 72/1", kXmp2},
        {"Exif.GPSInfo.GPSTrackRef", Text("Value "), "exif:GPSTrackRef = Value", kXmp2},
        {"Exif.GPSInfo.GPSTrack", Ratios({{72, 1}}), "exif:GPSTrack = 72/1", kXmp2},
        {"Exif.GPSInfo.GPSImgDirectionRef", Text("Value "), "exif:GPSImgDirectionRef = Value",
         kXmp2},
        {"Exif.GPSInfo.GPSImgDirection", Ratios({{27150, 100}}), "exif:GPSImgDirection = 27150/100",
         kXmp2},
        {"Exif.GPSInfo.GPSMapDatum", Text("WGS-84"), "exif:GPSMapDatum = WGS-84", kXmp2},
        {"Exif.GPSInfo.GPSDestLatitude", Ratios({{48, 1}, {51, 1}, {2988, 100}}),
         "exif:GPSDestLatitude = 48,51.4980N", kXmp2},
        {"Exif.GPSInfo.GPSDestLongitude", Ratios({{2, 1}, {1767, 100}, {0, 1}}),
         "exif:GPSDestLongitude = 2,17.6700E", kXmp2},
        {"Exif.GPSInfo.GPSDestBearingRef", Text("Value "), "exif:GPSDestBearingRef = Value", kXmp2},
        {"Exif.GPSInfo.GPSDestBearing", Ratios({{72, 1}}), "exif:GPSDestBearing = 72/1", kXmp2},
        {"Exif.GPSInfo.GPSDestDistanceRef", Text("Value "), "exif:GPSDestDistanceRef = Value",
         kXmp2},
        {"Exif.GPSInfo.GPSDestDistance", Ratios({{72, 1}}), "exif:GPSDestDistance = 72/1", kXmp2},
        {"Exif.GPSInfo.GPSProcessingMethod", Text("ASCII\0\0\0GPS"sv),
         "exif:GPSProcessingMethod = GPS", kXmp2},
        {"Exif.GPSInfo.GPSAreaInformation", Text("ASCII\0\0\0GPS"sv),
         "exif:GPSAreaInformation = GPS", kXmp2},
        {"Exif.GPSInfo.GPSDifferential", Whole({3}), "exif:GPSDifferential = 3", kXmp2},
        {"Exif.GPSInfo.GPSHPositioningError", Ratios({{72, 1}}), "exif:GPSHPositioningError = 72/1",
         kCipa},
        {"Iptc.Application2.ObjectName", Text("Harbour"), "dc:title[@x-default] = Harbour", kIptc},
        {"Iptc.Application2.Caption", Text("Harbour"), "dc:description[@x-default] = Harbour",
         kIptc},
        {"Iptc.Application2.Byline", Text("Jo Doe"), "dc:creator seq = Jo Doe", kIptc},
        {"Iptc.Application2.Copyright", Text("Harbour"), "dc:rights[@x-default] = Harbour", kIptc},
        {"Iptc.Application2.Keywords", Text("sea"), "dc:subject bag = sea", kIptc},
        {"Iptc.Application2.DateCreated", Text("20240503"), "photoshop:DateCreated = 2024-05-03",
         kIptc},
        {"Iptc.Application2.DigitizationDate", Text("20240503"), "xmp:CreateDate = 2024-05-03",
         kIptc},
        {"Iptc.Application2.BylineTitle", Text("Value "), "photoshop:AuthorsPosition = Value",
         kIptc},
        {"Iptc.Application2.Headline", Text("Value "), "photoshop:Headline = Value", kIptc},
        {"Iptc.Application2.Writer", Text("Value "), "photoshop:CaptionWriter = Value", kIptc},
        {"Iptc.Application2.Credit", Text("Value "), "photoshop:Credit = Value", kIptc},
        {"Iptc.Application2.Source", Text("Value "), "photoshop:Source = Value", kIptc},
        {"Iptc.Application2.City", Text("Bergen"), "photoshop:City = Bergen", kIptc},
        {"Iptc.Application2.ProvinceState", Text("Value "), "photoshop:State = Value", kIptc},
        {"Iptc.Application2.CountryName", Text("Value "), "photoshop:Country = Value", kIptc},
        {"Iptc.Application2.SubLocation", Text("Value "), "Iptc4xmpCore:Location = Value", kIptc},
        {"Iptc.Application2.CountryCode", Text("NOR"), "Iptc4xmpCore:CountryCode = NOR", kIptc},
        {"Iptc.Application2.SpecialInstructions", Text("Value "), "photoshop:Instructions = Value",
         kIptc},
        {"Iptc.Application2.TransmissionReference", Text("Value "),
         "photoshop:TransmissionReference = Value", kIptc},
        {"Iptc.Application2.Category", Text("Value "), "photoshop:Category = Value", kIptc},
        {"Iptc.Application2.SuppCategory", Text("sea"),
         "photoshop:SupplementalCategories bag = sea", kIptc},
        {"Iptc.Application2.Urgency", Text("5"), "photoshop:Urgency = 5", kIptc},
        {"Iptc.Application2.Subject", Text("IPTC:15054000:sport:soccer:"),
         "Iptc4xmpCore:SubjectCode bag = 15054000", kIptc},
        {"Iptc.Application2.ObjectAttribute", Text("035:Interview"),
         "Iptc4xmpCore:IntellectualGenre = Interview", kIptc},
        {"Exif.Image.CameraSerialNumber", Text("Value "), "aux:SerialNumber = Value", kDng},
        {"Exif.Image.LensInfo", Ratios({{24, 1}, {70, 1}, {28, 10}, {0, 0}}),
         "aux:LensInfo = 24/1 70/1 28/10 0/0", kDng},
        {"Exif.Canon.LensModel", Text("K 50mm F1.8  "), "aux:Lens = K 50mm F1.8", kMakerNotes},
        {"Exif.Panasonic.LensType", Text("K 50mm F1.8  "), "aux:Lens = K 50mm F1.8", kMakerNotes},
        {"Exif.Nikon3.Lens", Ratios({{24, 1}, {70, 1}, {28, 10}, {0, 0}}),
         "aux:LensInfo = 24/1 70/1 28/10 0/0", kMakerNotes},
        {"Exif.Canon.SerialNumber", Whole({3}), "aux:SerialNumber = 3", kMakerNotes},
        {"Exif.Nikon3.SerialNumber", Text("Value "), "aux:SerialNumber = Value", kMakerNotes},
        {"Exif.Panasonic.LensSerialNumber", Text("Value "), "exifEX:LensSerialNumber = Value",
         kMakerNotes},
        {"Exif.Canon.FirmwareVersion", Text("Value "), "aux:Firmware = Value", kMakerNotes},
        {"Exif.Canon.OwnerName", Text("Value "), "aux:OwnerName = Value", kMakerNotes},
        {"Exif.Image.XPTitle", Text("H\0i\0\0\0"sv), "dc:title[@x-default] = Hi", kWindows},
        {"Exif.Image.XPSubject", Text("H\0i\0\0\0"sv), "dc:description[@x-default] = Hi", kWindows},
        {"Exif.Image.XPAuthor", Text("A\0;\0B\0\0\0"sv), "dc:creator seq = A | B", kWindows},
        {"Exif.Image.XPKeywords", Text("a\0;\0b\0\0\0"sv), "dc:subject bag = a | b", kWindows},
        {"Exif.Image.XPComment", Text("H\0i\0\0\0"sv), "exif:UserComment[@x-default] = Hi",
         kWindows},
    };
}

TEST(TagMapping, EachRow)
{
    // Without these a place has no sides, and a time no day.
    const std::vector<Value> others = {
        Named("Exif.GPSInfo.GPSLatitudeRef", Text("N")),
        Named("Exif.GPSInfo.GPSLongitudeRef", Text("E")),
        Named("Exif.GPSInfo.GPSDestLatitudeRef", Text("N")),
        Named("Exif.GPSInfo.GPSDestLongitudeRef", Text("E")),
        Named("Exif.GPSInfo.GPSDateStamp", Text("2024:05:03")),
    };
    std::set<std::string> tested;
    for (const MappingCase& row : MappingCases()) {
        SCOPED_TRACE(std::string(row.tag) + " by " + row.from);
        EXPECT_TRUE(IsMappedTag(row.tag));
        std::vector<Value> values = others;
        values.push_back(Named(row.tag, row.value));
        bool isFound = false;
        for (const MappedProperty& property : Map(values)) {
            EXPECT_EQ(property.tag, row.tag);
            EXPECT_EQ(property.isIim, row.tag.starts_with("Iptc."));
            isFound = isFound || Print(property) == row.want;
        }
        EXPECT_TRUE(isFound) << row.want;
        tested.insert(std::string(row.tag) + " " +
                      std::string(row.want.substr(0, row.want.find_first_of("[ "))));
    }
    for (const MappingRow& row : MappingRows()) {
        EXPECT_TRUE(tested.contains(std::string(row.tag) + " " + std::string(row.prefix) + ":" +
                                    std::string(row.name)))
            << row.tag << " has no row here";
    }
}

TEST(TagMapping, TheManualShowsEachRow)
{
    std::ifstream file(KIV_PHOTOS_PAGE, std::ios::binary);
    ASSERT_TRUE(file) << KIV_PHOTOS_PAGE;
    std::map<std::string, std::string> lines;  // by property
    std::string line;
    while (std::getline(file, line)) {
        if (line.starts_with("| `")) {
            lines[line.substr(3, line.find('`', 3) - 3)] = line;
        }
    }
    for (const MappingRow& row : MappingRows()) {
        const std::string property = std::string(row.prefix) + ":" + std::string(row.name);
        EXPECT_NE(lines[property].find("`" + std::string(row.tag) + "`"), std::string::npos)
            << property << " by " << row.tag;
    }
}

}  // namespace
}  // namespace kivxmp::photo
