#include "framework/kivui/src/scrivel/Coverage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <vector>

namespace kivui::scrivel {
namespace {

using Polygon = std::vector<DPoint>;

// The levels of all pixels of a box; fails where runs are not as they are promised.
class Levels {
public:
    explicit Levels(const Box& box)
        : box_(box),
          levels_(static_cast<std::size_t>(box.x1 - box.x0) *
                  static_cast<std::size_t>(box.y1 - box.y0)),
          lastY_(box.y0 - 1)
    {
    }

    void Row(int y)
    {
        EXPECT_GT(y, lastY_);
        EXPECT_GE(y, box_.y0);
        EXPECT_LT(y, box_.y1);
        lastY_ = y;
        lastX_ = box_.x0;
    }
    void Run(int x, int length, int level)
    {
        EXPECT_GE(x, lastX_);
        EXPECT_GE(length, 1);
        EXPECT_LE(length, box_.x1 - x);
        EXPECT_GE(level, 1);
        EXPECT_LE(level, 255);
        lastX_ = x + length;
        for (int i = 0; i < length; ++i) {
            levels_[Index(x + i, lastY_)] = level;
        }
    }

    int At(int x, int y) const { return levels_[Index(x, y)]; }
    double Area() const
    {
        double sum = 0;
        for (const int level : levels_) {
            sum += level;
        }
        return sum / 255;
    }
    friend bool operator==(const Levels& a, const Levels& b) { return a.levels_ == b.levels_; }

private:
    std::size_t Index(int x, int y) const
    {
        return static_cast<std::size_t>(y - box_.y0) * static_cast<std::size_t>(box_.x1 - box_.x0) +
               static_cast<std::size_t>(x - box_.x0);
    }

    Box box_;
    std::vector<int> levels_;
    int lastY_;
    int lastX_ = 0;
};

void Add(Coverage& coverage, const Polygon& polygon)
{
    coverage.MoveTo(polygon[0]);
    for (std::size_t i = 1; i < polygon.size(); ++i) {
        coverage.LineTo(polygon[i]);
    }
}

Levels LevelsOf(const Box& box, const std::vector<Polygon>& polygons, bool nonZero = true)
{
    Coverage coverage;
    coverage.Start(box);
    for (const Polygon& polygon : polygons) {
        Add(coverage, polygon);
    }
    Levels levels(box);
    coverage.Sweep(nonZero, levels);
    return levels;
}

class Numbers {
public:
    explicit Numbers(std::uint32_t seed) : state_(seed + 1) {}

