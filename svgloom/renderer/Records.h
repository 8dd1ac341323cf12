// The records that say how to paint. They cross the border between the document and a renderer:
// fields keep their order, enumerators their values. All numbers are 32-bit floats in user units.

#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <variant>

#include "svgloom/renderer/SharedVector.h"

namespace SVGLoom {

class Path;
class Transform;

/// Red, green, blue and alpha, each in 0..1, not premultiplied.
struct Color {
    float red = 0;
    float green = 0;
    float blue = 0;
    float alpha = 1;

    friend bool operator==(const Color&, const Color&) = default;
};

struct Rect {
    float x = 0;
    float y = 0;
    float width = 0;
    float height = 0;

    friend bool operator==(const Rect&, const Rect&) = default;
};

struct ColorStop {
    float offset = 0;  // 0..1
    Color color;

    friend bool operator==(const ColorStop&, const ColorStop&) = default;
};

enum class GradientType : std::uint32_t { kLinear = 0, kRadial = 1 };

/// A coordinate that the artwork does not give.
inline constexpr float kNotGiven = std::numeric_limits<float>::quiet_NaN();

struct Gradient {
    GradientType type = GradientType::kLinear;
    SharedVector<ColorStop> stops;  // in document order
    // Start and end of a linear gradient.
    float x1 = kNotGiven;
    float y1 = kNotGiven;
    float x2 = kNotGiven;
    float y2 = kNotGiven;
    // Centre, focal point and radius of a radial one.
    float cx = kNotGiven;
    float cy = kNotGiven;
    float fx = kNotGiven;
    float fy = kNotGiven;
    float r = kNotGiven;
    std::shared_ptr<Transform> transform;  // empty: none
};

/// Index 0 is a colour, 1 a gradient; with any other index nothing is painted.
using Paint = std::variant<Color, Gradient>;

enum class FillRule : std::uint32_t { kNonZero = 0, kEvenOdd = 1 };
enum class LineCap : std::uint32_t { kButt = 0, kRound = 1, kSquare = 2 };
enum class LineJoin : std::uint32_t { kMiter = 0, kRound = 1, kBevel = 2 };

struct FillStyle {
    bool hasFill = true;  // false: the shape is not filled
    FillRule fillRule = FillRule::kNonZero;
    float fillOpacity = 1;
    Paint paint;  // opaque black
};

struct StrokeStyle {
    bool hasStroke = false;  // false: the shape is not stroked
    float strokeOpacity = 1;
    float lineWidth = 1;
    LineCap lineCap = LineCap::kButt;
    LineJoin lineJoin = LineJoin::kMiter;
    float miterLimit = 4;
    SharedVector<float> dashArray;  // empty: a solid line
    float dashOffset = 0;           // kept for the document; no renderer reads it
    Paint paint;                    // opaque black
};

struct ClippingPath {
    bool hasClipContent = false;  // false: nothing is left to draw
    FillRule clipRule = FillRule::kNonZero;
    std::shared_ptr<Path> path;
    std::shared_ptr<Transform> transform;  // empty: none
};

struct GraphicStyle {
    float opacity = 1;                           // 0..1
    std::shared_ptr<Transform> transform;        // empty: none
    std::shared_ptr<ClippingPath> clippingPath;  // empty: no clip
};

}  // namespace SVGLoom
