#include "svgloom/src/ArcToCurve.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "svgloom/src/PathBuffer.h"
#include "svgloom/src/tests/TestSupport.h"
#include "svgloom/src/tests/TraceListener.h"

namespace SVGLoom {
namespace {

using testing_support::RecordingPath;
using testing_support::TraceListener;

struct Curve {
    Point first;
    Point second;
    Point to;
};

class CurveCollector : public RecordingPath {
public:
    void CurveTo(float x1, float y1, float x2, float y2, float x, float y) override
    {
        curves.push_back({{x1, y1}, {x2, y2}, {x, y}});
    }
    std::vector<Curve> curves;
};

void Convert(const Point& from, const Arc& arc, Path& path)
{
    PathBuffer buffer(path, PathBuffer::Mode::kEachAtOnce);
    ArcToCurve(from, arc, buffer);
    buffer.Flush();
}

std::vector<Curve> Convert(const Point& from, const Arc& arc)
{
    CurveCollector path;
    Convert(from, arc, path);
    EXPECT_EQ(path.log.Written(), "");
    return path.curves;
}

std::string Written(const Point& from, const Arc& arc)
{
    RecordingPath path;
    Convert(from, arc, path);
    return path.log.Written();
}

struct ArcCase {
    Arc arc;  // from (0, 0)
    std::string_view want;
};

// The bits count: every platform gives these floats. They were worked out apart from this code,
// step by step.
const ArcCase kArcCases[] = {
    // A quarter of a circle, both ways.
    {{10, 10, 0, false, true, {10, 10}}, "C(5.522848, -8.997862e-07, 10, 4.477152, 10, 10)"},
    {{10, 10, 0, false, false, {10, 10}}, "C(-4.8282266e-07, 5.5228477, 4.4771523, 10, 10, 10)"},
    // Half a circle is two pieces.
    {{5, 5, 0, false, true, {10, 0}},
     "C(-3.3649044e-07, -3.849002, 4.1666665, -6.254628, 7.5, -4.3301272); "
     "C(9.047006, -3.4369633, 10, -1.786328, 10, 0)"},
    {{5, 5, 0, false, false, {10, 0}},
     "C(-3.3649044e-07, 3.849002, 4.1666665, 6.254628, 7.5, 4.3301272); "
     "C(9.047006, 3.4369633, 10, 1.786328, 10, 0)"},
    // Three quarters, both ways.
    {{10, 10, 0, true, true, {10, 10}},
     "C(-6.729809e-07, -7.698004, 8.333333, -12.509256, 15, -8.6602545); "
     "C(21.666668, -4.8112526, 21.666668, 4.8112526, 15, 8.6602545); "
     "C(13.479808, 9.537938, 11.755367, 10, 10, 10)"},
    {{10, 10, 0, true, false, {10, 10}},
     "C(-7.698004, -9.179777e-08, -12.509256, 8.333334, -8.660254, 15); "
     "C(-4.811251, 21.666666, 4.8112535, 21.666666, 8.6602545, 14.999999); "
     "C(9.537937, 13.479807, 10, 11.755366, 10, 10)"},
    // Radii that do not reach are enlarged to half the distance.
    {{1, 1, 0, false, true, {10, 0}},
     "C(-3.3649044e-07, -3.849002, 4.1666665, -6.254628, 7.5, -4.3301272); "
     "C(9.047006, -3.4369633, 10, -1.786328, 10, 0)"},
    {{1, 2, 0, true, false, {3, 4}},
     "C(-0.76980054, 2.3094008, -0.00092566013, 5.4194427, 1.3839744, 5.598076); "
     "C(2.0267088, 5.6809797, 2.6427345, 5.0717964, 3, 4)"},
    {{20, 5, 0, false, true, {10, 3}}, "C(4.8221526, 0.61977684, 8.431106, 1.7024615, 10, 3)"},
    // A negative radius is taken as it is.
    {{-5, 5, 0, false, true, {10, 0}},
     "C(3.3649044e-07, -3.849002, 5.833334, -6.254628, 2.5000002, -4.3301272); "
     "C(0.9529948, -3.4369633, 10, -1.786328, 10, 0)"},
};

TEST(ArcToCurve, Cases)
{
    for (const ArcCase& row : kArcCases) {
        EXPECT_EQ(Written({}, row.arc), row.want);
    }
}

// Artwork was drawn with that: applying the rotation would turn its ellipses.
TEST(ArcToCurve, TheRotationIsNotApplied)
{
    EXPECT_EQ(Written({}, {20, 5, 45, false, true, {10, 3}}),
              Written({}, {20, 5, 0, false, true, {10, 3}}));
}

TEST(ArcToCurve, AlmostAWholeTurnIsThreePieces)
{
    EXPECT_EQ(Convert({0, 0}, {5, 5, 0, true, true, {0.1f, 0}}).size(), 3u);
    EXPECT_EQ(Convert({0, 0}, {5, 5, 0, true, false, {0.1f, 0}}).size(), 3u);
}

TEST(ArcToCurve, AZeroRadiusIsNoSpecialCase)
{
    for (const Arc& arc : {Arc{0, 5, 0, false, true, {10, 0}}, Arc{5, 0, 0, false, true, {10, 0}},
                           Arc{0, 0, 0, true, false, {10, 10}}, Arc{5, 5, 0, true, true, {0, 0}}}) {
        const std::vector<Curve> curves = Convert({}, arc);
        ASSERT_EQ(curves.size(), 1u);
        EXPECT_TRUE(std::isnan(curves[0].first.x) || std::isnan(curves[0].first.y));
        EXPECT_EQ(curves[0].to.x, arc.to.x);
        EXPECT_EQ(curves[0].to.y, arc.to.y);
    }
}

TEST(ArcToCurve, AnyFloatsEndInAFewPieces)
{
    std::mt19937 random(3);
    const float values[] = {0, -0.0f, 1, -1, 5, 1e-30f, 1e30f, 3e38f, -3e38f, 1e-45f, 0.1f, 24};
    const auto any = [&random, &values] { return values[random() % std::size(values)]; };
    for (int round = 0; round < 100000; ++round) {
        const Point from = {any(), any()};
        const Arc arc = {any(), any(), any(), random() % 2 == 0, random() % 2 == 0, {any(), any()}};
        const std::vector<Curve> curves = Convert(from, arc);
        ASSERT_GE(curves.size(), 1u);
        ASSERT_LE(curves.size(), 4u);
        ASSERT_EQ(curves.back().to.x, arc.to.x);
        ASSERT_EQ(curves.back().to.y, arc.to.y);
    }
}

// Points in between lie on the circle, and so does the middle of each piece, nearly.
TEST(ArcToCurve, PiecesFollowTheCircle)
{
    for (const bool large : {false, true}) {
        for (const bool sweep : {false, true}) {
            // From (-3, 4) to (5, 0) on a circle of radius 5 around 0, or around the other centre.
            const std::vector<Curve> curves = Convert({-3, 4}, {5, 5, 0, large, sweep, {5, 0}});
            const Point center = large == sweep ? Point{0, 0} : Point{2, 4};
            Point start = {-3, 4};
            float turned = 0;
            for (const Curve& curve : curves) {
                const float x = (start.x + 3 * curve.first.x + 3 * curve.second.x + curve.to.x) / 8;
                const float y = (start.y + 3 * curve.first.y + 3 * curve.second.y + curve.to.y) / 8;
                EXPECT_NEAR(std::hypot(x - center.x, y - center.y), 5, 0.01);
                EXPECT_NEAR(std::hypot(curve.to.x - center.x, curve.to.y - center.y), 5, 1e-4);
                turned += std::abs(
                    std::remainder(std::atan2(curve.to.y - center.y, curve.to.x - center.x) -
                                       std::atan2(start.y - center.y, start.x - center.x),
                                   6.2831853f));
                start = curve.to;
            }
            EXPECT_EQ(turned > 3.15f, large) << turned << " " << sweep;
        }
    }
}

TEST(ArcToCurve, Traces)
{
    TraceListener listener("SVGLoom.Parse", 6);
    Written({1, 2}, {3, 3, 30, false, true, {4, 5}});
    const std::vector<std::string> want = {
        "6 ArcToCurve ----------------------------------------------",
        "6 parsePathString ArcToCurve: rx=3 ry=3 large=0 sweep=1 previous=(1, 2) next=(4, 5)",
        "6 parsePathString ELLIPTICAL: 3, 3, 30, 0, 1, 4, 5",
        "6 ArcToCurve final radii: rx=3 ry=3",
        "6 parsePathString ArcToCurve: center(1, 5)",
        "6 parsePathString ArcToCurve: radius(3, 3)",
        "6 parsePathString ArcToCurve: angles(-1.5708, 0)",
        "6 parsePathString ArcToCurve: anglesF(-90, 0)",
        "6 AddArcToCurve startAngle=-1.5708 endAngle=0",
        "6 AddArcToCurve startCP=(2.65685, 2) endCP=(4, 3.34315) EndPoint=(4, 5)",
        "6 parsePathString ArcToCurve: controlPoint: 4, 3.34315",
    };
    EXPECT_EQ(listener.messages, want);
}

// Every piece has its lines.
TEST(ArcToCurve, TracingFollowsTheChannel)
{
    for (const int level : {-1, 6, 5, 6}) {
        TraceListener listener("SVGLoom.Parse", level);
        Written({1, 2}, {3, 3, 30, false, true, {4, 5}});
        EXPECT_EQ(listener.messages.size(), level == 6 ? 11u : 0u) << level;
        Written({0, 0}, {5, 5, 0, true, true, {0.1f, 0}});
        EXPECT_EQ(listener.messages.size(), level == 6 ? 11u + 8u + 3u * 3u : 0u) << level;
    }
}

// Segments as they come: arcs are made curves later than what stands between them.
class SegmentCollector : public RecordingPath {
public:
    void AddSegments(const PathSegments& segments) override
    {
        bytes.insert(bytes.end(), segments.data(), segments.data() + segments.size());
        ++calls;
    }
    std::vector<std::uint8_t> bytes;
    std::size_t calls = 0;
};

struct ArcStep {
    Point from;
    Arc arc;
    std::size_t lines;  // behind the arc
};

std::vector<std::uint8_t> Packed(const std::vector<ArcStep>& steps, PathBuffer::Mode mode)
{
    SegmentCollector path;
    PathBuffer buffer(path, mode);
    for (const ArcStep& step : steps) {
        buffer.ArcTo(step.from, step.arc);
        for (std::size_t i = 0; i < step.lines; ++i) {
            buffer.LineTo({static_cast<float>(i), step.from.y});
        }
    }
    buffer.Flush();
    return path.bytes;
}

void ExpectSamePacked(const std::vector<ArcStep>& steps)
{
    const auto have = Packed(steps, PathBuffer::Mode::kPacked);
    const auto want = Packed(steps, PathBuffer::Mode::kEachAtOnce);
    ASSERT_EQ(have.size(), want.size());
    ASSERT_TRUE(have == want);
}

TEST(ArcQueue, ArcsAreThoseOfOneAtATime)
{
    std::mt19937 random(4);
    std::uniform_real_distribution<float> coordinates(-20, 20);
    std::uniform_real_distribution<float> radii(0.5f, 30);
    for (std::size_t count = 0; count < 200; ++count) {
        std::vector<ArcStep> steps(count);
        for (ArcStep& step : steps) {
            step.from = {coordinates(random), coordinates(random)};
            step.arc = {radii(random),     radii(random),     0,
                        random() % 2 == 0, random() % 2 == 0, {coordinates(random), 3}};
            step.lines = random() % 4;
        }
        ASSERT_NO_FATAL_FAILURE(ExpectSamePacked(steps));
    }
}

// The number of their pieces is foreseen roughly; what stands behind moves where it is not right.
TEST(ArcQueue, ArcsOfAnotherNumberOfPiecesThanForeseen)
{
    const Arc rows[] = {
        {0, 5, 0, false, true, {10, 0}},          // not finite: one piece
        {5, 5, 0, true, true, {0, 0}},            // as if almost a whole turn
        {1e-20f, 1e-20f, 0, true, true, {1, 0}},  // too small for the squares
        {3e30f, 3e30f, 0, true, false, {1, 0}},   // too large
        {5, 5, 0, true, true, {8.6602545f, 0}},   // 120 degrees, or the rest of a turn
        {5, 5, 0, false, true, {8.660254f, 0}},  {5, 5, 0, false, false, {8.6602555f, 0}},
        {5, 5, 0, false, true, {1e-6f, 0}},
    };
    for (const Arc& row : rows) {
        for (std::size_t count = 1; count <= 2 * ArcQueue::kMost; ++count) {
            ASSERT_NO_FATAL_FAILURE(
                ExpectSamePacked(std::vector<ArcStep>(count, {{0, 0}, row, count % 3})));
        }
    }
    std::mt19937 random(5);
    const float values[] = {0, -0.0f, 1, -1, 5, 1e-30f, 1e30f, 3e38f, -3e38f, 1e-45f, 0.1f, 24};
    const auto any = [&random, &values] { return values[random() % std::size(values)]; };
    for (int round = 0; round < 2000; ++round) {
        std::vector<ArcStep> steps(1 + random() % 40);
        for (ArcStep& step : steps) {
            step.from = {any(), any()};
            step.arc = {any(), any(), 0, random() % 2 == 0, random() % 2 == 0, {any(), any()}};
            step.lines = random() % 3;
        }
        ASSERT_NO_FATAL_FAILURE(ExpectSamePacked(steps));
    }
}

// Also where arcs wait while the block becomes a larger one, or is handed over.
TEST(ArcQueue, ArcsInPathsOfEverySize)
{
    for (const std::size_t lines : {0u, 100u, 330u, 1000u, 5000u, 12000u}) {
        for (std::size_t count : {1u, 3u, 30u, 3000u}) {
            if (lines * count > 400000) {
                continue;
            }
            const Arc arc = {5, 5, 0, count % 2 == 0, true, {6, 1}};
            ASSERT_NO_FATAL_FAILURE(
                ExpectSamePacked(std::vector<ArcStep>(count, {{0, 0}, arc, lines})));
        }
    }
}

TEST(ArcQueue, APathOfAFewArcsIsHandedOverAtOnce)
{
    SegmentCollector path;
    PathBuffer buffer(path, PathBuffer::Mode::kPacked);
    for (int i = 0; i < 40; ++i) {
        buffer.ArcTo({0, 0}, {5, 5, 0, true, true, {6, 1}});
    }
    EXPECT_EQ(path.calls, 0u);
    buffer.Flush();
    EXPECT_EQ(path.calls, 1u);
    EXPECT_EQ(path.bytes.size(), 40 * 3 * PathSegments::kMaxBytes);
}

}  // namespace
}  // namespace SVGLoom
