// The colours of a shader along 0..1, computed where they are first asked for.

#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <kivui/Scrivel.h>

namespace kivui::scrivel {

class ColorRamp {
public:
    static constexpr int kSteps = 1024;

    /// There is at least one colour; `offsets` are as many, clamped to 0..1 and to rise.
    ColorRamp(const std::vector<Color>& colors, const std::vector<float>& offsets);

    /// The premultiplied pixel at `t`; below 0 and above 1 the first and last colours go on. What
    /// is no number counts as 0.
    std::uint32_t At(double t)
    {
        const double clamped = t > 0 ? (t < 1 ? t : 1.0) : 0.0;
        constexpr double kHalf = 0.5;
        const auto step = static_cast<std::size_t>(clamped * (kSteps - 1) + kHalf);
        if (!known_[step]) {
            pixels_[step] = Compute(static_cast<double>(step) / (kSteps - 1));
            known_[step] = true;
        }
        return pixels_[step];
    }

private:
    std::uint32_t Compute(double t) const;

    const std::vector<Color>& colors_;
    std::vector<double> offsets_;
    std::array<std::uint32_t, kSteps> pixels_;  // where known
    std::bitset<kSteps> known_;
};

}  // namespace kivui::scrivel
