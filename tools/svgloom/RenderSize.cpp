#include "tools/svgloom/RenderSize.h"

#include "tools/svgloom/Picture.h"

#include <charconv>
#include <cmath>
#include <stdexcept>

namespace svgloom {

namespace {

std::string TextOf(float value)
{
    char buffer[32];
    return {buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr};
}

// Rounded only once: 2 * 3 / 3 is 2 then.
float Proportional(float side, float otherSide, float own)
{
    return static_cast<float>(static_cast<double>(side) * static_cast<double>(own) /
                              static_cast<double>(otherSide));
}

}  // namespace

SizeOptions::SizeOptions(const tools::Arguments& arguments)
    : width_(arguments.Number("--width")),
      height_(arguments.Number("--height")),
      zoom_(arguments.Number("--zoom").value_or(1.0f))
{
}

RenderSize SizeOptions::For(const SVGLoom::Rect& viewBox, float scale) const
{
    RenderSize size = {width_.value_or(viewBox.width), height_.value_or(viewBox.height)};
    if (width_ && !height_)
        size.height = Proportional(*width_, viewBox.width, viewBox.height);
    else if (height_ && !width_)
        size.width = Proportional(*height_, viewBox.height, viewBox.width);
    // In floats, where 100 times 1.1 is 110 and not a little more.
    size.width = size.width * zoom_ * scale;
    size.height = size.height * zoom_ * scale;
    const auto isPossible = [](float side) {
        return side > 0 && std::ceil(side) <= static_cast<float>(Picture::kMaxSide);
    };
    if (!isPossible(size.width) || !isPossible(size.height))
        throw std::runtime_error("the picture would be " + TextOf(size.width) + " by " +
                                 TextOf(size.height) + " pixels; 1 to " +
                                 std::to_string(Picture::kMaxSide) + " are possible");
    size.pixelWidth = static_cast<int>(std::ceil(size.width));
    size.pixelHeight = static_cast<int>(std::ceil(size.height));
    return size;
}

}  // namespace svgloom
