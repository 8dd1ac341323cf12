// How the numbers of moves, lines and curves become their coordinates: a row for each command, so
// that which command it is decides nothing for the processor to foresee.

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "svgloom/src/Characters.h"
#include "svgloom/src/PathBuffer.h"

namespace SVGLoom {

/// The four coordinates of a curve's control points, of which other segments have less, and the two
/// of a segment's end are worked out as vectors of four floats: something for each of these. A mask
/// is 0 or -1.
struct PathRow {
    using Lanes = std::array<std::int8_t, 4>;
    static constexpr Lanes kNone = {0, 0, 0, 0};
    static constexpr Lanes kAll = {-1, -1, -1, -1};

    Lanes reflects = kNone;       // mask: the first control point is reflected, the numbers follow
    Lanes controlOrigin = kNone;  // mask: the position is added to control points
    Lanes endNumbers = {0, 1};    // which numbers the end has, from endNumber on
    Lanes endGiven = kAll;        // mask: the end has a number there
    Lanes endOrigin = kNone;      // mask: the position is added to the end
    Lanes keeps = kNone;          // mask: what later commands reflect, quadratic and cubic
    Lanes starts = kNone;         // mask: the end is the start of a subpath
    std::uint8_t count = 0;       // of numbers; 0 for all other commands
    std::uint8_t endNumber = 0;
    std::uint8_t controlBytes = 0;  // of the segment's control points
    PathSegments::Kind kind = PathSegments::Kind::kMove;
};

constexpr PathRow MakePathRow(char command)
{
    constexpr std::uint8_t kPoint = 2 * sizeof(float);
    const PathRow::Lanes origin = command >= 'a' ? PathRow::kAll : PathRow::kNone;
    PathRow row;
    row.controlOrigin = row.endOrigin = origin;
    switch (ToLower(command)) {
        case 'm':
            row.kind = PathSegments::Kind::kMove;
            row.count = 2;
            row.starts = PathRow::kAll;
            break;
        case 'l':
            row.kind = PathSegments::Kind::kLine;
            row.count = 2;
            break;
        case 'h':
            row.kind = PathSegments::Kind::kLine;
            row.count = 1;
            row.endGiven = {-1, 0};
            row.endOrigin = {origin[0], -1};
            break;
        case 'v':
            row.kind = PathSegments::Kind::kLine;
            row.count = 1;
            row.endNumbers = {0, 0};
            row.endGiven = {0, -1};
            row.endOrigin = {-1, origin[1]};
            break;
        case 'c':
            row.kind = PathSegments::Kind::kCurve;
            row.count = 6;
            row.endNumber = 4;
            row.controlBytes = 2 * kPoint;
            row.keeps = {0, 0, -1, -1};
            break;
        case 's':
            // Always the reflection, whatever command came before.
            row.kind = PathSegments::Kind::kCurve;
            row.count = 4;
            row.endNumber = 2;
            row.controlBytes = 2 * kPoint;
            row.reflects = PathRow::kAll;
            row.controlOrigin = {0, 0, origin[2], origin[3]};
            row.keeps = {0, 0, -1, -1};
            break;
        case 'q':
            row.kind = PathSegments::Kind::kQuad;
            row.count = 4;
            row.endNumber = 2;
            row.controlBytes = kPoint;
            row.keeps = {-1, -1, 0, 0};
            break;
        default:
            break;
    }
    return row;
}

inline constexpr std::size_t kPathLetters = 'z' - 'A' + 1;

/// From "A" to "z".
inline constexpr std::array<PathRow, kPathLetters> kPathRows = [] {
    std::array<PathRow, kPathLetters> rows;
    for (std::size_t i = 0; i < kPathLetters; ++i) {
        rows[i] = MakePathRow(static_cast<char>('A' + i));
    }
    return rows;
}();

}  // namespace SVGLoom
