// The elements that the engine reads, each with a number, so that a name is looked at once.

#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "svgloom/src/NameTable.h"

namespace SVGLoom {

enum class ElementName : std::uint8_t {
    // Shapes.
    kPath,
    kRect,
    kCircle,
    kEllipse,
    kLine,
    kPolygon,
    kPolyline,
    // What stands among them.
    kG,
    kUse,
    kDefs,
    kLinearGradient,
    kRadialGradient,
    kClipPath,
    kSymbol,
    kImage,
    kStyle,
    // Only inside a gradient.
    kStop,
    kUnknown,
};

inline constexpr std::size_t kShapeCount = static_cast<std::size_t>(ElementName::kG);
inline constexpr std::size_t kElementCount = static_cast<std::size_t>(ElementName::kUnknown);

constexpr bool IsShape(ElementName name)
{
    return static_cast<std::size_t>(name) < kShapeCount;
}

// In the order of the enumeration.
inline constexpr std::string_view kElementNames[] = {
    "path",     "rect",   "circle", "ellipse", "line",           "polygon",
    "polyline", "g",      "use",    "defs",    "linearGradient", "radialGradient",
    "clipPath", "symbol", "image",  "style",   "stop",
};
static_assert(std::size(kElementNames) == kElementCount);

inline constexpr NameTable<kElementCount> kElementTable(kElementNames);

/// kUnknown for a name that the engine does not read, and for that of the root. Case counts.
inline ElementName FindElement(std::string_view name)
{
    return static_cast<ElementName>(kElementTable.Find(name));
}

/// Whether an element of that name is a shape.
inline bool IsShape(std::string_view name)
{
    return IsShape(FindElement(name));
}

}  // namespace SVGLoom
