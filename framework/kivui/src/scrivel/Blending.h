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

/// All four channels times `level` over 255, rounded.
inline std::uint32_t ScalePixel(std::uint32_t pixel, std::uint32_t level)
{
    constexpr std::uint32_t kPairs = 0x00FF00FF;
    constexpr std::uint32_t kHalves = 0x00800080;
    std::uint32_t even = (pixel & kPairs) * level + kHalves;
    even = ((even + ((even >> 8) & kPairs)) >> 8) & kPairs;
    std::uint32_t odd = ((pixel >> 8) & kPairs) * level + kHalves;
    odd = (odd + ((odd >> 8) & kPairs)) & ~kPairs;
    return even | odd;
}

/// `source`, already scaled by its coverage, over `below`.
inline std::uint32_t Over(std::uint32_t source, std::uint32_t below)
{
    return source + ScalePixel(below, 255 - (source >> 24));
}

/// Premultiplies and rounds once. Channels are clamped to 0..1; what is no number counts as 0.
inline std::uint32_t ToPixel(double red, double green, double blue, double alpha)
{
    const auto clamp = [](double value) { return value > 0 ? (value < 1 ? value : 1.0) : 0.0; };
    const double opacity = clamp(alpha);
    const auto channel = [&](double value) {
        return static_cast<std::uint32_t>(clamp(value) * opacity * 255 + 0.5);
    };
    return (channel(1) << 24) | (channel(red) << 16) | (channel(green) << 8) | channel(blue);
}

inline std::uint32_t ToPixel(const Color& color)
{
    return ToPixel(static_cast<double>(color.red), static_cast<double>(color.green),
                   static_cast<double>(color.blue), static_cast<double>(color.alpha));
}

}  // namespace kivui::scrivel
