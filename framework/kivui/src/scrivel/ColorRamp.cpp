#include "framework/kivui/src/scrivel/ColorRamp.h"

#include <algorithm>

#include "framework/kivui/src/scrivel/Blending.h"

namespace kivui::scrivel {

ColorRamp::ColorRamp(const std::vector<Color>& colors, const std::vector<float>& offsets)
    : colors_(colors)
{
    offsets_.reserve(offsets.size());
    double largest = 0;
    for (const float offset : offsets) {
        const double value = static_cast<double>(offset);
        if (value > largest) {
            largest = std::min(value, 1.0);
        }
        offsets_.push_back(largest);
    }
}

std::uint32_t ColorRamp::Compute(double t) const
{
    // Where several stops share an offset, the last of them holds from there on.
    const auto next = std::upper_bound(offsets_.begin(), offsets_.end(), t);
    if (next == offsets_.begin()) {
        return ToPixel(colors_.front());
    }
    if (next == offsets_.end()) {
        return ToPixel(colors_.back());
    }
    const auto index = static_cast<std::size_t>(next - offsets_.begin());
    const Color& from = colors_[index - 1];
    const Color& to = colors_[index];
    const double share = (t - offsets_[index - 1]) / (offsets_[index] - offsets_[index - 1]);
    const auto mix = [share](float a, float b) {
        return static_cast<double>(a) + (static_cast<double>(b) - static_cast<double>(a)) * share;
    };
    return ToPixel(mix(from.red, to.red), mix(from.green, to.green), mix(from.blue, to.blue),
                   mix(from.alpha, to.alpha));
}

}  // namespace kivui::scrivel
