// Glyphs are rows of lines, arcs and polygons on a grid of 16 by 16 units, y downwards.

#include <kivui/Controls.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>
#include <vector>

namespace kivui::ui {

namespace {

constexpr double kGrid = 16;
constexpr double kStrokeUnits = 1.5;
constexpr double kDegreesPerStep = 15;

enum class PartKind {
    kLine,     // x, y of each point
    kArc,      // centre x, y, radius, first and last angle in degrees, clockwise from the right
    kPolygon,  // x, y of each corner
    kDot,      // centre x, y, radius
};

struct GlyphPart {
    Glyph glyph;
    PartKind kind;
    std::size_t count;  // of the values in use
    double values[20];
};

constexpr GlyphPart kParts[] = {
    {Glyph::kCross, PartKind::kLine, 4, {4, 4, 12, 12}},
    {Glyph::kCross, PartKind::kLine, 4, {12, 4, 4, 12}},
    {Glyph::kPlus, PartKind::kLine, 4, {8, 3, 8, 13}},
    {Glyph::kPlus, PartKind::kLine, 4, {3, 8, 13, 8}},
    {Glyph::kMinus, PartKind::kLine, 4, {4, 8, 12, 8}},
    {Glyph::kCheck, PartKind::kLine, 6, {3.5, 8.5, 6.5, 11.5, 12.5, 4.5}},
    {Glyph::kChevronNext, PartKind::kLine, 6, {6, 3.5, 10.5, 8, 6, 12.5}},
    {Glyph::kChevronDown, PartKind::kLine, 6, {3.5, 6, 8, 10.5, 12.5, 6}},
    {Glyph::kChevronUp, PartKind::kLine, 6, {3.5, 10, 8, 5.5, 12.5, 10}},
    {Glyph::kRevert, PartKind::kArc, 5, {8, 8.5, 5, -150, 130}},
    {Glyph::kRevert, PartKind::kLine, 6, {3.2, 2.2, 3.6, 6.2, 7.6, 6}},
    {Glyph::kSearch, PartKind::kArc, 5, {6.8, 6.8, 4.3, 0, 360}},
    {Glyph::kSearch, PartKind::kLine, 4, {10, 10, 13.8, 13.8}},
    {Glyph::kError, PartKind::kArc, 5, {8, 8, 6.2, 0, 360}},
    {Glyph::kError, PartKind::kLine, 4, {8, 4.6, 8, 8.6}},
    {Glyph::kError, PartKind::kDot, 3, {8, 11.2, 0.95}},
    {Glyph::kWarning, PartKind::kLine, 8, {8, 2, 14.5, 13.5, 1.5, 13.5, 8, 2}},
    {Glyph::kWarning, PartKind::kLine, 4, {8, 6.2, 8, 9.2}},
    {Glyph::kWarning, PartKind::kDot, 3, {8, 11.4, 0.95}},
    {Glyph::kInfo, PartKind::kArc, 5, {8, 8, 6.2, 0, 360}},
    {Glyph::kInfo, PartKind::kDot, 3, {8, 4.8, 0.95}},
    {Glyph::kInfo, PartKind::kLine, 4, {8, 7.4, 8, 11.4}},
    {Glyph::kCalendar, PartKind::kLine, 10, {2.5, 3.5, 13.5, 3.5, 13.5, 13.5, 2.5, 13.5, 2.5, 3.5}},
    {Glyph::kCalendar, PartKind::kLine, 4, {2.5, 6.7, 13.5, 6.7}},
    {Glyph::kCalendar, PartKind::kLine, 4, {5.4, 1.8, 5.4, 4}},
    {Glyph::kCalendar, PartKind::kLine, 4, {10.6, 1.8, 10.6, 4}},
    {Glyph::kStar, PartKind::kPolygon, 20, {8,    1.4,   9.7,   6.05, 14.66, 6.24, 10.76,
                                            9.3,  12.11, 14.06, 8,    11.3,  3.89, 14.06,
                                            5.24, 9.3,   1.34,  6.24, 6.3,   6.05}},
    {Glyph::kStarOutline, PartKind::kLine, 20, {8,    1.4,   9.7,   6.05, 14.66, 6.24, 10.76,
                                                9.3,  12.11, 14.06, 8,    11.3,  3.89, 14.06,
                                                5.24, 9.3,   1.34,  6.24, 6.3,   6.05}},
    {Glyph::kStarOutline, PartKind::kLine, 4, {6.3, 6.05, 8, 1.4}},
    {Glyph::kDocument,
     PartKind::kLine,
     12,
     {9.5, 1.8, 3.5, 1.8, 3.5, 14.2, 12.5, 14.2, 12.5, 4.8, 9.5, 1.8}},
    {Glyph::kDocument, PartKind::kLine, 4, {6, 8, 10, 8}},
    {Glyph::kDocument, PartKind::kLine, 4, {6, 11, 10, 11}},
    {Glyph::kCamera,
     PartKind::kLine,
     18,
     {1.8, 4.8, 4.8, 4.8, 6, 2.8, 10, 2.8, 11.2, 4.8, 14.2, 4.8, 14.2, 13, 1.8, 13, 1.8, 4.8}},
    {Glyph::kCamera, PartKind::kArc, 5, {8, 8.8, 2.5, 0, 360}},
    {Glyph::kTag, PartKind::kLine, 12, {2, 2.5, 8, 2, 14, 8, 8.2, 13.8, 2.2, 7.8, 2, 2.5}},
    {Glyph::kTag, PartKind::kDot, 3, {5.2, 5.2, 1.1}},
    {Glyph::kList, PartKind::kDot, 3, {3, 4, 1}},
    {Glyph::kList, PartKind::kDot, 3, {3, 8, 1}},
    {Glyph::kList, PartKind::kDot, 3, {3, 12, 1}},
    {Glyph::kList, PartKind::kLine, 4, {6.2, 4, 13.8, 4}},
    {Glyph::kList, PartKind::kLine, 4, {6.2, 8, 13.8, 8}},
    {Glyph::kList, PartKind::kLine, 4, {6.2, 12, 13.8, 12}},
    {Glyph::kPerson, PartKind::kArc, 5, {8, 5, 2.8, 0, 360}},
    {Glyph::kPerson, PartKind::kArc, 5, {8, 14.2, 5.6, 180, 360}},
};

bool ShowsDirection(Glyph glyph)
{
    return glyph == Glyph::kChevronNext || glyph == Glyph::kRevert || glyph == Glyph::kList ||
           glyph == Glyph::kTag;
}

// From the grid to the surface.
struct GridPlace {
    Point origin;
    double pixelsPerUnit;
    bool mirrored;

