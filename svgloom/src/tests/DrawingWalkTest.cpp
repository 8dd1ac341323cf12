#include "svgloom/src/DrawingWalk.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "svgloom/src/tests/DocumentSupport.h"
#include "svgloom/src/tests/TraceListener.h"

namespace SVGLoom {
namespace {

using testing_support::DrawContent;
using testing_support::TestDocument;
using testing_support::TraceListener;

std::size_t CountPaths(const TestDocument& test)
{
    return static_cast<std::size_t>(
        std::count_if(test.renderer->lines.begin(), test.renderer->lines.end(),
                      [](const std::string& line) { return line.starts_with("path"); }));
}

TEST(DrawingWalk, HiddenElementsAreDrawn)
{
    EXPECT_EQ(DrawContent("<path display='none'/><path visibility='hidden'/>"),
              "path  fill=0 0 0 1 | path  fill=0 0 0 1");
}

TEST(DrawingWalk, ColorsAreResolved)
{
    const ColorMap colors{{"a", {1, 0, 0, 0.5f}}};
    const auto draw = [&colors](std::string_view content) { return DrawContent(content, colors); };
    EXPECT_EQ(draw("<path fill='var(--a)'/>"), "path  fill=1 0 0 0.5");
    EXPECT_EQ(draw("<path fill='var(--b)'/>"), "path  fill=0 0 0 1");
    EXPECT_EQ(draw("<path fill='var(--b, lime)'/>"), "path  fill=0 1 0 1");
    EXPECT_EQ(draw("<path color='blue' fill='currentColor'/>"), "path  fill=0 0 1 1");
    EXPECT_EQ(draw("<g fill='currentColor' color='red'><path color='blue'/></g>"),
              "push | path  fill=0 0 1 1 | pop");
    EXPECT_EQ(draw("<path color='var(--a)' fill='none' stroke='currentColor'/>"),
              "path  stroke=1 0 0 0.5 width=1");
    EXPECT_EQ(draw("<path color='currentColor' fill='currentColor'/>"), "path  fill=0 0 0 1");
}

// The group shows twice: itself, and once through the reference inside.
TEST(DrawingWalk, AReferenceToItsAncestorEndsAtItself)
{
    EXPECT_EQ(DrawContent("<g id='a'><path/><use href='#a'/></g>"),
              "push | path  fill=0 0 0 1 | push | push | path  fill=0 0 0 1 | pop | pop | pop");
    // Over several of them.
    EXPECT_EQ(DrawContent("<g id='a'><use href='#b'/></g><g id='b'><use href='#a'/></g>"),
              "push | push | push | push | push | pop | pop | pop | pop | pop | "
              "push | push | push | push | push | pop | pop | pop | pop | pop");
    EXPECT_EQ(DrawContent("<use id='u' href='#u'/>"), "push | pop");
}

TEST(DrawingWalk, AReferenceDrawsAgainWhenItIsMetAgain)
{
    EXPECT_EQ(
        DrawContent("<g id='g'><use href='#p'/></g><use href='#g'/><defs><path id='p'/></defs>"),
        "push | push | path  fill=0 0 0 1 | pop | pop | "
        "push | push | push | path  fill=0 0 0 1 | pop | pop | pop");
}

TEST(DrawingWalk, AnEmptyClipPathHidesTheElement)
{
    EXPECT_EQ(DrawContent("<clipPath id='c'/><g clip-path='url(#c)'><path/></g>"
                          "<use clip-path='url(#c)' href='#p'/><path id='p'/>"),
              "path  fill=0 0 0 1");
}

TEST(DrawingWalk, LevelsAreBounded)
{
    // A chain of references: each leads to a group with the next, two levels a link.
    std::string content;
    for (int i = 0; i < 600; ++i) {
        content += "<g id='g" + std::to_string(i) + "'><path/><use href='#g" +
                   std::to_string(i + 1) + "'/></g>";
    }
    TestDocument test("<svg viewBox='0 0 1 1'>" + content + "</svg>");
    TraceListener listener("SVGLoom.Draw", 6);
    test.Draw("g0");
    // g0 is level 1, its reference 2, g1 3 ...: the path of g511 would be level 1024, that of g512
    // 1026.
    EXPECT_EQ(CountPaths(test), 512u);
    EXPECT_EQ(listener.messages,
              std::vector<std::string>{"6 too many levels: what lies deeper is left out"});
    EXPECT_EQ(test.renderer->depth, 0);
    // Once a draw.
    test.Draw("g0");
    EXPECT_EQ(listener.messages.size(), 2u);
    test.Draw("g599");
    EXPECT_EQ(listener.messages.size(), 2u);
    EXPECT_EQ(CountPaths(test), 1u);
}

TEST(DrawingWalk, MultiplyingReferencesEnd)
{
    // Ten levels of ten references each: ten thousand million paths.
    std::string content = "<path id='l0'/>";
    for (int level = 1; level <= 10; ++level) {
        content += "<g id='l" + std::to_string(level) + "'>";
        for (int i = 0; i < 10; ++i) {
            content += "<use href='#l" + std::to_string(level - 1) + "'/>";
        }
        content += "</g>";
    }
    TestDocument test("<svg viewBox='0 0 1 1'><defs>" + content +
                      "</defs><use href='#l10'/><path/></svg>");
    TraceListener listener("SVGLoom.Draw", 6);
    test.Draw();
    EXPECT_EQ(listener.messages, std::vector<std::string>{
                                     "6 too many elements below references: the rest is left out"});
    EXPECT_EQ(test.renderer->depth, 0);
    EXPECT_LT(CountPaths(test), 1000000u);
    // What is no child of a reference is drawn all the same.
    EXPECT_EQ(test.renderer->lines[test.renderer->lines.size() - 4], "path  fill=0 0 0 1");
}

TEST(DrawingWalk, ElementsOfTheTreeItselfAreAllVisited)
{
    std::string content;
    for (int i = 0; i < 1000001; ++i) {
        content += "<g/>";
    }
    TestDocument test("<svg viewBox='0 0 1 1'>" + content + "</svg>");
    test.Draw();
    EXPECT_EQ(test.renderer->lines.size(), 2u * 1000001u + 6u);
}

TEST(DrawingWalk, AnAttachedSheetChangesOneDraw)
{
    TestDocument test(
        "<svg viewBox='0 0 1 1'><g class='g'><path class='b a'/><path/></g>"
        "<use class='g' href='#p'/><path id='p' class='c'/></svg>");
    const std::string plain = test.Draw();
    StyleSheet sheet;
    sheet.Add(
        ".b{fill:blue;}.a{fill:red;stroke:lime;}.g{opacity:0.5;fill:red;}.c{fill:var(--x,lime);}");
    test.document->AttachStyleSheet(&sheet);
    EXPECT_EQ(test.Draw(),
              "push | push | push opacity=0.5 | path  fill=0 0 1 1 stroke=0 1 0 1 width=1 | "
              "path  fill=0 0 0 1 | pop | push opacity=0.5 | path  fill=0 1 0 1 | pop | "
              "path  fill=0 1 0 1 | pop | pop");
    EXPECT_EQ(test.Draw(), plain);
}

TEST(DrawingWalk, AnAttachedSheetKnowsNoGradientsAndClipPaths)
{
    TestDocument test(
        "<svg viewBox='0 0 1 1'><linearGradient id='g'><stop stop-color='red'/></linearGradient>"
        "<clipPath id='c'><path/></clipPath><path class='a'/></svg>");
    StyleSheet sheet;
    sheet.Add(".a{fill:url(#g) lime;clip-path:url(#c);}");
    test.document->AttachStyleSheet(&sheet);
    EXPECT_EQ(test.Draw(), "push | push | path  fill=0 1 0 1 | pop | pop");
}

TEST(DrawingWalk, ErrorsOfAnAttachedSheetLeaveTheDraw)
{
    TestDocument test(
        "<svg viewBox='0 0 1 1'><g id='g'><use href='#p'/><path class='a' id='p'/></g></svg>");
    const std::string plain = test.Draw();
    StyleSheet sheet;
    sheet.Add(".a{clip-path:none;}");
    test.document->AttachStyleSheet(&sheet);
    EXPECT_THROW(test.Draw(), std::out_of_range);
    EXPECT_EQ(test.renderer->depth, 0);
    // Nothing is left behind: no sheet, no reference in the guard.
    EXPECT_EQ(test.Draw(), plain);
}

TEST(DrawingWalk, StatesArePoppedWhereverTheRendererThrows)
{
    TestDocument test("<svg viewBox='0 0 1 1'><g><use href='#p'/><g><path id='p'/></g></g></svg>");
    const std::string plain = test.Draw();
    const std::size_t count = test.renderer->lines.size();
    for (std::size_t line = 1; line <= count; ++line) {
        if (test.renderer->lines.size() >= line && test.renderer->lines[line - 1] == "pop") {
            continue;
        }
        test.renderer->throwingLine = line;
        EXPECT_THROW(test.Draw(), int) << line;
        // The push that failed pushed nothing.
        const bool failedPush = test.renderer->depth == 1;
        EXPECT_TRUE(test.renderer->depth == 0 || failedPush);
        test.renderer->depth = 0;
        test.renderer->throwingLine = 0;
        EXPECT_EQ(test.Draw(), plain);
    }
}

}  // namespace
}  // namespace SVGLoom
