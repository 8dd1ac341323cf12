// Paths as straight lines: walks the segments and cuts curves into pieces.

#pragma once

#include <algorithm>
#include <cmath>

#include "framework/kivui/src/scrivel/Geometry.h"
#include "framework/kivui/src/scrivel/Objects.h"

namespace kivui::scrivel {

inline constexpr int kMaxCurvePieces = 1024;

/// True if every coordinate is finite.
bool IsFinite(const PathObject& path);

inline constexpr double kTolerance = 0.05;  // of curves in pixels

/// How many straight pieces of equal parameter length stay within the tolerance of the curve, not
/// rounded. The points are pixels, from any origin.
inline double PiecesOf(const DPoint& p0, const DPoint& p1, const DPoint& p2, const DPoint& p3)
{
    // The second differences bound the second derivative, and that bounds the distance between the
    // curve and a chord: at most 6 * bend / 8 over n squared.
    constexpr double kFactor = 6.0 / 8 / kTolerance;
    const auto squareOf = [](const DPoint& a, const DPoint& b, const DPoint& c) {
        const double x = a.x - 2 * b.x + c.x;
        const double y = a.y - 2 * b.y + c.y;
        return x * x + y * y;
    };
    const double square = std::max(squareOf(p0, p1, p2), squareOf(p1, p2, p3));
    return std::sqrt(std::sqrt(square * (kFactor * kFactor)));
}

/// At least 1, at most kMaxCurvePieces.
inline int RoundUp(double pieces)
{
    if (!(pieces < kMaxCurvePieces)) {
        return kMaxCurvePieces;
    }
    const int whole = static_cast<int>(pieces);
    return whole < pieces || whole == 0 ? whole + 1 : whole;
}

/// The pieces of a curve that borders a fill.
inline int CurvePieces(const DPoint& p0, const DPoint& p1, const DPoint& p2, const DPoint& p3)
{
    return RoundUp(PiecesOf(p0, p1, p2, p3));
}

/// The pieces of a curve in the middle of a stroke, whose outer side bends as well.
///
/// @param toPixels    maps the points to pixels; only its linear part counts
/// @param halfWidth   of the stroke, in pixels
int StrokePieces(const DPoint& p0, const DPoint& p1, const DPoint& p2, const DPoint& p3,
                 const DMatrix& toPixels, double halfWidth);

/// A cubic curve as a polynomial.
class Cubic {
public:
    Cubic(const DPoint& p0, const DPoint& p1, const DPoint& p2, const DPoint& p3)
        : d_(p0),
          c_{3 * (p1.x - p0.x), 3 * (p1.y - p0.y)},
          b_{3 * (p2.x - p1.x) - c_.x, 3 * (p2.y - p1.y) - c_.y},
          a_{p3.x - p0.x - c_.x - b_.x, p3.y - p0.y - c_.y - b_.y}
    {
    }

    /// The point at `t` (0..1).
    DPoint At(double t) const
    {
        return {((a_.x * t + b_.x) * t + c_.x) * t + d_.x,
                ((a_.y * t + b_.y) * t + c_.y) * t + d_.y};
    }

private:
    DPoint d_;
    DPoint c_;
    DPoint b_;
    DPoint a_;
};

/// Hands `sink` the path's parts: Begin(point), Line(point) any number of times, then End(closed).
/// Curve(p0, p1, p2, p3) stands for the lines of a curve. Points are mapped by `matrix`.
template <class Sink>
void WalkPath(const PathObject& path, const DMatrix& matrix, Sink& sink)
{
    DPoint start;
    DPoint current;
    bool isOpen = false;
    bool hasStart = false;
    const Point* point = path.Points().data();
    const auto next = [&] { return matrix.Map(ToDouble(*point++)); };
    const auto ensureOpen = [&](const DPoint& otherwise) {
        if (!isOpen) {
            if (!hasStart) {
                start = otherwise;
                hasStart = true;
            }
            current = start;
            sink.Begin(start);
            isOpen = true;
        }
    };
    for (const SegmentKind kind : path.Kinds()) {
        switch (kind) {
            case SegmentKind::kMove:
                if (isOpen) {
                    sink.End(/*closed=*/false);
                }
                start = next();
                current = start;
                hasStart = true;
                isOpen = false;
                break;
            case SegmentKind::kLine: {
                const DPoint to = next();
                ensureOpen(to);
                sink.Line(to);
                current = to;
                break;
            }
            case SegmentKind::kCurve: {
                const DPoint p1 = next();
                const DPoint p2 = next();
                const DPoint to = next();
                ensureOpen(p1);
                sink.Curve(current, p1, p2, to);
                current = to;
                break;
            }
            case SegmentKind::kClose:
                if (hasStart) {
                    ensureOpen(start);
                    sink.End(/*closed=*/true);
                    isOpen = false;
                }
                break;
        }
    }
    if (isOpen) {
        sink.End(/*closed=*/false);
    }
}

}  // namespace kivui::scrivel
