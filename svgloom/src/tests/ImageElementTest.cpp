#include "svgloom/src/ImageElement.h"

#include <gtest/gtest.h>

#include <string>

#include "svgloom/src/tests/DocumentSupport.h"

namespace SVGLoom {
namespace {

using testing_support::ChildAt;
using testing_support::DrawContent;

std::string Draw(const std::string& attributes)
{
    return DrawContent("<image href='data:image/png;base64,QUJD' " + attributes + "/>");
}

TEST(BuildImage, Placement)
{
    struct Case {
        const char* attributes;
        std::string_view want;
    };
    // The image is 100 by 50.
    constexpr Case kCases[] = {
        {"", "clip 0 0 100 50 fill 0 0 100 50"},
        {"x='1' y='2'", "clip 1 2 100 50 fill 1 2 100 50"},
        {"width='200' height='200'", "clip 0 0 200 200 fill 0 50 200 100"},
        {"width='200' height='200' preserveAspectRatio='xMidYMid slice'",
         "clip 0 0 200 200 fill -100 0 400 200"},
        {"width='200' height='200' preserveAspectRatio='none'",
         "clip 0 0 200 200 fill 0 0 200 200"},
        {"width='200' height='200' preserveAspectRatio='none slice'",
         "clip 0 0 200 200 fill 0 0 200 200"},
        // Each alignment, in height and in width.
        {"width='200' height='200' preserveAspectRatio='xMinYMin'",
         "clip 0 0 200 200 fill 0 0 200 100"},
        {"width='200' height='200' preserveAspectRatio='xMidYMin'",
         "clip 0 0 200 200 fill 0 0 200 100"},
        {"width='200' height='200' preserveAspectRatio='xMaxYMin meet'",
         "clip 0 0 200 200 fill 0 0 200 100"},
        {"width='200' height='200' preserveAspectRatio='xMinYMid'",
         "clip 0 0 200 200 fill 0 50 200 100"},
        {"width='200' height='200' preserveAspectRatio='xMaxYMid'",
         "clip 0 0 200 200 fill 0 50 200 100"},
        {"width='200' height='200' preserveAspectRatio='xMinYMax'",
         "clip 0 0 200 200 fill 0 100 200 100"},
        {"width='200' height='200' preserveAspectRatio='xMidYMax'",
         "clip 0 0 200 200 fill 0 100 200 100"},
        {"width='200' height='200' preserveAspectRatio='xMaxYMax'",
         "clip 0 0 200 200 fill 0 100 200 100"},
        {"x='10' width='300' height='50' preserveAspectRatio='xMinYMin'",
         "clip 10 0 300 50 fill 10 0 100 50"},
        {"x='10' width='300' height='50' preserveAspectRatio='xMidYMin'",
         "clip 10 0 300 50 fill 110 0 100 50"},
        {"x='10' width='300' height='50' preserveAspectRatio='xMaxYMin'",
         "clip 10 0 300 50 fill 210 0 100 50"},
        {"x='10' width='300' height='50' preserveAspectRatio='xMinYMax'",
         "clip 10 0 300 50 fill 10 0 100 50"},
        {"x='10' width='300' height='50' preserveAspectRatio='xMidYMax'",
         "clip 10 0 300 50 fill 110 0 100 50"},
        {"x='10' width='300' height='50' preserveAspectRatio='xMaxYMax'",
         "clip 10 0 300 50 fill 210 0 100 50"},
        {"x='10' width='300' height='50' preserveAspectRatio='xMinYMid'",
         "clip 10 0 300 50 fill 10 0 100 50"},
        {"x='10' width='300' height='50' preserveAspectRatio='xMaxYMid'",
         "clip 10 0 300 50 fill 210 0 100 50"},
        // Other words centre; three words count for nothing.
        {"width='200' height='200' preserveAspectRatio='xminymin'",
         "clip 0 0 200 200 fill 0 50 200 100"},
        {"width='200' height='200' preserveAspectRatio='xMidYMid meet extra'",
         "clip 0 0 200 200 fill 0 50 200 100"},
        {"width='200' height='200' preserveAspectRatio='none slice extra'",
         "clip 0 0 200 200 fill 0 50 200 100"},
        {"width='200' height='200' preserveAspectRatio=''", "clip 0 0 200 200 fill 0 50 200 100"},
        {"width='200' height='200' preserveAspectRatio='xMidYMid Slice'",
         "clip 0 0 200 200 fill 0 50 200 100"},
        // Percentages are of the viewBox, 30 by 40.
        {"width='50%' height='50%' preserveAspectRatio='none'", "clip 0 0 15 20 fill 0 0 15 20"},
    };
    for (const Case& row : kCases) {
        SCOPED_TRACE(row.attributes);
        EXPECT_EQ(Draw(row.attributes), "image 100x50 " + std::string(row.want));
    }
}

TEST(BuildImage, WithoutExtentThereIsNone)
{
    EXPECT_EQ(Draw("width='0'"), "");
    EXPECT_EQ(Draw("height='0'"), "");
    EXPECT_EQ(Draw("width='0' preserveAspectRatio='none'"), "");
    auto renderer = std::make_shared<testing_support::RecordingRenderer>();
    renderer->imageWidth = 0;
    const auto document =
        CreateDocument("<svg><image width='5' href='data:image/png;base64,'/></svg>", renderer);
    EXPECT_TRUE(
        static_cast<const SVGDocumentImpl::Group&>(ChildAt(document->Root(), 0)).children.empty());
}

TEST(BuildImage, Formats)
{
    struct Case {
        std::string_view href;
        std::string_view want;  // the call, empty for none
    };
    constexpr Case kCases[] = {
        {"data:image/png;base64,QUJD", "image data QUJD png"},
        {"data:image/jpg;base64,QUJD", "image data QUJD jpeg"},
        {"data:image/jpeg;base64,QUJD", "image data QUJD jpeg"},
        {"data:image/png;base64,", "image data  png"},
        {"data:image/png;base64", ""},
        {"data:image/PNG;base64,QUJD", ""},
        {" data:image/png;base64,QUJD", ""},
        {"data:image/gif;base64,QUJD", ""},
        {"picture.png", ""},
        {"https://example.org/x.png", ""},
        {"", ""},
    };
    for (const Case& row : kCases) {
        SCOPED_TRACE(row.href);
        auto renderer = std::make_shared<testing_support::RecordingRenderer>();
        const auto document = CreateDocument(
            "<svg><image xlink:href='" + std::string(row.href) + "'/></svg>", renderer);
        std::string calls;
        for (const std::string& line : renderer->lines) {
            calls += line;
        }
        EXPECT_EQ(calls, row.want);
    }
    EXPECT_EQ(DrawContent("<image href='data:image/png;base64,refused'/>"), "");
}

TEST(BuildImage, IsAnElementLikeOthers)
{
    EXPECT_EQ(
        DrawContent("<image id='i' opacity='0.5' transform='scale(2)' "
                    "href='data:image/png;base64,QUJD'/><use href='#i'/>"),
        "image 100x50 opacity=0.5 transform=[Scale(2, 2)] clip 0 0 100 50 fill 0 0 100 50 | "
        "push | image 100x50 opacity=0.5 transform=[Scale(2, 2)] clip 0 0 100 50 fill 0 0 100 "
        "50 | pop");
}

}  // namespace
}  // namespace SVGLoom
