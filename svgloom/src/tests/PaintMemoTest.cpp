#include "svgloom/src/PaintMemo.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string_view>

#include "svgloom/src/tests/DocumentSupport.h"

namespace SVGLoom {
namespace {

using testing_support::ChildAt;
using testing_support::DrawContent;
using testing_support::TestDocument;

using FillMemo = PaintMemo<DocumentFillStyle>;

TEST(PaintMemo, TakesPlainColoursOnly)
{
    for (const std::string_view text : {"#", "#fff", "#a0b1c2", "#ffffffg"}) {
        EXPECT_TRUE(FillMemo::Takes(text)) << text;
    }
    // What depends on gradients, variables or the element, or is too long for a key.
    for (const std::string_view text :
         {"", "red", "url(#a)", " #fff", "currentColor", "#12345678"}) {
        EXPECT_FALSE(FillMemo::Takes(text)) << text;
    }
}

TEST(PaintMemo, FindsTheSameTextOverTheSameStyle)
{
    FillMemo memo;
    const SharedFillStyle plain;
    SharedFillStyle edited;
    edited.Edit().fillOpacity = 0.5f;
    EXPECT_EQ(memo.Find(plain, "#fff"), nullptr);
    memo.Remember(plain, "#fff", edited);
    ASSERT_NE(memo.Find(plain, "#fff"), nullptr);
    EXPECT_TRUE(memo.Find(plain, "#fff")->IsSharedWith(edited));
    EXPECT_EQ(memo.Find(plain, "#ffe"), nullptr);
    EXPECT_EQ(memo.Find(plain, "#ffffff"), nullptr);
    EXPECT_EQ(memo.Find(edited, "#fff"), nullptr);
    // Another one in its place.
    memo.Remember(edited, "#fff", plain);
    EXPECT_EQ(memo.Find(plain, "#fff"), nullptr);
}

const SVGDocumentImpl::Group& OnlyGroup(const TestDocument& document)
{
    return static_cast<const SVGDocumentImpl::Group&>(ChildAt(document.document->Root(), 0));
}

const SharedFillStyle& FillOf(const SVGDocumentImpl::Group& group, std::size_t child)
{
    return static_cast<const SVGDocumentImpl::Graphic&>(ChildAt(group, child)).fill;
}

TEST(PaintMemo, SiblingsShareEqualStyles)
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
TEST(PaintMemo, UnreadableColours)
{
    EXPECT_EQ(DrawContent("<path fill='#12' d='M1 2'/><path fill='#12' d='M1 2'/>"),
              DrawContent("<path d='M1 2'/><path d='M1 2'/>"));
    EXPECT_EQ(DrawContent("<g fill='red'><path fill='#12' d='M1 2'/></g>"),
              DrawContent("<g fill='red'><path d='M1 2'/></g>"));
}

}  // namespace
}  // namespace SVGLoom
