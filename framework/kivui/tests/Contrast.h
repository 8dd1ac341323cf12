// Contrast by WCAG 2.2, of the bytes that are drawn.

#pragma once

#include <algorithm>
#include <cmath>

#include <kivui/Theme.h>

namespace kivui::ui {

/// `above` laid over `below`, which is opaque.
inline ColorRGBA Over(const ColorRGBA& above, const ColorRGBA& below)
{
    const auto mix = [&](float one, float other) {
        return one * above.alpha + other * (1 - above.alpha);
    };
    return {mix(above.red, below.red), mix(above.green, below.green), mix(above.blue, below.blue),
            below.alpha};
}

/// Relative luminance, 0..1.
inline double Luminance(const ColorRGBA& color)
{
    const auto linear = [](float part) {
        const double value = std::round(double{part} * 255) / 255;
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

/// 1..21.
inline double Contrast(const ColorRGBA& one, const ColorRGBA& other)
{
    const double high = std::max(Luminance(one), Luminance(other));
    const double low = std::min(Luminance(one), Luminance(other));
    return (high + 0.05) / (low + 0.05);
}

}  // namespace kivui::ui
