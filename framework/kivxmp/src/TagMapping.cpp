#include "framework/kivxmp/src/TagMapping.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "framework/kivxmp/src/TagConverters.h"

namespace kivxmp::photo {

namespace {

struct Row {
    std::string_view tag;
    std::string_view prefix;
    std::string_view name;
    Converter convert;
};

// Of several tags for one property the first that tells something counts: Exif, IIM, then what
// cameras say in a way of their own and what Windows leaves beside the standards.
constexpr Row kRows[] = {
    // What people write. Texts of Exif are UTF-8 or Windows-1252, whatever the standard says.
    {"Exif.Image.ImageDescription", "dc", "description", ConvertDefaultLanguage},
    {"Exif.Image.Artist", "dc", "creator", ConvertArtists},
    {"Exif.Image.Copyright", "dc", "rights", ConvertCopyright},
    {"Exif.Photo.UserComment", "exif", "UserComment", ConvertComment},
    {"Exif.Image.Rating", "xmp", "Rating", ConvertRating},

    // Dates.
    {"Exif.Photo.DateTimeOriginal", "exif", "DateTimeOriginal", ConvertDate},
    {"Exif.Photo.DateTimeOriginal", "photoshop", "DateCreated", ConvertDate},
    {"Exif.Image.DateTimeOriginal", "exif", "DateTimeOriginal", ConvertDate},
    {"Exif.Image.DateTimeOriginal", "photoshop", "DateCreated", ConvertDate},
    {"Exif.Photo.DateTimeDigitized", "exif", "DateTimeDigitized", ConvertDate},
    {"Exif.Photo.DateTimeDigitized", "xmp", "CreateDate", ConvertDate},
    {"Exif.Image.DateTime", "xmp", "ModifyDate", ConvertDate},

    // Camera and lens.
    {"Exif.Image.Make", "tiff", "Make", ConvertText},
    {"Exif.Image.Model", "tiff", "Model", ConvertText},
    {"Exif.Image.Software", "tiff", "Software", ConvertText},
    {"Exif.Image.Software", "xmp", "CreatorTool", ConvertText},
    {"Exif.Photo.CameraOwnerName", "exifEX", "CameraOwnerName", ConvertText},
    {"Exif.Photo.CameraOwnerName", "aux", "OwnerName", ConvertText},
    {"Exif.Photo.BodySerialNumber", "exifEX", "BodySerialNumber", ConvertText},
    {"Exif.Photo.BodySerialNumber", "aux", "SerialNumber", ConvertText},
    {"Exif.Photo.LensMake", "exifEX", "LensMake", ConvertText},
    {"Exif.Photo.LensModel", "exifEX", "LensModel", ConvertText},
    {"Exif.Photo.LensModel", "aux", "Lens", ConvertText},
    {"Exif.Photo.LensSerialNumber", "exifEX", "LensSerialNumber", ConvertText},
    {"Exif.Photo.LensSpecification", "exifEX", "LensSpecification", ConvertLensSeq},
    {"Exif.Photo.LensSpecification", "aux", "LensInfo", ConvertLensText},

    // Picture.
    {"Exif.Image.ImageWidth", "tiff", "ImageWidth", ConvertPictureSize},
    {"Exif.Image.ImageLength", "tiff", "ImageLength", ConvertPictureSize},
    {"Exif.Image.Orientation", "tiff", "Orientation", ConvertWholeAboveZero},
    {"Exif.Image.XResolution", "tiff", "XResolution", ConvertRatioAboveZero},
    {"Exif.Image.YResolution", "tiff", "YResolution", ConvertRatioAboveZero},
    {"Exif.Image.ResolutionUnit", "tiff", "ResolutionUnit", ConvertWholeAboveZero},
    {"Exif.Image.YCbCrPositioning", "tiff", "YCbCrPositioning", ConvertWholeAboveZero},
    {"Exif.Photo.PixelXDimension", "exif", "PixelXDimension", ConvertWholeAboveZero},
    {"Exif.Photo.PixelYDimension", "exif", "PixelYDimension", ConvertWholeAboveZero},
    {"Exif.Photo.ColorSpace", "exif", "ColorSpace", ConvertWholeAboveZero},
    {"Exif.Photo.CompressedBitsPerPixel", "exif", "CompressedBitsPerPixel", ConvertRatioAboveZero},
    {"Exif.Photo.Gamma", "exifEX", "Gamma", ConvertRatioAboveZero},
    {"Exif.Photo.ImageUniqueID", "exif", "ImageUniqueID", ConvertText},
    {"Exif.Photo.RelatedSoundFile", "exif", "RelatedSoundFile", ConvertText},
    {"Exif.Photo.ExifVersion", "exif", "ExifVersion", ConvertVersion},
    {"Exif.Photo.FlashpixVersion", "exif", "FlashpixVersion", ConvertVersion},

    // Exposure.
    {"Exif.Photo.ExposureTime", "exif", "ExposureTime", ConvertRatioAboveZero},
    {"Exif.Photo.FNumber", "exif", "FNumber", ConvertRatioAboveZero},
    {"Exif.Photo.ExposureProgram", "exif", "ExposureProgram", ConvertWhole},
    {"Exif.Photo.SpectralSensitivity", "exif", "SpectralSensitivity", ConvertText},
    {"Exif.Photo.ISOSpeedRatings", "exif", "ISOSpeedRatings", ConvertWholeSeq},
    {"Exif.Photo.ISOSpeedRatings", "exifEX", "PhotographicSensitivity", ConvertWholeAboveZero},
    {"Exif.Photo.SensitivityType", "exifEX", "SensitivityType", ConvertWhole},
    {"Exif.Photo.StandardOutputSensitivity", "exifEX", "StandardOutputSensitivity",
     ConvertWholeAboveZero},
    {"Exif.Photo.RecommendedExposureIndex", "exifEX", "RecommendedExposureIndex",
     ConvertWholeAboveZero},
    {"Exif.Photo.ISOSpeed", "exifEX", "ISOSpeed", ConvertWholeAboveZero},
    {"Exif.Photo.ISOSpeedLatitudeyyy", "exifEX", "ISOSpeedLatitudeyyy", ConvertWholeAboveZero},
    {"Exif.Photo.ISOSpeedLatitudezzz", "exifEX", "ISOSpeedLatitudezzz", ConvertWholeAboveZero},
    {"Exif.Photo.ShutterSpeedValue", "exif", "ShutterSpeedValue", ConvertRatio},
    {"Exif.Photo.ApertureValue", "exif", "ApertureValue", ConvertRatio},
    {"Exif.Photo.BrightnessValue", "exif", "BrightnessValue", ConvertRatio},
    {"Exif.Photo.ExposureBiasValue", "exif", "ExposureBiasValue", ConvertRatio},
    {"Exif.Photo.MaxApertureValue", "exif", "MaxApertureValue", ConvertRatio},
    {"Exif.Photo.SubjectDistance", "exif", "SubjectDistance", ConvertRatioAboveZero},
    {"Exif.Photo.MeteringMode", "exif", "MeteringMode", ConvertWhole},
    {"Exif.Photo.LightSource", "exif", "LightSource", ConvertWhole},
    {"Exif.Photo.Flash", "exif", "Flash", ConvertFlash},
    {"Exif.Photo.FocalLength", "exif", "FocalLength", ConvertRatioAboveZero},
    {"Exif.Photo.FocalLengthIn35mmFilm", "exif", "FocalLengthIn35mmFilm", ConvertWholeAboveZero},
    {"Exif.Photo.SubjectArea", "exif", "SubjectArea", ConvertWholeSeq},
    {"Exif.Photo.SubjectLocation", "exif", "SubjectLocation", ConvertWholeSeq},
    {"Exif.Photo.FlashEnergy", "exif", "FlashEnergy", ConvertRatio},
    {"Exif.Photo.FocalPlaneXResolution", "exif", "FocalPlaneXResolution", ConvertRatioAboveZero},
    {"Exif.Photo.FocalPlaneYResolution", "exif", "FocalPlaneYResolution", ConvertRatioAboveZero},
    {"Exif.Photo.FocalPlaneResolutionUnit", "exif", "FocalPlaneResolutionUnit",
     ConvertWholeAboveZero},
    {"Exif.Photo.ExposureIndex", "exif", "ExposureIndex", ConvertRatio},
    {"Exif.Photo.SensingMethod", "exif", "SensingMethod", ConvertWholeAboveZero},
    {"Exif.Photo.FileSource", "exif", "FileSource", ConvertWholeAboveZero},
    {"Exif.Photo.SceneType", "exif", "SceneType", ConvertWholeAboveZero},
    {"Exif.Photo.CustomRendered", "exif", "CustomRendered", ConvertWhole},
    {"Exif.Photo.ExposureMode", "exif", "ExposureMode", ConvertWhole},
    {"Exif.Photo.WhiteBalance", "exif", "WhiteBalance", ConvertWhole},
    {"Exif.Photo.DigitalZoomRatio", "exif", "DigitalZoomRatio", ConvertRatioAboveZero},
    {"Exif.Photo.SceneCaptureType", "exif", "SceneCaptureType", ConvertWhole},
    {"Exif.Photo.GainControl", "exif", "GainControl", ConvertWhole},
    {"Exif.Photo.Contrast", "exif", "Contrast", ConvertWhole},
    {"Exif.Photo.Saturation", "exif", "Saturation", ConvertWhole},
    {"Exif.Photo.Sharpness", "exif", "Sharpness", ConvertWhole},
    {"Exif.Photo.SubjectDistanceRange", "exif", "SubjectDistanceRange", ConvertWhole},

    // Place.
    {"Exif.GPSInfo.GPSVersionID", "exif", "GPSVersionID", ConvertGpsVersion},
    {"Exif.GPSInfo.GPSLatitude", "exif", "GPSLatitude", ConvertLatitude},
    {"Exif.GPSInfo.GPSLongitude", "exif", "GPSLongitude", ConvertLongitude},
    {"Exif.GPSInfo.GPSAltitudeRef", "exif", "GPSAltitudeRef", ConvertWhole},
    {"Exif.GPSInfo.GPSAltitude", "exif", "GPSAltitude", ConvertRatio},
    {"Exif.GPSInfo.GPSTimeStamp", "exif", "GPSTimeStamp", ConvertGpsTime},
    {"Exif.GPSInfo.GPSSatellites", "exif", "GPSSatellites", ConvertText},
    {"Exif.GPSInfo.GPSStatus", "exif", "GPSStatus", ConvertText},
    {"Exif.GPSInfo.GPSMeasureMode", "exif", "GPSMeasureMode", ConvertText},
    {"Exif.GPSInfo.GPSDOP", "exif", "GPSDOP", ConvertRatio},
    {"Exif.GPSInfo.GPSSpeedRef", "exif", "GPSSpeedRef", ConvertText},
    {"Exif.GPSInfo.GPSSpeed", "exif", "GPSSpeed", ConvertRatio},
    {"Exif.GPSInfo.GPSTrackRef", "exif", "GPSTrackRef", ConvertText},
    {"Exif.GPSInfo.GPSTrack", "exif", "GPSTrack", ConvertRatio},
    {"Exif.GPSInfo.GPSImgDirectionRef", "exif", "GPSImgDirectionRef", ConvertText},
    {"Exif.GPSInfo.GPSImgDirection", "exif", "GPSImgDirection", ConvertRatio},
    {"Exif.GPSInfo.GPSMapDatum", "exif", "GPSMapDatum", ConvertText},
    {"Exif.GPSInfo.GPSDestLatitude", "exif", "GPSDestLatitude", ConvertLatitude},
    {"Exif.GPSInfo.GPSDestLongitude", "exif", "GPSDestLongitude", ConvertLongitude},
    {"Exif.GPSInfo.GPSDestBearingRef", "exif", "GPSDestBearingRef", ConvertText},
    {"Exif.GPSInfo.GPSDestBearing", "exif", "GPSDestBearing", ConvertRatio},
    {"Exif.GPSInfo.GPSDestDistanceRef", "exif", "GPSDestDistanceRef", ConvertText},
    {"Exif.GPSInfo.GPSDestDistance", "exif", "GPSDestDistance", ConvertRatio},
    {"Exif.GPSInfo.GPSProcessingMethod", "exif", "GPSProcessingMethod", ConvertCommentText},
    {"Exif.GPSInfo.GPSAreaInformation", "exif", "GPSAreaInformation", ConvertCommentText},
    {"Exif.GPSInfo.GPSDifferential", "exif", "GPSDifferential", ConvertWhole},
    {"Exif.GPSInfo.GPSHPositioningError", "exif", "GPSHPositioningError", ConvertRatio},

    // IIM.
    {"Iptc.Application2.ObjectName", "dc", "title", ConvertIimLanguage},
    {"Iptc.Application2.Caption", "dc", "description", ConvertIimLanguage},
    {"Iptc.Application2.Byline", "dc", "creator", ConvertIimSeq},
    {"Iptc.Application2.Copyright", "dc", "rights", ConvertIimLanguage},
    {"Iptc.Application2.Keywords", "dc", "subject", ConvertIimBag},
    {"Iptc.Application2.DateCreated", "photoshop", "DateCreated", ConvertIimDate},
    {"Iptc.Application2.DigitizationDate", "xmp", "CreateDate", ConvertIimDate},
    {"Iptc.Application2.BylineTitle", "photoshop", "AuthorsPosition", ConvertIimText},
    {"Iptc.Application2.Headline", "photoshop", "Headline", ConvertIimText},
    {"Iptc.Application2.Writer", "photoshop", "CaptionWriter", ConvertIimText},
    {"Iptc.Application2.Credit", "photoshop", "Credit", ConvertIimText},
    {"Iptc.Application2.Source", "photoshop", "Source", ConvertIimText},
    {"Iptc.Application2.City", "photoshop", "City", ConvertIimText},
    {"Iptc.Application2.ProvinceState", "photoshop", "State", ConvertIimText},
    {"Iptc.Application2.CountryName", "photoshop", "Country", ConvertIimText},
    {"Iptc.Application2.SubLocation", "Iptc4xmpCore", "Location", ConvertIimText},
    {"Iptc.Application2.CountryCode", "Iptc4xmpCore", "CountryCode", ConvertIimText},
    {"Iptc.Application2.SpecialInstructions", "photoshop", "Instructions", ConvertIimText},
    {"Iptc.Application2.TransmissionReference", "photoshop", "TransmissionReference",
     ConvertIimText},
    {"Iptc.Application2.Category", "photoshop", "Category", ConvertIimText},
    {"Iptc.Application2.SuppCategory", "photoshop", "SupplementalCategories", ConvertIimBag},
    {"Iptc.Application2.Urgency", "photoshop", "Urgency", ConvertIimUrgency},
    {"Iptc.Application2.Subject", "Iptc4xmpCore", "SubjectCode", ConvertIimSubjects},
    {"Iptc.Application2.ObjectAttribute", "Iptc4xmpCore", "IntellectualGenre", ConvertIimGenre},

    // Cameras, in TIFF/EP's and DNG's own tags, and in maker notes.
    {"Exif.Image.CameraSerialNumber", "aux", "SerialNumber", ConvertText},
    {"Exif.Image.LensInfo", "aux", "LensInfo", ConvertLensText},
    {"Exif.Canon.LensModel", "aux", "Lens", ConvertText},
    {"Exif.Panasonic.LensType", "aux", "Lens", ConvertText},
    {"Exif.Nikon3.Lens", "aux", "LensInfo", ConvertLensText},
    {"Exif.Canon.SerialNumber", "aux", "SerialNumber", ConvertWholeAboveZero},
    {"Exif.Nikon3.SerialNumber", "aux", "SerialNumber", ConvertText},
    {"Exif.Panasonic.LensSerialNumber", "exifEX", "LensSerialNumber", ConvertText},
    {"Exif.Canon.FirmwareVersion", "aux", "Firmware", ConvertText},
    {"Exif.Canon.OwnerName", "aux", "OwnerName", ConvertText},

    // Windows.
    {"Exif.Image.XPTitle", "dc", "title", ConvertWindowsLanguage},
    {"Exif.Image.XPSubject", "dc", "description", ConvertWindowsLanguage},
    {"Exif.Image.XPAuthor", "dc", "creator", ConvertWindowsSeq},
    {"Exif.Image.XPKeywords", "dc", "subject", ConvertWindowsBag},
    {"Exif.Image.XPComment", "exif", "UserComment", ConvertWindowsLanguage},
};

/// Looked at besides, by the converters.
constexpr std::string_view kFurtherTags[] = {
    "Exif.Photo.SubSecTimeOriginal",
    "Exif.Photo.OffsetTimeOriginal",
    "Exif.Photo.SubSecTimeDigitized",
    "Exif.Photo.OffsetTimeDigitized",
    "Exif.Photo.SubSecTime",
    "Exif.Photo.OffsetTime",
    "Exif.Image.NewSubfileType",
    "Exif.GPSInfo.GPSLatitudeRef",
    "Exif.GPSInfo.GPSLongitudeRef",
    "Exif.GPSInfo.GPSDestLatitudeRef",
    "Exif.GPSInfo.GPSDestLongitudeRef",
    "Exif.GPSInfo.GPSDateStamp",
    "Iptc.Envelope.CharacterSet",
    "Iptc.Application2.TimeCreated",
    "Iptc.Application2.DigitizationTime",
};

}  // namespace

std::vector<MappedProperty> MapTags(const TagList& exif, const TagList& iim)
{
    const Tags tags(exif, iim);
    std::set<std::pair<std::string_view, std::string_view>> found;
    std::vector<MappedProperty> properties;
    for (const Row& row : kRows) {
        const TagValue* const tag = tags.Find(row.tag);
        if (tag == nullptr || found.contains({row.prefix, row.name})) {
            continue;
        }
        MappedProperty property;
        if (row.convert(tags, *tag, property)) {
            property.prefix = row.prefix;
            property.name = row.name;
            property.tag = row.tag;
            property.isIim = row.tag.starts_with("Iptc.");
            properties.push_back(std::move(property));
            found.insert({row.prefix, row.name});
        }
    }
    return properties;
}

std::vector<MappingRow> MappingRows()
{
    std::vector<MappingRow> rows;
    for (const Row& row : kRows) {
        rows.push_back({row.tag, row.prefix, row.name});
    }
    return rows;
}

bool IsMappedTag(std::string_view name)
{
    return std::any_of(std::begin(kRows), std::end(kRows),
                       [&](const Row& row) { return row.tag == name; }) ||
           std::find(std::begin(kFurtherTags), std::end(kFurtherTags), name) !=
               std::end(kFurtherTags);
}

}  // namespace kivxmp::photo