    double Between(double low, double high)
    {
        state_ = state_ * 6364136223846793005u + 1442695040888963407u;
        return low + (high - low) * static_cast<double>(state_ >> 40) / 16777216.0;
    }

private:
    std::uint64_t state_;
};

Polygon Triangle(Numbers& numbers, double low, double high)
{
    Polygon triangle;
    for (int i = 0; i < 3; ++i) {
        const double x = numbers.Between(low, high);
        triangle.push_back({x, numbers.Between(low, high)});
    }
    return triangle;
}

double AreaOf(const Polygon& p)
{
    return std::fabs((p[1].x - p[0].x) * (p[2].y - p[0].y) -
                     (p[2].x - p[0].x) * (p[1].y - p[0].y)) /
           2;
}

TEST(Coverage, AreasAreExact)
{
    for (std::uint32_t seed = 0; seed < 300; ++seed) {
        Numbers numbers(seed);
        const double size = seed % 3 == 0 ? 3 : 60;
        const Polygon triangle = Triangle(numbers, 0, size);
        const Levels levels = LevelsOf({0, 0, 60, 60}, {triangle});
        // Corners move by half a 256th, levels by half a 255th of each pixel at the border.
        EXPECT_NEAR(levels.Area(), AreaOf(triangle), 0.006 * size) << seed;
    }
}

TEST(Coverage, BothDirectionsAreAlike)
{
    for (std::uint32_t seed = 0; seed < 100; ++seed) {
        Numbers numbers(seed);
        const Polygon triangle = Triangle(numbers, -20, 60);
        const Polygon reversed(triangle.rbegin(), triangle.rend());
        const Box box = {3, 2, 40, 37};
        EXPECT_TRUE(LevelsOf(box, {triangle}) == LevelsOf(box, {reversed})) << seed;
    }
}

TEST(Coverage, NeighboursShareTheirBorder)
{
    // A square in two along any line through it: each pixel is covered whole by both together.
    for (std::uint32_t seed = 0; seed < 100; ++seed) {
        Numbers numbers(seed);
        const double x0 = numbers.Between(0, 40);
        const double x1 = numbers.Between(0, 40);
        const Box box = {0, 0, 40, 40};
        const Levels left = LevelsOf(box, {{{0, 0}, {x0, 0}, {x1, 40}, {0, 40}}});
        const Levels right = LevelsOf(box, {{{x0, 0}, {40, 0}, {40, 40}, {x1, 40}}});
        for (int y = 0; y < 40; ++y) {
            for (int x = 0; x < 40; ++x) {
                ASSERT_NEAR(left.At(x, y) + right.At(x, y), 255, 1) << seed;
            }
        }
    }
}

TEST(Coverage, TheBoxCutsOff)
{
    // Inside a small box the levels are those of a large one, but for a rounding at the border.
    const Box large = {-300, -300, 61, 61};
    const Box small = {7, 11, 40, 30};
    for (std::uint32_t seed = 0; seed < 100; ++seed) {
        Numbers numbers(seed);
        const Polygon triangle = Triangle(numbers, -250, 60);
        const Levels all = LevelsOf(large, {triangle});
        const Levels some = LevelsOf(small, {triangle});
        for (int y = small.y0; y < small.y1; ++y) {
            for (int x = small.x0; x < small.x1; ++x) {
                ASSERT_NEAR(some.At(x, y), all.At(x, y), 2) << seed;
            }
        }
    }
}

TEST(Coverage, LargeBoxesGoBandByBand)
{
    // 2,000 by 500 pixels do not fit into the table at once; the part on the right does.
    const Box large = {-1900, 0, 100, 500};
    const Box small = {0, 0, 100, 500};
    for (std::uint32_t seed = 0; seed < 20; ++seed) {
        Numbers numbers(seed);
        std::vector<Polygon> polygons;
        for (int i = 0; i < 5; ++i) {
            polygons.push_back(Triangle(numbers, -100, 600));
        }
        const Levels all = LevelsOf(large, polygons, seed % 2 == 0);
        const Levels some = LevelsOf(small, polygons, seed % 2 == 0);
        for (int y = small.y0; y < small.y1; ++y) {
            for (int x = small.x0; x < small.x1; ++x) {
                ASSERT_NEAR(some.At(x, y), all.At(x, y), 4) << seed;
            }
        }
    }
}

TEST(Coverage, LongAndNarrowBoxes)
{
    const Levels wide = LevelsOf({0, 0, 32767, 1}, {{{0, 0}, {32767, 0}, {32767, 1}}});
    EXPECT_NEAR(wide.Area(), 32767 / 2.0, 32767 / 500.0);
    EXPECT_EQ(wide.At(0, 0), 0);
    EXPECT_EQ(wide.At(32766, 0), 255);
    const Levels high = LevelsOf({0, 0, 1, 32767}, {{{0, 0}, {1, 32767}, {0, 32767}}});
    EXPECT_NEAR(high.Area(), 32767 / 2.0, 32767 / 500.0);
    const Levels both = LevelsOf({0, 0, 32767, 9}, {{{0, 0}, {32767, 0}, {32767, 9}, {0, 9}}});
    EXPECT_EQ(both.Area(), 32767 * 9);
}

TEST(Coverage, AnyNumberOfTurnsCounts)
{
    // More turns than fit into 32 bits as parts of a pixel.
    Coverage coverage;
    for (const int turns : {1, 2, 40000, 40001, 131072}) {
        for (const bool nonZero : {true, false}) {
            const Box box = {0, 0, 3, 3};
            coverage.Start(box);
            for (int i = 0; i < turns; ++i) {
                Add(coverage, {{0.5, 0.5}, {2.5, 0.5}, {2.5, 2.5}, {0.5, 2.5}});
            }
            Levels levels(box);
            coverage.Sweep(nonZero, levels);
            EXPECT_EQ(levels.At(1, 1), nonZero || turns % 2 == 1 ? 255 : 0) << turns;
        }
    }
}

TEST(Coverage, PartsAreClosed)
{
    const Box box = {0, 0, 4, 4};
    const Levels closed = LevelsOf(box, {{{1, 1}, {3, 1}, {3, 3}, {1, 3}, {1, 1}}});
    EXPECT_TRUE(LevelsOf(box, {{{1, 1}, {3, 1}, {3, 3}, {1, 3}}}) == closed);
    // Also in front of the next one.
    EXPECT_TRUE(LevelsOf(box, {{{1, 1}, {3, 1}, {3, 3}, {1, 3}}, {{0, 0}, {9, 9}}}) == closed);
}

TEST(Coverage, NumbersBeyondReachAreClamped)
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const Box box = {0, 0, 4, 4};
    for (const double far : {5.0, 1e5, 1e9, 1e18, 1e40, 1e300, kInfinity}) {
        const Levels levels = LevelsOf(box, {{{-far, -far}, {far, -far}, {far, far}, {-far, far}}});
        EXPECT_EQ(levels.Area(), 16) << far;
    }
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    LevelsOf(box, {{{kNaN, 1}, {2, kNaN}, {3, 3}}});
}

TEST(Coverage, AnEmptyAreaHasNoRuns)
{
    const Box box = {0, 0, 4, 4};
    EXPECT_EQ(LevelsOf(box, {}).Area(), 0);
    EXPECT_EQ(LevelsOf(box, {{{1, 1}, {3, 3}}}).Area(), 0);
    EXPECT_EQ(LevelsOf(box, {{{9, 1}, {12, 1}, {12, 3}}}).Area(), 0);
    EXPECT_EQ(LevelsOf(box, {{{1, -9}, {3, -9}, {3, -1}}}).Area(), 0);
}

TEST(Coverage, AnAreaThatWasLeftHalfwayDoesNotShow)
{
    struct Failing {
        void Row(int) {}
        void Run(int, int, int) { throw std::runtime_error("run"); }
    };
    for (const Box& box : {Box{0, 0, 9, 9}, Box{0, 0, 700, 700}}) {
        Coverage coverage;
        coverage.Start(box);
        Add(coverage, {{1, 1}, {8, 2}, {3, 7}});
        Failing failing;
        EXPECT_THROW(coverage.Sweep(true, failing), std::runtime_error);
        coverage.Start(box);
        Levels levels(box);
        coverage.Sweep(true, levels);
        EXPECT_EQ(levels.Area(), 0);
        // Neither does one that was never swept.
        coverage.Start(box);
        Add(coverage, {{1, 1}, {8, 2}, {3, 7}});
        coverage.Start(box);
        Levels again(box);
        coverage.Sweep(true, again);
        EXPECT_EQ(again.Area(), 0);
    }
}

}  // namespace
}  // namespace kivui::scrivel
