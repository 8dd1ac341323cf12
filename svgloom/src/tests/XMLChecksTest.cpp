#include "svgloom/src/XMLChecks.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "svgloom/src/tests/TestSupport.h"

namespace SVGLoom::xml {
namespace {

using testing_support::ExactText;

/// True if `piece`, repeated, goes below the limit.
bool IsTooDeep(std::string_view piece, int times)
{
    std::string all;
    for (int i = 0; i < times; ++i) {
        all += piece;
    }
    const ExactText text(all);
    return FindTooDeep(text.begin(), text.end()) != nullptr;
}

struct DepthCase {
    std::string_view piece;
    bool opens;  // every piece is one level more
};

// As the XML library takes them.
constexpr DepthCase kDepthCases[] = {
    {"<g>", true},
    {"<g >text", true},
    {"<g a='1' b=\"2\">", true},
    {"<g a='>'>", true},
    {"<g a='/>'>", true},
    {"<g a='\"'>", true},
    {"<g a\"b='1'>", true},
    {"<g\"'>", true},
    {"<g<h>", true},
    {"<g<h></g<h><g>", true},
    {"<g a = '1' >", true},
    {"<g><!-- </g> -->", true},
    {"<g><?x </g> ?>", true},
    {"<g><![CDATA[</g>]]>", true},
    {"<g><!DOCTYPE x [</g>]>", true},
    {"<g><!FOO </g>", true},
    {"<g><!-->-->", true},
    // The quote closes at the next one, so two make a level.
    {"<g a='>", true},
    {"<g/>", false},
    {"<g></g>", false},
    {"<g a='<g>'/>", false},
    {"<g a=\"<g>\"/>", false},
    {"<!-- <g> -->", false},
    {"<?x <g> ?>", false},
    {"<![CDATA[<g>]]>", false},
    {"<!DOCTYPE x [[<g>] <g> ]>", false},
    {"<!FOO <g>", false},
    {"</g>", false},
    // The library stops at these, before it calls itself.
    {"<g a>", false},
    {"<g a=b>", false},
    {"<g /g>", false},
    {"<g ?>", false},
    {"<!-- <g>", false},
    {"<![CDATA[<g>", false},
    {"<?x <g>", false},
    {"<!DOCTYPE x [<g>", false},
};

TEST(FindTooDeep, Cases)
{
    for (const DepthCase& row : kDepthCases) {
        SCOPED_TRACE(row.piece);
        EXPECT_EQ(IsTooDeep(row.piece, 3 * kMaxDepth), row.opens);
    }
}

TEST(FindTooDeep, TheLimitIsExact)
{
    EXPECT_FALSE(IsTooDeep("<g>", kMaxDepth));
    EXPECT_TRUE(IsTooDeep("<g>", kMaxDepth + 1));
    std::string text;
    for (int i = 0; i <= kMaxDepth; ++i) {
        text += "<g>";
    }
    EXPECT_EQ(FindTooDeep(text.data(), text.data() + text.size()), text.data() + 3 * kMaxDepth);
}

TEST(FindTooDeep, CutAtEveryLength)
{
    std::string start;
    for (int i = 0; i <= kMaxDepth; ++i) {
        start += "<a/>";
    }
    constexpr std::string_view kText =
        "<g a='b' c=\"d\"><!-- e --><![CDATA[f]]><?g h?><!DOCTYPE i [j]><!k></g>";
    for (std::size_t length = 0; length <= kText.size(); ++length) {
        const ExactText text(start + std::string(kText.substr(0, length)));
        EXPECT_EQ(FindTooDeep(text.begin(), text.end()), nullptr) << length;
    }
}

TEST(TameReferences, Cases)
{
    struct Case {
        std::string_view input;
        std::string_view want;
    };
    constexpr Case kCases[] = {
        {"", ""},
        {"&", "&"},
        {"&#", "&#"},
        {"&#x", "&#x"},
        {"&amp;&#65;&#x41;", "&amp;&#65;&#x41;"},
        {"&#4294967295;", "&#4294967295;"},
        {"&#4294967296;", "&#0001114112;"},
        {"&#4294967361;x&#4294967361;", "&#0001114112;x&#0001114112;"},
        {"&#xFFFFFFFF;", "&#xFFFFFFFF;"},
        {"&#x100000041;", "&#x000110000;"},
        {"&#00000000000000000000065;", "&#00000000000000000000065;"},
        {"&#99999999999999999999999999999", "&#00000000000000000000001114112"},
        // The library takes hexadecimal digits here too.
        {"&#ffffffffff;", "&#0001114112;"},
        {"&#X41;", "&#X41;"},
        {"&&#4294967361;", "&&#0001114112;"},
    };
    for (const Case& row : kCases) {
        SCOPED_TRACE(row.input);
        std::string text(row.input);
        TameReferences(text.data(), text.data() + text.size());
        EXPECT_EQ(text, row.want);
    }
}

}  // namespace
}  // namespace SVGLoom::xml
