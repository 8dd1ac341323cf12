// The renderer's transform and image.

#pragma once

#include <kivui/Scrivel.h>

#include "svgloom/renderer/SVGRenderer.h"

namespace SVGLoom {

class ScrivelSVGTransform final : public Transform {
public:
    ScrivelSVGTransform(float a, float b, float c, float d, float e, float f)
        : matrix_{a, b, c, d, e, f}
    {
    }

    void SetMatrix(float a, float b, float c, float d, float e, float f) override;
    void Rotate(float angleDegrees) override;
    void Translate(float tx, float ty) override;
    void Scale(float sx, float sy) override;
    void Concat(float a, float b, float c, float d, float e, float f) override;

    const kivui::scrivel::Matrix& Matrix() const { return matrix_; }
    kivui::scrivel::Point Map(float x, float y) const;

private:
    kivui::scrivel::Matrix matrix_;
};

/// Images are not shown by this renderer: it has no size and holds nothing.
class ScrivelSVGImageData final : public ImageData {
public:
    float Width() const override { return 0.0f; }
    float Height() const override { return 0.0f; }
};

}  // namespace SVGLoom
