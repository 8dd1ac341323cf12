// The places of the operations in their tables, counted in entries from the first; a destructor
// takes two (GCC's and Clang's layout on x86-64).

#include "svgloom/renderer/SVGRenderer.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "framework/kivcore/tests/VirtualSlot.h"

namespace SVGLoom {
namespace {

using kivcore::testing_support::VirtualSlot;  // 0 is the destructor

static_assert(std::has_virtual_destructor_v<SVGRenderer> && std::is_abstract_v<SVGRenderer>);
static_assert(std::has_virtual_destructor_v<Path> && std::is_abstract_v<Path>);
static_assert(std::has_virtual_destructor_v<Transform> && std::is_abstract_v<Transform>);
static_assert(std::has_virtual_destructor_v<ImageData> && std::is_abstract_v<ImageData>);

TEST(SVGRenderer, SlotOrder)
{
    EXPECT_EQ(VirtualSlot(&SVGRenderer::CreateImageData), 1);
    EXPECT_EQ(VirtualSlot(&SVGRenderer::CreatePath), 2);
    EXPECT_EQ(VirtualSlot(&SVGRenderer::CreateTransform), 3);
    EXPECT_EQ(VirtualSlot(&SVGRenderer::PushState), 4);
    EXPECT_EQ(VirtualSlot(&SVGRenderer::PopState), 5);
    EXPECT_EQ(VirtualSlot(&SVGRenderer::DrawPath), 6);
    EXPECT_EQ(VirtualSlot(&SVGRenderer::DrawImage), 7);
    EXPECT_EQ(VirtualSlot(&SVGRenderer::CreatePathOf), 8);
}

TEST(Path, SlotOrder)
{
    EXPECT_EQ(VirtualSlot(&Path::AddRect), 1);
    EXPECT_EQ(VirtualSlot(&Path::AddRoundedRect), 2);
    EXPECT_EQ(VirtualSlot(&Path::AddEllipse), 3);
    EXPECT_EQ(VirtualSlot(&Path::MoveTo), 4);
    EXPECT_EQ(VirtualSlot(&Path::LineTo), 5);
    EXPECT_EQ(VirtualSlot(&Path::CurveTo), 6);
    EXPECT_EQ(VirtualSlot(&Path::QuadTo), 7);
    EXPECT_EQ(VirtualSlot(&Path::ClosePath), 8);
    EXPECT_EQ(VirtualSlot(&Path::AddSegments), 9);
}

TEST(Transform, SlotOrder)
{
    EXPECT_EQ(VirtualSlot(&Transform::SetMatrix), 1);
    EXPECT_EQ(VirtualSlot(&Transform::Rotate), 2);
    EXPECT_EQ(VirtualSlot(&Transform::Translate), 3);
    EXPECT_EQ(VirtualSlot(&Transform::Scale), 4);
    EXPECT_EQ(VirtualSlot(&Transform::Concat), 5);
}

TEST(ImageData, SlotOrder)
{
    EXPECT_EQ(VirtualSlot(&ImageData::Width), 1);
    EXPECT_EQ(VirtualSlot(&ImageData::Height), 2);
}

}  // namespace
}  // namespace SVGLoom
