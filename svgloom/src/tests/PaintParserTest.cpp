#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "svgloom/src/SVGStringParser.h"
#include "svgloom/src/tests/TestSupport.h"

namespace SVGLoom {
namespace {

using testing_support::ExactText;
using testing_support::Text;

constexpr Color kRed{1, 0, 0, 1};
constexpr Color kGreen{0, 1, 0, 0.5f};
constexpr Color kBefore{0.25f, 0.25f, 0.25f, 1};

Gradient WithStops(GradientType type, std::vector<ColorStop> stops)
{
    Gradient gradient;
    gradient.type = type;
    gradient.stops = SharedVector<ColorStop>(std::move(stops));
    return gradient;
}

GradientTable Gradients()
{
    GradientTable table;
    table["none"].gradient = WithStops(GradientType::kLinear, {});
    table["one"].gradient = WithStops(GradientType::kLinear, {{0.5f, kGreen}});
    table["two"].gradient = WithStops(GradientType::kLinear, {{0, kRed}, {1, kGreen}});
    table["radial"].gradient = WithStops(GradientType::kRadial, {{0, kRed}, {1, kGreen}});
    table[" sp"].gradient = WithStops(GradientType::kLinear, {{0, kGreen}});
    table[""].gradient = WithStops(GradientType::kLinear, {{0, kRed}});
    return table;
}

std::string Text(const Paint& paint)
{
    const Gradient* const gradient = std::get_if<Gradient>(&paint);
    if (gradient == nullptr) {
        return Text(std::get<Color>(paint));
    }
    return (gradient->type == GradientType::kLinear ? "linear " : "radial ") +
           std::to_string(gradient->stops.size());
}

std::string Text(const std::optional<ColorValue>& value)
{
    constexpr const char* kKinds[] = {"color", "variable", "current"};
    return value.has_value() ? kKinds[value->index()] : "none";
}

/// "result paint value", where an untouched paint is "0.25 0.25 0.25 1 variable".
std::string Parse(std::string_view input)
{
    const ExactText text(input);
    const GradientTable gradients = Gradients();
    Paint paint = kBefore;
    std::optional<ColorValue> value = ColorVariable{"before", {}};
    const ParseResult result =
        SVGStringParser::ParsePaint(text.View(), gradients, {100, 100, 30, 40}, paint, value);
    return std::to_string(static_cast<unsigned>(result)) + " " + Text(paint) + " " + Text(value);
}

struct PaintCase {
    std::string_view input;
    std::string_view want;
};

constexpr std::string_view kInvalid = "1 0.25 0.25 0.25 1 variable";
constexpr std::string_view kNone = "2 0.25 0.25 0.25 1 variable";
constexpr std::string_view kKept = "0 0.25 0.25 0.25 1 variable";

constexpr PaintCase kPaintCases[] = {
    // Colours; the whole value has to be one.
    {"red", "0 1 0 0 1 color"},
    {" \n#f00 ", "0 1 0 0 1 color"},
    {"rgb(255,0,0)", "0 1 0 0 1 color"},
    {"currentColor", "0 0 0 0 1 current"},
    {"var(--a)", "0 0 0 0 1 variable"},
    {"var(--a,red) ", "0 1 0 0 1 variable"},
    {"", kInvalid},
    {" \t\r\n", kInvalid},
    {"greenyellow", kInvalid},
    {"lightblue", kInvalid},
    {"red blue", kInvalid},
    {"red;", kInvalid},
    {"#ffff", kInvalid},
    {"inherit", kInvalid},
    {"transparent", kInvalid},
    // No paint.
    {"none", kNone},
    {" none ", kNone},
    {"None", kInvalid},
    {"none red", kInvalid},
    {"nonesuch", kInvalid},
    {"non", kInvalid},
    // References that are known.
    {"url(#two)", "0 linear 2 none"},
    {" url(#two) ", "0 linear 2 none"},
    {"url(#radial)", "0 radial 2 none"},
    // One stop is its colour; none is a gradient that paints nothing.
    {"url(#one)", "0 0 1 0 0.5 color"},
    {"url(#none)", "0 linear 0 none"},
    // What stands in between is the id, to the letter.
    {"url(# sp)", "0 0 1 0 0.5 color"},
    {"url(#)", "0 1 0 0 1 color"},
    {"url(#TWO)", kKept},
    {"url(#two )", kKept},
    // The fallback of a known one is read and not used.
    {"url(#two) red", "0 linear 2 none"},
    {"url(#two)red", "0 linear 2 none"},
    {"url(#two) none", "0 linear 2 none"},
    {"url(#two) var(--a)", "0 linear 2 none"},
    // References that are not: the fallback decides.
    {"url(#x) red", "0 1 0 0 1 color"},
    {"url(#x)red ", "0 1 0 0 1 color"},
    {"url(#x) none", kNone},
    {"url(#x) currentColor", "0 0 0 0 1 current"},
    // Without one the paint stays, and that is a success.
    {"url(#x)", kKept},
    {"url(#x) ", kKept},
    // An invalid fallback makes the paint invalid, known or not.
    {"url(#two) lightblue", kInvalid},
    {"url(#x) lightblue", kInvalid},
    {"url(#two) red red", kInvalid},
    {"url(#two) none none", kInvalid},
    {"url(#two) url(#one)", kInvalid},
    {"url(#x) ,red", kInvalid},
    // No references.
    {"url(#two", kInvalid},
    {"url(#", kInvalid},
    {"url(two)", kInvalid},
    {"url( #two)", kInvalid},
    {"url('#two')", kInvalid},
    {"URL(#two)", kInvalid},
};

TEST(ParsePaint, Cases)
{
    for (const PaintCase& row : kPaintCases) {
        SCOPED_TRACE(row.input);
        EXPECT_EQ(Parse(row.input), row.want);
    }
}

Gradient Use(Gradient gradient)
{
    GradientTable table;
    table["g"].gradient = std::move(gradient);
    Paint paint;
    std::optional<ColorValue> value;
    EXPECT_EQ(SVGStringParser::ParsePaint("url(#g)", table, {100, 100, 30, 40}, paint, value),
              ParseResult::kSuccess);
    return std::get<Gradient>(paint);
}

std::string Coordinates(const Gradient& g)
{
    std::string text;
    for (const float each : {g.x1, g.y1, g.x2, g.y2, g.cx, g.cy, g.fx, g.fy, g.r}) {
        text += (text.empty() ? "" : " ") + Text(each);
    }
    return text;
}

TEST(ParsePaint, MissingCoordinatesOfALinearGradientRunAcrossTheViewport)
{
    const Gradient linear = WithStops(GradientType::kLinear, {{0, kRed}, {1, kGreen}});
    EXPECT_EQ(Coordinates(Use(linear)), "0 0 30 0 nan nan nan nan nan");
    Gradient given = linear;
    given.x1 = 1;
    given.y1 = 2;
    given.x2 = 3;
    given.y2 = 4;
    EXPECT_EQ(Coordinates(Use(given)), "1 2 3 4 nan nan nan nan nan");
    given.x2 = std::numeric_limits<float>::infinity();
    given.y1 = -std::numeric_limits<float>::infinity();
    EXPECT_EQ(Coordinates(Use(given)), "1 0 30 4 nan nan nan nan nan");
}

// The radius is half the diagonal: 25 for 30 by 40, where half of the normalised one would be 17.7.
TEST(ParsePaint, MissingRadiusIsHalfTheWholeDiagonal)
{
    const Gradient radial = WithStops(GradientType::kRadial, {{0, kRed}, {1, kGreen}});
    EXPECT_EQ(Coordinates(Use(radial)), "nan nan nan nan 15 20 15 20 25");
    Gradient given = radial;
    given.cx = 5;
    given.cy = 6;
    // The focal point follows the centre.
    EXPECT_EQ(Coordinates(Use(given)), "nan nan nan nan 5 6 5 6 25");
    given.fx = 7;
    given.r = 8;
    EXPECT_EQ(Coordinates(Use(given)), "nan nan nan nan 5 6 7 6 8");
}

TEST(ParsePaint, TheDefinitionStaysAsItIsAndSharesItsStops)
{
    GradientTable table = Gradients();
    Paint paint;
    std::optional<ColorValue> value;
    SVGStringParser::ParsePaint("url(#two)", table, {0, 0, 30, 40}, paint, value);
    EXPECT_EQ(Coordinates(table["two"].gradient), "nan nan nan nan nan nan nan nan nan");
    EXPECT_TRUE(std::get<Gradient>(paint).stops.SharesBlockWith(table["two"].gradient.stops));
}

}  // namespace
}  // namespace SVGLoom
