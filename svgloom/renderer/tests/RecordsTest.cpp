#include "svgloom/renderer/Records.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <string>
#include <type_traits>
#include <vector>

#include "svgloom/renderer/SVGRenderer.h"

namespace SVGLoom {
namespace {

// Plain records are copied as bytes into arrays of the drawing layer.
static_assert(sizeof(Color) == 16 && std::is_trivially_copyable_v<Color>);
static_assert(offsetof(Color, red) == 0 && offsetof(Color, green) == 4);
static_assert(offsetof(Color, blue) == 8 && offsetof(Color, alpha) == 12);
static_assert(sizeof(ColorStop) == 20 && std::is_trivially_copyable_v<ColorStop>);
static_assert(offsetof(ColorStop, offset) == 0 && offsetof(ColorStop, color) == 4);
static_assert(sizeof(Rect) == 16);
static_assert(offsetof(Rect, x) == 0 && offsetof(Rect, y) == 4);
static_assert(offsetof(Rect, width) == 8 && offsetof(Rect, height) == 12);

static_assert(sizeof(GradientType) == 4 && sizeof(FillRule) == 4);
static_assert(sizeof(LineCap) == 4 && sizeof(LineJoin) == 4);
static_assert(static_cast<int>(GradientType::kLinear) == 0);
static_assert(static_cast<int>(GradientType::kRadial) == 1);
static_assert(static_cast<int>(FillRule::kNonZero) == 0);
static_assert(static_cast<int>(FillRule::kEvenOdd) == 1);
static_assert(static_cast<int>(LineCap::kButt) == 0);
static_assert(static_cast<int>(LineCap::kRound) == 1);
static_assert(static_cast<int>(LineCap::kSquare) == 2);
static_assert(static_cast<int>(LineJoin::kMiter) == 0);
static_assert(static_cast<int>(LineJoin::kRound) == 1);
static_assert(static_cast<int>(LineJoin::kBevel) == 2);

static_assert(std::is_same_v<std::variant_alternative_t<0, Paint>, Color>);
static_assert(std::is_same_v<std::variant_alternative_t<1, Paint>, Gradient>);

// The places of fields in a record that offsetof is not promised for.
template <class Record, class... Fields>
std::vector<std::ptrdiff_t> Places(const Record& record, const Fields&... fields)
{
    const char* const start = reinterpret_cast<const char*>(&record);
    return {reinterpret_cast<const char*>(&fields) - start...};
}

void ExpectAscending(const std::vector<std::ptrdiff_t>& places)
{
    EXPECT_EQ(places.front(), 0);
    for (std::size_t i = 1; i < places.size(); ++i) {
        EXPECT_LT(places[i - 1], places[i]) << "field " << i;
    }
}

TEST(Records, FieldsKeepTheirOrder)
{
    const Gradient g;
    ExpectAscending(Places(g, g.type, g.stops, g.x1, g.y1, g.x2, g.y2, g.cx, g.cy, g.fx, g.fy, g.r,
                           g.transform));
    const FillStyle f;
    ExpectAscending(Places(f, f.hasFill, f.fillRule, f.fillOpacity, f.paint));
    const StrokeStyle s;
    ExpectAscending(Places(s, s.hasStroke, s.strokeOpacity, s.lineWidth, s.lineCap, s.lineJoin,
                           s.miterLimit, s.dashArray, s.dashOffset, s.paint));
    const ClippingPath c;
    ExpectAscending(Places(c, c.hasClipContent, c.clipRule, c.path, c.transform));
    const GraphicStyle style;
    ExpectAscending(Places(style, style.opacity, style.transform, style.clippingPath));
}

TEST(Records, Defaults)
{
    const Color black{0, 0, 0, 1};
    EXPECT_EQ(Color(), black);

    const FillStyle fill;
    EXPECT_TRUE(fill.hasFill);
    EXPECT_EQ(fill.fillRule, FillRule::kNonZero);
    EXPECT_EQ(fill.fillOpacity, 1);
    EXPECT_EQ(std::get<Color>(fill.paint), black);

    const StrokeStyle stroke;
    EXPECT_FALSE(stroke.hasStroke);
    EXPECT_EQ(stroke.strokeOpacity, 1);
    EXPECT_EQ(stroke.lineWidth, 1);
    EXPECT_EQ(stroke.lineCap, LineCap::kButt);
    EXPECT_EQ(stroke.lineJoin, LineJoin::kMiter);
    EXPECT_EQ(stroke.miterLimit, 4);
    EXPECT_TRUE(stroke.dashArray.empty());
    EXPECT_EQ(stroke.dashOffset, 0);
    EXPECT_EQ(std::get<Color>(stroke.paint), black);

    const GraphicStyle graphic;
    EXPECT_EQ(graphic.opacity, 1);
    EXPECT_EQ(graphic.transform, nullptr);
    EXPECT_EQ(graphic.clippingPath, nullptr);
}

TEST(Records, CoordinatesOfAGradientBeginAsNotGiven)
{
    const Gradient g;
    for (const float each : {g.x1, g.y1, g.x2, g.y2, g.cx, g.cy, g.fx, g.fy, g.r}) {
        EXPECT_TRUE(std::isnan(each));
    }
    EXPECT_EQ(g.type, GradientType::kLinear);
    EXPECT_TRUE(g.stops.empty());
    EXPECT_EQ(g.transform, nullptr);
}

}  // namespace
}  // namespace SVGLoom
