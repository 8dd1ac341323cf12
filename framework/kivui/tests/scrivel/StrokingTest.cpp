#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string_view>
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

void SetPen(PenInterface& pen, const AreaCase& row)
{
    pen.SetLineJoin(row.join);
    pen.SetLineCap(row.cap);
    pen.SetMiterLimit(row.miterLimit);
    pen.SetDashPattern(row.dash.data(), row.dash.size());
}

testing::Message NameOf(const AreaCase& row)
{
    return testing::Message() << row.path << " width " << row.width << " join "
                              << static_cast<int>(row.join) << " cap " << static_cast<int>(row.cap)
                              << " miter " << row.miterLimit << " dashes " << row.dash.size();
}

TEST(Stroking, Areas)
{
    for (const AreaCase& row : kAreaCases) {
        SCOPED_TRACE(NameOf(row));
        PixelCanvas canvas(40, 40);
        canvas.Stroke(row.path, row.width, [&](PenInterface& pen) { SetPen(pen, row); });
        EXPECT_NEAR(canvas.Area(), row.want, row.want * 0.016 + 0.05);
    }
}

struct TransformCase {
    Matrix matrix;
    double scale;  // of areas
};

// Each keeps 40 by 40 units on a canvas of 120 by 120 pixels.
constexpr TransformCase kTransformCases[] = {
    {{3, 0, 0, 0.75f, 0, 20}, 2.25},           // uneven
    {{0.5f, 0, 0, 2.5f, 30, 0}, 1.25},         //
    {{1.5f, 0.5f, -0.75f, 1, 40, 10}, 1.875},  // skewed
    {{-2, 0, 0, 1, 100, 20}, 2},               // mirrored
    {{0, 2, 1.5f, 0, 10, 10}, 3},              // x and y exchanged
    {{1, 1, -1.25f, 1, 60, 10}, 2.25},         // turned and stretched
};

TEST(Stroking, TransformsStretchAreas)
{
    for (const TransformCase& transform : kTransformCases) {
        for (const AreaCase& row : kAreaCases) {
            const std::string_view path = row.path;
            if (path.find("big") != std::string_view::npos || row.width > 100) {
                continue;  // reaches beyond any canvas
            }
            SCOPED_TRACE(NameOf(row) << " scale " << transform.scale);
            PixelCanvas canvas(120, 120);
            canvas.Surface().Concat(transform.matrix);
            canvas.Stroke(row.path, row.width, [&](PenInterface& pen) { SetPen(pen, row); });
            const double want = row.want * transform.scale;
            EXPECT_NEAR(canvas.Area(), want, want * 0.016 + 0.2);
        }
    }
}

// The box around what is drawn: x0, y0, x1, y1.
std::vector<int> ExtentOf(const PixelCanvas& canvas, int size)
{
    std::vector<int> extent = {size, size, 0, 0};
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            if (canvas.AlphaAt(x, y) != 0) {
                extent = {std::min(extent[0], x), std::min(extent[1], y),
                          std::max(extent[2], x + 1), std::max(extent[3], y + 1)};
            }
        }
    }
    return extent;
}

struct ExtentCase {
    const char* path;
    float width;
    LineJoin join;
    LineCap cap;
    Matrix matrix;
    std::vector<int> want;
};

const ExtentCase kExtentCases[] = {
    // Caps reach out along the line by half the width, stretched like the line.
    {"M 10 10 L 20 10", 4, kMiter, kButt, {2, 0, 0, 1, 0, 0}, {20, 8, 40, 12}},
    {"M 10 10 L 20 10", 4, kMiter, kSquare, {2, 0, 0, 1, 0, 0}, {16, 8, 44, 12}},
    {"M 10 10 L 20 10", 4, kMiter, kRoundCap, {2, 0, 0, 1, 0, 0}, {16, 8, 44, 12}},
    {"M 10 10 L 20 10", 4, kMiter, kSquare, {0, 2, 1, 0, 0, 0}, {8, 16, 12, 44}},
    // A miter of a right angle reaches out as far as a square.
    {"M 10 10 L 20 10 L 20 20", 4, kMiter, kButt, {2, 0, 0, 1, 0, 0}, {20, 8, 44, 20}},
    {"M 10 10 L 20 10 L 20 20", 4, kRound, kButt, {1, 0, 0, 2, 0, 0}, {10, 16, 22, 40}},
    // Dots.
    {"M 10 10 L 10 10", 4, kMiter, kRoundCap, {3, 0, 0, 1, 0, 0}, {24, 8, 36, 12}},
    {"M 10 10 Z", 4, kMiter, kSquare, {1, 0, 0, 3, 0, 0}, {8, 24, 12, 36}},
    // Closed: all corners are joined, none has a cap.
    {"M 10 10 L 20 10 L 20 20 L 10 20 Z", 4, kMiter, kButt, {2, 0, 0, 1, 0, 0}, {16, 8, 44, 22}},
    {"M 10 10 L 20 10 L 20 20 L 10 20 L 10 10",
     4,
     kMiter,
     kButt,
     {2, 0, 0, 1, 0, 0},
     {16, 8, 44, 22}},
};

