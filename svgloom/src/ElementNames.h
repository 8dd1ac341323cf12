// The elements that the engine reads, each with a number, so that a name is looked at once.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

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

/// kUnknown for a name that the engine does not read, and for that of the root. Case counts.
ElementName FindElement(std::string_view name);

/// Whether an element of that name is a shape.
inline bool IsShape(std::string_view name)
{
    return IsShape(FindElement(name));
}

}  // namespace SVGLoom
