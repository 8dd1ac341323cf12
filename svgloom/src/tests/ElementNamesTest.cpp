#include "svgloom/src/ElementNames.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>

namespace SVGLoom {
namespace {

constexpr std::string_view kNames[] = {
    "path",     "rect",   "circle", "ellipse", "line",           "polygon",
    "polyline", "g",      "use",    "defs",    "linearGradient", "radialGradient",
    "clipPath", "symbol", "image",  "style",   "stop",
};

TEST(ElementNames, EveryNameIsFoundAndNoneBesideIt)
{
    ASSERT_EQ(std::size(kNames), kElementCount);
    for (std::size_t i = 0; i < kElementCount; ++i) {
        const std::string name(kNames[i]);
        EXPECT_EQ(FindElement(name), static_cast<ElementName>(i)) << name;
        for (std::size_t at = 0; at < name.size(); ++at) {
            std::string changed = name;
            changed[at] = '?';
            EXPECT_EQ(FindElement(changed), ElementName::kUnknown) << changed;
        }
        EXPECT_EQ(FindElement(name + "x"), ElementName::kUnknown) << name;
        EXPECT_EQ(FindElement(name.substr(0, name.size() - 1)), ElementName::kUnknown) << name;
    }
    for (const std::string_view other : {"", "svg", "text", "G", "\xFF"}) {
        EXPECT_EQ(FindElement(other), ElementName::kUnknown) << other;
    }
    // As long as a name but for a multiple of 256.
    EXPECT_EQ(FindElement("g" + std::string(255, 'g') + "g"), ElementName::kUnknown);
}

TEST(ElementNames, Shapes)
{
    std::string shapes;
    for (std::size_t i = 0; i <= kElementCount; ++i) {
        shapes += IsShape(static_cast<ElementName>(i)) ? 's' : '.';
    }
    EXPECT_EQ(shapes, "sssssss...........");
}

}  // namespace
}  // namespace SVGLoom
