#include "framework/kivtoolkit/src/NativeText.h"

#include <algorithm>

namespace kivtoolkit {

bool FitsSurely(const wxFont& font, kivcore::UStringView text, int width)
{
    constexpr double kWidestLetter = 1.5;  // font sizes
    const double size = font.GetFractionalPointSize() * PixelsPerPoint();
    return static_cast<double>(text.size()) * size * kWidestLetter <= width &&
           std::all_of(text.begin(), text.end(),
                       [](char16_t unit) { return unit >= u' ' && unit < 0x300; });
}

}  // namespace kivtoolkit