TEST(Stroking, Extents)
{
    for (const ExtentCase& row : kExtentCases) {
        SCOPED_TRACE(row.path);
        PixelCanvas canvas(50, 50);
        canvas.Surface().Concat(row.matrix);
        canvas.Stroke(row.path, row.width, [&](PenInterface& pen) {
            pen.SetLineJoin(row.join);
            pen.SetLineCap(row.cap);
        });
        EXPECT_EQ(ExtentOf(canvas, 50), row.want);
    }
}

TEST(Stroking, ATurnByHalfACircle)
{
    // A round join is a round cap there. Pixels that the line's sides cut count them twice, forth
    // and back, so the sides lie between pixels here.
    PixelCanvas canvas(40, 40);
    canvas.Stroke("M 10 20 L 30 20 L 10 20", 8,
                  [](PenInterface& pen) { pen.SetLineJoin(LineJoin::kTEPRoundJoin); });
    EXPECT_NEAR(canvas.Area(), 160 + 8 * kPi, 3);
}

TEST(Stroking, OnlyAClosedPartHasNoCornerMissing)
{
    // A square that only ends where it began lacks the corner's outer quarter.
    PixelCanvas open(12, 12);
    open.Stroke("M 2 2 L 10 2 L 10 10 L 2 10 L 2 2", 2);
    PixelCanvas closed(12, 12);
    closed.Stroke("M 2 2 L 10 2 L 10 10 L 2 10 Z", 2);
    EXPECT_EQ(open.AlphaAt(1, 1), 0);
    EXPECT_EQ(closed.AlphaAt(1, 1), 255);
    EXPECT_EQ(closed.Area() - open.Area(), 1);
}

TEST(Stroking, Hairlines)
{
    struct Case {
        float width;
        int want;  // of 255
    };
    for (const Case& row : {Case{0.5f, 128}, Case{0.25f, 64}, Case{0.0625f, 16}, Case{0.015625f, 4},
                            Case{1e-6f, 0}}) {
        PixelCanvas canvas(20, 3);
        canvas.Stroke("M 0 1.5 L 20 1.5", row.width);
        for (int x = 0; x < 20; ++x) {
            EXPECT_EQ(canvas.AlphaAt(x, 0), 0);
            EXPECT_EQ(canvas.AlphaAt(x, 1), row.want) << row.width;
        }
    }
}

TEST(Stroking, DashesBeginWhereTheirPartBegins)
{
    PixelCanvas canvas(12, 5);
    const float dash[] = {3, 1};
    const auto set = [&dash](PenInterface& pen) { pen.SetDashPattern(dash, 2); };
    canvas.Stroke("M 1 1.5 L 11 1.5 M 10 3.5 L 0 3.5", 1, set);
    EXPECT_EQ(canvas.Picture(),
              "............\n.###.###.##.\n............\n##.###.###..\n............\n");
}

TEST(Stroking, DashesUnderTransforms)
{
    // Lengths are those of user space, along any direction.
    const float dash[] = {2, 2};
    const auto set = [&dash](PenInterface& pen) { pen.SetDashPattern(dash, 2); };
    PixelCanvas canvas(12, 8);
    canvas.Surface().Concat({1.5f, 0, 0, 1, 0, 0});
    canvas.Stroke("M 0 0.5 L 8 0.5", 1, set);
    canvas.Stroke("M 0 0 L 0 8", 4, set);
    EXPECT_EQ(canvas.Picture(),
              "###...###...\n###.........\n............\n............\n###.........\n"
              "###.........\n............\n............\n");
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
