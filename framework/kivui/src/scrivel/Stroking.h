// A pen's line along a path as an area. The outline is computed in user units and then mapped, so a
// stroke is right under transforms that stretch unevenly.

#pragma once

#include "framework/kivui/src/scrivel/Coverage.h"
#include "framework/kivui/src/scrivel/Geometry.h"
#include "framework/kivui/src/scrivel/Objects.h"

namespace kivui::scrivel {

/// A pattern that would cut one stroke into more is not applied.
inline constexpr double kMaxDashes = 1000000;

/// True if the pen draws at all: its numbers are finite, its width is above 0.
bool CanDraw(const PenObject& pen);

/// Adds the outline, to be filled by the nonzero rule. The path is finite, the pen can draw, the
/// matrix is usable.
void AddStroke(const PathObject& path, const PenObject& pen, const DMatrix& matrix,
               Coverage& coverage);

}  // namespace kivui::scrivel
