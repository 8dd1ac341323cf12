// Angles and their functions in 32-bit floats. The C libraries' single-precision functions differ
// in the last place from system to system, so these are taken in double precision and rounded once.
//
// Arcs need many of them, and polynomials are faster than the C library, above all for two angles
// at once. Their values are good for some 38 bits, and are used where their error cannot change the
// rounding to 24; so every float is the same as from the library, which is asked for few.

#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace SVGLoom {

inline constexpr float kRadiansPerDegree = 0.017453292f;

namespace angles {

/// Two numbers that are computed with at once.
using Two [[gnu::vector_size(16)]] = double;
using TwoBits [[gnu::vector_size(16)]] = std::int64_t;
using TwoFloats [[gnu::vector_size(8)]] = float;

inline constexpr TwoBits kSigns = {INT64_MIN, INT64_MIN};

/// `some` where all bits of `where` are set, `others` where none is.
inline Two Choose(TwoBits where, Two some, Two others)
{
    return std::bit_cast<Two>((where & std::bit_cast<TwoBits>(some)) |
                              (~where & std::bit_cast<TwoBits>(others)));
}

inline Two Negated(TwoBits where, Two value)
{
    return std::bit_cast<Two>(std::bit_cast<TwoBits>(value) ^ (where & kSigns));
}

/// Rounds values that are numbers, and tells whether all that they may stand for, twice the largest
/// error of the polynomials away, round to the same floats.
inline bool Round(Two value, std::array<float, 2>& rounded)
{
    constexpr double kError = 0x1p-36;
    const TwoFloats low = __builtin_convertvector(value * (1 - kError), TwoFloats);
    const TwoFloats high = __builtin_convertvector(value * (1 + kError), TwoFloats);
    rounded = std::bit_cast<std::array<float, 2>>(low);
    return std::bit_cast<std::uint64_t>(low) == std::bit_cast<std::uint64_t>(high);
}

/// In memory, where compilers would put a number twice into a register for each use.
template <std::size_t count>
struct Coefficients {
    constexpr explicit Coefficients(const double (&values)[count])
    {
        for (std::size_t i = 0; i < count; ++i) {
            pairs[i] = Two{values[i], values[i]};
        }
    }
    constexpr const Two& operator[](std::size_t i) const { return pairs[i]; }

