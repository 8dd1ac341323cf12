#include <kivui/SVG.h>

#include <gtest/gtest.h>

#include "framework/kivcore/tests/VirtualSlot.h"

namespace kivui::svg {
namespace {

using kivcore::testing_support::VirtualSlot;

TEST(RasterizerParametersInterface, BeginsAtScaleOne)
{
    const auto parameters = RasterizerParametersInterface::Create();
    EXPECT_EQ(parameters->Scale(), 1);
    parameters->SetScale(1.5f);
    EXPECT_EQ(parameters->Scale(), 1.5f);
    EXPECT_EQ(RasterizerParametersInterface::Create()->Scale(), 1) << "each is its own";
}

TEST(RasterizerParametersInterface, SlotsStandInOrder)
{
    EXPECT_EQ(VirtualSlot(&RasterizerParametersInterface::Scale), 1);
    EXPECT_EQ(VirtualSlot(&RasterizerParametersInterface::SetScale), 2);
}

TEST(ISVGDocument, SlotsStandInOrder)
{
    EXPECT_EQ(VirtualSlot(&ISVGDocument::Height), VirtualSlot(&ISVGDocument::Width) + 1);
}

TEST(ISVGHandler, SlotsStandInOrder)
{
    // The first one opens the table: no virtual destructor stands in front of it.
    EXPECT_EQ(VirtualSlot(&ISVGHandler::CreateDocument), -1);
    EXPECT_EQ(VirtualSlot(&ISVGHandler::CreateStyleData), 0);
    EXPECT_EQ(VirtualSlot(&ISVGHandler::Render), 1);
}

}  // namespace
}  // namespace kivui::svg
