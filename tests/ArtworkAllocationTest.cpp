// Lets every single allocation fail: of creating a renderer's objects, of a parse, of a draw. What
// leaves is std::bad_alloc or a stated result, and nothing stays behind.

#include <gtest/gtest.h>

#include <kivui/ScrivelTargets.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string_view>

#include "framework/kivcore/tests/FailingAllocations.h"
#include "svgloom/renderer/ScrivelSVGRenderer.h"
#include "svgloom/src/DocumentCreator.h"

namespace SVGLoom {
namespace {

using kivcore::testing_support::allocationsToGo;
using kivcore::testing_support::hasFailed;
using kivcore::testing_support::liveBlocks;
using kivcore::testing_support::WithEachAllocationFailing;

// Everything that allocates: all elements, classes, gradients, clip paths, references, dashes.
constexpr std::string_view kArtwork =
    "<svg viewBox='1 2 30 40'><style>.a,.b{fill:red;stroke:blue;} .a{opacity:0.5;}</style>"
    "<defs><linearGradient id='a-linear-gradient'><stop stop-color='red'/><stop offset='1'/>"
    "</linearGradient><radialGradient id='r' href='#a-linear-gradient' "
    "gradientTransform='scale(2)'/>"
    "<clipPath id='c'><circle r='5' transform='scale(2)'/></clipPath></defs>"
    "<g class='a name-that-is-too-long-to-fit' transform='translate(1,2)' id='a-group'>"
    "<path d='M0 0L10 0A5 5 0 0 1 20 5T1 1Z' fill='url(#a-linear-gradient)'/>"
    "<rect width='10' height='10' rx='2' fill='url(#r)' clip-path='url(#c)'/></g>"
    "<polygon points='1 2 3 4 5 6' stroke='var(--a-long-variable-name, red)' "
    "stroke-dasharray='1 2 3'/><symbol id='s' viewBox='0 0 30 40'><line x2='5' stroke='red'/>"
    "</symbol><use href='#s' x='3'/><image width='5' height='5' "
    "href='data:image/png;base64,QUJD'/></svg>";

TEST(AllocationFailure, CreateOperationsGiveEmptyPointers)
{
    const auto renderer = std::make_shared<ScrivelSVGRenderer>();
    const std::ptrdiff_t before = liveBlocks;
    EXPECT_EQ(WithEachAllocationFailing(
                  [&renderer] { EXPECT_EQ(renderer->CreatePath() == nullptr, hasFailed); }),
              1u);
    const auto close = static_cast<std::uint8_t>(PathSegments::Kind::kClose);
    EXPECT_EQ(WithEachAllocationFailing([&renderer, &close] {
                  EXPECT_EQ(renderer->CreatePathOf({&close, 1}) == nullptr, hasFailed);
              }),
              1u);
    EXPECT_EQ(WithEachAllocationFailing([&renderer] {
                  EXPECT_EQ(renderer->CreateTransform(1, 2, 3, 4, 5, 6) == nullptr, hasFailed);
              }),
              1u);
    EXPECT_EQ(WithEachAllocationFailing([&renderer] {
                  EXPECT_EQ(renderer->CreateImageData("QUJD", ImageFormat::kPNG) == nullptr,
                            hasFailed);
              }),
              1u);
    EXPECT_EQ(liveBlocks, before);
}

/// Takes lines without allocating.
struct LineHash {
    std::uint64_t value = 14695981039346656037U;

    void Take(std::string_view line)
    {
        for (const char c : line) {
            value = (value ^ static_cast<unsigned char>(c)) * 1099511628211U;
        }
    }
};

TEST(AllocationFailure, AParseLeavesNothingBehind)
{
    LineHash hash;
    const auto target =
        kivui::scrivel::CreateRecordingTarget([&hash](std::string_view line) { hash.Take(line); });
    const auto renderer = std::make_shared<ScrivelSVGRenderer>();
    const auto draw = [&](SVGDocumentImpl& document) {
        hash = {};
        renderer->Bind(*target);
        document.Render({}, 60, 80);
        renderer->Unbind();
        return hash.value;
    };
    const std::uint64_t want = draw(*CreateDocument(kArtwork, renderer));
    const std::ptrdiff_t before = liveBlocks;
    std::size_t exceptions = 0;
    const std::size_t failures = WithEachAllocationFailing([&] {
        try {
            const auto document = CreateDocument(kArtwork, renderer);
            allocationsToGo = 0;
            // An image that was not made leaves its element out, and sorting does without a buffer.
            EXPECT_EQ(draw(*document), want);
        } catch (const std::bad_alloc&) {
            EXPECT_TRUE(hasFailed);
            ++exceptions;
        }
        EXPECT_EQ(liveBlocks, before);
    });
    EXPECT_GT(exceptions, 30u);
    EXPECT_LE(failures - exceptions, 3u);
}

TEST(AllocationFailure, ADrawLeavesNothingBehind)
{
    LineHash hash;
    const auto target =
        kivui::scrivel::CreateRecordingTarget([&hash](std::string_view line) { hash.Take(line); });
    const auto renderer = std::make_shared<ScrivelSVGRenderer>();
    const auto document = CreateDocument(kArtwork, renderer);
    StyleSheet sheet;
    sheet.Add(".a{stroke-dasharray:1 2;stroke:var(--another-long-variable-name, red);}");
    const ColorMap colors;
    const auto draw = [&] {
        hash = {};
        renderer->Bind(*target);
        document->AttachStyleSheet(&sheet);
        try {
            document->Render(colors, 60, 80);
        } catch (const std::bad_alloc&) {
            hash.value = 0;
        }
        renderer->Unbind();
        return hash.value;
    };
    const std::uint64_t want = draw();
    EXPECT_NE(want, 0u);
    const std::ptrdiff_t before = liveBlocks;
    const std::size_t failures = WithEachAllocationFailing([&] {
        EXPECT_EQ(draw() == 0, hasFailed);
        allocationsToGo = 0;
        EXPECT_EQ(draw(), want);
        EXPECT_EQ(liveBlocks, before);
    });
    EXPECT_GT(failures, 10u);
}

}  // namespace
}  // namespace SVGLoom
