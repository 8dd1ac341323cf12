// The angles of an arc's two ends, both at once, from the sines that their places on the ellipse
// give. The sine of an angle, which is a float, differs from the one that it came from, but little:
// it is found from that and the small turn between both, without a polynomial.

#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

#include "svgloom/src/Angles.h"
#include "svgloom/src/Lanes.h"

namespace SVGLoom {

inline constexpr float kPi = 3.1415927f;
inline constexpr float kTwoPi = 6.2831855f;

/// What is known of an arc's start and end, in the first two lanes; zeros in the others.
struct ArcEnds {
    lanes::Four sines;        // -1..1
    lanes::FourBits areLeft;  // of the centre; all bits
    bool sweep = false;
};

struct ArcAngles {
    /// Of start and end, not more than a turn away from each other.
    lanes::Four angles;
    /// The start's sine and cosine, and the end's.
    lanes::Four directions;
};

namespace angles {

/// Of the root of `s`; 0..0.5.
[[gnu::always_inline]] inline lanes::Two ArcSine(lanes::Two root, lanes::Two s)
{
    const lanes::Two s2 = s * s;
    const lanes::Two low = (0.16666666665495086 + s * 0.07500000598829049) +
                           s2 * (0.044642358484883196 + s * 0.030397634130580702);
    const lanes::Two high = (0.022132443623426794 + s * 0.019306260869368045) +
                            s2 * (0.0054431851027481075 + s * 0.02930523970533579);
    return root + root * (s * (low + s2 * s2 * high));
}

/// The angles of the ends from their arc sines: steps on floats, in this order. `quarters`, of
/// turns, go with them.
[[gnu::always_inline]] inline void TurnEnds(const ArcEnds& ends, lanes::Four& angles,
                                            lanes::Four& quarters)
{
    using namespace lanes;
    constexpr Four kUnchanged = {-0.0f, -0.0f, -0.0f, -0.0f};  // a sum with it keeps zeros' signs
    angles = Choose(ends.areLeft, kPi - angles, angles);
    quarters = Choose(ends.areLeft, 2.0f - quarters, quarters);
    const FourBits areNegative = angles < 0;
    angles += Choose(areNegative, Four{} + kTwoPi, kUnchanged);
    quarters += Where(areNegative, Four{} + 4.0f);
    // The sweep flag tells which of both comes first; the other one is not ahead of it.
    static constexpr FourBits kMovable[] = {{0, -1, 0, 0}, {-1, 0, 0, 0}};
    const Four others = {angles[1], angles[0], 0, 0};
    const FourBits areAhead = (others < angles) & kMovable[ends.sweep ? 1 : 0];
    angles += Choose(areAhead, Four{} - kTwoPi, kUnchanged);
    quarters -= Where(areAhead, Four{} + 4.0f);
}

[[gnu::noinline]] inline ArcAngles FromLibrary(const ArcEnds& ends)
{
    const auto arcSine = [](float value) {
        return static_cast<float>(std::asin(static_cast<double>(value)));
    };
    ArcAngles result;
    lanes::Four quarters = {};
    result.angles = lanes::Four{arcSine(ends.sines[0]), arcSine(ends.sines[1]), 0, 0};
    TurnEnds(ends, result.angles, quarters);
    const SineCosine start = SineAndCosine(result.angles[0]);
    const SineCosine end = SineAndCosine(result.angles[1]);
    result.directions = lanes::Four{start.sine, start.cosine, end.sine, end.cosine};
    return result;
}

}  // namespace angles

/// As with the C library's functions, each rounded once.
[[gnu::always_inline]] inline ArcAngles AnglesOf(const ArcEnds& ends)
{
    using namespace lanes;
    constexpr double kQuarter = 1.57079632679489661923;
    const Two sines = Widen(ends.sines);
    const TwoBits signs = SignsOf(sines);
    const Two sizes = Negated(sines, signs);
    // What is large is taken from a quarter turn: it has half the angle there.
    const TwoBits areLarge = sizes > 0.5;
    const Two squares = sines * sines;
    const Two s = Choose(areLarge, (1 - sizes) * 0.5, squares);
    const Two parts = angles::ArcSine(SquareRoot(s), s) *
                      Negated(Choose(areLarge, Two{} - 2.0, Two{} + 1.0), signs);
    const Two arcSines = Negated(Where(areLarge, Two{} + kQuarter), signs) + parts;

    ArcAngles result;
    result.angles = Narrow(arcSines * angles::kLeast);
    FourBits areExact = result.angles == Narrow(arcSines * angles::kMost);
    Four quarters = Narrow(Where(areLarge, Negated(Two{} + 1.0, signs)));
    angles::TurnEnds(ends, result.angles, quarters);

    // A turn back may end at zero, without being exact: of the sine, nothing is left then.
    areExact &= (result.angles != 0.0f) | (ends.sines == 0.0f);

    // What the floats are less than the angles that have these sines: some 1e-6 at most, so that
    // its square does not count.
    const Two turns = Widen(quarters);
    const TwoBits flips = WidenSigns(ends.areLeft);
    const Two beyond =
        (Widen(result.angles) - turns * angles::kQuarterHigh) - turns * angles::kQuarterLow;
    const Two missing = Negated(parts, flips) - beyond;
    const Two cosines = Negated(SquareRoot(1 - squares), flips);
    const Two ofSines = sines - cosines * missing;
    const Two ofCosines = cosines + sines * missing;
    const auto directions = [](const Two& sine, const Two& cosine) {
        return __builtin_shufflevector(Narrow(sine), Narrow(cosine), 0, 4, 1, 5);
    };
    result.directions = directions(ofSines * angles::kLeast, ofCosines * angles::kLeast);
    areExact &= result.directions == directions(ofSines * angles::kMost, ofCosines * angles::kMost);
    if (AreAll(areExact)) [[likely]] {
        return result;
    }
    return angles::FromLibrary(ends);
}

}  // namespace SVGLoom
