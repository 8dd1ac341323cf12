// Angles and their functions in 32-bit floats. The C libraries' single-precision functions differ
// in the last place from system to system, so these are taken in double precision and rounded once.
//
// Arcs need many of them, and polynomials are faster than the C library. Their values are good for
// some 38 bits, and are used where their error cannot change the rounding to 24; so every float is
// the same as from the library, which is asked for few.

#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

#include "svgloom/src/Lanes.h"

namespace SVGLoom {

inline constexpr float kRadiansPerDegree = 0.017453292f;

struct SineCosine {
    float sine = 0;
    float cosine = 0;
};

namespace angles {

// A result lies between both of its products with these: twice the largest error away.
inline constexpr double kLeast = 1 - 0x1p-36;
inline constexpr double kMost = 1 + 0x1p-36;

// A quarter turn in two parts. Of few quarters, the first one's product is exact.
inline constexpr double kQuarterHigh = 0x1.921fb544p0;
inline constexpr double kQuarterLow = 0x1.0b4611a626331p-34;

// The polynomials have the least largest error, relative to the function, for the angles that are
// given; all but the leading coefficients are from there. The sign of a zero is kept.

/// Sine and cosine, -0.79..0.79.
inline lanes::Two SineThenCosine(double r)
{
    using lanes::Two;
    static constexpr Two kCoefficients[] = {{-0.16666666666663577, -0.4999999999995988},
                                            {0.008333333330881161, 0.04166666663482492},
                                            {-0.00019841266726418566, -0.001388888484402003},
                                            {2.755593387982704e-06, 2.4799788134409634e-05},
                                            {-2.4800407642544408e-08, -2.723035333225456e-07}};
    const auto& c = kCoefficients;
    const Two s = {r * r, r * r};
    const Two s2 = s * s;
    return Two{r, 1} * (1 + s * ((c[0] + s * c[1]) + s2 * ((c[2] + s * c[3]) + s2 * c[4])));
}

/// -0.529..0.529
inline double Tangent(double r)
{
    const double s = r * r;
    const double s2 = s * s;
    const double low = (0.3333333333480538 + s * 0.13333332818713245) +
                       s2 * (0.053968546292113014 + s * 0.021863298234787616);
    const double high =
        (0.008925101958167923 + s * 0.003279997797398407) + s2 * 0.0022051866832515864;
    return r + r * s * (low + s2 * s2 * high);
}

}  // namespace angles

inline SineCosine SineAndCosine(float angle)
{
    using lanes::Two;
    using lanes::TwoBits;
    constexpr float kMost = 32;  // quarter turns stay few, so that their product is exact
    constexpr double kQuartersPerRadian = 0.63661977236758134308;
    constexpr double kToInteger = 0x1.8p52;  // a sum with it has the integer in its lowest bits
    const auto x = static_cast<double>(angle);
    if (std::abs(angle) < kMost) [[likely]] {
        const double sum = x * kQuartersPerRadian + kToInteger;
        const double quarters = sum - kToInteger;
        const double r = (x - quarters * angles::kQuarterHigh) - quarters * angles::kQuarterLow;
        const Two both = angles::SineThenCosine(r);
        const auto bits = std::bit_cast<std::int64_t>(sum);
        const TwoBits areOdd = TwoBits{} - (bits & 1);
        const TwoBits signs = TwoBits{bits, bits + 1} << 62 & INT64_MIN;
        const Two result = lanes::Negated(
            lanes::Choose(areOdd, __builtin_shufflevector(both, both, 1, 0), both), signs);
        const lanes::Four rounded = lanes::Narrow(result * angles::kLeast);
        if (lanes::AreAll(rounded == lanes::Narrow(result * angles::kMost))) [[likely]] {
            return {rounded[0], rounded[1]};
        }
    }
    return {static_cast<float>(std::sin(x)), static_cast<float>(std::cos(x))};
}

inline float Tangent(float angle)
{
    constexpr float kMost = 0.529f;
    const auto x = static_cast<double>(angle);
    if (std::abs(angle) < kMost) [[likely]] {
        const double result = angles::Tangent(x);
        const auto rounded = static_cast<float>(result * angles::kLeast);
        if (rounded == static_cast<float>(result * angles::kMost)) [[likely]] {
            return rounded;
        }
    }
    return static_cast<float>(std::tan(x));
}

}  // namespace SVGLoom
