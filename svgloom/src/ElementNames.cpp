#include "svgloom/src/ElementNames.h"

#include <iterator>

#include "svgloom/src/NameTable.h"

namespace SVGLoom {

namespace {

// In the order of the enumeration.
constexpr std::string_view kNames[] = {
    "path",     "rect",   "circle", "ellipse", "line",           "polygon",
    "polyline", "g",      "use",    "defs",    "linearGradient", "radialGradient",
    "clipPath", "symbol", "image",  "style",   "stop",
};
static_assert(std::size(kNames) == kElementCount);

constexpr NameTable<kElementCount> kTable(kNames);

}  // namespace

ElementName FindElement(std::string_view name)
{
    return static_cast<ElementName>(kTable.Find(name));
}

}  // namespace SVGLoom
