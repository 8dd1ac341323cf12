#include "svgloom/src/StyleMemo.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "svgloom/src/tests/DocumentSupport.h"

namespace SVGLoom {
namespace {

using testing_support::ChildAt;
using testing_support::DrawContent;
using testing_support::TestDocument;

using FillMemo = StyleMemo<DocumentFillStyle>;

TEST(StyleMemo, TakesShortPlainTextsOnly)
{
    for (const std::string_view text :
         {"#", "#fff", "#a0b1c2", "#ffffffg", "red", " #fff", "1", "2.", "1 2", "none", "\xFF"}) {
        EXPECT_TRUE(FillMemo::Takes(text)) << text;
    }
    // What depends on gradients, variables or the viewBox, or is too long for a key.
    for (const std::string_view text : {"", "url(#a)", "(", "5%", "%", "1 2 3 4%", "a(b",
                                        "12345678(", "currentColor", "123456789"}) {
        EXPECT_FALSE(FillMemo::Takes(text)) << text;
    }
}

TEST(StyleMemo, FindsTheSameTextOverTheSameStyle)
{
    FillMemo memo;
    int reads = 0;
    // The fill that `text` makes of `style`.
    const auto apply = [&memo, &reads](AttributeName property, std::string_view text,
                                       SharedFillStyle style) {
        memo.Apply(property, text, style, [&] {
            ++reads;
            style.Edit().fillOpacity = 0.5f;
        });
        return style;
    };
    constexpr AttributeName kFill = AttributeName::kFill;
    const SharedFillStyle plain;
    const SharedFillStyle first = apply(kFill, "#fff", plain);
    EXPECT_EQ(reads, 1);
    EXPECT_TRUE(apply(kFill, "#fff", plain).IsSharedWith(first));
    EXPECT_EQ(reads, 1);
    EXPECT_FALSE(apply(kFill, "#ffe", plain).IsSharedWith(first));
    apply(kFill, "#ffffff", plain);
    apply(AttributeName::kColor, "#fff", plain);
    apply(kFill, "#fff", first);
    EXPECT_EQ(reads, 5);
}

TEST(StyleMemo, TextsOfAllLengthsAndManyMoreThanItHolds)
{
    FillMemo memo;
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 500; ++i) {
            std::string text = std::to_string(i * i * 97);
            text.resize(std::min<std::size_t>(text.size(), 1 + static_cast<std::size_t>(i) % 8));
            const auto want = static_cast<float>(std::stoi(text));
            SharedFillStyle style;
            memo.Apply(AttributeName::kFillOpacity, text, style,
                       [&style, want] { style.Edit().fillOpacity = want; });
            EXPECT_EQ(style->fillOpacity, want) << text;
        }
    }
}

const SVGDocumentImpl::Group& OnlyGroup(const TestDocument& document)
{
    return static_cast<const SVGDocumentImpl::Group&>(ChildAt(document.document->Root(), 0));
}

const SharedFillStyle& FillOf(const SVGDocumentImpl::Group& group, std::size_t child)
{
    return static_cast<const SVGDocumentImpl::Graphic&>(ChildAt(group, child)).fill;
}

TEST(StyleMemo, SiblingsShareEqualStyles)
{
    const TestDocument document(
        "<svg><path fill='#123'/><path fill='#456'/><path fill='#123'/>"
        "<path fill='#123' fill-opacity='0.5'/><path fill='#123'/></svg>");
    const SVGDocumentImpl::Group& group = OnlyGroup(document);
    EXPECT_TRUE(FillOf(group, 0).IsSharedWith(FillOf(group, 2)));
    EXPECT_FALSE(FillOf(group, 0).IsSharedWith(FillOf(group, 1)));
    // One that goes on to change its style does not change the others'.
    EXPECT_EQ(FillOf(group, 3)->fillOpacity, 0.5f);
    EXPECT_TRUE(FillOf(group, 0).IsSharedWith(FillOf(group, 4)));
    EXPECT_EQ(FillOf(group, 4)->fillOpacity, 1.0f);
}

// A text that is no colour is remembered as changing nothing, whatever it stands on.
TEST(StyleMemo, UnreadableColours)
{
    EXPECT_EQ(DrawContent("<path fill='#12' d='M1 2'/><path fill='#12' d='M1 2'/>"),
              DrawContent("<path d='M1 2'/><path d='M1 2'/>"));
    EXPECT_EQ(DrawContent("<g fill='red'><path fill='#12' d='M1 2'/></g>"),
              DrawContent("<g fill='red'><path d='M1 2'/></g>"));
}

TEST(StyleMemo, OtherPropertiesAreSharedToo)
{
    const TestDocument document(
        "<svg><path stroke='red' stroke-width='2'/><path stroke='red' stroke-width='2'/>"
        "<path stroke='red' stroke-width='3'/><path stroke='red'/></svg>");
    const SVGDocumentImpl::Group& group = OnlyGroup(document);
    const auto strokeOf = [&group](std::size_t child) -> const SharedStrokeStyle& {
        return static_cast<const SVGDocumentImpl::Graphic&>(ChildAt(group, child)).stroke;
    };
    EXPECT_TRUE(strokeOf(0).IsSharedWith(strokeOf(1)));
    EXPECT_EQ(strokeOf(0)->lineWidth, 2);
    EXPECT_EQ(strokeOf(2)->lineWidth, 3);
    EXPECT_EQ(strokeOf(3)->lineWidth, 1);
}

// A percentage is read anew: a symbol may have changed the viewBox.
TEST(StyleMemo, PercentagesAreNotRemembered)
{
    EXPECT_EQ(DrawContent("<path stroke='red' stroke-width='1%' d='M1 2'/>"
                          "<symbol viewBox='0 0 300 400'/>"
                          "<path stroke='red' stroke-width='1%' d='M1 2'/>"),
              "path M(1, 2) fill=0 0 0 1 stroke=1 0 0 1 width=0.5 | "
              "path M(1, 2) fill=0 0 0 1 stroke=1 0 0 1 width=5");
}

}  // namespace
}  // namespace SVGLoom
