#include "svgloom/renderer/ScrivelSVGRenderer.h"

#include <gtest/gtest.h>

#include <kivcore/Trace.h>
#include <kivui/ScrivelTargets.h>

#include <algorithm>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace SVGLoom {
namespace {

using Lines = std::vector<std::string>;

constexpr const char* kSave = R"({"op":"save"})";
constexpr const char* kRestore = R"({"op":"restore"})";
// The triangle that is drawn everywhere.
#define KIV_TRIANGLE R"("path":[["M",0,0],["L",1,0],["L",0,1],["Z"]])"

FillStyle NoFill()
{
    FillStyle fill;
    fill.hasFill = false;
    return fill;
}

Gradient Stops(GradientType type, std::initializer_list<ColorStop> stops)
{
    Gradient gradient;
    gradient.type = type;
    gradient.stops = SharedVector<ColorStop>(std::vector<ColorStop>(stops));
    gradient.x1 = 1;
    gradient.y1 = 2;
    gradient.x2 = 3;
    gradient.y2 = 4;
    gradient.cx = 5;
    gradient.cy = 6;
    gradient.fx = 7;
    gradient.fy = 8;
    gradient.r = 9;
    return gradient;
}

const ColorStop kRed = {0.25f, {1, 0, 0, 1}};
const ColorStop kGreen = {0.5f, {0, 1, 0, 0.5f}};
const ColorStop kBlue = {1, {0, 0, 1, 0.25f}};

class ScrivelSVGRendererTest : public testing::Test {
protected:
    ScrivelSVGRendererTest()
    {
        renderer_->Bind(*target_);
        triangle_->MoveTo(0, 0);
        triangle_->LineTo(1, 0);
        triangle_->LineTo(0, 1);
        triangle_->ClosePath();
    }

    void Draw(const FillStyle& fill, const StrokeStyle& stroke = {},
              const GraphicStyle& graphic = {})
    {
        renderer_->DrawPath(*triangle_, graphic, fill, stroke);
    }

