#include <gtest/gtest.h>

#include <string>

#include "svgloom/src/SVGStringParser.h"
#include "svgloom/src/tests/TestSupport.h"

namespace SVGLoom {
namespace {

using testing_support::ExactText;
using testing_support::RecordingTransform;

/// "true Calls()" or "false Calls() [left over]".
std::string Parse(std::string_view input)
{
    const ExactText text(input);
    RecordingTransform transform;
    const char* current = text.begin();
    const bool parsed = SVGStringParser::ParseTransform(current, text.end(), transform);
    if (parsed) {
        EXPECT_EQ(current, text.end());
    }
    return (parsed ? "true " : "false ") + transform.log.Written() +
           (parsed ? "" : " [" + std::string(current, text.end()) + "]");
}

struct TransformCase {
    std::string_view input;
    std::string_view want;
};

constexpr TransformCase kTransformCases[] = {
    {"", "true "},
    {" \t\r\n", "true "},
    // Each function with each count of numbers.
    {"matrix(1,2,3,4,5,6)", "true Concat(1, 2, 3, 4, 5, 6)"},
    {"translate(10)", "true Translate(10, 0)"},
    {"translate(10 20)", "true Translate(10, 20)"},
    {"scale(2)", "true Scale(2, 2)"},
    {"scale(2,3)", "true Scale(2, 3)"},
    {"rotate(45)", "true Rotate(45)"},
    {"rotate(45 10 20)", "true Translate(10, 20); Rotate(45); Translate(-10, -20)"},
    {"skewX(45)", "true Concat(1, 0, 1, 1, 0, 0)"},
    {"skewY(45)", "true Concat(1, 1, 0, 1, 0, 0)"},
    // The tangent is that of the rounded angle, so it is not always the nearest to the exact one.
    {"skewX(30)", "true Concat(1, 0, 0.57735026, 1, 0, 0)"},
    {"skewY(-60)", "true Concat(1, -1.7320509, 0, 1, 0, 0)"},
    // Any other count ends the parse, and nothing of that function is applied.
    {"matrix(1,0,0,1,5)", "false  []"},
    {"matrix(1,0,0,1,5,6,7)", "false  [7)]"},
    {"translate()", "false  [)]"},
    {"translate(1 2 3)", "false  []"},
    {"scale()", "false  [)]"},
    {"scale(1 2 3)", "false  []"},
    {"rotate()", "false  [)]"},
    {"rotate(45 10)", "false  []"},
    {"rotate(1 2 3 4)", "false  []"},
    {"skewX(1 2)", "false  []"},
    {"skewY()", "false  [)]"},
    {"skewY(1 2)", "false  []"},
    // In the order of the text.
    {"translate(5,5) scale(2)", "true Translate(5, 5); Scale(2, 2)"},
    {"translate(5,5)scale(2)", "true Translate(5, 5); Scale(2, 2)"},
    {"translate(5,5),scale(2)", "true Translate(5, 5); Scale(2, 2)"},
    {" , translate ( 5 , 5 ) , scale(2) , ", "true Translate(5, 5); Scale(2, 2)"},
    {"translate(5,5),,scale(2)", "false Translate(5, 5) [,scale(2)]"},
    // What was applied before a failure stays.
    {"translate(5,5) SCALE(2)", "false Translate(5, 5) [SCALE(2)]"},
    {"scale(2) rotate(x)", "false Scale(2, 2) [x)]"},
    // Names are compared by case, and only where enough text is left.
    {"Translate(1)", "false  [Translate(1)]"},
    {"skewx(1)", "false  [skewx(1)]"},
    {"scal", "false  [scal]"},
    {"scaleX(1)", "false  [X(1)]"},
    {"none", "false  [none]"},
    {"(1)", "false  [(1)]"},
    // Parentheses and commas.
    {"scale", "false  []"},
    {"scale(", "false  []"},
    {"scale(2", "false  []"},
    {"scale 2)", "false  [2)]"},
    {"scale\n(2)", "true Scale(2, 2)"},
    {"scale(,2)", "false  [,2)]"},
    {"scale(2,)", "false  [)]"},
    {"scale(2,,3)", "false  [,3)]"},
    {"scale(2-3)", "true Scale(2, -3)"},
    {"scale(1e)", "false  [)]"},
    {"scale(2)x", "false Scale(2, 2) [x]"},
};

TEST(ParseTransform, Cases)
{
    for (const TransformCase& row : kTransformCases) {
        SCOPED_TRACE(row.input);
        EXPECT_EQ(Parse(row.input), row.want);
    }
}

// A centre has no effect: both translations act behind the rotation. Repairing it would move all
// artwork that was drawn to look right.
TEST(ParseTransform, RotateWithACentreTranslatesThereAndBack)
{
    EXPECT_EQ(Parse("rotate(90, 12, 12)"),
              "true Translate(12, 12); Rotate(90); Translate(-12, -12)");
}

TEST(ParseTransform, CutAtEveryLength)
{
    constexpr std::string_view kText = "matrix(1 0 0 1 5 6),translate(1,2)skewX(3)";
    for (std::size_t length = 0; length < kText.size(); ++length) {
        const std::string have = Parse(kText.substr(0, length));
        const bool whole = length == 0 || length == 19 || length == 20 || length == 34;
        EXPECT_EQ(have.starts_with("true"), whole) << length;
    }
}

}  // namespace
}  // namespace SVGLoom
