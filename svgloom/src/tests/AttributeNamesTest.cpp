#include "svgloom/src/AttributeNames.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>

#include "svgloom/src/PropertySet.h"

namespace SVGLoom {
namespace {

// The order in which properties are applied.
constexpr std::string_view kProperties[] = {
    "opacity",           "clip-path",         "display",
    "stop-opacity",      "stop-color",        "fill",
    "fill-opacity",      "fill-rule",         "color",
    "visibility",        "clip-rule",         "stroke",
    "stroke-width",      "stroke-linecap",    "stroke-linejoin",
    "stroke-miterlimit", "stroke-dashoffset", "stroke-dasharray",
    "stroke-opacity",
};

TEST(AttributeNames, PropertiesInTheOrderOfApplication)
{
    ASSERT_EQ(std::size(kProperties), kPropertyCount);
    for (std::size_t i = 0; i < kPropertyCount; ++i) {
        EXPECT_EQ(FindAttribute(kProperties[i]), static_cast<AttributeName>(i));
        EXPECT_TRUE(IsProperty(static_cast<AttributeName>(i)));
    }
    EXPECT_FALSE(IsProperty(AttributeName::kClass));
    EXPECT_FALSE(IsProperty(AttributeName::kUnknown));
}

TEST(AttributeNames, EveryNameIsFoundAndNoneBesideIt)
{
    for (std::size_t i = 0; i < kAttributeCount; ++i) {
        const std::string name(TextOf(static_cast<AttributeName>(i)));
        EXPECT_EQ(FindAttribute(name), static_cast<AttributeName>(i)) << name;
        EXPECT_EQ(FindAttribute(name + "0"), AttributeName::kUnknown) << name;
        std::string upper = name;
        upper[0] = static_cast<char>(upper[0] - 'a' + 'A');
        EXPECT_EQ(FindAttribute(upper), AttributeName::kUnknown) << upper;
        if (name.size() > 3) {
            std::string changed = name;  // the same for the table's key
            changed[1] = '?';
            EXPECT_EQ(FindAttribute(changed), AttributeName::kUnknown) << changed;
        }
    }
    EXPECT_EQ(FindAttribute(""), AttributeName::kUnknown);
    EXPECT_EQ(FindAttribute("\xFF\xFF"), AttributeName::kUnknown);
    EXPECT_EQ(FindAttribute(std::string(70000, 'x')), AttributeName::kUnknown);
    EXPECT_EQ(TextOf(AttributeName::kUnknown), "");
}

TEST(AttributeNames, OthersByName)
{
    EXPECT_EQ(FindAttribute("class"), AttributeName::kClass);
    EXPECT_EQ(FindAttribute("d"), AttributeName::kD);
    EXPECT_EQ(FindAttribute("xlink:href"), AttributeName::kXlinkHref);
    EXPECT_EQ(FindAttribute("preserveAspectRatio"), AttributeName::kPreserveAspectRatio);
    EXPECT_EQ(FindAttribute("y2"), AttributeName::kY2);
}

TEST(PropertySet, KeepsTheFirstAndVisitsInOrder)
{
    PropertySet set;
    EXPECT_TRUE(set.empty());
    set.AddFirst(AttributeName::kStrokeOpacity, "1");
    set.AddFirst(AttributeName::kFill, "red");
    set.AddFirst(AttributeName::kFill, "blue");
    set.AddFirst(AttributeName::kOpacity, "0.5");
    EXPECT_EQ(set.size(), 3u);
    EXPECT_TRUE(set.Has(AttributeName::kFill));
    EXPECT_FALSE(set.Has(AttributeName::kStroke));
    std::string seen;
    set.ForEach([&seen](AttributeName name, std::string_view text) {
        seen.append(TextOf(name)).append("=").append(text).append(";");
    });
    EXPECT_EQ(seen, "opacity=0.5;fill=red;stroke-opacity=1;");
}

}  // namespace
}  // namespace SVGLoom
