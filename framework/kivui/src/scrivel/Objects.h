// What the factory makes: plain holders of what they were given, alike for all targets.

#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include <kivui/Scrivel.h>

namespace kivui::scrivel {

/// Counts references, beginning with one.
template <class Interface>
class Counted : public Interface {
public:
    void AddReference() const noexcept override { count_.fetch_add(1, std::memory_order_relaxed); }
    void Release() const noexcept override
    {
        if (count_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            delete this;
        }
    }

private:
    mutable std::atomic<std::uint32_t> count_{1};
};

class PathObject final : public Counted<PathInterface> {
public:
    void MoveTo(float x, float y) override { Add(SegmentKind::kMove, {{x, y}}); }
    void LineTo(float x, float y) override { Add(SegmentKind::kLine, {{x, y}}); }
    void CurveTo(float x1, float y1, float x2, float y2, float x, float y) override
    {
        Add(SegmentKind::kCurve, {{x1, y1}, {x2, y2}, {x, y}});
    }
    void Close() override { Add(SegmentKind::kClose, {}); }
    void AddSegments(const SegmentKind* kinds, std::size_t kindCount, const Point* points,
                     std::size_t pointCount) override
    {
        const std::size_t before = points_.size();
        points_.insert(points_.end(), points, points + pointCount);
        try {
            kinds_.insert(kinds_.end(), kinds, kinds + kindCount);
        } catch (...) {
            points_.resize(before);
            throw;
        }
    }

    const std::vector<SegmentKind>& Kinds() const { return kinds_; }
    /// One for a move or line, three for a curve, none for a close.
    const std::vector<Point>& Points() const { return points_; }

private:
    void Add(SegmentKind kind, std::initializer_list<Point> points)
    {
        AddSegments(&kind, 1, points.begin(), points.size());
    }

    std::vector<SegmentKind> kinds_;
    std::vector<Point> points_;
};

class PenObject final : public Counted<PenInterface> {
public:
    PenObject(const Color& penColor, float penWidth) : color(penColor), width(penWidth) {}

    void SetMiterLimit(float limit) override { miterLimit = limit; }
    void SetDashPattern(const float* lengths, std::size_t count) override
    {
        dash.assign(lengths, lengths + count);
    }
    void SetLineJoin(LineJoin value) override { join = value; }
    void SetLineCap(LineCap value) override { cap = value; }

    const Color color;
    const float width;
    float miterLimit = 4;
    std::vector<float> dash;
    LineJoin join = LineJoin::kTEPMiterJoin;
    LineCap cap = LineCap::kTEPButtCap;
};

class BrushObject final : public Counted<BrushInterface> {
public:
    explicit BrushObject(const Color& brushColor) : color(brushColor) {}

    const Color color;
};

class LinearShaderObject final : public Counted<LinearShaderInterface> {
public:
    LinearShaderObject(const Point& first, const Point& last, const Color* stopColors,
                       const float* stopOffsets, std::size_t count)
        : start(first),
          end(last),
          colors(stopColors, stopColors + count),
          offsets(stopOffsets, stopOffsets + count)
    {
    }

    const Point start;
    const Point end;
    const std::vector<Color> colors;
    const std::vector<float> offsets;  // as many
};

class RadialShaderObject final : public Counted<RadialShaderInterface> {
public:
    RadialShaderObject(const Point& middle, const Point& onCircle, const Color& first,
                       const Color& last)
        : center(middle), edge(onCircle), inner(first), outer(last)
    {
    }

    const Point center;
    const Point edge;
    const Color inner;
    const Color outer;
};

class ObjectFactory final : public FactoryInterface {
public:
    PathInterface* CreatePath() override;
    BrushInterface* CreateSolidBrush(const Color& color) override;
    LinearShaderInterface* CreateLinearShader(const Point& start, const Point& end,
                                              const Color* colors, const float* offsets,
                                              std::size_t count) override;
    RadialShaderInterface* CreateRadialShader(const Point& center, const Point& edge,
                                              const Color& inner, const Color& outer) override;
    PenInterface* CreatePen(const Color& color, float width) override;
};

// A surface takes only objects of its target's factory, so these are what they are said to be.
inline const PathObject& ObjectOf(const PathInterface& path)
{
    return static_cast<const PathObject&>(path);
}
inline const PenObject& ObjectOf(const PenInterface& pen)
{
    return static_cast<const PenObject&>(pen);
}
inline const BrushObject& ObjectOf(const BrushInterface& brush)
{
    return static_cast<const BrushObject&>(brush);
}
inline const LinearShaderObject& ObjectOf(const LinearShaderInterface& shader)
{
    return static_cast<const LinearShaderObject&>(shader);
}
inline const RadialShaderObject& ObjectOf(const RadialShaderInterface& shader)
{
    return static_cast<const RadialShaderObject&>(shader);
}

}  // namespace kivui::scrivel
