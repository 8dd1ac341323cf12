#include "framework/kivui/src/scrivel/Flattening.h"

#include <algorithm>
#include <cmath>

namespace kivui::scrivel {
namespace {

constexpr double kTolerance = 0.05;  // pixels

}  // namespace

bool IsFinite(const PathObject& path)
{
    return std::all_of(path.Points().begin(), path.Points().end(),
                       [](const Point& p) { return std::isfinite(p.x) && std::isfinite(p.y); });
}

int CurvePieces(const DPoint& p0, const DPoint& p1, const DPoint& p2, const DPoint& p3,
                const DMatrix& toPixels, double halfWidth)
{
    // The second differences bound the second derivative, and that bounds the distance between the
    // curve and a chord: at most 6 * bend / 8 over n squared.
    const DPoint first = toPixels.MapVector({p0.x - 2 * p1.x + p2.x, p0.y - 2 * p1.y + p2.y});
    const DPoint second = toPixels.MapVector({p1.x - 2 * p2.x + p3.x, p1.y - 2 * p2.y + p3.y});
    const double bend = std::sqrt(
        std::max(first.x * first.x + first.y * first.y, second.x * second.x + second.y * second.y));
    double pieces = std::sqrt(0.75 * bend / kTolerance);
    if (halfWidth > 0 && pieces > 0.5) {
        // The outer side turns by as much in a larger circle; a half turn is what icons bend by.
        constexpr double kTurn = 3.141592653589793;
        pieces = std::max(pieces, kTurn * std::sqrt(halfWidth / (8 * kTolerance)));
    }
    if (!(pieces < kMaxCurvePieces)) {
        return kMaxCurvePieces;
    }
    return std::max(1, static_cast<int>(std::ceil(pieces)));
}

}  // namespace kivui::scrivel
