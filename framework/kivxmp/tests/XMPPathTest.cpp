#include <kivxmp/XMPPath.h>

#include <gtest/gtest.h>

#include "framework/kivxmp/tests/XmpTestSupport.h"

namespace kivxmp {
namespace {

std::string OwnPrefixes(std::string_view prefix)
{
    return prefix == "ex" ? "http://ex/" : prefix == "dc" ? "http://never/" : "";
}

std::string Show(const Path& path)
{
    std::string text;
    for (const PathStep& step : path) {
        switch (step.kind) {
            case PathStep::Kind::kField:
                text += " field {" + step.uri + "}" + step.local;
                break;
            case PathStep::Kind::kQualifier:
                text += " qualifier {" + step.uri + "}" + step.local;
                break;
            case PathStep::Kind::kItem:
                text += " item " + std::to_string(step.index);
                break;
            case PathStep::Kind::kLanguage:
                text += " language " + step.language;
                break;
        }
    }
    return text.substr(1);
}

struct PathCase {
    const char* text;
    const char* want;
    const char* printed;  // null: as `text`
};

constexpr PathCase kPaths[] = {
    {"dc:title", "field {http://purl.org/dc/elements/1.1/}title", nullptr},
    {"ex:a", "field {http://ex/}a", nullptr},
    {"{http://ex/}a", "field {http://ex/}a", nullptr},
    {"{http://purl.org/dc/elements/1.1/}a", "field {http://purl.org/dc/elements/1.1/}a", "dc:a"},
    {"{}a", "field {}a", nullptr},
    {"{u/[1]?}a", "field {u/[1]?}a", nullptr},
    {"ex:a[2]", "field {http://ex/}a item 2", nullptr},
    {"ex:a[007]", "field {http://ex/}a item 7", "ex:a[7]"},
    {"ex:a[18446744073709551615]", "field {http://ex/}a item 18446744073709551615", nullptr},
    {"ex:a[@x-default]", "field {http://ex/}a language x-default", nullptr},
    {"ex:a[@de][1]", "field {http://ex/}a language de item 1", nullptr},
    {"ex:a[1]/ex:b/?ex:c", "field {http://ex/}a item 1 field {http://ex/}b qualifier {http://ex/}c",
     nullptr},
    {"ex:a/?xml:lang", "field {http://ex/}a qualifier {http://www.w3.org/XML/1998/namespace}lang",
     nullptr},
    {"ex:gr\xC3\xBC\xC3\x9F", "field {http://ex/}gr\xC3\xBC\xC3\x9F", nullptr},
};

TEST(XMPPath, ReadsAndPrints)
{
    for (const PathCase& row : kPaths) {
        SCOPED_TRACE(row.text);
        const Path path = ParsePath(row.text, OwnPrefixes);
        EXPECT_EQ(Show(path), row.want);
        EXPECT_EQ(PrintPath(path, OwnPrefixes), row.printed != nullptr ? row.printed : row.text);
    }
}

TEST(XMPPath, RefusesWhatIsNone)
{
    constexpr const char* kBad[] = {
        "",           "title",       ":a",
        "ex:",        "nope:a",      "ex:a/",
        "ex:a//ex:b", "ex:a[",       "ex:a[]",
        "ex:a[0]",    "ex:a[-1]",    "ex:a[+1]",
        "ex:a[1",     "ex:a[1 ]",    "ex:a[@]",
        "ex:a[@de",   "ex:a[x]",     "ex:a[18446744073709551616]",
        "ex:a ex:b",  "ex:a:b",      "ex:a]",
        "ex:a}",      "{http://ex/", "{http://ex/}",
        "ex:a?ex:b",  "ex:a/?",      "[1]",
        "/ex:a",      "?ex:a",       " ex:a",
        "ex:a ",      "\xFF:a",      "ex:a[@\x01]",
    };
    for (const char* text : kBad) {
        SCOPED_TRACE(text);
        EXPECT_EQ(testing::CodeThrownBy([&] { ParsePath(text, OwnPrefixes); }), kKivXmpBadPath);
    }
    EXPECT_EQ(testing::CodeThrownBy([] { ParsePath("ex:a", {}); }), kKivXmpBadPath);
}

TEST(XMPPath, TooManySteps)
{
    std::string text = "ex:a";
    for (std::size_t i = 1; i < kMaxPathSteps; ++i) {
        text += "[1]";
    }
    EXPECT_EQ(ParsePath(text, OwnPrefixes).size(), kMaxPathSteps);
    EXPECT_EQ(testing::CodeThrownBy([&] { ParsePath(text + "[1]", OwnPrefixes); }), kKivXmpBadPath);
}

TEST(XMPPath, PrintsForeignPrefixesAsUris)
{
    PathStep step;
    step.uri = "http://other/";
    step.local = "a";
    step.prefix = "ex";  // stands for something else here
    EXPECT_EQ(PrintPath({step}, OwnPrefixes), "{http://other/}a");
    step.prefix = "dc";
    EXPECT_EQ(PrintPath({step}, OwnPrefixes), "{http://other/}a");
}

}  // namespace
}  // namespace kivxmp
