// What the engine's parsers fill when only a check is wanted: paths that are looked at instead of
// drawn, and transforms beside what the SVG standard makes of them.

#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

#include "svgloom/renderer/SVGRenderer.h"
#include "svgloom/renderer/ScrivelSVGTransform.h"

namespace svgloom {

/// The sides of what a path covers at most, in user units.
struct Box {
    float left = std::numeric_limits<float>::infinity();
    float top = std::numeric_limits<float>::infinity();
    float right = -std::numeric_limits<float>::infinity();
    float bottom = -std::numeric_limits<float>::infinity();

    void Take(float x, float y)
    {
        left = std::min(left, x);
        top = std::min(top, y);
        right = std::max(right, x);
        bottom = std::max(bottom, y);
    }
    /// Boxes that only touch do not.
    bool Overlaps(const Box& other) const;
    /// The box around this one's corners behind `matrix`.
    Box Mapped(const kivui::scrivel::Matrix& matrix) const;
};

class CheckedPath final : public SVGLoom::Path {
public:
    bool IsFinite() const { return std::isfinite(sum_); }
    /// The smaller radius of a rectangle's corners, 0 for all else.
    float CornerRadius() const { return cornerRadius_; }
    const Box& Covered() const { return box_; }

    void AddRect(float x, float y, float width, float height) override
    {
        Take(x, y);
        Take(x + width, y + height);
    }
    void AddRoundedRect(float x, float y, float width, float height, float rx, float ry) override
    {
        AddRect(x, y, width, height);
        cornerRadius_ = std::min(std::abs(rx), std::abs(ry));
    }
    void AddEllipse(float cx, float cy, float rx, float ry) override
    {
        Take(cx - rx, cy - ry);
        Take(cx + rx, cy + ry);
    }
    void MoveTo(float x, float y) override { Take(x, y); }
    void LineTo(float x, float y) override { Take(x, y); }
    void CurveTo(float x1, float y1, float x2, float y2, float x, float y) override
    {
        Take(x1, y1);
        Take(x2, y2);
        Take(x, y);
    }
    void QuadTo(float cx, float cy, float x, float y) override
    {
        Take(cx, cy);
        Take(x, y);
    }
    void ClosePath() override {}

private:
    void Take(float x, float y)
    {
        // 0 for what is finite, and no number for all others.
        sum_ += x * 0.0f + y * 0.0f;
        box_.Take(x, y);
    }

    float sum_ = 0;
    Box box_;
    float cornerRadius_ = 0;
};

/// A transform list twice: as the engine applies it, and as the standard has it.
class CheckedTransform final : public SVGLoom::Transform {
public:
    CheckedTransform() : engine_(1, 0, 0, 1, 0, 0), standard_(1, 0, 0, 1, 0, 0) {}

    void SetMatrix(float a, float b, float c, float d, float e, float f) override
    {
        engine_.SetMatrix(a, b, c, d, e, f);
        standard_.SetMatrix(a, b, c, d, e, f);
    }
    void Rotate(float angleDegrees) override
    {
        engine_.Rotate(angleDegrees);
        standard_.Rotate(angleDegrees);
    }
    void Translate(float tx, float ty) override
    {
        engine_.Translate(tx, ty);
        standard_.Concat(1, 0, 0, 1, tx, ty);
    }
    void Scale(float sx, float sy) override
    {
        engine_.Scale(sx, sy);
        standard_.Concat(sx, 0, 0, sy, 0, 0);
    }
    void Concat(float a, float b, float c, float d, float e, float f) override
    {
        engine_.Concat(a, b, c, d, e, f);
        standard_.Concat(a, b, c, d, e, f);
    }

    const kivui::scrivel::Matrix& Engine() const { return engine_.Matrix(); }

    /// Whether the difference would be seen.
    bool Differs() const;
    /// What was meant, as one matrix that all programs read alike.
    std::string Meant() const;

private:
    SVGLoom::ScrivelSVGTransform engine_;
    SVGLoom::ScrivelSVGTransform standard_;
};

/// Makes the paths of shapes, and nothing else that is used.
class CheckedRenderer final : public SVGLoom::SVGRenderer {
public:
    std::unique_ptr<SVGLoom::ImageData> CreateImageData(std::string_view,
                                                        SVGLoom::ImageFormat) override
    {
        return nullptr;
    }
    std::unique_ptr<SVGLoom::Path> CreatePath() override { return std::make_unique<CheckedPath>(); }
    std::unique_ptr<SVGLoom::Transform> CreateTransform(float, float, float, float, float,
                                                        float) override
    {
        return std::make_unique<CheckedTransform>();
    }
    void PushState(const SVGLoom::GraphicStyle&) override {}
    void PopState() override {}
    void DrawPath(const SVGLoom::Path&, const SVGLoom::GraphicStyle&, const SVGLoom::FillStyle&,
                  const SVGLoom::StrokeStyle&) override
    {
    }
    void DrawImage(const SVGLoom::ImageData&, const SVGLoom::GraphicStyle&, const SVGLoom::Rect&,
                   const SVGLoom::Rect&) override
    {
    }
};

}  // namespace svgloom