    Two pairs[count] = {};
};

// The polynomials have the least largest error, relative to the function, for the angles or values
// that are given; all but the leading coefficients are from there. The sign of a zero is kept.

inline constexpr Coefficients kSine({-0.16666666666663577, 0.008333333330881161,
                                     -0.00019841266726418566, 2.755593387982704e-06,
                                     -2.4800407642544408e-08});
inline constexpr Coefficients kCosine({-0.4999999999995988, 0.04166666663482492,
                                       -0.001388888484402003, 2.4799788134409634e-05,
                                       -2.723035333225456e-07});
inline constexpr Coefficients kArcSine({0.16666666665495086, 0.07500000598829049,
                                        0.044642358484883196, 0.030397634130580702,
                                        0.022132443623426794, 0.019306260869368045,
                                        0.0054431851027481075, 0.02930523970533579});

/// The sum of five coefficients with the powers of `s`.
inline Two Sum(const Coefficients<5>& c, Two s)
{
    const Two s2 = s * s;
    return (c[0] + s * c[1]) + s2 * ((c[2] + s * c[3]) + s2 * c[4]);
}

/// -0.79..0.79; `s` is the square, here and below.
inline Two Sine(Two r, Two s)
{
    return r * (1 + s * Sum(kSine, s));
}

inline Two Cosine(Two s)
{
    return 1 + s * Sum(kCosine, s);
}

/// 0..0.5
inline Two ArcSine(Two r, Two s)
{
    const auto& c = kArcSine;
    const Two s2 = s * s;
    const Two low = (c[0] + s * c[1]) + s2 * (c[2] + s * c[3]);
    const Two high = (c[4] + s * c[5]) + s2 * (c[6] + s * c[7]);
    return r + r * s * (low + s2 * s2 * high);
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

struct SineCosine {
    float sine = 0;
    float cosine = 0;
};

inline std::array<SineCosine, 2> SinesAndCosines(float first, float second)
{
    using angles::Two;
    using angles::TwoBits;
    constexpr float kMost = 32;  // quarter turns stay few, so that their product is exact
    constexpr double kQuarterHigh = 0x1.921fb544p0;
    constexpr double kQuarterLow = 0x1.0b4611a626331p-34;
    constexpr double kQuartersPerRadian = 0.63661977236758134308;
    constexpr double kToInteger = 0x1.8p52;  // a sum with it has the integer in its lowest bits
    if (std::abs(first) < kMost && std::abs(second) < kMost) [[likely]] {
        const Two x = {static_cast<double>(first), static_cast<double>(second)};
        const Two sum = x * kQuartersPerRadian + kToInteger;
        const Two quarters = sum - kToInteger;
        const Two r = (x - quarters * kQuarterHigh) - quarters * kQuarterLow;
        const Two s = r * r;
        const Two sine = angles::Sine(r, s);
        const Two cosine = angles::Cosine(s);
        const auto bits = std::bit_cast<TwoBits>(sum);
        const TwoBits areOdd = -(bits & 1);
        std::array<float, 2> sines;
        std::array<float, 2> cosines;
        const bool areSines =
            angles::Round(angles::Negated(bits << 62, angles::Choose(areOdd, cosine, sine)), sines);
        const bool areCosines = angles::Round(
            angles::Negated((bits + 1) << 62, angles::Choose(areOdd, sine, cosine)), cosines);
        if (areSines && areCosines) [[likely]] {
            return {SineCosine{sines[0], cosines[0]}, SineCosine{sines[1], cosines[1]}};
        }
    }
    const auto fromLibrary = [](float angle) {
        const auto x = static_cast<double>(angle);
        return SineCosine{static_cast<float>(std::sin(x)), static_cast<float>(std::cos(x))};
    };
    return {fromLibrary(first), fromLibrary(second)};
}

inline SineCosine SineAndCosine(float angle)
{
    return SinesAndCosines(angle, 0)[0];
}

inline float Tangent(float angle)
{
    constexpr float kMost = 0.529f;
    const auto x = static_cast<double>(angle);
    std::array<float, 2> result;
    if (std::abs(angle) < kMost && angles::Round(angles::Two{angles::Tangent(x), 0}, result))
        [[likely]] {
        return result[0];
    }
    return static_cast<float>(std::tan(x));
}

/// Of values in -1..1.
inline std::array<float, 2> ArcSines(float first, float second)
{
    using angles::Two;
    using angles::TwoBits;
    constexpr double kQuarter = 1.57079632679489661923;
    const Two value = {static_cast<double>(first), static_cast<double>(second)};
    const auto signs = std::bit_cast<TwoBits>(value) & angles::kSigns;
    const Two size = angles::Negated(signs, value);
    // What is large is taken from a quarter turn.
    const auto areLarge = std::bit_cast<TwoBits>(size > 0.5);
    const Two s = angles::Choose(areLarge, (1 - size) * 0.5, size * size);
    const Two root = {std::sqrt(s[0]), std::sqrt(s[1])};
    const Two small = angles::ArcSine(angles::Choose(areLarge, root, size), s);
    const Two result = angles::Choose(areLarge, kQuarter - 2 * small, small);
    std::array<float, 2> rounded;
    if (angles::Round(angles::Negated(signs, result), rounded) && !std::isnan(first) &&
        !std::isnan(second)) [[likely]] {
        return rounded;
    }
    return {static_cast<float>(std::asin(value[0])), static_cast<float>(std::asin(value[1]))};
}

}  // namespace SVGLoom
