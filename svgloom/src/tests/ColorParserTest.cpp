#include <gtest/gtest.h>

#include <string>

#include "svgloom/src/SVGStringParser.h"
#include "svgloom/src/tests/TestSupport.h"

namespace SVGLoom {
namespace {

using testing_support::ExactText;
using testing_support::Text;

std::string Text(const ColorValue& value)
{
    if (const ColorVariable* const variable = std::get_if<ColorVariable>(&value)) {
        return "var " + variable->name + " " + Text(variable->fallback);
    }
    return value.index() == 2 ? "current" : Text(std::get<Color>(value));
}

constexpr ParseResult kUntouched{77};

/// "<value> [left over]", or "invalid [left over]", or "untouched [left over]".
std::string Parse(std::string_view input, bool allowCurrentColor)
{
    const ExactText text(input);
    const char* current = text.begin();
    const ColorValue before = ColorVariable{"before", {}};
    ColorValue value = before;
    ParseResult result = kUntouched;
    const bool parsed =
        SVGStringParser::ParseColor(current, text.end(), value, allowCurrentColor, result);
    EXPECT_EQ(parsed, result == ParseResult::kSuccess);
    if (!parsed) {
        EXPECT_EQ(value, before);
    }
    const std::string outcome = parsed                            ? Text(value)
                                : result == ParseResult::kInvalid ? "invalid"
                                : result == kUntouched            ? "untouched"
                                                                  : "?";
    return outcome + " [" + std::string(current, text.end()) + "]";
}

struct ColorCase {
    std::string_view input;
    std::string_view want;
};

constexpr ColorCase kColorCases[] = {
    // Hexadecimal digits.
    {"#FFF", "1 1 1 1 []"},
    {"#fff", "1 1 1 1 []"},
    {"#000000", "0 0 0 1 []"},
    {"#FFffFF", "1 1 1 1 []"},
    {"#f00", "1 0 0 1 []"},
    {"#0f0", "0 1 0 1 []"},
    {"#00f", "0 0 1 1 []"},
    {"#336699", "0.2 0.4 0.6 1 []"},
    {"#369", "0.2 0.4 0.6 1 []"},
    {" \t\r\n#fff ", "1 1 1 1 [ ]"},
    {"#fff;", "1 1 1 1 [;]"},
    {"#fffx", "1 1 1 1 [x]"},
    // The position stays behind the digits.
    {"#", "invalid []"},
    {"#f", "invalid []"},
    {"#ff", "invalid []"},
    {"#ffff", "invalid []"},
    {"#fffff", "invalid []"},
    {"#fffffff", "invalid []"},
    {"#1122334", "invalid []"},
    {"#11223344", "invalid []"},
    {"#ffffffff ", "invalid [ ]"},
    {"#xyz", "invalid [xyz]"},
    {"#-ff", "invalid [-ff]"},
    {"# fff", "invalid [ fff]"},
    // rgb().
    {"rgb(255,0,0)", "1 0 0 1 []"},
    {"RGB( 255 , 0,0 )", "1 0 0 1 []"},
    {"rGb(\t51\n,\r102 , 153)x", "0.2 0.4 0.6 1 [x]"},
    {"rgb(300,0,0)", "1 0 0 1 []"},
    {"rgb(99999999999999999999999999999,256,255)", "1 1 1 1 []"},
    {"rgb(0000000000000000000000000000051,0,0)", "0.2 0 0 1 []"},
    {"rgb(100%,0,0)", "invalid [%,0,0)]"},
    {"rgb(255 0 0)", "invalid [0 0)]"},
    {"rgb(-1,0,0)", "invalid [-1,0,0)]"},
    {"rgb(+1,0,0)", "invalid [+1,0,0)]"},
    {"rgb(1.5,0,0)", "invalid [.5,0,0)]"},
    {"rgb(1,2)", "invalid [)]"},
    {"rgb(1,2,3,4)", "invalid [,4)]"},
    {"rgb(1,,2,3)", "invalid [,2,3)]"},
    {"rgb()", "invalid [)]"},
    {"rgb(1,2,3", "invalid []"},
    {"rgb(1,2,3 ", "invalid []"},
    {"rgb(1,2,", "invalid []"},
    {"rgb(1", "invalid []"},
    {"rgb(", "invalid []"},
    {"rgb( ", "invalid []"},
    {"rgb", "invalid [rgb]"},
    {"rgb (1,2,3)", "invalid [rgb (1,2,3)]"},
    {"rgba(1,2,3,1)", "invalid [rgba(1,2,3,1)]"},
    // var().
    {"var(--main)", "var main 0 0 0 1 []"},
    {"VAR( --a_B-9 )", "var a_B-9 0 0 0 1 []"},
    {"var(--a)b", "var a 0 0 0 1 [b]"},
    {"var(----)", "var -- 0 0 0 1 []"},
    {"var(--a, red)", "var a 1 0 0 1 []"},
    {"var(--a,#369)", "var a 0.2 0.4 0.6 1 []"},
    {"var( --a , rgb(255,0,0) )", "var a 1 0 0 1 []"},
    {"var(main)", "invalid [main)]"},
    {"var(-main)", "invalid [-main)]"},
    {"var(--)", "invalid [)]"},
    {"var(-- a)", "invalid [ a)]"},
    {"var()", "invalid [)]"},
    {"var(", "invalid []"},
    {"var(-", "invalid [-]"},
    {"var(--", "invalid []"},
    // A name ends before the text does.
    {"var(--a", "invalid []"},
    {"var(--a ", "invalid []"},
    {"var(--a b)", "invalid [b)]"},
    {"var(--a.b)", "invalid [.b)]"},
    {"var(--\xC3\xA9)", "invalid [\xC3\xA9)]"},
    {"var(--a,", "invalid []"},
    {"var(--a,)", "invalid [)]"},
    {"var(--a, )", "invalid [)]"},
    {"var(--a, none)", "invalid [none)]"},
    {"var(--a, lightblue)", "invalid [lightblue)]"},
    {"var(--a, red", "invalid []"},
    {"var(--a, red blue)", "invalid [blue)]"},
    {"var(--a, greenyellow)", "invalid [yellow)]"},
    // A fallback that is a variable or the current colour is black, on purpose.
    {"var(--a, var(--b))", "var a 0 0 0 1 []"},
    {"var(--a, var(--b, red))", "var a 0 0 0 1 []"},
    {"var(--a, var(--b, var(--c, red) ) )x", "var a 0 0 0 1 [x]"},
    {"var(--a, currentColor)", "var a 0 0 0 1 []"},
    {"var(--a, var(--b, currentColor))", "var a 0 0 0 1 []"},
    {"var(--a, var(--b, red)", "invalid []"},
    {"var(--a, var(--b, x))", "invalid [x))]"},
    {"var(--a, var(b))", "invalid [b))]"},
    // Names.
    {"red", "1 0 0 1 []"},
    {"RED", "1 0 0 1 []"},
    {" white ", "1 1 1 1 [ ]"},
    {"LightCoral", "0.9411765 0.5019608 0.5019608 1 []"},
    {"rebeccapurple", "0.4 0.2 0.6 1 []"},
    // A name matches the beginning of the text.
    {"greenyellow", "0 0.5019608 0 1 [yellow]"},
    {"redx", "1 0 0 1 [x]"},
    {"lightblue", "invalid [lightblue]"},
    {"re", "invalid [re]"},
    {"none", "invalid [none]"},
    {"transparent", "invalid [transparent]"},
    {"\xC3\xA9", "invalid [\xC3\xA9]"},
    {"0", "invalid [0]"},
    // Nothing at all leaves the result as it was.
    {"", "untouched []"},
    {" ", "untouched []"},
    {"\t\r\n", "untouched []"},
    {"\f", "invalid [\f]"},
};

TEST(ParseColor, Cases)
{
    for (const ColorCase& row : kColorCases) {
        for (const bool allowCurrentColor : {false, true}) {
            SCOPED_TRACE(row.input);
            EXPECT_EQ(Parse(row.input, allowCurrentColor), row.want);
        }
    }
}

TEST(ParseColor, CurrentColorOnlyWhereItIsAllowed)
{
    EXPECT_EQ(Parse("currentColor", true), "current []");
    EXPECT_EQ(Parse(" CURRENTCOLOR!", true), "current [!]");
    EXPECT_EQ(Parse("currentcolors", true), "current [s]");
    EXPECT_EQ(Parse("currentColo", true), "invalid [currentColo]");
    EXPECT_EQ(Parse("currentColor", false), "invalid [currentColor]");
}

TEST(ParseColor, AnUntouchedResultIsWhatItWasBefore)
{
    const char* current = nullptr;
    ColorValue value;
    ParseResult result = ParseResult::kSuccess;
    EXPECT_FALSE(SVGStringParser::ParseColor(current, nullptr, value, true, result));
    EXPECT_EQ(result, ParseResult::kSuccess);
}

TEST(ParseColor, TheMarkersPayloadIsZero)
{
    const std::string_view text = "currentColor";
    const char* current = text.data();
    ColorValue value;
    ParseResult result{};
    ASSERT_TRUE(SVGStringParser::ParseColor(current, current + text.size(), value, true, result));
    EXPECT_EQ(std::get<CurrentColor>(value).payload, 0u);
}

// Nothing calls itself, so fallbacks may nest as deeply as the text is long.
TEST(ParseColor, DeeplyNestedFallbacks)
{
    constexpr int kDepth = 1000000;
    std::string text;
    for (int i = 0; i < kDepth; ++i) {
        text += "var(--a,";
    }
    text += "red";
    EXPECT_EQ(Parse(text, false), "invalid []");
    text.append(kDepth, ')');
    EXPECT_EQ(Parse(text, false), "var a 0 0 0 1 []");
}

TEST(ParseColor, CutAtEveryLength)
{
    for (const std::string_view text : {"#336699", "rgb( 1 , 2 , 3 )", "var( --ab , rgb(1,2,3) )",
                                        "var(--a,var(--b,#123))", "currentColor"}) {
        for (std::size_t length = 1; length < text.size(); ++length) {
            const bool whole = text[0] == '#' && length == 4;
            EXPECT_EQ(Parse(text.substr(0, length), true).starts_with("invalid"), !whole)
                << text.substr(0, length);
        }
    }
}

}  // namespace
}  // namespace SVGLoom
