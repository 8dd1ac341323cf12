#include "svgloom/src/StyleText.h"

#include <gtest/gtest.h>

namespace SVGLoom {
namespace {

struct TextCase {
    std::string_view input;
    std::string_view want;
};

TEST(CleanStyleText, Cases)
{
    constexpr TextCase kCases[] = {
        {"", ""},
        {" \r\n\t\f\v ", ""},
        {".a{b:c;}", ".a{b:c;}"},
        // Each line end is one space, whatever it is made of.
        {"a\r\nb", "a b"},
        {"a\rb", "a b"},
        {"a\nb", "a b"},
        {"a\r\r\nb\n\rc", "a  b  c"},
        {"a\tb", "a\tb"},
        {"\n\f.a{}\v\r\n", ".a{}"},
        // Rules stand on lines of their own.
        {".a{} .b{}", ".a{}\n.b{}"},
        {".a{}\r\n.b{}", ".a{}\n.b{}"},
        {".a{}  .b{}", ".a{}\n .b{}"},
        {".a{}.b{} ", ".a{}.b{}"},
        {"} } }", "}\n}\n}"},
        {"}\t.b{}", "}\t.b{}"},
    };
    for (const TextCase& row : kCases) {
        SCOPED_TRACE(row.input);
        EXPECT_EQ(CleanStyleText(row.input), row.want);
    }
}

TEST(RemoveComments, Cases)
{
    constexpr TextCase kCases[] = {
        {"", ""},
        {"a", "a"},
        {"a/**/b", "ab"},
        {"/* a */b/* c */", "b"},
        {"a/* b /* c */d", "ad"},
        {"a/*/b*/c", "ac"},
        // One that is not closed runs to the end.
        {"a/*b", "a"},
        {"a/*", "a"},
        {"/*/", ""},
        {"a/*b*/c/*d", "ac"},
        // What meets where a comment was is not looked at again.
        {"//**/*a*/b", "/*a*/b"},
        {"*/a", "*/a"},
        {"a / * b", "a / * b"},
    };
    for (const TextCase& row : kCases) {
        SCOPED_TRACE(row.input);
        std::string text(row.input);
        RemoveComments(text);
        EXPECT_EQ(text, row.want);
    }
}

TEST(ForEachRule, Cases)
{
    constexpr TextCase kCases[] = {
        {"", ""},
        {"no brace", ""},
        {".a{b:c;}.d{}", "[.a|b:c;][.d|]"},
        {".a{b:c;", "[.a|b:c;]"},
        {".a{", "[.a|]"},
        // A block ends at the first brace, whatever is open.
        {"@media x{.a{b:c;}}", "[@media x|.a{b:c;]"},
    };
    for (const TextCase& row : kCases) {
        SCOPED_TRACE(row.input);
        std::string rules;
        ForEachRule(row.input, [&rules](std::string_view selectors, std::string_view block) {
            rules.append("[").append(selectors).append("|").append(block).append("]");
        });
        EXPECT_EQ(rules, row.want);
    }
}

TEST(ForEachSelector, Cases)
{
    constexpr TextCase kCases[] = {
        {"", ""},
        {" , ,", ""},
        {".a", "[.a]"},
        {" .a ,\t#b,c d,", "[.a][#b][c d]"},
    };
    for (const TextCase& row : kCases) {
        SCOPED_TRACE(row.input);
        std::string selectors;
        ForEachSelector(row.input, [&selectors](std::string_view text) {
            selectors.append("[").append(text).append("]");
        });
        EXPECT_EQ(selectors, row.want);
    }
}

}  // namespace
}  // namespace SVGLoom
