#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>

#include "framework/kivmetadataui/src/NodeText.h"
#include "framework/kivmetadataui/src/NumberValue.h"
#include "framework/kivmetadataui/src/Texts.h"

#include <kivxmp/XMPAccess.h>
#include <kivxmp/XMPValue.h>

namespace kivmetadataui {

using kivcore::UString;
using kivcore::UStringView;
using kivxmp::Node;
using kivxmp::Rational;

namespace {

constexpr std::string_view kExif = "http://ns.adobe.com/exif/1.0/";
constexpr std::string_view kExifEx = "http://cipa.jp/exif/1.0/";

using Formatter = UString (*)(const Node& node);

std::optional<double> NumberOf(const Node& node)
{
    if (const std::optional<Rational> rational = kivxmp::RationalOf(&node)) {
        if (rational->denominator == 0) {
            return std::nullopt;  // cameras write "0/0" for "unknown"
        }
        return static_cast<double>(rational->numerator) /
               static_cast<double>(rational->denominator);
    }
    return kivxmp::RealOf(&node);
}

UString WithUnit(const std::string& number, UStringView unit)
{
    UString text = Widen(number);
    text += u' ';
    text += unit;
    return text;
}

// Half a second and longer as seconds, shorter times as a fraction of one.
UString Exposure(double seconds)
{
    if (!(seconds > 0) || seconds > 1e9 || seconds < 1e-9) {
        return {};
    }
    if (seconds > 0.3) {
        return WithUnit(ShortDecimal(seconds, 1), u"s");
    }
    return WithUnit("1/" + ShortDecimal(std::round(1 / seconds), 0), u"s");
}

UString ExposureTime(const Node& node)
{
    const std::optional<double> seconds = NumberOf(node);
    return seconds ? Exposure(*seconds) : UString();
}

// APEX: the exponent of two.
UString ShutterSpeed(const Node& node)
{
    const std::optional<double> value = NumberOf(node);
    return value ? Exposure(std::exp2(-*value)) : UString();
}

UString Stop(double number)
{
    if (!(number > 0) || number > 1e6) {
        return {};
    }
    UString text = u"f/";
    text += Widen(ShortDecimal(number, 1));
    return text;
}

UString FNumber(const Node& node)
{
    const std::optional<double> value = NumberOf(node);
    return value ? Stop(*value) : UString();
}

UString Aperture(const Node& node)
{
    const std::optional<double> value = NumberOf(node);
    return value ? Stop(std::exp2(*value / 2)) : UString();
}

UString Iso(const Node& node)
{
    const std::optional<std::int64_t> value = kivxmp::IntegerOf(&node);
    if (!value || *value <= 0) {
        return {};
    }
    UString text = u"ISO ";
    text += Widen(std::to_string(*value));
    return text;
}

UString Millimetres(const Node& node)
{
    const std::optional<double> value = NumberOf(node);
    return value && *value > 0 && *value < 1e6 ? WithUnit(ShortDecimal(*value, 1), u"mm")
                                               : UString();
}

UString Metres(const Node& node)
{
    const std::optional<double> value = NumberOf(node);
    return value && *value >= 0 && *value < 1e9 ? WithUnit(ShortDecimal(*value, 2), u"m")
                                                : UString();
}

UString ExposureBias(const Node& node)
{
    const std::optional<double> value = NumberOf(node);
    if (!value || std::fabs(*value) > 100) {
        return {};
    }
    const std::string number = ShortDecimal(*value, 2);
    return WithUnit(*value > 0 && number != "0" ? "+" + number : number, u"EV");
}

// "52,31.2N" and "52,31,12N"
UString Coordinate(const Node& node)
{
    const std::optional<std::string> value = kivxmp::TextOf(&node);
    constexpr std::string_view kDirections = "NSEW";
    if (!value || value->size() < 4 || kDirections.find(value->back()) == std::string_view::npos) {
        return {};
    }
    constexpr UStringView kMarks[] = {u"° ", u"′ ", u"″ "};
    UString text;
    std::string_view rest = std::string_view(*value).substr(0, value->size() - 1);
    std::size_t parts = 0;
    while (true) {
        const std::size_t comma = std::min(rest.find(','), rest.size());
        if (parts == std::size(kMarks) || !kivxmp::ParseReal(rest.substr(0, comma))) {
            return {};
        }
        text += Widen(rest.substr(0, comma));
        text += kMarks[parts++];
        if (comma == rest.size()) {
            break;
        }
        rest.remove_prefix(comma + 1);
    }
    text += Widen(value->substr(value->size() - 1));
    return parts >= 2 ? text : UString();
}

struct CameraRow {
    std::string_view namespaceUri;
    std::string_view localName;
    Formatter format;
};

constexpr CameraRow kCameraRows[] = {
    {kExif, "ExposureTime", ExposureTime},
    {kExif, "ShutterSpeedValue", ShutterSpeed},
    {kExif, "FNumber", FNumber},
    {kExif, "ApertureValue", Aperture},
    {kExif, "MaxApertureValue", Aperture},
    {kExif, "ISOSpeedRatings", Iso},
    {kExif, "PhotographicSensitivity", Iso},
    {kExifEx, "PhotographicSensitivity", Iso},
    {kExif, "FocalLength", Millimetres},
    {kExif, "FocalLengthIn35mmFilm", Millimetres},
    {kExif, "ExposureBiasValue", ExposureBias},
    {kExif, "SubjectDistance", Metres},
    {kExif, "GPSAltitude", Metres},
    {kExif, "GPSLatitude", Coordinate},
    {kExif, "GPSLongitude", Coordinate},
};

}  // namespace

UString CameraText(std::string_view namespaceUri, std::string_view localName, const Node& node)
{
    const auto* const row =
        std::find_if(std::begin(kCameraRows), std::end(kCameraRows), [&](const CameraRow& each) {
            return each.namespaceUri == namespaceUri && each.localName == localName;
        });
    return row == std::end(kCameraRows) ? UString() : row->format(node);
}

}  // namespace kivmetadataui
