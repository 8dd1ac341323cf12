// A point of path data, in user units.

#pragma once

namespace SVGLoom {

struct Point {
    float x = 0;
    float y = 0;
};

}  // namespace SVGLoom
