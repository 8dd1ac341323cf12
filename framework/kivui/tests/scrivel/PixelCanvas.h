// A small picture to draw on, read back as text: one row a line, the alpha of each pixel.

#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <kivui/ScrivelTargets.h>

namespace kivui::scrivel {

class PixelCanvas {
public:
    PixelCanvas(int width, int height)
        : width_(width),
          height_(height),
          pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)),
          target_(CreatePixelTarget({pixels_.data(), width, height, width}))
    {
    }

    SurfaceInterface& Surface() { return target_->Surface(); }
    FactoryInterface& Factory() { return target_->Factory(); }

    /// Segments as in path data, absolute: "M 1 2 L 3 4 C 1 2 3 4 5 6 Z"; the numbers are plain
    /// decimals, "nan", "inf" and "big" (3e38).
    PathP Path(std::string_view data);
    void Fill(std::string_view data, const Color& color = {0, 0, 0, 1}, bool nonZero = true);
    void Stroke(
        std::string_view data, float width,
        const std::function<void(PenInterface&)>& set = [](PenInterface&) {});
    void Clip(std::string_view data, bool nonZero = true);

    std::uint32_t At(int x, int y) const
    {
        return pixels_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
                       static_cast<std::size_t>(x)];
    }
    int AlphaAt(int x, int y) const { return static_cast<int>(At(x, y) >> 24); }
    /// Rows from the top, '.' for 0, '#' for 255, else '0'..'9' for the tenth of 255.
    std::string Picture() const;
    /// The sum of all alphas as a number of whole pixels.
    double Area() const;
    bool IsEmpty() const { return Area() == 0; }
    const std::vector<std::uint32_t>& Pixels() const { return pixels_; }
    std::vector<std::uint32_t>& Pixels() { return pixels_; }

private:
    int width_;
    int height_;
    std::vector<std::uint32_t> pixels_;
    std::unique_ptr<DrawingTarget> target_;
};

}  // namespace kivui::scrivel
