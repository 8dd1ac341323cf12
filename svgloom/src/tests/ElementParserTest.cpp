#include "svgloom/src/ElementParser.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "svgloom/src/tests/DocumentSupport.h"
#include "svgloom/src/tests/TraceListener.h"

namespace SVGLoom {
namespace {

using testing_support::ChildAt;
using testing_support::DrawContent;
using testing_support::TestDocument;
using testing_support::TraceListener;

struct ContentCase {
    std::string_view content;
    std::string_view want;
};

void ExpectCases(std::initializer_list<ContentCase> cases)
{
    for (const ContentCase& row : cases) {
        SCOPED_TRACE(row.content);
        EXPECT_EQ(DrawContent(row.content), row.want);
    }
}

TEST(ElementParser, Shapes)
{
    ExpectCases({
        {"<path d='M1 2L3 4z'/>", "path M(1, 2); L(3, 4); Z() fill=0 0 0 1"},
        {"<path/>", "path  fill=0 0 0 1"},
        {"<rect x='1' y='2' width='3' height='4'/>", "path AddRect(1, 2, 3, 4) fill=0 0 0 1"},
        {"<rect width='3' height='4'/>", "path AddRect(0, 0, 3, 4) fill=0 0 0 1"},
        {"<rect width='50%' height='50%'/>", "path AddRect(0, 0, 15, 20) fill=0 0 0 1"},
        {"<rect width='10' height='0'/>", ""},
        {"<rect width='1e-8' height='10'/>", ""},
        {"<rect width='1.2e-7' height='10'/>",
         "path AddRect(0, 0, 1.2000001e-07, 10) fill=0 0 0 1"},
        {"<rect width='10'/>", ""},
        {"<rect width='x' height='10'/>", ""},
        {"<rect width='-3' height='4'/>", "path AddRect(0, 0, -3, 4) fill=0 0 0 1"},
        // One radius stands for both, limited to half of each side.
        {"<rect width='40' height='100' rx='30'/>",
         "path AddRoundedRect(0, 0, 40, 100, 20, 30) fill=0 0 0 1"},
        {"<rect width='40' height='100' ry='5'/>",
         "path AddRoundedRect(0, 0, 40, 100, 5, 5) fill=0 0 0 1"},
        {"<rect width='40' height='100' rx='3' ry='4'/>",
         "path AddRoundedRect(0, 0, 40, 100, 3, 4) fill=0 0 0 1"},
        {"<rect width='40' height='100' rx='3' ry='0'/>",
         "path AddRect(0, 0, 40, 100) fill=0 0 0 1"},
        {"<circle cx='1' cy='2' r='3'/>", "path AddEllipse(1, 2, 3, 3) fill=0 0 0 1"},
        // Of the whole diagonal, 50.
        {"<circle r='10%'/>", "path AddEllipse(0, 0, 5, 5) fill=0 0 0 1"},
        {"<circle r='0'/>", ""},
        {"<circle/>", ""},
        {"<ellipse cx='10%' cy='10%' rx='3' ry='4'/>", "path AddEllipse(3, 4, 3, 4) fill=0 0 0 1"},
        {"<ellipse rx='3'/>", ""},
        {"<line x1='1' y1='2' x2='3' y2='4'/>", "path M(1, 2); L(3, 4) fill=0 0 0 1"},
        {"<line/>", "path M(0, 0); L(0, 0) fill=0 0 0 1"},
        {"<polyline points='1 2 3,4 5 6 7'/>", "path M(1, 2); L(3, 4); L(5, 6) fill=0 0 0 1"},
        {"<polygon points='1 2 3 4'/>", "path M(1, 2); L(3, 4); Z() fill=0 0 0 1"},
        {"<polygon points='1 2'/>", "path M(1, 2); Z() fill=0 0 0 1"},
        // Without one whole pair there is no element.
        {"<polygon points='1'/>", ""},
        {"<polygon points=''/>", ""},
        {"<polygon/>", ""},
        {"<polyline points='1 2,'/>", ""},
    });
}

TEST(ElementParser, WhatIsNotKnownIsSkippedWithItsChildren)
{
    ExpectCases({
        {"<a><path d='M0 0'/></a>", ""},
        {"<svg><path d='M0 0'/></svg>", ""},
        {"<Path d='M0 0'/>", ""},
        {"<G><path d='M0 0'/></G>", ""},
        {"<stop offset='1'/>", ""},
        {"text<!-- <path/> --><?x?>", ""},
        {"<path d='M0 0'><path d='M1 1'/></path>", "path M(0, 0) fill=0 0 0 1"},
    });
}

TEST(ElementParser, GroupsInheritTheirStyles)
{
    ExpectCases({
        {"<g/>", "push | pop"},
        {"<g fill='red'><path/></g><path/>",
         "push | path  fill=1 0 0 1 | pop | path  fill=0 0 0 1"},
        {"<g stroke-linecap='round' stroke='red'><path stroke-linecap='butt'/></g>",
         "push | path  fill=0 0 0 1 stroke=1 0 0 1 width=1 cap=1 | pop"},
        {"<g opacity='0.5'><path/><path/></g>",
         "push opacity=0.5 | path  fill=0 0 0 1 | path  fill=0 0 0 1 | pop"},
        {"<g fill-opacity='0.5'><path fill-opacity='abc'/></g>",
         "push | path  fill=0 0 0 1 fillOpacity=0.5 | pop"},
        // The graphic style is not inherited.
        {"<g opacity='0.5'><g><path/></g></g>",
         "push opacity=0.5 | push | path  fill=0 0 0 1 | pop | pop"},
    });
}

TEST(ElementParser, Transforms)
{
    ExpectCases({
        {"<path transform='translate(1,2)'/>", "path  transform=[Translate(1, 2)] fill=0 0 0 1"},
        {"<g transform='scale(2)'/>", "push transform=[Scale(2, 2)] | pop"},
        // One that cannot be read is none, although some of it was.
        {"<path transform='translate(1,2) x'/>", "path  fill=0 0 0 1"},
        {"<path transform=''/>", "path  transform=[] fill=0 0 0 1"},
        // An attribute only.
        {"<path style='transform:scale(2);'/>", "path  fill=0 0 0 1"},
    });
    TestDocument root("<svg viewBox='0 0 1 1' transform='scale(2)'/>");
    EXPECT_EQ(root.Draw(), "push | push | pop | pop");
}

TEST(ElementParser, ViewBox)
{
    struct Case {
        std::string_view attributes;
        std::string_view want;
    };
    constexpr Case kCases[] = {
        {"", "0 0 320 200"},
        {"viewBox='1 2 3 4'", "1 2 3 4"},
        {"viewBox='1,2,3,4' width='5' height='6'", "1 2 3 4"},
        {"width='5' height='6'", "0 0 5 6"},
        {"x='1' y='2' width='5' height='6'", "1 2 5 6"},
        {"width='50%' height='50%'", "0 0 160 100"},
        {"width='x' height='6'", "0 0 320 6"},
        // With another count of numbers nothing changes, and the size does not count.
        {"viewBox='1 2 3' width='5' height='6'", "0 0 320 200"},
        {"viewBox='1 2 3 4 5' width='5' height='6'", "0 0 320 200"},
        {"viewBox='' width='5' height='6'", "0 0 320 200"},
        // One that cannot be read does not count itself.
        {"viewBox='1 2 3 x' width='5' height='6'", "0 0 5 6"},
        {"viewBox='1 2 3 4,' width='5' height='6'", "0 0 5 6"},
        {"viewBox='0 0 0 0'", "0 0 0 0"},
    };
    for (const Case& row : kCases) {
        SCOPED_TRACE(row.attributes);
        const TestDocument test("<svg " + std::string(row.attributes) + "/>");
        EXPECT_EQ(testing_support::Text(test.document->ViewBox()), row.want);
    }
}

TEST(ElementParser, TheRootIsNamedSvg)
{
    for (const std::string_view svg :
         {"<SVG viewBox='0 0 1 1'><path/></SVG>", "<g viewBox='0 0 1 1'><path/></g>",
          "<x:svg viewBox='0 0 1 1'><path/></x:svg>", "<g/><svg viewBox='0 0 1 1'/>"}) {
        TestDocument test(svg);
        EXPECT_EQ(testing_support::Text(test.document->ViewBox()), "0 0 320 200");
        EXPECT_EQ(test.Draw(), "push | pop");
    }
}

TEST(ElementParser, DefsAreReachedByIdOnly)
{
    ExpectCases({
        {"<defs fill='red'><path id='a'/></defs>", ""},
        {"<defs fill='red'><path id='a'/></defs><use href='#a'/>",
         "push | path  fill=1 0 0 1 | pop"},
        {"<defs id='d'><path id='a'/></defs><use href='#d'/>", ""},
        {"<defs><g><path id='a'/></g></defs><use href='#a'/>", "push | path  fill=0 0 0 1 | pop"},
    });
}

TEST(ElementParser, References)
{
    ExpectCases({
        // The target may come later, and has the styles that it was parsed with.
        {"<use href='#a' fill='red'/><path id='a'/>",
         "push | path  fill=0 0 0 1 | pop | path  fill=0 0 0 1"},
        {"<use xlink:href='#a'/><path id='a'/>",
         "push | path  fill=0 0 0 1 | pop | path  fill=0 0 0 1"},
        {"<use href='#a' x='1' y='2'/><path id='a'/>",
         "push transform=[Concat(1, 0, 0, 1, 1, 2)] | path  fill=0 0 0 1 | pop | path  "
         "fill=0 0 0 1"},
        {"<use href='#a' x='1' transform='scale(2)'/><path id='a'/>",
         "push transform=[Scale(2, 2); Concat(1, 0, 0, 1, 1, 0)] | path  fill=0 0 0 1 | pop | "
         "path  fill=0 0 0 1"},
        {"<use href='#a' x='1e-8' y='-1e-8'/><path id='a'/>",
         "push | path  fill=0 0 0 1 | pop | path  fill=0 0 0 1"},
        {"<use href='#x'/>", ""},
        {"<use href='a'/><path id='a'/>", "path  fill=0 0 0 1"},
        {"<use href=''/>", ""},
        {"<use/>", ""},
        {"<use href='#'/>", ""},
        // The first element with an id has it.
        {"<path id='a' fill='red'/><path id='a' fill='blue'/><use href='#a'/>",
         "path  fill=1 0 0 1 | path  fill=0 0 1 1 | push | path  fill=1 0 0 1 | pop"},
    });
}

TEST(ElementParser, Symbols)
{
    ExpectCases({
        {"<symbol id='s'><path/></symbol>", ""},
        {"<symbol><path/></symbol>", ""},
        {"<symbol id='s' opacity='0.5'><path/></symbol><use href='#s'/>",
         "push | push opacity=0.5 | path  fill=0 0 0 1 | pop | pop"},
        // Its children's styles are those around it.
        {"<g stroke='red'><symbol id='s' fill='red'><path/></symbol></g><use href='#s'/>",
         "push | pop | push | push | path  fill=0 0 0 1 stroke=1 0 0 1 width=1 | pop | pop"},
        {"<symbol id='s' transform='scale(2)' viewBox='1 2 30 40'><path/></symbol><use href='#s'/>",
         "push | push transform=[Create(1, 0, 0, 1, -1, -2)] | path  fill=0 0 0 1 | pop | pop"},
        {"<symbol id='s'><symbol id='t'><path/></symbol><use href='#t'/></symbol><use href='#s'/>",
         "push | push | push | push | path  fill=0 0 0 1 | pop | pop | pop | pop"},
    });
}

// The whole drawing is scaled by it then. Icons are drawn to look right with that.
TEST(ElementParser, ASymbolsViewBoxReplacesTheDocuments)
{
    struct Case {
        std::string_view viewBox;
        std::string_view want;
    };
    constexpr Case kCases[] = {
        {"1 2 3 4", "1 2 3 4"}, {"1 2 3 4 5", "1 2 3 4"}, {"1 2 3", "0 0 30 40"},
        {"x", "0 0 30 40"},     {"", "0 0 30 40"},        {"1 2 3 4,", "0 0 30 40"},
    };
    for (const Case& row : kCases) {
        SCOPED_TRACE(row.viewBox);
        const TestDocument test("<svg viewBox='0 0 30 40'><symbol viewBox='" +
                                std::string(row.viewBox) + "'/></svg>");
        EXPECT_EQ(testing_support::Text(test.document->ViewBox()), row.want);
    }
}

TEST(ElementParser, Gradients)
{
    constexpr std::string_view kStops =
        "<stop stop-color='red'/><stop offset='1' stop-color='lime'/>";
    const auto draw = [kStops](const std::string& before, const std::string& attributes) {
        return DrawContent(before + "<linearGradient id='g' " + attributes + ">" +
                           std::string(kStops) + "</linearGradient><path fill='url(#g)'/>");
    };
    constexpr std::string_view kEnd = "; 0: 1 0 0 1; 1: 0 1 0 1)";
    const auto want = [kEnd](const std::string& coordinates) {
        return "path  fill=linear(" + coordinates + std::string(kEnd);
    };
    EXPECT_EQ(draw("", ""), want("0 0 30 0"));
    EXPECT_EQ(draw("", "x1='1' y1='2' x2='3' y2='4'"), want("1 2 3 4"));
    EXPECT_EQ(draw("", "x1='10%' y1='10%' x2='x'"), want("3 4 30 0"));
    EXPECT_EQ(draw("", "gradientTransform='scale(2)'"), want("0 0 30 0") + "[Scale(2, 2)]");
    EXPECT_EQ(draw("", "gradientTransform='x'"), want("0 0 30 0"));
    // What comes from another one; stops are appended to its own.
    const std::string base =
        "<linearGradient id='b' x1='5' gradientTransform='scale(3)'><stop offset='0.5'/>"
        "</linearGradient>";
    EXPECT_EQ(draw(base, "href='#b'"),
              "path  fill=linear(5 0 30 0; 0.5: 0 0 0 1; 0.5: 1 0 0 1; 1: 0 1 0 1)[Scale(3, 3)]");
    EXPECT_EQ(draw(base, "xlink:href='#b' x1='6' gradientTransform='x'"),
              "path  fill=linear(6 0 30 0; 0.5: 0 0 0 1; 0.5: 1 0 0 1; 1: 0 1 0 1)");
    // The first character goes, whatever it is.
    EXPECT_EQ(draw(base, "href='xb' gradientTransform='x'"),
              draw(base, "href='#b' gradientTransform='x'"));
    EXPECT_EQ(draw(base, "href='b'"), want("0 0 30 0"));
    EXPECT_EQ(draw("", "href='#later'"), want("0 0 30 0"));
    EXPECT_EQ(draw("", "href=''"), "error: invalid string position");

    ExpectCases({
        {"<radialGradient id='g' cx='1' fy='3'><stop/><stop offset='2'/></radialGradient>"
         "<path fill='url(#g)'/>",
         "path  fill=radial(1 20 1 3 25; 0: 0 0 0 1; 1: 0 0 0 1)"},
        // Percentages, each in its direction; the radius is of the whole diagonal.
        {"<radialGradient id='g' cx='10%' cy='10%' fx='20%' fy='20%' r='20%'><stop/><stop/>"
         "</radialGradient><path fill='url(#g)'/>",
         "path  fill=radial(3 4 6 8 10; 0: 0 0 0 1; 0: 0 0 0 1)"},
        // The type is the element's own.
        {"<linearGradient id='a' x1='1'><stop/><stop/></linearGradient>"
         "<radialGradient id='g' href='#a' r='10%'/><path fill='url(#g)'/>",
         "path  fill=radial(1 15 20 15 20 5; 0: 0 0 0 1; 0: 0 0 0 1)"},
        // The first definition of an id wins, and only earlier ones are known.
        {"<linearGradient id='g'><stop stop-color='red'/></linearGradient>"
         "<linearGradient id='g'><stop stop-color='blue'/></linearGradient><path fill='url(#g)'/>",
         "path  fill=1 0 0 1"},
        {"<path fill='url(#g)'/><linearGradient id='g'><stop stop-color='red'/></linearGradient>",
         "path  fill=0 0 0 1"},
        {"<linearGradient id='g'/><path fill='url(#g)'/>", "path  fill=linear(0 0 30 0)"},
    });
}

TEST(ElementParser, Stops)
{
    const auto stops = [](const std::string& content) {
        const std::string drawn =
            DrawContent("<linearGradient id='g' color='lime'>" + content +
                        "<stop offset='1'/></linearGradient><path fill='url(#g)'/>");
        constexpr std::string_view kBefore = "path  fill=linear(0 0 30 0; ";
        constexpr std::string_view kBehind = "; 1: 0 0 0 1)";
        if (!drawn.starts_with(kBefore) || !drawn.ends_with(kBehind)) {
            return drawn;
        }
        return drawn.substr(kBefore.size(), drawn.size() - kBefore.size() - kBehind.size());
    };
    EXPECT_EQ(stops("<stop offset='0.5'/>"), "0.5: 0 0 0 1");
    EXPECT_EQ(stops("<stop/>"), "0: 0 0 0 1");
    // Never before the previous one, and in 0..1.
    EXPECT_EQ(stops("<stop offset='0.5'/><stop offset='0.2'/><stop/><stop offset='50%'/>"),
              "0.5: 0 0 0 1; 0.5: 0 0 0 1; 0.5: 0 0 0 1; 0.5: 0 0 0 1");
    EXPECT_EQ(stops("<stop offset='-1'/>"), "0: 0 0 0 1");
    EXPECT_EQ(stops("<stop offset='7'/>"), "1: 0 0 0 1");
    // The colour's alpha times the opacity.
    EXPECT_EQ(stops("<stop stop-color='red' stop-opacity='0.5'/>"), "0: 1 0 0 0.5");
    EXPECT_EQ(stops("<stop style='stop-color:red;stop-opacity:7;'/>"), "0: 1 0 0 1");
    // A variable has no colour yet; the marker is the "color" property.
    EXPECT_EQ(stops("<stop stop-color='var(--a, red)'/>"), "0: 1 0 0 1");
    EXPECT_EQ(stops("<stop stop-color='currentColor'/>"), "0: 0 1 0 1");
    EXPECT_EQ(stops("<stop stop-color='currentColor' color='blue'/>"), "0: 0 0 1 1");
    EXPECT_EQ(stops("<stop stop-color='currentColor' color='currentColor'/>"), "0: 0 0 0 1");
    EXPECT_EQ(stops("<stop stop-color='currentColor' color='var(--a, red)'/>"), "0: 1 0 0 1");
    // Other children are none.
    EXPECT_EQ(stops("<g><stop/></g><Stop/><stop/>"), "0: 0 0 0 1");
}

TEST(ElementParser, ClipPaths)
{
    ExpectCases({
        {"<clipPath id='c'><path d='M1 2'/></clipPath><path clip-path='url(#c)'/>",
         "path  clip=[M(1, 2)] fill=0 0 0 1"},
        // The first child that is a shape counts, with its transform and rule.
        {"<clipPath id='c' clip-rule='evenodd'><g><path/></g><rect width='0'/>"
         "<path d='M1 2' transform='scale(2)'/><path d='M3 4'/></clipPath>"
         "<g clip-path='url(#c)'/>",
         "push clip=[M(1, 2) evenodd Scale(2, 2)] | pop"},
        {"<clipPath id='c'><path clip-rule='evenodd' transform='x'/></clipPath>"
         "<path clip-path='url(#c)'/>",
         "path  clip=[ evenodd] fill=0 0 0 1"},
        // A later one takes the place of an earlier one.
        {"<clipPath id='c'><path d='M1 2'/></clipPath><clipPath id='c'><path d='M3 4'/></clipPath>"
         "<path clip-path='url(#c)'/>",
         "path  clip=[M(3, 4)] fill=0 0 0 1"},
        // Only what stands before is known.
        {"<path clip-path='url(#c)'/><clipPath id='c'><path d='M1 2'/></clipPath>",
         "path  fill=0 0 0 1"},
        {"<clipPath><path d='M1 2'/></clipPath><path clip-path='url(#)'/>", "path  fill=0 0 0 1"},
        {"<clipPath id=''><path d='M1 2'/></clipPath><path clip-path='url(#)'/>",
         "path  clip=[M(1, 2)] fill=0 0 0 1"},
        // Without a shape nothing of the element is drawn.
        {"<clipPath id='c'/><g clip-path='url(#c)'><path/></g><path/>", "path  fill=0 0 0 1"},
        {"<path clip-path='none'/>", "error: invalid string position"},
    });
}

TEST(ElementParser, StyleElements)
{
    ExpectCases({
        {"<style>.a{fill:red;}</style><path class='a'/>", "path  fill=1 0 0 1"},
        {"<style><![CDATA[.a{fill:red;}]]></style><path class='a'/>", "path  fill=1 0 0 1"},
        {"<path class='a'/><style>.a{fill:red;}</style>", "path  fill=0 0 0 1"},
        // All fill one sheet.
        {"<style>.a{fill:red;stroke:lime;}</style><style>.a{fill:blue;}</style><path class='a'/>",
         "path  fill=0 0 1 1 stroke=0 1 0 1 width=1"},
        {"<style/>", ""},
        {"<style>.a{fill;}</style>", "error: value not found"},
        {"<style>.{}</style>", "error: empty CSS selector"},
        {"<path style='fill:red;;'/>", "error: value not found"},
        // Elements that are not known have styles too, as far as errors go.
        {"<title style=';'/>", "error: value not found"},
        {"<stop clip-path='x'/>", "error: invalid string position"},
        {"<a><title style=';'/></a>", ""},
    });
}

TEST(ElementParser, CopiesOfInheritedStopsAreBounded)
{
    // Each of 300 gradients takes over 5,000 stops and adds one.
    std::string content = "<linearGradient id='b'>";
    for (int i = 0; i < 5000; ++i) {
        content += "<stop/>";
    }
    content += "</linearGradient>";
    for (int i = 0; i < 300; ++i) {
        content +=
            "<linearGradient id='g" + std::to_string(i) + "' href='#b'><stop/></linearGradient>";
    }
    TraceListener listener("SVGLoom.Parse", 6);
    const TestDocument test("<svg>" + content +
                            "<path fill='url(#g199)'/><path fill='url(#g200)'/></svg>");
    ASSERT_EQ(listener.messages.size(), 100u);
    EXPECT_EQ(listener.messages[0], "6 too many inherited stops: gradients take over no more");
    const auto& svg = static_cast<const SVGDocumentImpl::Group&>(ChildAt(test.document->Root(), 0));
    const auto paintOf = [&svg](std::size_t i) {
        return static_cast<const SVGDocumentImpl::Graphic&>(ChildAt(svg, i)).fill->paint;
    };
    EXPECT_EQ(std::get<Gradient>(paintOf(0)).stops.size(), 5001u);
    EXPECT_TRUE(std::holds_alternative<Color>(paintOf(1)));
}

/// Counts the paths that it is asked to make of their segments.
class PathCounter : public testing_support::RecordingRenderer {
public:
    std::unique_ptr<Path> CreatePathOf(const PathSegments& segments) override
    {
        ++paths;
        return RecordingRenderer::CreatePathOf(segments);
    }
    int paths = 0;
};

TEST(ElementParser, ShortPathsAreMadeOfTheirSegments)
{
    const auto pathsOf = [](const std::string& data) {
        const auto renderer = std::make_shared<PathCounter>();
        CreateDocument("<svg><path d='" + data + "'/></svg>", renderer);
        EXPECT_EQ(renderer->creations, 1u);
        return renderer->paths;
    };
    EXPECT_EQ(pathsOf("M1 2L3 4"), 1);
    EXPECT_EQ(pathsOf(""), 0);
    std::string data = "M0 0";
    for (int i = 0; i < 20000; ++i) {
        data += "L1 2";
    }
    EXPECT_EQ(pathsOf(data), 0);
}

TEST(ElementParser, Knows)
{
    for (const char* const name :
         {"g", "use", "defs", "linearGradient", "radialGradient", "clipPath", "symbol", "image",
          "style", "path", "rect", "circle", "ellipse", "line", "polygon", "polyline"}) {
        EXPECT_TRUE(ElementParser::Knows(name)) << name;
    }
    for (const char* const name : {"", "svg", "stop", "text", "G", "svg:g", "lineargradient"}) {
        EXPECT_FALSE(ElementParser::Knows(name)) << name;
    }
    EXPECT_TRUE(IsShape("path"));
    EXPECT_FALSE(IsShape("g"));
}

}  // namespace
}  // namespace SVGLoom
