#include "svgloom/src/ShapeBuilder.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

#include "svgloom/src/PropertyReaders.h"
#include "svgloom/src/SVGDocumentImpl.h"
#include "svgloom/src/SVGStringParser.h"

namespace SVGLoom {

namespace {

/// What the builders of shapes work with.
struct Shape {
    const Attributes& attributes;
    LengthReader lengths;
    SVGRenderer& renderer;

    float Length(AttributeName name) const { return lengths.Get(attributes, name, 0); }
    std::unique_ptr<Path> NewPath() const { return Created(renderer.CreatePath()); }
};

std::unique_ptr<Path> BuildRect(const Shape& shape)
{
    const float width = shape.Length(AttributeName::kWidth);
    const float height = shape.Length(AttributeName::kHeight);
    if (IsTiny(width) || IsTiny(height)) {
        return nullptr;
    }
    const float x = shape.Length(AttributeName::kX);
    const float y = shape.Length(AttributeName::kY);
    float rx = 0;
    float ry = 0;
    const bool hasRx = shape.attributes.Has(AttributeName::kRx);
    const bool hasRy = shape.attributes.Has(AttributeName::kRy);
    rx = shape.Length(AttributeName::kRx);
    ry = shape.Length(AttributeName::kRy);
    if (hasRx && !hasRy) {
        ry = rx;
    } else if (hasRy && !hasRx) {
        rx = ry;
    }
    rx = std::min(rx, width * 0.5f);
    ry = std::min(ry, height * 0.5f);
    std::unique_ptr<Path> path = shape.NewPath();
    if (IsTiny(rx) || IsTiny(ry)) {
        path->AddRect(x, y, width, height);
    } else {
        path->AddRoundedRect(x, y, width, height, rx, ry);
    }
    return path;
}

std::unique_ptr<Path> BuildCircle(const Shape& shape)
{
    const float r = shape.Length(AttributeName::kR);
    if (IsTiny(r)) {
        return nullptr;
    }
    std::unique_ptr<Path> path = shape.NewPath();
    path->AddEllipse(shape.Length(AttributeName::kCx), shape.Length(AttributeName::kCy), r, r);
    return path;
}

std::unique_ptr<Path> BuildEllipse(const Shape& shape)
{
    const float rx = shape.Length(AttributeName::kRx);
    const float ry = shape.Length(AttributeName::kRy);
    if (IsTiny(rx) || IsTiny(ry)) {
        return nullptr;
    }
    std::unique_ptr<Path> path = shape.NewPath();
    path->AddEllipse(shape.Length(AttributeName::kCx), shape.Length(AttributeName::kCy), rx, ry);
    return path;
}

std::unique_ptr<Path> BuildLine(const Shape& shape)
{
    std::unique_ptr<Path> path = shape.NewPath();
    path->MoveTo(shape.Length(AttributeName::kX1), shape.Length(AttributeName::kY1));
    path->LineTo(shape.Length(AttributeName::kX2), shape.Length(AttributeName::kY2));
    return path;
}

std::unique_ptr<Path> BuildPolyline(const Shape& shape)
{
    std::vector<float> points;
    SVGStringParser::ParseNumberList(shape.attributes.Text(AttributeName::kPoints), points);
    if (points.size() < 2) {
        return nullptr;
    }
    std::unique_ptr<Path> path = shape.NewPath();
    path->MoveTo(points[0], points[1]);
    // An odd number at the end is left out.
    for (std::size_t i = 3; i < points.size(); i += 2) {
        path->LineTo(points[i - 1], points[i]);
    }
    return path;
}

std::unique_ptr<Path> BuildPolygon(const Shape& shape)
{
    std::unique_ptr<Path> path = BuildPolyline(shape);
    if (path != nullptr) {
        path->ClosePath();
    }
    return path;
}

/// Makes the renderer's path when the segments come, which for most paths is once, with all of
/// them.
class PathOfSegments final : public Path {
public:
    explicit PathOfSegments(SVGRenderer& renderer) : renderer_(renderer) {}

