#include "framework/kivui/src/scrivel/Geometry.h"

#include <gtest/gtest.h>

#include <limits>

namespace kivui::scrivel {
namespace {

constexpr DMatrix kUneven = {2, 1, -3, 4, 5, -6};

TEST(Geometry, PointsAreRowVectors)
{
    const DPoint mapped = kUneven.Map({10, 100});
    EXPECT_EQ(mapped.x, 10 * 2 - 100 * 3 + 5);
    EXPECT_EQ(mapped.y, 10 * 1 + 100 * 4 - 6);
    const DPoint vector = kUneven.MapVector({10, 100});
    EXPECT_EQ(vector.x, 10 * 2 - 100 * 3);
    EXPECT_EQ(vector.y, 10 * 1 + 100 * 4);
}

TEST(Geometry, TheFirstOfAProductActsFirst)
{
    const DMatrix shift = {1, 0, 0, 1, 7, 8};
    const DPoint p = Product(shift, kUneven).Map({1, 1});
    const DPoint want = kUneven.Map(shift.Map({1, 1}));
    EXPECT_EQ(p.x, want.x);
    EXPECT_EQ(p.y, want.y);
}

TEST(Geometry, InverseLeadsBack)
{
    const auto inverse = Inverse(kUneven);
    ASSERT_TRUE(inverse);
    const DPoint back = inverse->Map(kUneven.Map({3, -9}));
    EXPECT_NEAR(back.x, 3, 1e-12);
    EXPECT_NEAR(back.y, -9, 1e-12);
}

TEST(Geometry, WhatHasNoInverse)
{
    EXPECT_FALSE(Inverse({1, 2, 2, 4, 0, 0}));  // to a line
    EXPECT_FALSE(Inverse({0, 0, 0, 0, 5, 5}));
    EXPECT_FALSE(Inverse({1e-120, 0, 0, 1e-120, 0, 0}));  // its entries would be too large
    EXPECT_FALSE(Inverse({std::numeric_limits<double>::quiet_NaN(), 0, 0, 1, 0, 0}));
}

TEST(Geometry, UsableEntriesAreFiniteAndNotHuge)
{
    EXPECT_TRUE(IsUsable(kUneven));
    for (const double bad : {1e101, -1e101, std::numeric_limits<double>::infinity(),
                             std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_FALSE(IsUsable({bad, 0, 0, 1, 0, 0}));
        EXPECT_FALSE(IsUsable({1, 0, 0, 1, 0, bad}));
    }
}

struct ScaleCase {
    DMatrix matrix;
    double want;
};

constexpr ScaleCase kScaleCases[] = {
    {{1, 0, 0, 1, 9, 9}, 1},
    {{3, 0, 0, -5, 0, 0}, 5},
    {{0, 2, -2, 0, 0, 0}, 2},
    {{1, 1, 1, 1, 0, 0}, 2},                  // to a line
    {{1, 0, 1, 1, 0, 0}, 1.618033988749895},  // a skew by 45 degrees
    {{0, 0, 0, 0, 0, 0}, 0},
};

TEST(Geometry, LargestScale)
{
    for (const ScaleCase& row : kScaleCases) {
        EXPECT_NEAR(LargestScale(row.matrix), row.want, 1e-12);
    }
}

}  // namespace
}  // namespace kivui::scrivel
