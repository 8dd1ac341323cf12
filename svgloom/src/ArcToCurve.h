// Elliptical arcs of path data as cubic curves, in pieces of at most 120 degrees. The rotation is
// not applied, and a radius of 0 gives coordinates that are not finite; both on purpose.

#pragma once

#include <cstddef>
#include <cstdint>

#include "svgloom/renderer/PathSegments.h"
#include "svgloom/src/Lanes.h"
#include "svgloom/src/Point.h"

namespace SVGLoom {

class PathBuffer;

/// An arc as path data gives it; the end point is absolute.
struct Arc {
    float rx = 0;
    float ry = 0;
    float rotationDegrees = 0;
    bool large = false;
    bool sweep = false;
    Point to;
};

/// Appends an arc from `from` at once, and traces the steps where the channel is on.
void ArcToCurve(const Point& from, const Arc& arc, PathBuffer& path);

/// Arcs that are made curves together. One is a long chain of steps, each of which waits for the
/// one before; a processor that has several to do fills the time.
class ArcQueue {
public:
    static constexpr std::size_t kMost = 16;
    static constexpr std::size_t kMostPieces = 4;  // of an arc
    /// So much more than what Add returns may all arcs take in the end.
    static constexpr std::size_t kSpareBytes = kMost * (kMostPieces - 1) * PathSegments::kMaxBytes;

    ArcQueue() {}  // items are written when they come
    ArcQueue(const ArcQueue&) = delete;
    ArcQueue& operator=(const ArcQueue&) = delete;

    bool IsEmpty() const { return count_ == 0; }
    bool IsFull() const { return count_ == kMost; }

    /// There has to be room for one. Its segments will stand at `offset` of a block; returns how
    /// many bytes they will most probably take.
    std::size_t Add(const Point& from, const Arc& arc, std::size_t offset)
    {
        Item& item = items_[count_++];
        item.points = lanes::Four{from.x, from.y, arc.to.x, arc.to.y};
        item.radii = lanes::Four{arc.rx, arc.ry, arc.rx, arc.ry};
        item.large = arc.large;
        item.sweep = arc.sweep;
        item.offset = offset;
        static constexpr std::uint8_t kPieces[2][2] = {{1, 2}, {3, 2}};
        // The points of 120 degrees are away from each other by the root of 3 radii.
        const float rx2 = arc.rx * arc.rx;
        const float ry2 = arc.ry * arc.ry;
        const float dx = from.x - arc.to.x;
        const float dy = from.y - arc.to.y;
        const bool isFar = dx * dx * ry2 + dy * dy * rx2 > 3 * rx2 * ry2;
        item.pieces = kPieces[arc.large ? 1 : 0][isFar ? 1 : 0];
        return item.pieces * PathSegments::kMaxBytes;
    }

    /// Writes the curves of all where they are to stand, and is empty then. What stands behind
    /// others that take more or fewer bytes than Add said is moved. Returns the end of the block.
    std::uint8_t* Write(std::uint8_t* block, std::uint8_t* end);

private:
    struct Item {
        lanes::Four points;  // x and y of both ends
        lanes::Four radii;   // both, twice; here and below as far as it is known
        lanes::Four center;
        lanes::Four angles;
        lanes::Four directions;
        std::size_t offset;
        std::size_t pieces;
        bool large;
        bool sweep;
    };

    void FindAngles();

    Item items_[kMost];
    std::size_t count_ = 0;
};

}  // namespace SVGLoom
