#include "svgloom/src/ArcAngles.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

namespace SVGLoom {
namespace {

float Rounded(double value)
{
    return static_cast<float>(value);
}

// One end after the other, with the C library's functions.
struct Want {
    Want(float startSine, bool startIsLeft, float endSine, bool endIsLeft, bool sweep)
        : start(AngleOf(startSine, startIsLeft)), end(AngleOf(endSine, endIsLeft))
    {
        if (!sweep && start < end) {
            end -= kTwoPi;
        } else if (sweep && end < start) {
            start -= kTwoPi;
        }
    }
    static float AngleOf(float sine, bool isLeft)
    {
        float angle = Rounded(std::asin(static_cast<double>(sine)));
        if (isLeft) {
            angle = kPi - angle;
        }
        return angle < 0 ? angle + kTwoPi : angle;
    }

    float start;
    float end;
};

std::uint32_t BitsOf(float value)
{
    return std::bit_cast<std::uint32_t>(value);
}

void ExpectAsFromLibrary(float startSine, float endSine)
{
    for (const bool sweep : {false, true}) {
        for (const bool startIsLeft : {false, true}) {
            for (const bool endIsLeft : {false, true}) {
                const ArcEnds ends = {{startSine, endSine, 0, 0},
                                      {startIsLeft ? -1 : 0, endIsLeft ? -1 : 0, 0, 0},
                                      sweep};
                const ArcAngles have = AnglesOf(ends);
                const Want want(startSine, startIsLeft, endSine, endIsLeft, sweep);
                const float values[] = {Rounded(std::sin(static_cast<double>(want.start))),
                                        Rounded(std::cos(static_cast<double>(want.start))),
                                        Rounded(std::sin(static_cast<double>(want.end))),
                                        Rounded(std::cos(static_cast<double>(want.end)))};
                ASSERT_EQ(BitsOf(have.angles[0]), BitsOf(want.start))
                    << startSine << ' ' << endSine;
                ASSERT_EQ(BitsOf(have.angles[1]), BitsOf(want.end)) << startSine << ' ' << endSine;
                for (int i = 0; i < 4; ++i) {
                    ASSERT_EQ(BitsOf(have.directions[i]), BitsOf(values[i]))
                        << i << ' ' << startSine << ' ' << endSine << ' ' << startIsLeft
                        << endIsLeft << sweep;
                }
            }
        }
    }
}

TEST(ArcAngles, AreThoseOfTheLibrary)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<float> sines(-1, 1);
    for (int i = 0; i < 100000; ++i) {
        ASSERT_NO_FATAL_FAILURE(ExpectAsFromLibrary(sines(random), sines(random)));
    }
}

// All but the smallest are taken by their bits in large steps, which meet every exponent often.
TEST(ArcAngles, OfSinesOfEverySize)
{
    constexpr std::uint32_t kOne = 0x3F800000;
    constexpr std::uint32_t kStep = 4099;
    for (std::uint32_t bits = 0; bits <= kOne; bits += kStep) {
        ASSERT_NO_FATAL_FAILURE(
            ExpectAsFromLibrary(std::bit_cast<float>(bits), -std::bit_cast<float>(kOne - bits)));
    }
}

// The ends of most arcs are where an axis crosses the ellipse, or nearly so.
TEST(ArcAngles, NearTheAxes)
{
    for (const float axis : {0.0f, -0.0f, 1.0f, -1.0f, 0.5f, -0.5f}) {
        float near = axis;
        for (int i = 0; i < 2000; ++i) {
            ASSERT_NO_FATAL_FAILURE(ExpectAsFromLibrary(near, axis));
            near = std::nextafter(near, axis == 0 ? std::copysign(1.0f, axis) : 0.0f);
        }
        for (float small = 1e-9f; small < 1e-3f; small *= 1.01f) {
            const float size = std::abs(axis) == 1 ? std::copysign(1 - small, axis) : axis + small;
            ASSERT_NO_FATAL_FAILURE(ExpectAsFromLibrary(size, -size));
        }
    }
}

TEST(ArcAngles, OfWhatIsNoNumberAreNone)
{
    const float none = std::numeric_limits<float>::quiet_NaN();
    const ArcEnds ends = {{none, 0.5f, 0, 0}, {}, true};
    const ArcAngles have = AnglesOf(ends);
    EXPECT_TRUE(std::isnan(have.angles[0]));
    EXPECT_TRUE(std::isnan(have.directions[0]));
    EXPECT_TRUE(std::isnan(have.directions[1]));
    EXPECT_EQ(have.angles[1], 0.52359878f);
    EXPECT_EQ(have.directions[2], 0.5f);
}

}  // namespace
}  // namespace SVGLoom
