#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include <kivui/ScrivelTargets.h>

#include "framework/kivui/tests/scrivel/PixelCanvas.h"

namespace kivui::scrivel {
namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr LineJoin kMiter = LineJoin::kTEPMiterJoin;
constexpr LineJoin kRound = LineJoin::kTEPRoundJoin;
constexpr LineJoin kBevel = LineJoin::kTEPBevelJoin;
constexpr LineCap kButt = LineCap::kTEPButtCap;
constexpr LineCap kRoundCap = LineCap::kTEPRoundCap;
constexpr LineCap kSquare = LineCap::kTEPSquareCap;

struct AreaCase {
    const char* path;
    float width;
    LineJoin join;
    LineCap cap;
    float miterLimit;
    std::vector<float> dash;
    double want;  // the stroke's area
};

constexpr double kPi = 3.14159265;

const AreaCase kAreaCases[] = {
    // Caps.
    {"M 10 20 L 30 20", 8, kMiter, kButt, 4, {}, 160},
    {"M 10 20 L 30 20", 8, kMiter, kSquare, 4, {}, 160 + 64},
    {"M 10 20 L 30 20", 8, kMiter, kRoundCap, 4, {}, 160 + 16 * kPi},
    // A right angle: two overlapping arms, and what the join adds to the outer corner.
    {"M 10 10 L 30 10 L 30 30", 8, kMiter, kButt, 4, {}, 320 - 16 + 16},
    {"M 10 10 L 30 10 L 30 30", 8, kBevel, kButt, 4, {}, 320 - 16 + 8},
    {"M 10 10 L 30 10 L 30 30", 8, kRound, kButt, 4, {}, 320 - 16 + 4 * kPi},
    // A right angle's miter is 1.41 widths long.
    {"M 10 10 L 30 10 L 30 30", 8, kMiter, kButt, 1.5f, {}, 320 - 16 + 16},
    {"M 10 10 L 30 10 L 30 30", 8, kMiter, kButt, 1.4f, {}, 320 - 16 + 8},
    {"M 10 10 L 30 10 L 30 30", 8, kMiter, kButt, 0, {}, 320 - 16 + 8},
    // Closed: no caps, four joins.
    {"M 10 10 L 30 10 L 30 30 L 10 30 Z", 4, kMiter, kSquare, 4, {}, 24 * 24 - 16 * 16},
    {"M 10 10 L 30 10 L 30 30 L 10 30 Z", 4, kBevel, kSquare, 4, {}, 24 * 24 - 16 * 16 - 8},
    // The same with the last point given twice.
    {"M 10 10 L 30 10 L 30 30 L 10 30 L 10 10 Z", 4, kMiter, kSquare, 4, {}, 24 * 24 - 16 * 16},
    // Points that repeat add nothing.
    {"M 10 20 L 10 20 L 30 20 L 30 20", 8, kRound, kButt, 4, {}, 160},
    // Without length: dots, if the cap reaches out.
    {"M 20 20 L 20 20", 8, kMiter, kButt, 4, {}, 0},
    {"M 20 20 L 20 20", 8, kMiter, kSquare, 4, {}, 64},
    {"M 20 20 L 20 20", 8, kMiter, kRoundCap, 4, {}, 16 * kPi},
    {"M 20 20 Z", 8, kMiter, kRoundCap, 4, {}, 16 * kPi},
    {"M 20 20", 8, kMiter, kRoundCap, 4, {}, 0},
    // A turn by half a circle: a round join is a round cap there.
    {"M 10 20 L 30 20 L 10 20", 8, kRound, kButt, 4, {}, 160 + 8 * kPi},
    // Dashes: on, off, and round twice where odd.
    {"M 0 20 L 40 20", 4, kMiter, kButt, 4, {5, 5}, 80},
    {"M 0 20 L 40 20", 4, kMiter, kButt, 4, {10}, 80},
    {"M 0 20 L 40 20", 4, kMiter, kButt, 4, {10, 5, 5}, 4 * 20},
    {"M 0 20 L 40 20", 4, kMiter, kButt, 4, {100, 5}, 160},
    // Dashes have caps, also those without length.
    {"M 5 20 L 35 20", 2, kMiter, kSquare, 4, {0, 10}, 3 * 4},
    {"M 5 20 L 35 20", 4, kMiter, kRoundCap, 4, {0, 10}, 3 * 4 * kPi},
    // Each part begins the pattern anew.
    {"M 0 10 L 15 10 M 0 30 L 15 30", 4, kMiter, kButt, 4, {10, 10}, 80},
    // A dash goes round corners, and on a closed part over its start.
    {"M 10 10 L 30 10 L 30 30", 8, kMiter, kButt, 4, {100, 1}, 320},
    {"M 10 10 L 30 10 L 30 30 L 10 30 Z", 4, kMiter, kButt, 4, {10, 20, 50}, 4 * 60},
    {"M 10 10 L 30 10 L 30 30 L 10 30 Z", 4, kMiter, kButt, 4, {500}, 24 * 24 - 16 * 16},
    // Patterns that are no patterns: solid.
    {"M 0 20 L 40 20", 4, kMiter, kButt, 4, {0, 0}, 160},
    {"M 0 20 L 40 20", 4, kMiter, kButt, 4, {5, -1}, 160},
    {"M 0 20 L 40 20", 4, kMiter, kButt, 4, {5, kNaN}, 160},
    {"M 0 20 L 40 20", 4, kMiter, kButt, 4, {1e-5f, 1e-5f}, 160},
    // Pens and paths that draw nothing.
    {"M 0 20 L 40 20", 0, kMiter, kButt, 4, {}, 0},
    {"M 0 20 L 40 20", -4, kMiter, kButt, 4, {}, 0},
    {"M 0 20 L 40 20", kNaN, kMiter, kButt, 4, {}, 0},
    {"M 0 20 L 40 20", 4, kMiter, kButt, kNaN, {}, 0},
    {"M 0 20 L nan 20", 4, kMiter, kButt, 4, {}, 0},
    {"", 4, kMiter, kButt, 4, {}, 0},
    // Huge numbers end, and cover what they should.
    {"M -big 20 L big 20", 4, kMiter, kButt, 4, {}, 160},
    {"M 20 20 L 30 20", 3e38f, kRound, kRoundCap, 4, {}, 1600},
};

TEST(Stroking, Areas)
{
    for (const AreaCase& row : kAreaCases) {
        SCOPED_TRACE(testing::Message()
                     << row.path << " width " << row.width << " join " << static_cast<int>(row.join)
                     << " cap " << static_cast<int>(row.cap) << " miter " << row.miterLimit
                     << " dashes " << row.dash.size());
        PixelCanvas canvas(40, 40);
        canvas.Stroke(row.path, row.width, [&](PenInterface& pen) {
            pen.SetLineJoin(row.join);
            pen.SetLineCap(row.cap);
            pen.SetMiterLimit(row.miterLimit);
            pen.SetDashPattern(row.dash.data(), row.dash.size());
        });
        EXPECT_NEAR(canvas.Area(), row.want, row.want * 0.016 + 0.05);
    }
}

TEST(Stroking, ANewPenHasMiterJoinsAndButtCaps)
{
    PixelCanvas canvas(6, 6);
    canvas.Stroke("M 0 2 L 4 2 L 4 6", 2);
    EXPECT_EQ(canvas.Picture(), "......\n#####.\n#####.\n...##.\n...##.\n...##.\n");
}

TEST(Stroking, UnevenTransformsStretchThePen)
{
    PixelCanvas canvas(8, 8);
    canvas.Surface().Concat({4, 0, 0, 1, 0, 0});
    canvas.Stroke("M 1 0 L 1 4", 1);  // 4 pixels wide
    canvas.Stroke("M 0 7 L 2 7", 1);  // 1 pixel high
    EXPECT_EQ(canvas.Picture(),
              "..####..\n..####..\n..####..\n..####..\n........\n........\n55555555\n55555555\n");
}

TEST(Stroking, TransformsToALineDrawNothing)
{
    PixelCanvas canvas(8, 8);
    canvas.Surface().Concat({1, 1, 1, 1, 0, 0});
    canvas.Stroke("M 0 0 L 8 0", 4);
    EXPECT_TRUE(canvas.IsEmpty());
}

TEST(Stroking, CurvesAreSmooth)
{
    // A wide ring: radius 30, width 10.
    PixelCanvas canvas(80, 80);
    canvas.Stroke(
        "M 70 40 C 70 23.43 56.57 10 40 10 C 23.43 10 10 23.43 10 40 C 10 56.57 23.43 70 40 70 "
        "C 56.57 70 70 56.57 70 40 Z",
        10, [](PenInterface& pen) { pen.SetLineJoin(LineJoin::kTEPBevelJoin); });
    EXPECT_NEAR(canvas.Area(), 2 * kPi * 30 * 10, 8);
}

}  // namespace
}  // namespace kivui::scrivel
