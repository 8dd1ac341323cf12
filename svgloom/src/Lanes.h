// Vectors of two doubles and of four floats, whose lanes are computed with at once. What compilers
// do not make of the plain text by themselves is asked for where the processor is known.

#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace SVGLoom::lanes {

using Two [[gnu::vector_size(16)]] = double;
using TwoBits [[gnu::vector_size(16)]] = std::int64_t;
using Four [[gnu::vector_size(16)]] = float;
using FourBits [[gnu::vector_size(16)]] = std::int32_t;

inline TwoBits BitsOf(Two values)
{
    return std::bit_cast<TwoBits>(values);
}

inline FourBits BitsOf(Four values)
{
    return std::bit_cast<FourBits>(values);
}

/// `some` where all bits of `where` are set, `others` where none is.
inline Two Choose(TwoBits where, Two some, Two others)
{
    return std::bit_cast<Two>((where & BitsOf(some)) | (~where & BitsOf(others)));
}

inline Four Choose(FourBits where, Four some, Four others)
{
    return std::bit_cast<Four>((where & BitsOf(some)) | (~where & BitsOf(others)));
}

/// `values` where all bits of `where` are set, zeros where none is.
inline Two Where(TwoBits where, Two values)
{
    return std::bit_cast<Two>(where & BitsOf(values));
}

inline Four Where(FourBits where, Four values)
{
    return std::bit_cast<Four>(where & BitsOf(values));
}

/// With another sign where the highest bit of `signs` is set; no other bit may be.
inline Two Negated(Two values, TwoBits signs)
{
    return std::bit_cast<Two>(BitsOf(values) ^ signs);
}

inline Four Negated(Four values, FourBits signs)
{
    return std::bit_cast<Four>(BitsOf(values) ^ signs);
}

inline TwoBits SignsOf(Two values)
{
    return BitsOf(values) & INT64_MIN;
}

/// Without signs.
inline Four Size(Four values)
{
    return std::bit_cast<Four>(BitsOf(values) & INT32_MAX);
}

/// The signs of the lower two.
inline TwoBits WidenSigns(FourBits bits)
{
    return std::bit_cast<TwoBits>(__builtin_shufflevector(bits, bits, 0, 0, 1, 1)) & INT64_MIN;
}

#if defined(__SSE2__)

/// Rounded; the upper two are zero.
inline Four Narrow(Two values)
{
    return _mm_cvtpd_ps(values);
}

/// The lower two.
inline Two Widen(Four values)
{
    return _mm_cvtps_pd(values);
}

inline Two SquareRoot(Two values)
{
    return _mm_sqrt_pd(values);
}

inline Four SquareRoot(Four values)
{
    return _mm_sqrt_ps(values);
}

/// Whether all bits of all lanes are set, where each lane has all or none.
inline bool AreAll(FourBits bits)
{
    constexpr int kAll = 0xF;
    return _mm_movemask_ps(std::bit_cast<Four>(bits)) == kAll;
}

#else

inline Four Narrow(Two values)
{
    return Four{static_cast<float>(values[0]), static_cast<float>(values[1]), 0, 0};
}

inline Two Widen(Four values)
{
    return Two{values[0], values[1]};
}

inline Two SquareRoot(Two values)
{
    return Two{std::sqrt(values[0]), std::sqrt(values[1])};
}

inline Four SquareRoot(Four values)
{
    return Four{std::sqrt(values[0]), std::sqrt(values[1]), std::sqrt(values[2]),
                std::sqrt(values[3])};
}

inline bool AreAll(FourBits bits)
{
    return (bits[0] & bits[1] & bits[2] & bits[3]) != 0;
}

#endif

}  // namespace SVGLoom::lanes