    Point At(double x, double y) const
    {
        const double column = mirrored ? kGrid - x : x;
        return {origin.x + column * pixelsPerUnit, origin.y + y * pixelsPerUnit};
    }
};

std::vector<Point> PointsOf(std::span<const double> values, const GridPlace& place)
{
    std::vector<Point> points;
    for (std::size_t i = 0; i + 1 < values.size(); i += 2) {
        points.push_back(place.At(values[i], values[i + 1]));
    }
    return points;
}

std::vector<Point> ArcPoints(double centerX, double centerY, double radius, double firstDegrees,
                             double lastDegrees, const GridPlace& place)
{
    const int steps =
        std::max(1, static_cast<int>(std::ceil((lastDegrees - firstDegrees) / kDegreesPerStep)));
    std::vector<Point> points;
    for (int i = 0; i <= steps; ++i) {
        const double degrees = firstDegrees + (lastDegrees - firstDegrees) * i / steps;
        const double angle = degrees * std::numbers::pi / 180;
        points.push_back(
            place.At(centerX + radius * std::cos(angle), centerY + radius * std::sin(angle)));
    }
    return points;
}

}  // namespace

void DrawGlyph(const Drawing& drawing, Glyph glyph, const Rect& rect, const ColorRGBA& color)
{
    const double side = std::min(rect.width, rect.height);
    const GridPlace place{{rect.x + std::floor((rect.width - side) / 2),
                           rect.y + std::floor((rect.height - side) / 2)},
                          side / kGrid,
                          drawing.mirrored && ShowsDirection(glyph)};
    const double strokeWidth = std::max(1.0, kStrokeUnits * place.pixelsPerUnit);
    for (const GlyphPart& part : kParts) {
        if (part.glyph != glyph) {
            continue;
        }
        const double* const value = part.values;
        switch (part.kind) {
            case PartKind::kLine:
                drawing.painter.StrokeLine(PointsOf({value, part.count}, place), strokeWidth,
                                           color);
                break;
            case PartKind::kArc:
                drawing.painter.StrokeLine(
                    ArcPoints(value[0], value[1], value[2], value[3], value[4], place), strokeWidth,
                    color);
                break;
            case PartKind::kPolygon:
                drawing.painter.FillPolygon(PointsOf({value, part.count}, place), color);
                break;
            case PartKind::kDot:
                drawing.painter.FillPolygon(ArcPoints(value[0], value[1], value[2], 0, 360, place),
                                            color);
                break;
        }
    }
}

}  // namespace kivui::ui
