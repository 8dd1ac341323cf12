// Elliptical arcs of path data as cubic curves.

#pragma once

#include "svgloom/src/PathBuffer.h"

namespace SVGLoom {

/// An arc as path data gives it; the end point is absolute.
struct Arc {
    float rx = 0;
    float ry = 0;
    float rotationDegrees = 0;
    bool large = false;
    bool sweep = false;
    Point to;
};

/// Appends the arc from `from` to `path`, in pieces of at most 120 degrees. The rotation is not
/// applied, and a radius of 0 gives coordinates that are not finite; both on purpose. What goes to
/// the path at once is traced where the channel is on.
void ArcToCurve(const Point& from, const Arc& arc, PathBuffer& path);

}  // namespace SVGLoom
