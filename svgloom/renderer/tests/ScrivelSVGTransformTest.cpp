#include "svgloom/renderer/ScrivelSVGTransform.h"

#include <gtest/gtest.h>

#include <limits>

namespace SVGLoom {
namespace {

struct Case {
    const char* name;
    void (*apply)(Transform&);
    kivui::scrivel::Matrix want;
};

// All begin with [2 3 5 7 11 13].
constexpr Case kCases[] = {
    {"nothing", [](Transform&) {}, {2, 3, 5, 7, 11, 13}},
    {"SetMatrix", [](Transform& t) { t.SetMatrix(6, 5, 4, 3, 2, 1); }, {6, 5, 4, 3, 2, 1}},
    // On the right: only the translation moves.
    {"Translate", [](Transform& t) { t.Translate(100, 200); }, {2, 3, 5, 7, 111, 213}},
    // On the right: the columns are scaled, the translation too.
    {"Scale", [](Transform& t) { t.Scale(10, 100); }, {20, 300, 50, 700, 110, 1300}},
    {"Scale in one direction", [](Transform& t) { t.Scale(2, 1); }, {4, 3, 10, 7, 22, 13}},
    // On the left.
    {"Concat",
     [](Transform& t) { t.Concat(1, 0, 0, 1, 100, 200); },
     {2, 3, 5, 7, 11 + 200 + 1000, 13 + 300 + 1400}},
    {"Concat a scale",
     [](Transform& t) { t.Concat(10, 0, 0, 100, 0, 0); },
     {20, 30, 500, 700, 11, 13}},
};

TEST(ScrivelSVGTransform, Orders)
{
    for (const Case& row : kCases) {
        SCOPED_TRACE(row.name);
        ScrivelSVGTransform transform(2, 3, 5, 7, 11, 13);
        row.apply(transform);
        EXPECT_EQ(transform.Matrix(), row.want);
    }
}

void ExpectNear(const kivui::scrivel::Matrix& have, const kivui::scrivel::Matrix& want)
{
    constexpr float kTolerance = 1e-4f;
    EXPECT_NEAR(have.a, want.a, kTolerance);
    EXPECT_NEAR(have.b, want.b, kTolerance);
    EXPECT_NEAR(have.c, want.c, kTolerance);
    EXPECT_NEAR(have.d, want.d, kTolerance);
    EXPECT_NEAR(have.e, want.e, kTolerance);
    EXPECT_NEAR(have.f, want.f, kTolerance);
}

TEST(ScrivelSVGTransform, RotateMultipliesOnTheLeft)
{
    ScrivelSVGTransform transform(2, 3, 5, 7, 11, 13);
    transform.Rotate(90);
    ExpectNear(transform.Matrix(), {5, 7, -2, -3, 11, 13});
}

TEST(ScrivelSVGTransform, RotateThenTranslateIsNotTranslateThenRotate)
{
    ScrivelSVGTransform rotateFirst(1, 0, 0, 1, 0, 0);
    rotateFirst.Rotate(90);
    rotateFirst.Concat(1, 0, 0, 1, 10, 0);
    ScrivelSVGTransform translateFirst(1, 0, 0, 1, 0, 0);
    translateFirst.Concat(1, 0, 0, 1, 10, 0);
    translateFirst.Rotate(90);
    ExpectNear(rotateFirst.Matrix(), {0, 1, -1, 0, 0, 10});
    ExpectNear(translateFirst.Matrix(), {0, 1, -1, 0, 10, 0});
}

TEST(ScrivelSVGTransform, ScaleByOneIsNoProduct)
{
    // A product would turn what is not finite into something that is no number.
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    ScrivelSVGTransform transform(kInfinity, 0, 0, 1, 0, 0);
    transform.Scale(1, 1);
    EXPECT_EQ(transform.Matrix(), (kivui::scrivel::Matrix{kInfinity, 0, 0, 1, 0, 0}));
    transform.Scale(2, 1);
    EXPECT_NE(transform.Matrix(), (kivui::scrivel::Matrix{kInfinity, 0, 0, 1, 0, 0}));
}

TEST(ScrivelSVGTransform, Map)
{
    const ScrivelSVGTransform transform(2, 3, 5, 7, 11, 13);
    EXPECT_EQ(transform.Map(1, 10), (kivui::scrivel::Point{2 + 50 + 11, 3 + 70 + 13}));
}

TEST(ScrivelSVGImageData, HasNoSize)
{
    const ScrivelSVGImageData image;
    EXPECT_EQ(image.Width(), 0.0f);
    EXPECT_EQ(image.Height(), 0.0f);
}

}  // namespace
}  // namespace SVGLoom
