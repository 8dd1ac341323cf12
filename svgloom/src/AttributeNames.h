// The attributes and properties that the engine reads, each with a number, so that a name is looked
// at once.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

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

/// kUnknown for a name that the engine does not read. Case counts.
AttributeName FindAttribute(std::string_view name);

/// The name as it is written; empty for kUnknown.
std::string_view TextOf(AttributeName name);

}  // namespace SVGLoom
