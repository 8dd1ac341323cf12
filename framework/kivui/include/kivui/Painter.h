// The few drawing operations that own-drawn controls need. The toolkit's drawing context implements
// them, and a drawing layer of the framework's own can.

#pragma once

#include <cstdint>
#include <vector>

#include <kivcore/UString.h>
#include <kivui/Export.h>
#include <kivui/Theme.h>

namespace kivui::ui {

/// Positions and sizes are in pixels of the surface.
struct Point {
    double x = 0;
    double y = 0;
};

struct Size {
    double width = 0;
    double height = 0;
};

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
};

enum class FontWeight { kNormal, kMedium, kSemibold };
/// kStart is the left edge of the rectangle, whatever the text's direction; who mirrors swaps it
/// with kEnd.
enum class TextAlign { kStart, kCenter, kEnd };

struct TextStyle {
    double sizePixels = 13;
    FontWeight weight = FontWeight::kNormal;
    ColorRGBA color;
    TextAlign align = TextAlign::kStart;
};

/// Premultiplied ARGB, 32 bits a pixel in native byte order, rows from the top.
struct Pixels {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> argb;
};

class KIVUI_API Painter {
public:
    virtual ~Painter();

    /// Fills a rectangle with corners of `radius`.
    virtual void Fill(const Rect& rect, double radius, const ColorRGBA& color) = 0;
    /// Draws the frame just inside `rect`, `width` wide.
    virtual void Frame(const Rect& rect, double radius, double width, const ColorRGBA& color) = 0;
    /// One line of text, in the middle of `rect`'s height; what does not fit ends in an ellipsis.
    virtual void Text(kivcore::UStringView text, const Rect& rect, const TextStyle& style) = 0;
    virtual Size MeasureText(kivcore::UStringView text, const TextStyle& style) = 0;
    /// Pixels of the device for each pixel of the surface: above 1 where the system scales what
    /// programs draw.
    virtual double DeviceScale() const = 0;
    /// Draws `pixels` one to one onto pixels of the device, the upper left corner at the one that
    /// is nearest to `at`.
    virtual void DrawPixels(const Pixels& pixels, const Point& at) = 0;
};

}  // namespace kivui::ui
