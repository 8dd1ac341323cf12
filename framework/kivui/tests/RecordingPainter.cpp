#include "framework/kivui/tests/RecordingPainter.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include <kivcore/StringConversion.h>

namespace kivui::ui {

namespace {

// Longer outlines are told by their number of points and the box about them.
constexpr std::size_t kMaxListedPoints = 5;

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

void RecordingPainter::FillPolygon(const std::vector<Point>& points, const ColorRGBA& color)
{
    calls_.push_back("polygon " + Outline(points) + " " + Name(color));
}

void RecordingPainter::StrokeLine(const std::vector<Point>& points, double width,
                                  const ColorRGBA& color)
{
    calls_.push_back("line " + Outline(points) + " w" + Number(width) + " " + Name(color));
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
    calls_.push_back("pixels " + std::to_string(pixels.width) + "x" +
                     std::to_string(pixels.height) + " at " + Number(at.x) + "," + Number(at.y));
}

std::string RecordingPainter::Outline(const std::vector<Point>& points)
{
    corners_.insert(corners_.end(), points.begin(), points.end());
    std::string text;
    if (points.size() <= kMaxListedPoints) {
        for (const Point& point : points) {
            text += (text.empty() ? "" : " ") + Number(point.x) + "," + Number(point.y);
        }
        return text;
    }
    Point low = points.front();
    Point high = low;
    for (const Point& point : points) {
        low = {std::min(low.x, point.x), std::min(low.y, point.y)};
        high = {std::max(high.x, point.x), std::max(high.y, point.y)};
    }
    return std::to_string(points.size()) + " points within " +
           Place({low.x, low.y, high.x - low.x, high.y - low.y});
}

}  // namespace kivui::ui
