#include "svgloom/src/StyleSheet.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "svgloom/src/tests/TestSupport.h"
#include "svgloom/src/tests/TraceListener.h"

namespace SVGLoom {
namespace {

using testing_support::ExactText;
using testing_support::TraceListener;

/// "kind name{property:value;...}" for each rule, joined by spaces.
std::string Written(const StyleSheet& sheet)
{
    std::string text;
    for (const StyleSheet::Rule& rule : sheet.Rules()) {
        text += (text.empty() ? "" : " ") +
                std::to_string(static_cast<unsigned>(rule.selector.kind)) + " ";
        text.append(rule.selector.name) += '{';
        for (const Declaration& each : rule.declarations) {
            text.append(each.name).append(":").append(each.value).append(";");
        }
        text += '}';
    }
    return text;
}

std::string Parse(std::string_view input)
{
    StyleSheet sheet;
    try {
        sheet.Add(ExactText(input).View());
    } catch (const std::invalid_argument& error) {
        return std::string("error: ") + error.what();
    }
    return Written(sheet);
}

struct SheetCase {
    std::string_view input;
    std::string_view want;
};

constexpr SheetCase kSheetCases[] = {
    {"", ""},
    {" \n", ""},
    {"nonsense", ""},
    {"}", ""},
    {".a{fill:red;}", "1 a{fill:red;}"},
    {" .a { fill : red ; } ", "1 a{fill:red;}"},
    {".a{fill:red}", "1 a{}"},
    {".a{}", "1 a{}"},
    // Ordered by kind, then name; declarations by name.
    {".b{stroke:blue;fill:red;}#i{x:1;}.a{}g{}*{}h > k{}",
     "0 g{} 1 a{} 1 b{fill:red;stroke:blue;} 2 i{x:1;} 3 *{} 3 h > k{}"},
    // Kinds.
    {"path{}", "0 path{}"},
    {"_p-1\xC3\xA9{}", "0 _p-1\xC3\xA9{}"},
    {"1p{}", "3 1p{}"},
    {"a:hover{}", "3 a:hover{}"},
    {"g.a{}", "3 g.a{}"},
    {"a b{}", "3 a b{}"},
    {"[x]{}", "3 [x]{}"},
    {".a.b{}", "1 a.b{}"},
    {".a .b{}", "1 a .b{}"},
    {"#i{}", "2 i{}"},
    {"#{}", "2 {}"},
    {". a{}", "1  a{}"},
    // Lists; an empty selector is skipped.
    {".a,.b , g{fill:red;}", "0 g{fill:red;} 1 a{fill:red;} 1 b{fill:red;}"},
    {",.a,, ,.b,{fill:red;}", "1 a{fill:red;} 1 b{fill:red;}"},
    {"{fill:red;}", ""},
    {" {fill:red;} .a{}", "1 a{}"},
    {".a,.a{fill:red;}", "1 a{fill:red;}"},
    // The first declaration wins inside a block, a later block wins over an earlier one.
    {".a{fill:red;fill:blue;}", "1 a{fill:red;}"},
    {".a{fill:red;x:1;}.b{}.a{fill:blue;y:2;}", "1 a{fill:blue;x:1;y:2;} 1 b{}"},
    {".a{fill:red;}.a{fill:blue;fill:green;}", "1 a{fill:blue;}"},
    {".a,.b{fill:red;}.b{fill:blue;}", "1 a{fill:red;} 1 b{fill:blue;}"},
    // A rule runs from brace to brace.
    {".a{fill:red;", "1 a{fill:red;}"},
    {".a{fill:red;.b{}.c{}", "1 a{fill:red;} 1 c{}"},
    {".a{", "1 a{}"},
    {"@media x{.a{fill:red;}.b{x:1;}}", "1 b{x:1;} 3 @media x{.a{fill:red;}"},
    {".a{}}.b{}", "1 a{} 3 }.b{}"},
    // Comments go before rules are split.
    {"/*.z{}*/.a{/*x:1;*/fill:red;}", "1 a{fill:red;}"},
    {".a{fill:r/**/ed;}", "1 a{fill:red;}"},
    {".a{fill:red;}/* .b{}", "1 a{fill:red;}"},
    {".a{/*;*/fill:red;}", "1 a{fill:red;}"},
    // Errors.
    {".a{fill;}", "error: value not found"},
    {".a{fill:red;;}", "error: value not found"},
    {"g{;}", "error: value not found"},
    {".{fill:red;}", "error: empty CSS selector"},
    {".a, . ,.b{fill:red;}", "error: empty CSS selector"},
    {".{;}", "error: empty CSS selector"},
};

TEST(StyleSheet, Cases)
{
    for (const SheetCase& row : kSheetCases) {
        SCOPED_TRACE(row.input);
        EXPECT_EQ(Parse(row.input), row.want);
    }
}

TEST(StyleSheet, LineEndsDoNotCount)
{
    const std::string want = Parse(".a { fill : red ; } .b , .c { stroke : blue ; }");
    for (const std::string end : {"\r\n", "\r", "\n"}) {
        EXPECT_EQ(Parse(".a {" + end + " fill : red ;" + end + "}" + end + ".b ," + end +
                        ".c { stroke :" + end + " blue ; }" + end),
                  want);
    }
}

std::string ClassText(const StyleSheet& sheet, std::string_view name)
{
    std::string text;
    for (const PropertyText& each : sheet.FindClass(name)) {
        text.append(TextOf(each.property)).append(":").append(each.text).append(";");
    }
    return text;
}

TEST(StyleSheet, ClassesGiveTheirPropertiesInTheOrderOfApplication)
{
    StyleSheet sheet;
    EXPECT_TRUE(sheet.empty());
    sheet.Add(".a{stroke:blue;unknown:1;fill:red;opacity:1;} a{fill:green;} #a{fill:green;}");
    EXPECT_FALSE(sheet.empty());
    EXPECT_EQ(ClassText(sheet, "a"), "opacity:1;fill:red;stroke:blue;");
    EXPECT_EQ(ClassText(sheet, "A"), "");
    EXPECT_EQ(ClassText(sheet, "b"), "");
}

TEST(StyleSheet, SeveralTextsFillOneSheet)
{
    StyleSheet sheet;
    {
        const std::string first = ".a,.b{fill:red;stroke:blue;}";
        sheet.Add(first);
    }
    sheet.Add(".a{fill:green;opacity:1;}");
    sheet.Add(".a{stroke:none;}");
    sheet.Add(".a{}");
    EXPECT_EQ(ClassText(sheet, "a"), "opacity:1;fill:green;stroke:none;");
    EXPECT_EQ(ClassText(sheet, "b"), "fill:red;stroke:blue;");
    const StyleSheet moved = std::move(sheet);
    EXPECT_EQ(Written(moved), "1 a{fill:green;opacity:1;stroke:none;} 1 b{fill:red;stroke:blue;}");
    EXPECT_EQ(ClassText(moved, "a"), "opacity:1;fill:green;stroke:none;");
}

TEST(StyleSheet, AnEmptyClassNameIsAnError)
{
    const StyleSheet sheet;
    try {
        sheet.FindClass("");
        FAIL();
    } catch (const std::invalid_argument& error) {
        EXPECT_STREQ(error.what(), "empty CSS selector");
    }
}

// Selectors times declarations, and one selector that comes again and again: neither may multiply.
TEST(StyleSheet, SharedAndRepeatedRulesStayLinear)
{
    constexpr int kCount = 100000;
    std::string text;
    for (int i = 0; i < kCount; ++i) {
        text += ".c" + std::to_string(i) + ",";
    }
    text += "{";
    for (int i = 0; i < kCount; ++i) {
        text += "p" + std::to_string(i) + ":x;";
    }
    text += "fill:red;}";
    for (int i = 0; i < kCount; ++i) {
        text += ".c7{stroke:s" + std::to_string(i) + ";}";
    }
    StyleSheet sheet;
    sheet.Add(text);
    EXPECT_EQ(ClassText(sheet, "c7"), "fill:red;stroke:s99999;");
    EXPECT_EQ(ClassText(sheet, "c99999"), "fill:red;");
}

TEST(StyleSheet, Traces)
{
    TraceListener listener("SVGLoom.CSS", 6);
    StyleSheet sheet;
    sheet.Add("\n.b{fill:red;}\r\n/*c*/.a{} #i{x:1;}");
    EXPECT_EQ(listener.messages, (std::vector<std::string>{
                                     "6 ParseStyle INPUT:\n\n.b{fill:red;}\r\n/*c*/.a{} #i{x:1;}",
                                     "6 ParseStyle CLEANED:\n.b{fill:red;}\n/*c*/.a{}\n#i{x:1;}",
                                     "6 ParseStyle OUTPUT:\n.a{}\n.b{fill:red;}\n#i{x:1;}\n",
                                 }));
}

TEST(StyleSheet, TracingFollowsTheChannel)
{
    for (const int level : {-1, 6, 5, 6}) {
        StyleSheet sheet;
        {
            TraceListener listener("SVGLoom.CSS", level);
            sheet.Add(".a{}");
            EXPECT_EQ(listener.messages.size(), level == 6 ? 3u : 0u) << level;
        }
        sheet.Add(".a{}");
    }
}

TEST(StyleSheet, CutAtEveryLength)
{
    constexpr std::string_view kText = ".a,.b{fill:red;/*c*/stroke:blue;} #i{x:1;}";
    for (std::size_t length = 0; length <= kText.size(); ++length) {
        const std::string parsed = Parse(kText.substr(0, length));
        EXPECT_EQ(parsed.find("error"), std::string::npos) << length;
    }
}

}  // namespace
}  // namespace SVGLoom
