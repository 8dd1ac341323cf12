// Pixels to draw on, and their PNG file.

#pragma once

#include "svgloom/renderer/Records.h"

#include <kivui/ScrivelTargets.h>

#include <cstdint>
#include <memory>
#include <string>

namespace svgloom {

/// A rectangle of pixels.
struct PixelArea {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

class Picture {
public:
    static constexpr int kMaxSide = kivui::scrivel::kMaxPixels;

    /// Transparent. Both sizes are in 1..kMaxSide. Throws std::bad_alloc.
    Picture(int width, int height);

    PixelArea Area() const { return {0, 0, width_, height_}; }

    /// Replaces what is there.
    void Fill(const PixelArea& area, const SVGLoom::Color& color);

    /// A target whose user space begins at the upper left corner of `area`, and whose clip is
    /// `area`, which lies within the picture. Throws std::bad_alloc.
    std::unique_ptr<kivui::scrivel::DrawingTarget> Target(const PixelArea& area);

    /// The PNG file of 8 bits for each of red, green, blue and alpha. Throws std::bad_alloc.
    std::string Png() const;

private:
    struct Freer {
        void operator()(std::uint32_t* pixels) const;
    };

    std::uint32_t* PixelAt(int x, int y) const;

    const int width_;
    const int height_;
    const std::unique_ptr<std::uint32_t[], Freer> pixels_;  // as kivui::scrivel::PixelBuffer has it
};

}  // namespace svgloom
