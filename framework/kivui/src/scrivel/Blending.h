// Premultiplied pixels, 0xAARRGGBB, in integer arithmetic.

#pragma once

#include <cstdint>

#include <kivui/Scrivel.h>

namespace kivui::scrivel {

/// A product of two bytes over 255, rounded.
inline std::uint32_t MultiplyBytes(std::uint32_t a, std::uint32_t b)
{
    const std::uint32_t product = a * b + 128;
    return (product + (product >> 8)) >> 8;
}

/// The four channels of a pixel, 16 bits each, so that one product or sum is that of all.
using WidePixel = std::uint64_t;
inline constexpr WidePixel kWideChannels = 0x00FF00FF00FF00FF;

inline WidePixel Widen(std::uint32_t pixel)
{
    return (pixel | static_cast<WidePixel>(pixel) << 24) & kWideChannels;
}

/// Sums of products of bytes, each at most 255 * 255 + 127, over 255 and rounded.
inline std::uint32_t DivideAndNarrow(WidePixel sums)
{
    sums += 0x0080008000800080;
    sums = ((sums + ((sums >> 8) & kWideChannels)) >> 8) & kWideChannels;
    return static_cast<std::uint32_t>(sums | sums >> 24);
}

/// All four channels times `level` over 255, rounded.
inline std::uint32_t ScalePixel(std::uint32_t pixel, std::uint32_t level)
{
    return DivideAndNarrow(Widen(pixel) * level);
}

/// `source` times `level` over 255, over `below`; rounded once.
inline std::uint32_t Over(std::uint32_t source, std::uint32_t level, std::uint32_t below)
{
    const std::uint32_t left = 255 - MultiplyBytes(source >> 24, level);
    return DivideAndNarrow(Widen(source) * level + Widen(below) * left);
}

/// Premultiplies and rounds once. Channels are clamped to 0..1; what is no number counts as 0.
inline std::uint32_t ToPixel(double red, double green, double blue, double alpha)
{
    const auto clamp = [](double value) { return value > 0 ? (value < 1 ? value : 1.0) : 0.0; };
    const double opacity = clamp(alpha);
    constexpr double kHalf = 0.5;
    const auto channel = [&](double value) {
        return static_cast<std::uint32_t>(clamp(value) * opacity * 255 + kHalf);
    };
    return (channel(1) << 24) | (channel(red) << 16) | (channel(green) << 8) | channel(blue);
}

inline std::uint32_t ToPixel(const Color& color)
{
    return ToPixel(static_cast<double>(color.red), static_cast<double>(color.green),
                   static_cast<double>(color.blue), static_cast<double>(color.alpha));
}

}  // namespace kivui::scrivel
