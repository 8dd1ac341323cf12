#include "svgloom/src/Angles.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

namespace SVGLoom {
namespace {

std::uint32_t BitsOf(float value)
{
    return std::bit_cast<std::uint32_t>(value);
}

// The same bits as from the C library in double precision, rounded once.
void ExpectAsFromLibrary(float angle)
{
    const auto x = static_cast<double>(angle);
    const SineCosine have = SineAndCosine(angle);
    ASSERT_EQ(BitsOf(have.sine), BitsOf(static_cast<float>(std::sin(x)))) << angle;
    ASSERT_EQ(BitsOf(have.cosine), BitsOf(static_cast<float>(std::cos(x)))) << angle;
    ASSERT_EQ(BitsOf(Tangent(angle)), BitsOf(static_cast<float>(std::tan(x)))) << angle;
}

TEST(Angles, AllAreThoseOfTheLibrary)
{
    std::mt19937 random(1);
    for (const float most : {7.0f, 0.8f, 0.01f, 40.0f}) {
        std::uniform_real_distribution<float> angles(-most, most);
        for (int i = 0; i < 300000; ++i) {
            ASSERT_NO_FATAL_FAILURE(ExpectAsFromLibrary(angles(random)));
        }
    }
    // Of every size.
    for (int i = 0; i < 300000; ++i) {
        const auto angle = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        if (std::isfinite(angle)) {
            ASSERT_NO_FATAL_FAILURE(ExpectAsFromLibrary(angle));
        }
    }
}

// Where one of them is tiny, as at the ends of most arcs, and at both zeros.
TEST(Angles, NearTheQuarters)
{
    constexpr double kQuarter = 1.57079632679489661923;
    for (int quarters = -24; quarters <= 24; ++quarters) {
        for (const double part : {0.0, 0.5}) {
            auto angle = static_cast<float>((quarters + part) * kQuarter);
            for (int i = 0; i < 500; ++i) {
                ASSERT_NO_FATAL_FAILURE(ExpectAsFromLibrary(angle));
                angle = std::nextafter(angle, 100.0f);
            }
        }
    }
    ASSERT_NO_FATAL_FAILURE(ExpectAsFromLibrary(0.0f));
    ASSERT_NO_FATAL_FAILURE(ExpectAsFromLibrary(-0.0f));
    ASSERT_NO_FATAL_FAILURE(ExpectAsFromLibrary(std::numeric_limits<float>::denorm_min()));
}

TEST(Angles, WhatIsNoAngle)
{
    for (const float angle :
         {std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()}) {
        EXPECT_TRUE(std::isnan(SineAndCosine(angle).sine));
        EXPECT_TRUE(std::isnan(SineAndCosine(angle).cosine));
        EXPECT_TRUE(std::isnan(Tangent(angle)));
    }
}

}  // namespace
}  // namespace SVGLoom
