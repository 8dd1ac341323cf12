#include "svgloom/src/StyleResolution.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "svgloom/src/RapidXMLDocument.h"
#include "svgloom/src/tests/StyleSupport.h"

namespace SVGLoom {
namespace {

using testing_support::Describe;

/// The records and class names of one element, or what was thrown.
std::string Resolve(const std::string& attributes, std::string_view css = "")
{
    StyleSheet sheet;
    sheet.Add(css);
    std::string text = "<a " + attributes + "/>";
    const xml::RapidXMLDocument document(text.data());
    const GradientTable gradients;
    const ClipPathTable clipPaths;
    const Rect viewBox{0, 0, 30, 40};
    DocumentGraphicStyle graphic;
    SharedFillStyle fill;
    SharedStrokeStyle stroke;
    try {
        const ClassSet classes =
            ResolveStyles(Attributes(*document.GetFirstNode()), sheet,
                          {gradients, clipPaths, viewBox}, {graphic, fill, stroke});
        std::string names;
        for (const std::string_view name : classes) {
            names.append(".").append(name);
        }
        return Describe(graphic, *fill, *stroke) + names;
    } catch (const std::exception& error) {
        return std::string("error: ") + error.what();
    }
}

struct StyleCase {
    std::string attributes;
    std::string_view css;
    std::string_view want;
};

TEST(ResolveStyles, Cases)
{
    const StyleCase cases[] = {
        {"", "", ""},
        {"fill='red' stroke='blue'", "", "fill=1 0 0 1 hasStroke=true stroke=0 0 1 1"},
        {"fill='red' x='1' font-size='3'", "", "fill=1 0 0 1"},
        // A declaration ends with ";".
        {"style='fill:red'", "", ""},
        {"style='fill:red;'", "", "fill=1 0 0 1"},
        {"style='fill:red;fill:blue;'", "", "fill=1 0 0 1"},
        // Attributes, then `style`, then the rules, in the order of the `class` attribute.
        {"fill='red' style='fill:blue;'", "", "fill=0 0 1 1"},
        {"style='fill:blue;' fill='red'", "", "fill=0 0 1 1"},
        {"fill='red' class='a'", ".a{fill:lime;}", "fill=0 1 0 1.a"},
        {"style='fill:blue;' class='a'", ".a{fill:lime;}", "fill=0 1 0 1.a"},
        {"class='a b'", ".a{fill:red;}.b{fill:blue;}", "fill=0 0 1 1.a.b"},
        {"class='b a'", ".a{fill:red;}.b{fill:blue;}", "fill=1 0 0 1.a.b"},
        {"class='b a b'", ".a{fill:red;}.b{fill:blue;}", "fill=0 0 1 1.a.b"},
        {"class='b a  b\ta\r\n'", "", ".a.b"},
        {"class=''", ".a{fill:red;}", ""},
        {"class='a'", "a{fill:red;}#a{fill:red;}*{fill:red;}", ".a"},
        // A property that a set does not hold stays as it stands.
        {"fill='red' stroke='blue' class='a'", ".a{fill:lime;}",
         "fill=0 1 0 1 hasStroke=true stroke=0 0 1 1.a"},
        {"fill='red' style='fill:x;'", "", "fill=1 0 0 1"},
        // Inside one set the width comes behind the stroke, whatever the order of the text.
        {"stroke-width='0' stroke='red'", "", "lineWidth=0 stroke=1 0 0 1"},
        {"style='stroke-width:0;stroke:red;'", "", "lineWidth=0 stroke=1 0 0 1"},
        // A later set switches the stroke on again.
        {"stroke-width='0' style='stroke:red;'", "", "hasStroke=true lineWidth=0 stroke=1 0 0 1"},
        // Errors; that of the `style` attribute goes before that of a clip path.
        {"style='fill:red;;'", "", "error: value not found"},
        {"clip-path='none'", "", "error: invalid string position"},
        {"style='clip-path:none;'", "", "error: invalid string position"},
        {"class='a'", ".a{clip-path:none;}", "error: invalid string position"},
        {"clip-path='none' style=';'", "", "error: value not found"},
        // One that is overridden later is an error all the same.
        {"clip-path='none' style='clip-path:url(#a);'", "", "error: invalid string position"},
    };
    for (const StyleCase& row : cases) {
        SCOPED_TRACE(row.attributes);
        EXPECT_EQ(Resolve(row.attributes, row.css), row.want);
    }
}

/// What `sheet` makes of an element with the classes b and a.
std::string ApplyAttached(std::string_view css)
{
    StyleSheet sheet;
    sheet.Add(css);
    GradientTable gradients;
    const ClipPathTable clipPaths;
    DocumentGraphicStyle graphic;
    SharedFillStyle fill;
    SharedStrokeStyle stroke;
    fill.Edit().fillOpacity = 0.5f;
    const Rect viewBox{0, 0, 30, 40};
    ApplySheet(sheet, ClassSet{"a", "b"}, {gradients, clipPaths, viewBox}, {graphic, fill, stroke});
    return Describe(graphic, *fill, *stroke);
}

TEST(ApplySheet, InTheOrderOfTheNames)
{
    EXPECT_EQ(ApplyAttached(".b{fill:blue;}.a{fill:red;opacity:0.5;}"),
              "opacity=0.5 fillOpacity=0.5 fill=0 0 1 1");
    EXPECT_EQ(ApplyAttached(".c{fill:blue;}"), "fillOpacity=0.5");
    EXPECT_EQ(ApplyAttached(".a{stroke:url(#x) red;stroke-width:10%;}"),
              "fillOpacity=0.5 hasStroke=true lineWidth=5 stroke=1 0 0 1");
    EXPECT_THROW(ApplyAttached(".a{clip-path:none;}"), std::out_of_range);
}

TEST(ApplySheet, AnEmptyNameIsAnError)
{
    const StyleSheet sheet;
    const GradientTable gradients;
    const ClipPathTable clipPaths;
    const Rect viewBox;
    DocumentGraphicStyle graphic;
    SharedFillStyle fill;
    SharedStrokeStyle stroke;
    EXPECT_THROW(
        ApplySheet(sheet, ClassSet{""}, {gradients, clipPaths, viewBox}, {graphic, fill, stroke}),
        std::invalid_argument);
}

const ColorMap& Colors()
{
    static const ColorMap& colors = *new ColorMap{{"a", {1, 0, 0, 0.5f}}};
    return colors;
}

TEST(ResolveColor, EachKind)
{
    const Color green{0, 1, 0, 1};
    EXPECT_EQ(ResolveColor(green, Colors()), green);
    EXPECT_EQ(ResolveColor(ColorVariable{"a", green}, Colors()), (Color{1, 0, 0, 0.5f}));
    EXPECT_EQ(ResolveColor(ColorVariable{"b", green}, Colors()), green);
    EXPECT_EQ(ResolveColor(CurrentColor(), Colors()), Color());
    EXPECT_EQ(ResolveColor(CurrentColor(), green, Colors()), green);
    EXPECT_EQ(ResolveColor(ColorVariable{"b", {}}, green, Colors()), Color());
}

TEST(ResolveFill, TakesTheColorPropertyForTheMarker)
{
    DocumentFillStyle fill;
    fill.paintValue = CurrentColor();
    fill.fillOpacity = 0.5f;
    EXPECT_EQ(std::get<Color>(ResolveFill(fill, Colors()).paint), Color());
    fill.color = ColorVariable{"a", {}};
    EXPECT_EQ(std::get<Color>(ResolveFill(fill, Colors()).paint), (Color{1, 0, 0, 0.5f}));
    fill.color = CurrentColor();  // black, not itself
    EXPECT_EQ(std::get<Color>(ResolveFill(fill, Colors()).paint), Color());
    EXPECT_EQ(ResolveFill(fill, Colors()).fillOpacity, 0.5f);

    DocumentStrokeStyle stroke;
    stroke.paintValue = CurrentColor();
    fill.color = Color{0, 0, 1, 1};
    EXPECT_EQ(std::get<Color>(ResolveStroke(stroke, fill, Colors()).paint), (Color{0, 0, 1, 1}));
    stroke.paintValue = ColorVariable{"a", {}};
    EXPECT_EQ(std::get<Color>(ResolveStroke(stroke, fill, Colors()).paint), (Color{1, 0, 0, 0.5f}));
}

TEST(ResolveFill, GradientsAndPlainPaintsStay)
{
    DocumentFillStyle fill;
    fill.paint = Gradient();
    EXPECT_TRUE(std::holds_alternative<Gradient>(ResolveFill(fill, Colors()).paint));
    EXPECT_FALSE(NeedsResolution(fill.paintValue));
    EXPECT_FALSE(NeedsResolution(ColorValue(Color())));
    EXPECT_TRUE(NeedsResolution(ColorValue(CurrentColor())));
    EXPECT_TRUE(NeedsResolution(ColorValue(ColorVariable())));
}

}  // namespace
}  // namespace SVGLoom
