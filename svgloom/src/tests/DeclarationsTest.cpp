#include "svgloom/src/Declarations.h"

#include <gtest/gtest.h>

#include <string>

#include "svgloom/src/tests/TestSupport.h"

namespace SVGLoom {
namespace {

using testing_support::ExactText;

/// "name=value;" for each declaration, or what was thrown.
std::string Read(std::string_view input)
{
    const ExactText text(input);
    std::string all;
    try {
        ForEachDeclaration(text.View(), [&all](std::string_view name, std::string_view value) {
            all.append(name).append("=").append(value).append(";");
        });
    } catch (const std::invalid_argument& error) {
        return std::string("error: ") + error.what();
    }
    return all;
}

struct BlockCase {
    std::string_view input;
    std::string_view want;
};

constexpr BlockCase kBlockCases[] = {
    {"fill:red;", "fill=red;"},
    {" fill : red ; stroke : blue ; ", "fill=red;stroke=blue;"},
    {"\t\n\r\f\vfill\f:\vred\n;", "fill=red;"},
    // Without a ";" there is no declaration, and nothing counts behind the last one.
    {"", ""},
    {" ", ""},
    {"fill:red", ""},
    {"nonsense", ""},
    {"fill:red;stroke:blue", "fill=red;"},
    {"fill:red; nonsense", "fill=red;"},
    // The first colon counts.
    {"a:b:c;", "a=b:c;"},
    {"fill:url(#a);", "fill=url(#a);"},
    {":red;", "=red;"},
    // An empty value is dropped.
    {"fill:;", ""},
    {"fill: \f;stroke:blue;", "stroke=blue;"},
    // A comment is text like any other here.
    {"/*a*/fill:red;", "/*a*/fill=red;"},
    {"fill:red/*a*/;", "fill=red/*a*/;"},
    // A piece without a colon is an error, an empty one too.
    {";", "error: value not found"},
    {"fill;", "error: value not found"},
    {"fill:red;;", "error: value not found"},
    {"fill:red; ;", "error: value not found"},
    {"fill:red;stroke;", "error: value not found"},
    // What is quoted is not looked into.
    {"a:\";\";", "error: value not found"},
};

TEST(ForEachDeclaration, Cases)
{
    for (const BlockCase& row : kBlockCases) {
        SCOPED_TRACE(row.input);
        EXPECT_EQ(Read(row.input), row.want);
    }
}

std::string Parse(std::string_view text)
{
    std::string all;
    ParseDeclarations(text).ForEach([&all](AttributeName name, std::string_view value) {
        all.append(TextOf(name)).append("=").append(value).append(";");
    });
    return all;
}

TEST(ParseDeclarations, TheFirstOfAPropertyWins)
{
    EXPECT_EQ(Parse("fill:red;fill:blue;"), "fill=red;");
    // One without a value is none.
    EXPECT_EQ(Parse("fill:;fill:blue;"), "fill=blue;");
}

TEST(ParseDeclarations, PropertiesOnlyInTheOrderOfApplication)
{
    EXPECT_EQ(Parse("stroke:blue;x:1;class:a;Fill:red;font-size:3px;opacity:0.5;"),
              "opacity=0.5;stroke=blue;");
    EXPECT_TRUE(ParseDeclarations("").empty());
    EXPECT_THROW(ParseDeclarations("fill"
                                   ";"),
                 std::invalid_argument);
}

TEST(TrimStyleText, SixCharacters)
{
    EXPECT_EQ(TrimStyleText(" \t\n\r\f\va b\v\f\r\n\t "), "a b");
    EXPECT_EQ(TrimStyleText(" \f "), "");
    EXPECT_EQ(TrimStyleText(""), "");
    EXPECT_EQ(TrimStyleText("\xC2\xA0x"), "\xC2\xA0x");
}

}  // namespace
}  // namespace SVGLoom
