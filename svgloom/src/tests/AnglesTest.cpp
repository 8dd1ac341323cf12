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

TEST(Angles, TwoAreAsEachAlone)
{
    std::mt19937 random(2);
    std::uniform_real_distribution<float> angles(-13, 13);
    for (int i = 0; i < 10000; ++i) {
        const float first = angles(random);
        const float second = angles(random);
        const auto both = SinesAndCosines(first, second);
        ASSERT_EQ(BitsOf(both[0].sine), BitsOf(SineAndCosine(first).sine)) << first;
        ASSERT_EQ(BitsOf(both[0].cosine), BitsOf(SineAndCosine(first).cosine)) << first;
        ASSERT_EQ(BitsOf(both[1].sine), BitsOf(SineAndCosine(second).sine)) << second;
        ASSERT_EQ(BitsOf(both[1].cosine), BitsOf(SineAndCosine(second).cosine)) << second;
    }
}

// All but the smallest are taken by their bits in large steps, which meet every exponent often.
TEST(Angles, ArcSinesAreThoseOfTheLibrary)
{
    constexpr std::uint32_t kOne = 0x3F800000;
    constexpr std::uint32_t kStep = 511;
    const auto expect = [](float first, float second) {
        const auto have = ArcSines(first, second);
        const auto want = [](float value) {
            return BitsOf(static_cast<float>(std::asin(static_cast<double>(value))));
        };
        ASSERT_EQ(BitsOf(have[0]), want(first)) << first;
        ASSERT_EQ(BitsOf(have[1]), want(second)) << second;
    };
    for (std::uint32_t bits = 0; bits <= kOne; bits += kStep) {
        const auto value = std::bit_cast<float>(bits);
        ASSERT_NO_FATAL_FAILURE(expect(value, -std::bit_cast<float>(kOne - bits)));
    }
    for (const float value : {0.0f, -0.0f, 1.0f, -1.0f, 0.5f, -0.5f}) {
        ASSERT_NO_FATAL_FAILURE(expect(value, std::nextafter(value, 0.0f)));
        ASSERT_NO_FATAL_FAILURE(expect(std::nextafter(value, 0.0f), value));
    }
    const float notANumber = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(std::isnan(ArcSines(notANumber, 0)[0]));
    EXPECT_TRUE(std::isnan(ArcSines(0, notANumber)[1]));
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
