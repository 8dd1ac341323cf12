#include "framework/kivui/tests/RecordingPainter.h"

#include <cmath>
#include <sstream>

#include <kivcore/StringConversion.h>

#include "framework/kivui/tests/FakeArtwork.h"

namespace kivui::ui {

namespace {

std::string Number(double value)
{
    std::ostringstream text;
    text << std::round(value * 100) / 100 + 0.0;  // no "-0"
    return text.str();
}

std::string Place(const Rect& rect)
{
    return Number(rect.x) + "," + Number(rect.y) + " " + Number(rect.width) + "x" +
           Number(rect.height);
}

std::string Name(const ColorRGBA& color)
{
    for (const ThemeColorName& row : kThemeColorNames) {
        if (std::lround(color.red * 255.0f) == static_cast<long>(row.color)) {
            return row.name;
        }
    }
    return "?";
}

}  // namespace

void RecordingPainter::Fill(const Rect& rect, double radius, const ColorRGBA& color)
{
    calls_.push_back("fill " + Place(rect) + " r" + Number(radius) + " " + Name(color));
}

void RecordingPainter::Frame(const Rect& rect, double radius, double width, const ColorRGBA& color)
{
    calls_.push_back("frame " + Place(rect) + " r" + Number(radius) + " w" + Number(width) + " " +
                     Name(color));
}

void RecordingPainter::Text(kivcore::UStringView text, const Rect& rect, const TextStyle& style)
{
    constexpr const char* kWeights[] = {"normal", "medium", "semibold"};
    constexpr const char* kAligns[] = {"left", "center", "right"};
    calls_.push_back("text \"" + kivcore::string::UTF16to8(text) + "\" " + Place(rect) + " " +
                     Number(style.sizePixels) + " " +
                     kWeights[static_cast<std::size_t>(style.weight)] + " " +
                     kAligns[static_cast<std::size_t>(style.align)] + " " + Name(style.color));
}

Size RecordingPainter::MeasureText(kivcore::UStringView text, const TextStyle& style)
{
    return {static_cast<double>(text.size()) * style.sizePixels / 2, style.sizePixels};
}

void RecordingPainter::DrawPixels(const Pixels& pixels, const Point& at)
{
    const std::uint32_t pixel = pixels.argb.front();
    const auto red = static_cast<float>((pixel >> 16) & 0xFFU) / 255.0f;
    calls_.push_back("icon " + NameOfPixel(pixel) + " " + std::to_string(pixels.width) + "x" +
                     std::to_string(pixels.height) + " at " + Number(at.x) + "," + Number(at.y) +
                     " " + Name({red, 0, 0, 1}));
}

}  // namespace kivui::ui