    void AddSegments(const PathSegments& segments) override
    {
        // A long path comes in several pieces, and what it was made of stays with it when it grows.
        constexpr std::size_t kWholeBytes = std::size_t{16} * 1024;
        if (path_ == nullptr && segments.size() <= kWholeBytes) {
            path_ = Created(renderer_.CreatePathOf(segments));
        } else {
            Made().AddSegments(segments);
        }
    }
    void AddRect(float x, float y, float width, float height) override
    {
        Made().AddRect(x, y, width, height);
    }
    void AddRoundedRect(float x, float y, float width, float height, float rx, float ry) override
    {
        Made().AddRoundedRect(x, y, width, height, rx, ry);
    }
    void AddEllipse(float cx, float cy, float rx, float ry) override
    {
        Made().AddEllipse(cx, cy, rx, ry);
    }
    void MoveTo(float x, float y) override { Made().MoveTo(x, y); }
    void LineTo(float x, float y) override { Made().LineTo(x, y); }
    void CurveTo(float x1, float y1, float x2, float y2, float x, float y) override
    {
        Made().CurveTo(x1, y1, x2, y2, x, y);
    }
    void QuadTo(float cx, float cy, float x, float y) override { Made().QuadTo(cx, cy, x, y); }
    void ClosePath() override { Made().ClosePath(); }

    /// An empty path if there were no segments.
    std::unique_ptr<Path> Take()
    {
        Made();
        return std::move(path_);
    }

private:
    Path& Made()
    {
        if (path_ == nullptr) {
            path_ = Created(renderer_.CreatePath());
        }
        return *path_;
    }

    SVGRenderer& renderer_;
    std::unique_ptr<Path> path_;
};

std::unique_ptr<Path> BuildPath(const Shape& shape)
{
    PathOfSegments path(shape.renderer);
    SVGStringParser::ParsePath(shape.attributes.Text(AttributeName::kD), path);
    return path.Take();
}

struct ShapeRow {
    ElementName name;
    std::unique_ptr<Path> (*build)(const Shape& shape);
};

constexpr ShapeRow kShapes[] = {
    {ElementName::kPath, BuildPath},         {ElementName::kRect, BuildRect},
    {ElementName::kCircle, BuildCircle},     {ElementName::kEllipse, BuildEllipse},
    {ElementName::kLine, BuildLine},         {ElementName::kPolygon, BuildPolygon},
    {ElementName::kPolyline, BuildPolyline},
};
static_assert(std::size(kShapes) == kShapeCount);

constexpr bool AreShapesInOrder()
{
    for (std::size_t i = 0; i < kShapeCount; ++i) {
        if (static_cast<std::size_t>(kShapes[i].name) != i) {
            return false;
        }
    }
    return true;
}
static_assert(AreShapesInOrder());

enum class Direction { kHorizontal, kVertical, kDiagonal };

Direction DirectionOf(AttributeName name)
{
    switch (name) {
        case AttributeName::kY:
        case AttributeName::kHeight:
        case AttributeName::kCy:
        case AttributeName::kFy:
        case AttributeName::kY1:
        case AttributeName::kY2:
        case AttributeName::kRy:
            return Direction::kVertical;
        case AttributeName::kR:
            return Direction::kDiagonal;
        default:
            return Direction::kHorizontal;
    }
}

float ReferenceOf(AttributeName name, const Rect& viewBox)
{
    switch (DirectionOf(name)) {
        case Direction::kVertical:
            return viewBox.height;
        case Direction::kDiagonal:
            return DiagonalOf(viewBox);
        default:
            return viewBox.width;
    }
}

}  // namespace

bool LengthReader::Read(const Attributes& attributes, AttributeName name, float& value) const
{
    return attributes.Has(name) &&
           SVGStringParser::ParseLength(attributes.Text(name), ReferenceOf(name, viewBox_), value);
}

std::unique_ptr<Path> BuildShape(ElementName name, const Attributes& attributes,
                                 const Rect& viewBox, SVGRenderer& renderer)
{
    return IsShape(name) ? kShapes[static_cast<std::size_t>(name)].build(
                               {attributes, LengthReader(viewBox), renderer})
                         : nullptr;
}

}  // namespace SVGLoom
