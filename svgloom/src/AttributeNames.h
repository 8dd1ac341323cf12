// The attributes and properties that the engine reads, each with a number, so that a name is looked
// at once.

#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "svgloom/src/NameTable.h"

namespace SVGLoom {

enum class AttributeName : std::uint8_t {
    // Properties, in the order in which they are applied: first those of the graphic style, then
    // of the fill, then of the stroke. They stand in attributes and in declarations.
    kOpacity,
    kClipPath,
    kDisplay,
    kStopOpacity,
    kStopColor,
    kFill,
    kFillOpacity,
    kFillRule,
    kColor,
    kVisibility,
    kClipRule,
    kStroke,
    kStrokeWidth,
    kStrokeLinecap,
    kStrokeLinejoin,
    kStrokeMiterlimit,
    kStrokeDashoffset,
    kStrokeDasharray,
    kStrokeOpacity,
    // All others.
    kClass,
    kCx,
    kCy,
    kD,
    kFx,
    kFy,
    kGradientTransform,
    kHeight,
    kHref,
    kId,
    kOffset,
    kPoints,
    kPreserveAspectRatio,
    kR,
    kRx,
    kRy,
    kSpreadMethod,
    kStyle,
    kTransform,
    kViewBox,
    kWidth,
    kX,
    kX1,
    kX2,
    kXlinkHref,
    kY,
    kY1,
    kY2,
    kUnknown,
};

inline constexpr std::size_t kPropertyCount = 19;
inline constexpr std::size_t kAttributeCount = static_cast<std::size_t>(AttributeName::kUnknown);

constexpr bool IsProperty(AttributeName name)
{
    return static_cast<std::size_t>(name) < kPropertyCount;
}

// In the order of the enumeration.
inline constexpr std::string_view kAttributeNames[] = {
    "opacity",
    "clip-path",
    "display",
    "stop-opacity",
    "stop-color",
    "fill",
    "fill-opacity",
    "fill-rule",
    "color",
    "visibility",
    "clip-rule",
    "stroke",
    "stroke-width",
    "stroke-linecap",
    "stroke-linejoin",
    "stroke-miterlimit",
    "stroke-dashoffset",
    "stroke-dasharray",
    "stroke-opacity",
    "class",
    "cx",
    "cy",
    "d",
    "fx",
    "fy",
    "gradientTransform",
    "height",
    "href",
    "id",
    "offset",
    "points",
    "preserveAspectRatio",
    "r",
    "rx",
    "ry",
    "spreadMethod",
    "style",
    "transform",
    "viewBox",
    "width",
    "x",
    "x1",
    "x2",
    "xlink:href",
    "y",
    "y1",
    "y2",
};
static_assert(std::size(kAttributeNames) == kAttributeCount);
static_assert(kAttributeNames[kPropertyCount - 1] == "stroke-opacity" &&
              kAttributeNames[kPropertyCount] == "class");

inline constexpr NameTable<kAttributeCount> kAttributeTable(kAttributeNames);

/// kUnknown for a name that the engine does not read. Case counts.
inline AttributeName FindAttribute(std::string_view name)
{
    return static_cast<AttributeName>(kAttributeTable.Find(name));
}

/// The name as it is written; empty for kUnknown.
constexpr std::string_view TextOf(AttributeName name)
{
    return name != AttributeName::kUnknown ? kAttributeNames[static_cast<std::size_t>(name)]
                                           : std::string_view();
}

}  // namespace SVGLoom
