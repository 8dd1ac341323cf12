// Angles and their functions in 32-bit floats. The C libraries' single-precision functions differ
// in the last place from system to system, so these are taken in double precision and rounded once.
//
// Arcs need many of them, and of the small angles that they have a series is faster than the C
// library. It is used where its error cannot change the rounding; so every float is the same as
// from the library.

#pragma once

#include <cmath>

namespace SVGLoom {

inline constexpr float kRadiansPerDegree = 0.017453292f;

namespace angles {

/// Rounds `value`, and tells whether all that it may stand for rounds to the same float. The series
/// are off by some 2^-52 of their value; this allows for a hundred times as much.
inline bool Round(double value, float& rounded)
{
    constexpr double kError = 0x1p-45;
    rounded = static_cast<float>(value * (1 - kError));
    return rounded == static_cast<float>(value * (1 + kError));
}

/// Of an angle in -0.8..0.8. The sign of a zero is kept.
inline double SineSeries(double r)
{
    const double s = r * r;
    const double low = 1 + s * (-1.0 / 6 + s * (1.0 / 120 + s * (-1.0 / 5040)));
    const double high =
        1.0 / 362880 + s * (-1.0 / 39916800 + s * (1.0 / 6227020800 + s * (-1.0 / 1307674368000)));
    const double s2 = s * s;
    return r * (low + s2 * s2 * high);
}

inline double CosineSeries(double r)
{
    const double s = r * r;
    const double low = 1 + s * (-1.0 / 2 + s * (1.0 / 24 + s * (-1.0 / 720)));
    const double high =
        1.0 / 40320 + s * (-1.0 / 3628800 +
                           s * (1.0 / 479001600 + s * (-1.0 / 87178291200 + s / 20922789888000)));
    const double s2 = s * s;
    return low + s2 * s2 * high;
}

}  // namespace angles

struct SineCosine {
    float sine = 0;
    float cosine = 0;
};

inline SineCosine SineAndCosine(float angle)
{
    constexpr double kMost = 32;  // quarter turns stay few, so that their product is exact
    constexpr double kQuarterHigh = 0x1.921fb544p0;
    constexpr double kQuarterLow = 0x1.0b4611a626331p-34;
    constexpr double kQuartersPerRadian = 0.63661977236758134308;
    const auto x = static_cast<double>(angle);
    if (std::abs(x) < kMost) {
        const int quarters = static_cast<int>(x * kQuartersPerRadian + (x < 0 ? -0.5 : 0.5));
        const double r = (x - quarters * kQuarterHigh) - quarters * kQuarterLow;
        const double sine = angles::SineSeries(r);
        const double cosine = angles::CosineSeries(r);
        const bool isOdd = (quarters & 1) != 0;
        const double first = isOdd ? cosine : sine;
        const double second = isOdd ? sine : cosine;
        SineCosine result;
        if (angles::Round((quarters & 2) != 0 ? -first : first, result.sine) &&
            angles::Round(((quarters + 1) & 2) != 0 ? -second : second, result.cosine)) {
            return result;
        }
    }
    return {static_cast<float>(std::sin(x)), static_cast<float>(std::cos(x))};
}

inline float Tangent(float angle)
{
    constexpr double kMost = 0.75;
    const auto x = static_cast<double>(angle);
    float result = 0;
    if (std::abs(x) < kMost &&
        angles::Round(angles::SineSeries(x) / angles::CosineSeries(x), result)) {
        return result;
    }
    return static_cast<float>(std::tan(x));
}

/// Of a value in -1..1.
inline float ArcSine(float value)
{
    return static_cast<float>(std::asin(static_cast<double>(value)));
}

}  // namespace SVGLoom
