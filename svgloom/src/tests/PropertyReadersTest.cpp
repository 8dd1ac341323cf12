#include "svgloom/src/PropertyReaders.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "svgloom/src/tests/StyleSupport.h"

namespace SVGLoom {
namespace {

using testing_support::Describe;

/// One element's records, with a gradient "g", a clip path "c" and a viewBox whose diagonal is 50.
class Element {
public:
    Element()
    {
        gradients["g"].gradient.stops.Append({0, {1, 0, 0, 1}});
        gradients["g"].gradient.stops.Append({1, {0, 1, 0, 1}});
        clipPaths["c"] = std::make_shared<ClippingPath>();
        clipPaths[""] = std::make_shared<ClippingPath>();
    }

    void Apply(std::string_view name, std::string_view text)
    {
        const testing_support::ExactText exact(text);
        const AttributeName property = FindAttribute(name);
        ASSERT_TRUE(IsProperty(property));
        ApplyProperty(property, exact.View(), {gradients, clipPaths, viewBox},
                      {graphic, fill, stroke});
    }
    std::string Text() const { return Describe(graphic, *fill, *stroke); }

    GradientTable gradients;
    ClipPathTable clipPaths;
    Rect viewBox{100, 100, 30, 40};
    DocumentGraphicStyle graphic;
    SharedFillStyle fill;
    SharedStrokeStyle stroke;
};

struct PropertyCase {
    std::string_view name;
    std::string_view text;
    std::string_view want;
};

constexpr PropertyCase kPropertyCases[] = {
    // Opacities are limited to 0..1; what cannot be read changes nothing.
    {"opacity", "0.5", "opacity=0.5"},
    {"opacity", " 1e-1 ", "opacity=0.1"},
    {"opacity", "1.7", ""},
    {"opacity", "-0.2", "opacity=0"},
    {"opacity", "50%", ""},
    {"opacity", "abc", ""},
    {"opacity", "", ""},
    {"fill-opacity", "0.25", "fillOpacity=0.25"},
    {"fill-opacity", "-1", "fillOpacity=0"},
    {"fill-opacity", "x", ""},
    {"stroke-opacity", "0.25", "strokeOpacity=0.25"},
    {"stroke-opacity", "2", ""},
    {"stop-opacity", "0.25", "stopOpacity=0.25"},
    {"stop-opacity", "0,5", ""},
    // Clip paths.
    {"clip-path", "url(#c)", "clip=true"},
    {"clip-path", "url(#x)", ""},
    {"clip-path", "abcdecf", "clip=true"},
    {"clip-path", "url(#", "clip=true"},
    {"clip-path", "url(#)", "clip=true"},
    {"clip-path", "url(#c", "clip=true"},
    {"clip-path", "url(#cc", "clip=true"},
    {"clip-path", "url(#c) ", ""},
    {"clip-path", "inherit", ""},
    // Display.
    {"display", "none", ""},
    {"display", "inline", "display=false"},
    {"display", " none", "display=false"},
    {"display", "", "display=false"},
    // Stop colours.
    {"stop-color", "#f00", "stopColor=1 0 0 1"},
    {"stop-color", "currentColor", "stopColor=current"},
    {"stop-color", "var(--a,red)", "stopColor=var(a, 1 0 0 1)"},
    {"stop-color", "greenyellow", "stopColor=0 0.5019608 0 1"},
    {"stop-color", "lightblue", ""},
    // Fill.
    {"fill", "red", "fill=1 0 0 1"},
    {"fill", "none", "hasFill=false"},
    {"fill", "currentColor", "fill=current"},
    {"fill", "var(--a)", "fill=var(a, 0 0 0 1)"},
    {"fill", "url(#g)", "fill=gradient of 2"},
    {"fill", "url(#x)", ""},
    {"fill", "url(#x) none", "hasFill=false"},
    {"fill", "url(#x) blue", "fill=0 0 1 1"},
    {"fill", "greenyellow", ""},
    {"fill", "inherit", ""},
    {"fill-rule", "evenodd", "fillRule=1"},
    {"fill-rule", "nonzero", ""},
    {"fill-rule", "EvenOdd", ""},
    {"fill-rule", " evenodd", ""},
    {"clip-rule", "evenodd", "clipRule=1"},
    {"clip-rule", "other", ""},
    {"color", "red", "color=1 0 0 1"},
    {"color", "currentColor", "color=current"},
    {"color", "redder", "color=1 0 0 1"},
    {"color", "x", ""},
    {"visibility", "hidden", "visible=false"},
    {"visibility", "collapse", ""},
    {"visibility", "visible", ""},
    {"visibility", "x", ""},
    // Stroke; percentages are of the whole diagonal.
    {"stroke", "red", "hasStroke=true stroke=1 0 0 1"},
    {"stroke", "none", ""},
    {"stroke", "url(#g)", "hasStroke=true stroke=gradient of 2"},
    {"stroke", "url(#x)", "hasStroke=true"},
    {"stroke", "x", ""},
    {"stroke-width", "2", "lineWidth=2"},
    {"stroke-width", "10%", "lineWidth=5"},
    {"stroke-width", "1in", "lineWidth=96"},
    {"stroke-width", "-1", ""},
    {"stroke-linecap", "round", "lineCap=1"},
    {"stroke-linecap", "square", "lineCap=2"},
    {"stroke-linecap", "butt", ""},
    {"stroke-linecap", "x", ""},
    {"stroke-linejoin", "round", "lineJoin=1"},
    {"stroke-linejoin", "bevel", "lineJoin=2"},
    {"stroke-linejoin", "miter", ""},
    {"stroke-miterlimit", "1", "miterLimit=1"},
    {"stroke-miterlimit", "10.5", "miterLimit=10.5"},
    {"stroke-miterlimit", "0.99", ""},
    {"stroke-miterlimit", "5px", ""},
    {"stroke-dashoffset", "10%", "dashOffset=5"},
    {"stroke-dashoffset", "-3", "dashOffset=-3"},
    {"stroke-dashoffset", "x", ""},
    {"stroke-dasharray", "5, 10", "dashes=5,10"},
    {"stroke-dasharray", "5, 10, 15", "dashes=5,10,15,5,10,15"},
    {"stroke-dasharray", "10%", "dashes=5,5"},
    {"stroke-dasharray", "5, -1", ""},
    {"stroke-dasharray", "5,", ""},
    {"stroke-dasharray", "none", ""},
};

TEST(ApplyProperty, Cases)
{
    for (const PropertyCase& row : kPropertyCases) {
        SCOPED_TRACE(std::string(row.name) + ": " + std::string(row.text));
        Element element;
        element.Apply(row.name, row.text);
        EXPECT_EQ(element.Text(), row.want);
    }
}

/// The same from records that hold something already.
TEST(ApplyProperty, OverWhatIsThere)
{
    constexpr PropertyCase kCases[] = {
        // Neither "butt" nor "miter" takes back what was inherited.
        {"stroke-linecap", "butt", "lineCap=1"},
        {"stroke-linecap", "square", "lineCap=2"},
        {"stroke-linejoin", "miter", "lineJoin=2"},
        {"stroke-linejoin", "round", "lineJoin=1"},
        {"fill-rule", "nonzero", "fillRule=0"},
        {"fill-rule", "x", "fillRule=1"},
        {"clip-rule", "nonzero", "clipRule=0"},
        {"visibility", "collapse", "visible=true"},
        {"visibility", "visible", "visible=true"},
        {"display", "none", "display=false"},
        // A width of 0 and one that cannot be read switch the stroke off.
        {"stroke-width", "0", "hasStroke=false lineWidth=0"},
        {"stroke-width", "-0", "hasStroke=false lineWidth=-0"},
        {"stroke-width", "x", "hasStroke=false lineWidth=3"},
        {"stroke-width", "1em", "hasStroke=false lineWidth=3"},
        {"stroke-width", "", "hasStroke=false lineWidth=3"},
        {"stroke-width", "-1", "hasStroke=true lineWidth=3"},
        {"stroke-width", "2", "hasStroke=true lineWidth=2"},
        // A list that cannot be read empties the dashes.
        {"stroke-dasharray", "none", "dashes="},
        {"stroke-dasharray", "", "dashes="},
        {"stroke-dasharray", "1 -1", "dashes="},
        {"stroke-dasharray", "1", "dashes=1,1"},
        {"fill", "none", "hasFill=false"},
        {"fill", "x", "hasFill=true"},
        {"fill-opacity", "abc", "fillOpacity=0.5"},
        {"opacity", "abc", "opacity=0.5"},
        {"clip-path", "url(#x)", "clip=true"},
    };
    for (const PropertyCase& row : kCases) {
        SCOPED_TRACE(std::string(row.name) + ": " + std::string(row.text));
        Element element;
        for (const auto& [name, text] : std::vector<std::pair<std::string_view, std::string_view>>{
                 {"stroke-linecap", "round"},
                 {"stroke-linejoin", "bevel"},
                 {"fill-rule", "evenodd"},
                 {"clip-rule", "evenodd"},
                 {"visibility", "hidden"},
                 {"display", "inline"},
                 {"stroke", "red"},
                 {"stroke-width", "3"},
                 {"stroke-dasharray", "7 8"},
                 {"fill", "red"},
                 {"fill-opacity", "0.5"},
                 {"opacity", "0.5"},
                 {"clip-path", "url(#c)"}}) {
            element.Apply(name, text);
        }
        element.Apply(row.name, row.text);
        const std::string have =
            " " + element.Text() +
            " fillRule=" + std::to_string(static_cast<unsigned>(element.fill->fillRule)) +
            " clipRule=" + std::to_string(static_cast<unsigned>(element.fill->clipRule)) +
            (element.fill->visible ? " visible=true" : "") +
            (element.fill->hasFill ? " hasFill=true" : "") +
            (element.stroke->hasStroke ? "" : " hasStroke=false") +
            (element.stroke->dashArray.empty() ? " dashes=" : "") + " ";
        std::string want(row.want);
        for (std::size_t space = want.find(' '); space != std::string::npos;
             space = want.find(' ')) {
            EXPECT_NE(have.find(" " + want.substr(0, space) + " "), std::string::npos) << have;
            want.erase(0, space + 1);
        }
        EXPECT_NE(have.find(" " + want + " "), std::string::npos) << have;
    }
}

TEST(ApplyProperty, AClipPathThatIsTooShortIsAnError)
{
    for (const std::string_view text : {"none", "", "url("}) {
        Element element;
        try {
            element.Apply("clip-path", text);
            ADD_FAILURE() << text;
        } catch (const std::out_of_range& error) {
            EXPECT_STREQ(error.what(), "invalid string position");
        }
    }
}

TEST(ApplyProperty, WhatChangesNothingStaysShared)
{
    Element element;
    const SharedFillStyle fill;
    const SharedStrokeStyle stroke;
    EXPECT_TRUE(element.fill.IsSharedWith(fill));
    for (const auto& [name, text] :
         std::vector<std::pair<std::string_view, std::string_view>>{{"stroke", "none"},
                                                                    {"fill", "x"},
                                                                    {"fill-opacity", "x"},
                                                                    {"stroke-linecap", "butt"},
                                                                    {"color", "x"},
                                                                    {"visibility", "x"},
                                                                    {"opacity", "0.5"}}) {
        element.Apply(name, text);
    }
    EXPECT_TRUE(element.fill.IsSharedWith(fill));
    EXPECT_TRUE(element.stroke.IsSharedWith(stroke));

    element.Apply("fill", "red");
    EXPECT_FALSE(element.fill.IsSharedWith(fill));
    SharedFillStyle child = element.fill;
    element.Apply("fill", "#f00");
    EXPECT_TRUE(child.IsSharedWith(element.fill));
    child.Edit().fillOpacity = 0.5f;
    EXPECT_EQ(element.fill->fillOpacity, 1);
    EXPECT_EQ(SharedFillStyle()->fillOpacity, 1);
}

TEST(ApplyProperty, HeirsShareTheirDashes)
{
    Element parent;
    parent.Apply("stroke-dasharray", "1 2 3 4");
    Element child;
    child.stroke = parent.stroke;
    child.Apply("stroke-linecap", "round");
    EXPECT_FALSE(child.stroke.IsSharedWith(parent.stroke));
    EXPECT_TRUE(child.stroke->dashArray.SharesBlockWith(parent.stroke->dashArray));
}

TEST(DiagonalOf, IsNotNormalised)
{
    EXPECT_EQ(DiagonalOf({1, 2, 30, 40}), 50);
}

}  // namespace
}  // namespace SVGLoom
