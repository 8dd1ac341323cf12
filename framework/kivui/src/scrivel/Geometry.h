// Points and matrices in double precision: what is given in floats is computed in doubles and
// rounded once, to a 256th of a pixel, so that pictures agree bit for bit on all platforms.

#pragma once

#include <cmath>
#include <optional>

#include <kivui/Scrivel.h>

namespace kivui::scrivel {

struct DPoint {
    double x = 0;
    double y = 0;
};

struct DMatrix {
    double a = 1;
    double b = 0;
    double c = 0;
    double d = 1;
    double e = 0;
    double f = 0;

    DPoint Map(const DPoint& p) const { return {p.x * a + p.y * c + e, p.x * b + p.y * d + f}; }
    /// A difference of points: without the translation.
    DPoint MapVector(const DPoint& v) const { return {v.x * a + v.y * c, v.x * b + v.y * d}; }
};

inline DMatrix ToDouble(const Matrix& m)
{
    return {static_cast<double>(m.a), static_cast<double>(m.b), static_cast<double>(m.c),
            static_cast<double>(m.d), static_cast<double>(m.e), static_cast<double>(m.f)};
}

inline DPoint ToDouble(const Point& p)
{
    return {static_cast<double>(p.x), static_cast<double>(p.y)};
}

/// `first` acts first.
inline DMatrix Product(const DMatrix& first, const DMatrix& second)
{
    const DPoint x = second.MapVector({first.a, first.b});
    const DPoint y = second.MapVector({first.c, first.d});
    const DPoint origin = second.Map({first.e, first.f});
    return {x.x, x.y, y.x, y.y, origin.x, origin.y};
}

/// Entries beyond this leave no room for products with points; they count as not finite.
inline constexpr double kMaxMatrixEntry = 1e100;

inline bool IsUsable(const DMatrix& m)
{
    for (const double entry : {m.a, m.b, m.c, m.d, m.e, m.f}) {
        if (!(std::fabs(entry) <= kMaxMatrixEntry)) {
            return false;
        }
    }
    return true;
}

/// None for a matrix that maps the plane to a line or point.
inline std::optional<DMatrix> Inverse(const DMatrix& m)
{
    const double determinant = m.a * m.d - m.b * m.c;
    const DMatrix linear = {
        m.d / determinant, -m.b / determinant, -m.c / determinant, m.a / determinant, 0, 0};
    const DPoint origin = linear.MapVector({m.e, m.f});
    const DMatrix inverse = {linear.a, linear.b, linear.c, linear.d, -origin.x, -origin.y};
    return determinant != 0 && IsUsable(inverse) ? std::optional(inverse) : std::nullopt;
}

/// The most that the matrix stretches any direction by.
inline double LargestScale(const DMatrix& m)
{
    // The larger singular value, by way of sums and differences that cannot cancel.
    const double u = std::sqrt((m.a + m.d) * (m.a + m.d) + (m.b - m.c) * (m.b - m.c));
    const double v = std::sqrt((m.a - m.d) * (m.a - m.d) + (m.b + m.c) * (m.b + m.c));
    return (u + v) / 2;
}

}  // namespace kivui::scrivel
