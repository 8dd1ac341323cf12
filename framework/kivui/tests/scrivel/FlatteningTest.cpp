#include "framework/kivui/src/scrivel/Flattening.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <string>

#include "framework/kivui/tests/scrivel/PixelCanvas.h"

namespace kivui::scrivel {
namespace {

// What a walk hands over, as text.
class Events {
public:
    void Begin(const DPoint& p) { Add("begin", {p}); }
    void Line(const DPoint& p) { Add("line", {p}); }
    void Curve(const DPoint& p0, const DPoint& p1, const DPoint& p2, const DPoint& p3)
    {
        Add("curve", {p0, p1, p2, p3});
    }
    void End(bool closed) { Add(closed ? "close" : "end", {}); }
    std::string Text() const { return text_.str(); }

private:
    void Add(const char* word, std::initializer_list<DPoint> points)
    {
        text_ << word;
        for (const DPoint& p : points) {
            text_ << ' ' << p.x << ',' << p.y;
        }
        text_ << "; ";
    }

    std::ostringstream text_;
};

struct WalkCase {
    const char* path;
    const char* want;  // under x' = 2x, y' = y + 1
};

constexpr WalkCase kWalkCases[] = {
    {"", ""},
    {"M 1 1", ""},
    {"Z", ""},
    {"M 1 1 L 2 2", "begin 2,2; line 4,3; end; "},
    {"M 1 1 L 2 2 Z", "begin 2,2; line 4,3; close; "},
    {"M 1 1 Z", "begin 2,2; close; "},
    // Only the last of several moves counts.
    {"M 1 1 M 5 5 L 2 2", "begin 10,6; line 4,3; end; "},
    {"M 1 1 L 2 2 M 3 3 L 4 4", "begin 2,2; line 4,3; end; begin 6,4; line 8,5; end; "},
    {"M 0 0 C 1 1 2 2 3 3", "begin 0,1; curve 0,1 2,2 4,3 6,4; end; "},
    // Without a current point a line or curve begins where it would lead first.
    {"L 2 2 L 3 3", "begin 4,3; line 4,3; line 6,4; end; "},
    {"C 1 1 2 2 3 3", "begin 2,2; curve 2,2 2,2 4,3 6,4; end; "},
    // Behind a close the part's start is current, again and again.
    {"M 1 1 L 2 2 Z L 3 3 Z", "begin 2,2; line 4,3; close; begin 2,2; line 6,4; close; "},
    {"M 1 1 L 2 2 Z Z", "begin 2,2; line 4,3; close; begin 2,2; close; "},
};

TEST(Flattening, WalkPath)
{
    PixelCanvas canvas(1, 1);
    for (const WalkCase& row : kWalkCases) {
        SCOPED_TRACE(row.path);
        Events events;
        WalkPath(ObjectOf(*canvas.Path(row.path)), {2, 0, 0, 1, 0, 1}, events);
        EXPECT_EQ(events.Text(), row.want);
    }
}

struct FiniteCase {
    const char* path;
    bool want;
};

constexpr FiniteCase kFiniteCases[] = {
    {"", true},
    {"M 0 0 L big -big", true},
    {"M 0 0 L nan 0", false},
    {"M 0 0 L 0 nan", false},
    {"M inf 0 L 1 1", false},
    {"M 0 0 C 1 1 2 2 3 inf", false},
};

TEST(Flattening, IsFinite)
{
    PixelCanvas canvas(1, 1);
    for (const FiniteCase& row : kFiniteCases) {
        EXPECT_EQ(IsFinite(ObjectOf(*canvas.Path(row.path))), row.want) << row.path;
    }
    const PathP path = canvas.Path("");
    path->LineTo(-std::numeric_limits<float>::infinity(), 1);
    EXPECT_FALSE(IsFinite(ObjectOf(*path)));
}

struct CurveCase {
    DPoint p[4];
};

constexpr CurveCase kCurves[] = {
    {{{0, 0}, {0, 55.2}, {44.8, 100}, {100, 100}}},     // a quarter of a circle
    {{{0, 0}, {300, 10}, {-200, 20}, {100, 30}}},       // a loop
    {{{5, 5}, {5, 5}, {9, 30}, {40, 40}}},              // no first direction
    {{{0, 0}, {10, 0}, {10, 0}, {0, 0}}},               // there and back
    {{{1, 1}, {1, 1.01}, {1.01, 1.02}, {1.02, 1.02}}},  // a speck
};

double DistanceToLine(const DPoint& p, const DPoint& a, const DPoint& b)
{
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double square = dx * dx + dy * dy;
    double t = square > 0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / square : 0;
    t = std::min(std::max(t, 0.0), 1.0);
    return std::hypot(p.x - a.x - t * dx, p.y - a.y - t * dy);
}

TEST(Flattening, PiecesStayWithinTheTolerance)
{
    for (const CurveCase& row : kCurves) {
        const Cubic cubic(row.p[0], row.p[1], row.p[2], row.p[3]);
        const int pieces = CurvePieces(row.p[0], row.p[1], row.p[2], row.p[3]);
        SCOPED_TRACE(pieces);
        double largest = 0;
        for (int i = 0; i < pieces; ++i) {
            const DPoint a = cubic.At(static_cast<double>(i) / pieces);
            const DPoint b = cubic.At(static_cast<double>(i + 1) / pieces);
            for (int k = 1; k < 20; ++k) {
                const DPoint between = cubic.At((i + k / 20.0) / pieces);
                largest = std::max(largest, DistanceToLine(between, a, b));
            }
        }
        EXPECT_LE(largest, kTolerance);
    }
}

TEST(Flattening, CubicIsTheCurve)
{
    for (const CurveCase& row : kCurves) {
        const Cubic cubic(row.p[0], row.p[1], row.p[2], row.p[3]);
        for (const double t : {0.0, 0.1, 0.5, 0.77, 1.0}) {
            const auto mix = [t](const DPoint& a, const DPoint& b) {
                return DPoint{a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
            };
            const DPoint a = mix(row.p[0], row.p[1]);
            const DPoint b = mix(row.p[1], row.p[2]);
            const DPoint c = mix(row.p[2], row.p[3]);
            const DPoint want = mix(mix(a, b), mix(b, c));
            EXPECT_NEAR(cubic.At(t).x, want.x, 1e-12);
            EXPECT_NEAR(cubic.At(t).y, want.y, 1e-12);
        }
    }
}

TEST(Flattening, TheNumberOfPiecesIsLimited)
{
    const DPoint zero;
    EXPECT_EQ(CurvePieces(zero, zero, zero, zero), 1);
    EXPECT_EQ(CurvePieces({0, 0}, {1, 1}, {2, 2}, {3, 3}), 1);  // a straight line
    EXPECT_EQ(CurvePieces({0, 0}, {1e100, 0}, {0, 1e100}, {1, 1}), kMaxCurvePieces);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(CurvePieces({nan, nan}, {nan, nan}, {nan, nan}, {nan, nan}), kMaxCurvePieces);
    EXPECT_EQ(RoundUp(0), 1);
    EXPECT_EQ(RoundUp(2), 2);
    EXPECT_EQ(RoundUp(2.01), 3);
}

TEST(Flattening, WideStrokesTakeMorePieces)
{
    const DPoint* const p = kCurves[0].p;
    const DMatrix same;
    const int fill = CurvePieces(p[0], p[1], p[2], p[3]);
    EXPECT_EQ(StrokePieces(p[0], p[1], p[2], p[3], same, 0.1), fill);
    EXPECT_GT(StrokePieces(p[0], p[1], p[2], p[3], same, 1000), fill);
    EXPECT_GT(StrokePieces(p[0], p[1], p[2], p[3], {20, 0, 0, 20, 0, 0}, 0.1), fill);
    EXPECT_EQ(StrokePieces(p[0], p[1], p[2], p[3], same, 1e300), kMaxCurvePieces);
    // Straight ones do not.
    EXPECT_EQ(StrokePieces({0, 0}, {1, 1}, {2, 2}, {3, 3}, same, 1000), 1);
}

}  // namespace
}  // namespace kivui::scrivel