    Lines lines_;
    std::unique_ptr<kivui::scrivel::DrawingTarget> target_ = kivui::scrivel::CreateRecordingTarget(
        [this](std::string_view line) { lines_.emplace_back(line); });
    std::shared_ptr<ScrivelSVGRenderer> renderer_ = std::make_shared<ScrivelSVGRenderer>();
    std::shared_ptr<Path> triangle_ = renderer_->CreatePath();
};

TEST_F(ScrivelSVGRendererTest, NeitherFillNorStrokeCallsNothing)
{
    Draw(NoFill());
    EXPECT_EQ(lines_, Lines());
}

TEST_F(ScrivelSVGRendererTest, FillsThenStrokes)
{
    FillStyle fill;
    fill.fillRule = FillRule::kEvenOdd;
    fill.fillOpacity = 0.5f;
    fill.paint = Color{1, 0, 0, 0.5f};
    StrokeStyle stroke;
    stroke.hasStroke = true;
    GraphicStyle graphic;
    graphic.opacity = 0.5f;
    Draw(fill, stroke, graphic);
    EXPECT_EQ(
        lines_,
        (Lines{kSave, R"({"op":"fill",)" KIV_TRIANGLE R"(,"winding":false,"color":[1,0,0,0.125]})",
               R"({"op":"stroke",)" KIV_TRIANGLE R"(,"color":[0,0,0,0.5],"width":1,)"
               R"("miterLimit":4,"dash":[],"join":"miter","cap":"butt"})",
               kRestore}));
}

struct StrokeCase {
    LineJoin join;
    LineCap cap;
    const char* want;
    std::vector<std::string> traces;
};

const StrokeCase kStrokeCases[] = {
    {LineJoin::kMiter, LineCap::kButt, R"("join":"miter","cap":"butt"})", {}},
    {LineJoin::kRound,
     LineCap::kSquare,
     R"("join":"round","cap":"square"})",
     {"DrawPathInScrivel Stroke - kTEPRoundJoin", "DrawPathInScrivel Stroke - kTEPSquareCap"}},
    {LineJoin::kBevel,
     LineCap::kRound,
     R"("join":"bevel","cap":"round"})",
     {"DrawPathInScrivel Stroke - kTEPBevelJoin", "DrawPathInScrivel Stroke - kTEPRoundCap"}},
};

const Lines kPathTraces = {"BuildPath MoveTo: 0, 0", "BuildPath LineTo: 1, 0",
                           "BuildPath LineTo: 0, 1", "BuildPath ClosePath"};

TEST_F(ScrivelSVGRendererTest, Strokes)
{
    Lines traces;
    const int sink =
        kivcore::debug::AddTraceSink([&](int, const char* channel, std::string_view text) {
            if (std::string_view(channel) == "SVGLoom.Draw") {
                traces.emplace_back(text);
            }
        });
    for (const bool traced : {false, true, false}) {  // switched between draws
        kivcore::debug::SetTraceLevel("SVGLoom.Draw", traced ? 6 : 5);
        for (const StrokeCase& row : kStrokeCases) {
            SCOPED_TRACE(row.want);
            StrokeStyle stroke;
            stroke.hasStroke = true;
            stroke.strokeOpacity = 0.5f;
            stroke.lineWidth = 3;
            stroke.lineJoin = row.join;
            stroke.lineCap = row.cap;
            stroke.miterLimit = 7;
            stroke.dashArray = SharedVector<float>({1, 2});
            stroke.dashOffset = 5;  // nobody reads it
            lines_.clear();
            traces.clear();
            Draw(NoFill(), stroke);
            EXPECT_EQ(lines_,
                      (Lines{kSave,
                             R"({"op":"stroke",)" KIV_TRIANGLE
                             R"(,"color":[0,0,0,0.5],"width":3,"miterLimit":7,"dash":[1,2],)" +
                                 std::string(row.want),
                             kRestore}));
            Lines want;
            if (traced) {
                want = kPathTraces;
                want.insert(want.end(), row.traces.begin(), row.traces.end());
            }
            EXPECT_EQ(traces, want);
        }
    }
    kivcore::debug::SetTraceLevel("SVGLoom.Draw", -1);
    kivcore::debug::RemoveTraceSink(sink);
}

TEST_F(ScrivelSVGRendererTest, CurvesAreTracedWithAllCoordinates)
{
    Lines traces;
    const int sink = kivcore::debug::AddTraceSink(
        [&](int, const char*, std::string_view text) { traces.emplace_back(text); });
    kivcore::debug::SetTraceLevel("SVGLoom.Draw", 6);
    const auto path = renderer_->CreatePath();
    path->CurveTo(1, 2.5f, 3, 4, 5, 1234567);
    renderer_->DrawPath(*path, {}, {}, {});
    kivcore::debug::SetTraceLevel("SVGLoom.Draw", -1);
    kivcore::debug::RemoveTraceSink(sink);
    EXPECT_EQ(traces, (Lines{"BuildPath CurveTo: 1, 2.5, 3, 4, 5, 1.23457e+06"}));
}

TEST_F(ScrivelSVGRendererTest, LinearGradientsMapTheirPoints)
{
    FillStyle fill;
    Gradient gradient = Stops(GradientType::kLinear, {kRed, kGreen, kBlue});
    fill.paint = gradient;
    Draw(fill);
    gradient.transform = renderer_->CreateTransform(2, 0, 0, 3, 100, 200);
    fill.paint = gradient;
    lines_.erase(lines_.begin());
    lines_.pop_back();
    Draw(fill);
    const std::string colors =
        R"("colors":[[1,0,0,1],[0,1,0,0.5],[0,0,1,0.25]],"offsets":[0.25,0.5,1]})";
    EXPECT_EQ(lines_, (Lines{R"({"op":"fillLinear",)" KIV_TRIANGLE
                             R"(,"winding":true,"from":[1,2],"to":[3,4],)" +
                                 colors,
                             kSave,
                             R"({"op":"fillLinear",)" KIV_TRIANGLE
                             R"(,"winding":true,"from":[102,206],"to":[106,212],)" +
                                 colors,
                             kRestore}));
}

TEST_F(ScrivelSVGRendererTest, RadialGradientsUseFirstAndLastStop)
{
    FillStyle fill;
    Gradient gradient = Stops(GradientType::kRadial, {kRed, kGreen, kBlue});
    gradient.transform = renderer_->CreateTransform(2, 0, 0, 3, 100, 200);
    fill.paint = gradient;
    Draw(fill);
    EXPECT_EQ(lines_, (Lines{kSave,
                             R"({"op":"fillRadial",)" KIV_TRIANGLE
                             R"(,"winding":true,"center":[110,218],"edge":[128,218],)"
                             R"("inner":[1,0,0,1],"outer":[0,0,1,0.25]})",
                             kRestore}));
}

TEST_F(ScrivelSVGRendererTest, GradientsTakeNoOpacity)
{
    FillStyle fill;
    fill.fillOpacity = 0.5f;
    fill.paint = Stops(GradientType::kRadial, {kRed, kRed});
    GraphicStyle graphic;
    graphic.opacity = 0.5f;
    Draw(fill, {}, graphic);
    ASSERT_EQ(lines_.size(), 3u);
    EXPECT_NE(lines_[1].find(R"("inner":[1,0,0,1],"outer":[1,0,0,1])"), std::string::npos);
}

TEST_F(ScrivelSVGRendererTest, GradientsOfFewerThanTwoStopsPaintNothing)
{
    for (const GradientType type : {GradientType::kLinear, GradientType::kRadial}) {
        for (const Gradient& gradient : {Stops(type, {}), Stops(type, {kRed})}) {
            FillStyle fill;
            fill.paint = gradient;
            lines_.clear();
            Draw(fill);
            EXPECT_EQ(lines_, (Lines{kSave, kRestore}));
        }
    }
}

TEST_F(ScrivelSVGRendererTest, GradientStrokesTakeTheFirstStop)
{
    StrokeStyle stroke;
    stroke.hasStroke = true;
    stroke.strokeOpacity = 0.5f;
    stroke.paint = Stops(GradientType::kLinear, {kGreen, kRed});
    Draw(NoFill(), stroke);
    ASSERT_EQ(lines_.size(), 3u);
    EXPECT_NE(lines_[1].find(R"("color":[0,1,0,0.25])"), std::string::npos);
    stroke.paint = Stops(GradientType::kLinear, {});
    lines_.clear();
    Draw(NoFill(), stroke);
    EXPECT_EQ(lines_, (Lines{kSave, kRestore}));
}

TEST_F(ScrivelSVGRendererTest, StatesNest)
{
    GraphicStyle half;
    half.opacity = 0.5f;
    renderer_->PushState(half);
    renderer_->PushState(half);
    Draw(FillStyle());
    renderer_->PopState();
    Draw(FillStyle());
    renderer_->PopState();
    renderer_->PopState();  // one too many
    const std::string fill = R"({"op":"fill",)" KIV_TRIANGLE R"(,"winding":true,"color":[0,0,0,)";
    EXPECT_EQ(lines_, (Lines{kSave, kSave, kSave, fill + "0.25]}", kRestore, kRestore, kSave,
                             fill + "0.5]}", kRestore, kRestore}));
}

TEST_F(ScrivelSVGRendererTest, PushStateSavesThenTransformsThenClips)
{
    auto clip = std::make_shared<ClippingPath>();
    clip->hasClipContent = true;
    clip->clipRule = FillRule::kEvenOdd;
    clip->path = triangle_;
    GraphicStyle style;
    style.transform = renderer_->CreateTransform(1, 2, 3, 4, 5, 6);
    style.clippingPath = clip;
    renderer_->PushState(style);
    clip->clipRule = FillRule::kNonZero;
    clip->transform = renderer_->CreateTransform(6, 5, 4, 3, 2, 1);
    renderer_->PushState(style);
    clip->hasClipContent = false;
    clip->transform.reset();
    style.transform.reset();
    renderer_->PushState(style);
    renderer_->Unbind();
    EXPECT_EQ(
        lines_,
        (Lines{kSave, R"({"op":"transform","m":[1,2,3,4,5,6]})",
               R"({"op":"clip",)" KIV_TRIANGLE R"(,"rule":"evenodd","transform":null})", kSave,
               R"({"op":"transform","m":[1,2,3,4,5,6]})",
               R"({"op":"clip",)" KIV_TRIANGLE R"(,"rule":"nonzero","transform":[6,5,4,3,2,1]})",
               kSave, R"({"op":"clip","path":[],"rule":"nonzero","transform":null})", kRestore,
               kRestore, kRestore}));
}

TEST_F(ScrivelSVGRendererTest, ImagesAreNotDrawn)
{
    const auto image = renderer_->CreateImageData("abc", ImageFormat::kPNG);
    EXPECT_EQ(image->Width(), 0.0f);
    renderer_->DrawImage(*image, {}, {0, 0, 1, 1}, {0, 0, 1, 1});
    EXPECT_EQ(lines_, Lines());
}

TEST_F(ScrivelSVGRendererTest, WithoutATargetNothingIsDrawn)
{
    renderer_->Unbind();
    renderer_->PushState({});
    Draw(FillStyle());
    renderer_->PopState();
    EXPECT_EQ(lines_, Lines());
}

TEST_F(ScrivelSVGRendererTest, ARendererThatIsNotShared)
{
    ScrivelSVGRenderer alone;
    alone.Bind(*target_);
    EXPECT_THROW(alone.DrawPath(*triangle_, {}, {}, {}), std::bad_weak_ptr);
    EXPECT_EQ(lines_, Lines());
    // Nothing to draw, nothing to throw.
    EXPECT_NO_THROW(alone.DrawPath(*triangle_, {}, NoFill(), {}));
}

// A factory that can run out of memory, around a real one.
class FailingTarget : public kivui::scrivel::DrawingTarget,
                      public kivui::scrivel::FactoryInterface {
public:
    explicit FailingTarget(DrawingTarget& inner) : inner_(inner) {}

    FactoryInterface& Factory() noexcept override { return *this; }
    kivui::scrivel::SurfaceInterface& Surface() noexcept override { return inner_.Surface(); }

    kivui::scrivel::PathInterface* CreatePath() override
    {
        return Fails() ? nullptr : inner_.Factory().CreatePath();
    }
    kivui::scrivel::BrushInterface* CreateSolidBrush(const kivui::scrivel::Color& color) override
    {
        return Fails() ? nullptr : inner_.Factory().CreateSolidBrush(color);
    }
    kivui::scrivel::LinearShaderInterface* CreateLinearShader(const kivui::scrivel::Point& start,
                                                              const kivui::scrivel::Point& end,
                                                              const kivui::scrivel::Color* colors,
                                                              const float* offsets,
                                                              std::size_t count) override
    {
        return Fails() ? nullptr
                       : inner_.Factory().CreateLinearShader(start, end, colors, offsets, count);
    }
    kivui::scrivel::RadialShaderInterface* CreateRadialShader(
        const kivui::scrivel::Point& center, const kivui::scrivel::Point& edge,
        const kivui::scrivel::Color& inner, const kivui::scrivel::Color& outer) override
    {
        return Fails() ? nullptr : inner_.Factory().CreateRadialShader(center, edge, inner, outer);
    }
    kivui::scrivel::PenInterface* CreatePen(const kivui::scrivel::Color& color,
                                            float width) override
    {
        return Fails() ? nullptr : inner_.Factory().CreatePen(color, width);
    }

    int failAt = 0;  // the how many-th operation from now fails; 0: none

private:
    bool Fails() { return failAt > 0 && --failAt == 0; }

    DrawingTarget& inner_;
};

TEST_F(ScrivelSVGRendererTest, ADrawAfterOneThatThrew)
{
    FailingTarget target(*target_);
    renderer_->Bind(target);
    GraphicStyle graphic;
    graphic.opacity = 0.5f;
    graphic.clippingPath = std::make_shared<ClippingPath>();
    StrokeStyle stroke;
    stroke.hasStroke = true;
    const Paint paints[] = {Color(), Stops(GradientType::kLinear, {kRed, kBlue}),
                            Stops(GradientType::kRadial, {kRed, kBlue})};
    for (const Paint& paint : paints) {
        FillStyle fill;
        fill.paint = paint;
        lines_.clear();
        target.failAt = 0;
        Draw(fill, stroke, graphic);
        const Lines want = lines_;
        // The path, the clip's path, the brush or shader, the pen.
        for (int failAt = 1; failAt <= 4; ++failAt) {
            SCOPED_TRACE(failAt);
            target.failAt = failAt;
            lines_.clear();
            EXPECT_THROW(Draw(fill, stroke, graphic), std::bad_alloc);
            EXPECT_EQ(std::count(lines_.begin(), lines_.end(), kSave),
                      std::count(lines_.begin(), lines_.end(), kRestore));
            lines_.clear();
            Draw(fill, stroke, graphic);
            EXPECT_EQ(lines_, want);
        }
    }
    renderer_->Unbind();
}

}  // namespace
}  // namespace SVGLoom
