#include "framework/kivui/src/scrivel/Flattening.h"

#include <bit>
#include <cstdint>

namespace kivui::scrivel {

bool IsFinite(const PathObject& path)
{
    // Of all exponents at once: what is not finite has all of its bits.
    constexpr std::uint32_t kExponent = 0x7F800000;
    constexpr std::uint32_t kLowest = 0x00800000;
    std::uint32_t carries = 0;
    for (const Point& p : path.Points()) {
        carries |= (std::bit_cast<std::uint32_t>(p.x) & kExponent) + kLowest;
        carries |= (std::bit_cast<std::uint32_t>(p.y) & kExponent) + kLowest;
    }
    return (carries >> 31) == 0;
}

int StrokePieces(const DPoint& p0, const DPoint& p1, const DPoint& p2, const DPoint& p3,
                 const DMatrix& toPixels, double halfWidth)
{
    double pieces = PiecesOf(toPixels.MapVector(p0), toPixels.MapVector(p1), toPixels.MapVector(p2),
                             toPixels.MapVector(p3));
    if (pieces > 0.5) {
        // The outer side turns by as much in a larger circle; a half turn is what icons bend by.
        constexpr double kTurn = 3.141592653589793;
        pieces = std::max(pieces, kTurn * std::sqrt(halfWidth / (8 * kTolerance)));
    }
    return RoundUp(pieces);
}

}  // namespace kivui::scrivel
