// Angles and their functions in 32-bit floats. The C libraries' single-precision functions differ
// in the last place from system to system, so these are taken in double precision and rounded once.

#pragma once

#include <cmath>

namespace SVGLoom {

inline constexpr float kRadiansPerDegree = 0.017453292f;

inline float Sine(float angle)
{
    return static_cast<float>(std::sin(static_cast<double>(angle)));
}

inline float Cosine(float angle)
{
    return static_cast<float>(std::cos(static_cast<double>(angle)));
}

inline float Tangent(float angle)
{
    return static_cast<float>(std::tan(static_cast<double>(angle)));
}

/// Of a value in -1..1.
inline float ArcSine(float value)
{
    return static_cast<float>(std::asin(static_cast<double>(value)));
}

}  // namespace SVGLoom
