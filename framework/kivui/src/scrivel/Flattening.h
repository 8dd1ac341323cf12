// Paths as straight lines: walks the segments and cuts curves into pieces.

#pragma once

#include "framework/kivui/src/scrivel/Geometry.h"
#include "framework/kivui/src/scrivel/Objects.h"

namespace kivui::scrivel {

inline constexpr int kMaxCurvePieces = 1024;

/// True if every coordinate is finite.
bool IsFinite(const PathObject& path);

/// How many straight pieces of equal parameter length stay within a twentieth of a pixel of the
/// curve.
///
/// @param toPixels    maps the points to pixels; only its linear part counts
/// @param halfWidth   of the stroke along the curve, in pixels, whose outer side bends as well; 0
/// for
///                    a fill
int CurvePieces(const DPoint& p0, const DPoint& p1, const DPoint& p2, const DPoint& p3,
                const DMatrix& toPixels, double halfWidth);

/// The point of a cubic curve at `t` (0..1).
inline DPoint CurvePoint(const DPoint& p0, const DPoint& p1, const DPoint& p2, const DPoint& p3,
                         double t)
{
    const double s = 1 - t;
    const double b0 = s * s * s;
    const double b1 = 3 * s * s * t;
    const double b2 = 3 * s * t * t;
    const double b3 = t * t * t;
    return {b0 * p0.x + b1 * p1.x + b2 * p2.x + b3 * p3.x,
            b0 * p0.y + b1 * p1.y + b2 * p2.y + b3 * p3.y};
}

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
