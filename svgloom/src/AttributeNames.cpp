#include "svgloom/src/AttributeNames.h"

#include <iterator>

#include "svgloom/src/NameTable.h"

namespace SVGLoom {

namespace {

// In the order of the enumeration.
constexpr std::string_view kNames[] = {
    "opacity",
    "clip-path",
    "display",
    "stop-opacity",
    "stop-color",
    "fill",
    "fill-opacity",
    "fill-rule",
    "color",
    "visibility",
    "clip-rule",
    "stroke",
    "stroke-width",
    "stroke-linecap",
    "stroke-linejoin",
    "stroke-miterlimit",
    "stroke-dashoffset",
    "stroke-dasharray",
    "stroke-opacity",
    "class",
    "cx",
    "cy",
    "d",
    "fx",
    "fy",
    "gradientTransform",
    "height",
    "href",
    "id",
    "offset",
    "points",
    "preserveAspectRatio",
    "r",
    "rx",
    "ry",
    "spreadMethod",
    "style",
    "transform",
    "viewBox",
    "width",
    "x",
    "x1",
    "x2",
    "xlink:href",
    "y",
    "y1",
    "y2",
};
static_assert(std::size(kNames) == kAttributeCount);
static_assert(kNames[kPropertyCount - 1] == "stroke-opacity" && kNames[kPropertyCount] == "class");

constexpr NameTable<kAttributeCount> kTable(kNames);

}  // namespace

AttributeName FindAttribute(std::string_view name)
{
    return static_cast<AttributeName>(kTable.Find(name));
}

std::string_view TextOf(AttributeName name)
{
    return name != AttributeName::kUnknown ? kNames[static_cast<std::size_t>(name)]
                                           : std::string_view();
}

}  // namespace SVGLoom
