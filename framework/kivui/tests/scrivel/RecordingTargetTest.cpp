#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include <kivui/ScrivelTargets.h>

#include "framework/kivcore/tests/VirtualSlot.h"

namespace kivui::scrivel {
namespace {

using kivcore::testing_support::VirtualSlot;  // 0 is the destructor

TEST(Scrivel, SlotOrder)
{
    EXPECT_EQ(VirtualSlot(&SharedInterface::AddReference), 1);
    EXPECT_EQ(VirtualSlot(&SharedInterface::Release), 2);
    EXPECT_EQ(VirtualSlot(&PathInterface::MoveTo), 3);
    EXPECT_EQ(VirtualSlot(&PathInterface::LineTo), 4);
    EXPECT_EQ(VirtualSlot(&PathInterface::CurveTo), 5);
    EXPECT_EQ(VirtualSlot(&PathInterface::Close), 6);
    EXPECT_EQ(VirtualSlot(&PathInterface::AddSegments), 7);
    EXPECT_EQ(VirtualSlot(&PenInterface::SetMiterLimit), 3);
    EXPECT_EQ(VirtualSlot(&PenInterface::SetDashPattern), 4);
    EXPECT_EQ(VirtualSlot(&PenInterface::SetLineJoin), 5);
    EXPECT_EQ(VirtualSlot(&PenInterface::SetLineCap), 6);
    EXPECT_EQ(VirtualSlot(&FactoryInterface::CreatePath), 1);
    EXPECT_EQ(VirtualSlot(&FactoryInterface::CreateSolidBrush), 2);
    EXPECT_EQ(VirtualSlot(&FactoryInterface::CreateLinearShader), 3);
    EXPECT_EQ(VirtualSlot(&FactoryInterface::CreateRadialShader), 4);
    EXPECT_EQ(VirtualSlot(&FactoryInterface::CreatePen), 5);
    EXPECT_EQ(VirtualSlot(&SurfaceInterface::FillPath), 1);
    EXPECT_EQ(VirtualSlot(&SurfaceInterface::FillPathLinear), 2);
    EXPECT_EQ(VirtualSlot(&SurfaceInterface::FillPathRadial), 3);
    EXPECT_EQ(VirtualSlot(&SurfaceInterface::StrokePath), 4);
    EXPECT_EQ(VirtualSlot(&SurfaceInterface::ClipPath), 5);
    EXPECT_EQ(VirtualSlot(&SurfaceInterface::Concat), 6);
    EXPECT_EQ(VirtualSlot(&SurfaceInterface::Save), 7);
    EXPECT_EQ(VirtualSlot(&SurfaceInterface::Restore), 8);
}

class RecordingTargetTest : public testing::Test {
protected:
    std::vector<std::string> lines_;
    std::unique_ptr<DrawingTarget> target_ =
        CreateRecordingTarget([this](std::string_view line) { lines_.emplace_back(line); });
    FactoryInterface& factory_ = target_->Factory();
    SurfaceInterface& surface_ = target_->Surface();
};

TEST_F(RecordingTargetTest, EveryOperation)
{
    const PathP path(factory_.CreatePath());
    path->MoveTo(1, 2);
    path->LineTo(3.5f, -4);
    path->CurveTo(1, 2, 3, 4, 5, 6);
    path->Close();
    const PathP empty(factory_.CreatePath());
    const Color colors[] = {{1, 0, 0, 1}, {0, 1, 0, 0.5f}};
    const float offsets[] = {0, 0.1f};
    const BrushP brush(factory_.CreateSolidBrush(colors[0]));
    const LinearShaderP linear(factory_.CreateLinearShader({1, 2}, {3, 4}, colors, offsets, 2));
    const RadialShaderP radial(factory_.CreateRadialShader({1, 2}, {3, 4}, colors[0], colors[1]));
    const PenP pen(factory_.CreatePen(colors[1], 2));
    const Matrix matrix = {1, 2, 3, 4, 5, 6};

    surface_.Save();
    surface_.Concat(matrix);
    surface_.ClipPath(*path, true, &matrix);
    surface_.ClipPath(*empty, false, nullptr);
    surface_.FillPath(*path, *brush, true);
    surface_.FillPathLinear(*empty, *linear, false);
    surface_.FillPathRadial(*empty, *radial, true);
    surface_.StrokePath(*empty, *pen);
    pen->SetMiterLimit(7);
    pen->SetDashPattern(offsets, 2);
    pen->SetLineJoin(LineJoin::kTEPBevelJoin);
    pen->SetLineCap(LineCap::kTEPSquareCap);
    surface_.StrokePath(*empty, *pen);
    surface_.Restore();

    const std::vector<std::string> want = {
        R"({"op":"save"})",
        R"({"op":"transform","m":[1,2,3,4,5,6]})",
        R"({"op":"clip","path":[["M",1,2],["L",3.5,-4],["C",1,2,3,4,5,6],["Z"]],"rule":"nonzero",)"
        R"("transform":[1,2,3,4,5,6]})",
        R"({"op":"clip","path":[],"rule":"evenodd","transform":null})",
        R"({"op":"fill","path":[["M",1,2],["L",3.5,-4],["C",1,2,3,4,5,6],["Z"]],"winding":true,)"
        R"("color":[1,0,0,1]})",
        R"({"op":"fillLinear","path":[],"winding":false,"from":[1,2],"to":[3,4],)"
        R"("colors":[[1,0,0,1],[0,1,0,0.5]],"offsets":[0,0.100000001]})",
        R"({"op":"fillRadial","path":[],"winding":true,"center":[1,2],"edge":[3,4],)"
        R"("inner":[1,0,0,1],"outer":[0,1,0,0.5]})",
        R"({"op":"stroke","path":[],"color":[0,1,0,0.5],"width":2,"miterLimit":4,"dash":[],)"
        R"("join":"miter","cap":"butt"})",
        R"({"op":"stroke","path":[],"color":[0,1,0,0.5],"width":2,"miterLimit":7,"dash":[0,0.100000001],)"
        R"("join":"bevel","cap":"square"})",
        R"({"op":"restore"})",
    };
    EXPECT_EQ(lines_, want);
}

TEST_F(RecordingTargetTest, NumbersThatAreNotFiniteAreWords)
{
    surface_.Concat({std::numeric_limits<float>::quiet_NaN(), 0, 0, 1e30f, -0.0f,
                     -std::numeric_limits<float>::infinity()});
    EXPECT_EQ(lines_, (std::vector<std::string>{
                          R"({"op":"transform","m":["nan",0,0,1.00000002e+30,-0,"-inf"]})"}));
}

}  // namespace
}  // namespace kivui::scrivel
