#include "svgloom/renderer/ScrivelSVGTransform.h"

#include <cmath>

namespace SVGLoom {
namespace {

using kivui::scrivel::Matrix;

// For row vectors: `first` acts first.
Matrix Product(const Matrix& first, const Matrix& second)
{
    return {first.a * second.a + first.b * second.c,
            first.a * second.b + first.b * second.d,
            first.c * second.a + first.d * second.c,
            first.c * second.b + first.d * second.d,
            first.e * second.a + first.f * second.c + second.e,
            first.e * second.b + first.f * second.d + second.f};
}

}  // namespace

void ScrivelSVGTransform::SetMatrix(float a, float b, float c, float d, float e, float f)
{
    matrix_ = {a, b, c, d, e, f};
}

// The operations multiply in different orders on purpose, and the transform lists' reader counts on
// it: Rotate and Concat on the left, Translate and Scale on the right. ScrivelSVGTransform.Orders
// holds this.
void ScrivelSVGTransform::Rotate(float angleDegrees)
{
    // The single-precision functions differ from system to system; these are rounded once.
    const double angle = static_cast<double>(angleDegrees * 0.017453292f);
    const auto sine = static_cast<float>(std::sin(angle));
    const auto cosine = static_cast<float>(std::cos(angle));
    matrix_ = Product({cosine, sine, -sine, cosine, 0, 0}, matrix_);
}

void ScrivelSVGTransform::Translate(float tx, float ty)
{
    matrix_ = Product(matrix_, {1, 0, 0, 1, tx, ty});
}

void ScrivelSVGTransform::Scale(float sx, float sy)
{
    if (sx == 1 && sy == 1) {
        return;
    }
    matrix_ = Product(matrix_, {sx, 0, 0, sy, 0, 0});
}

void ScrivelSVGTransform::Concat(float a, float b, float c, float d, float e, float f)
{
    matrix_ = Product({a, b, c, d, e, f}, matrix_);
}

kivui::scrivel::Point ScrivelSVGTransform::Map(float x, float y) const
{
    return {x * matrix_.a + y * matrix_.c + matrix_.e, x * matrix_.b + y * matrix_.d + matrix_.f};
}

}  // namespace SVGLoom
