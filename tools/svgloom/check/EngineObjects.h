// What the engine's parsers fill when only a check is wanted: paths that are looked at instead of
// drawn, and transforms beside what the SVG standard makes of them.

#pragma once

#include <cmath>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

#include "svgloom/renderer/SVGRenderer.h"
#include "svgloom/renderer/ScrivelSVGTransform.h"

namespace svgloom {

class CheckedPath final : public SVGLoom::Path {
public:
    bool IsFinite() const { return std::isfinite(sum_); }
    bool IsEmpty() const { return isEmpty_; }

    void AddRect(float x, float y, float width, float height) override
    {
        Take({x, y, width, height});
    }
    void AddRoundedRect(float x, float y, float width, float height, float rx, float ry) override
    {
        Take({x, y, width, height, rx, ry});
    }
    void AddEllipse(float cx, float cy, float rx, float ry) override { Take({cx, cy, rx, ry}); }
    void MoveTo(float x, float y) override { Take({x, y}); }
    void LineTo(float x, float y) override { Take({x, y}); }
    void CurveTo(float x1, float y1, float x2, float y2, float x, float y) override
    {
        Take({x1, y1, x2, y2, x, y});
    }
    void QuadTo(float cx, float cy, float x, float y) override { Take({cx, cy, x, y}); }
    void ClosePath() override {}

private:
    void Take(std::initializer_list<float> numbers)
    {
        isEmpty_ = false;
        for (const float number : numbers) {
            // 0 for what is finite, and no number for all others.
            sum_ += number * 0.0f;
        }
    }

    float sum_ = 0;
    bool isEmpty_ = true;
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
