#include "tools/svgloom/check/EngineObjects.h"

#include <algorithm>
#include <charconv>

namespace svgloom {

namespace {

using kivui::scrivel::Matrix;

std::string Number(float value)
{
    constexpr int kDigits = 6;
    constexpr float kNothing = 1e-6f;  // what is left of a quarter turn
    char text[32];
    const auto end =
        std::to_chars(std::begin(text), std::end(text), std::abs(value) < kNothing ? 0.0f : value,
                      std::chars_format::general, kDigits);
    return {text, end.ptr};
}

bool IsNear(float a, float b, float size)
{
    constexpr float kSeen = 1e-3f;
    return std::abs(a - b) <= kSeen * size;
}

}  // namespace

bool Box::Overlaps(const Box& other) const
{
    // Edges that lie on each other, as drawing programs round them, do not count.
    constexpr float kSeen = 0.02f;
    const float width = std::min(right, other.right) - std::max(left, other.left);
    const float height = std::min(bottom, other.bottom) - std::max(top, other.top);
    return width > kSeen && height > kSeen;
}

Box Box::Mapped(const kivui::scrivel::Matrix& matrix) const
{
    const SVGLoom::ScrivelSVGTransform transform(matrix.a, matrix.b, matrix.c, matrix.d, matrix.e,
                                                 matrix.f);
    Box mapped;
    for (const float x : {left, right}) {
        for (const float y : {top, bottom}) {
            const kivui::scrivel::Point point = transform.Map(x, y);
            mapped.Take(point.x, point.y);
        }
    }
    return mapped;
}

bool CheckedTransform::Differs() const
{
    const Matrix& a = engine_.Matrix();
    const Matrix& b = standard_.Matrix();
    const float scale = std::max({std::abs(b.a), std::abs(b.b), std::abs(b.c), std::abs(b.d)});
    const float distance = std::max({std::abs(b.e), std::abs(b.f), 1.0f});
    return !IsNear(a.a, b.a, scale) || !IsNear(a.b, b.b, scale) || !IsNear(a.c, b.c, scale) ||
           !IsNear(a.d, b.d, scale) || !IsNear(a.e, b.e, distance) || !IsNear(a.f, b.f, distance);
}

std::string CheckedTransform::Meant() const
{
    const Matrix& m = standard_.Matrix();
    return "matrix(" + Number(m.a) + " " + Number(m.b) + " " + Number(m.c) + " " + Number(m.d) +
           " " + Number(m.e) + " " + Number(m.f) + ")";
}

}  // namespace svgloom
