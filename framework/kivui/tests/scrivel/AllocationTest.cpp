// Lets every single allocation of a drawing operation fail.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <vector>

#include <kivui/ScrivelTargets.h>

#include "framework/kivcore/tests/FailingAllocations.h"
#include "framework/kivui/src/scrivel/Objects.h"

namespace kivui::scrivel {
namespace {

using kivcore::testing_support::allocationsToGo;
using kivcore::testing_support::hasFailed;
using kivcore::testing_support::liveBlocks;
using kivcore::testing_support::WithEachAllocationFailing;

// A surface, and one of everything to draw on it.
class Scene {
public:
    explicit Scene(std::vector<std::uint32_t>& pixels, int size)
        : pixels_(pixels), target_(CreatePixelTarget({pixels.data(), size, size, size}))
    {
        const auto side = static_cast<float>(size);
        path->MoveTo(side * 0.1f, side * 0.2f);
        path->CurveTo(side, 0, 0, side * 0.6f, side * 0.9f, side * 0.8f);
        path->LineTo(side * -0.2f, side * 0.9f);
        path->Close();
        all->MoveTo(0, 0);
        all->LineTo(side, 0);
        all->LineTo(side, side);
        all->LineTo(0, side);
        const float dash[] = {side / 9, side / 30};
        pen->SetDashPattern(dash, 2);
        pen->SetLineCap(LineCap::kTEPRoundCap);
        pen->SetLineJoin(LineJoin::kTEPRoundJoin);
    }

    SurfaceInterface& Surface() { return target_->Surface(); }
    void Clear() { std::fill(pixels_.begin(), pixels_.end(), 0); }
    std::vector<std::uint32_t>& Pixels() { return pixels_; }

private:
    std::vector<std::uint32_t>& pixels_;
    std::unique_ptr<DrawingTarget> target_;

public:
    const Color colors[2] = {{1, 0, 0, 1}, {0, 0, 1, 0.5f}};
    const float offsets[2] = {0, 1};
    const PathP path{target_->Factory().CreatePath()};
    const PathP all{target_->Factory().CreatePath()};
    const BrushP brush{target_->Factory().CreateSolidBrush({0, 1, 0, 0.5f})};
    const PenP pen{target_->Factory().CreatePen({0, 0, 0, 1}, 7)};
    const LinearShaderP linear{
        target_->Factory().CreateLinearShader({0, 0}, {20, 30}, colors, offsets, 2)};
    const RadialShaderP radial{
        target_->Factory().CreateRadialShader({9, 9}, {20, 30}, colors[0], colors[1])};
};

using Operation = std::function<void(Scene&)>;

const Operation kOperations[] = {
    [](Scene& s) { s.Surface().FillPath(*s.path, *s.brush, true); },
    [](Scene& s) { s.Surface().FillPathLinear(*s.path, *s.linear, false); },
    [](Scene& s) { s.Surface().FillPathRadial(*s.path, *s.radial, true); },
    [](Scene& s) { s.Surface().StrokePath(*s.path, *s.pen); },
    [](Scene& s) { s.Surface().ClipPath(*s.path, true, nullptr); },
    [](Scene& s) { s.Surface().Save(); },
};

// Sizes whose table of changes holds all of the surface, and not.
constexpr int kSizes[] = {24, 700};

TEST(ScrivelAllocation, AFailedOperationChangesNothing)
{
    for (const int size : kSizes) {
        std::vector<std::uint32_t> pixels(static_cast<std::size_t>(size) *
                                          static_cast<std::size_t>(size));
        for (const Operation& operation : kOperations) {
            SCOPED_TRACE(testing::Message()
                         << "size " << size << " operation " << &operation - kOperations);
            const auto draw = [&](Scene& scene) {
                scene.Clear();
                operation(scene);
                // Shows the clip as well.
                scene.Surface().FillPath(*scene.all, *scene.brush, true);
            };
            std::vector<std::uint32_t> want;
            {
                Scene scene(pixels, size);
                draw(scene);
                want = pixels;
            }
            const std::ptrdiff_t before = liveBlocks;
            const std::size_t failures = WithEachAllocationFailing([&] {
                const std::size_t failAt = allocationsToGo;
                allocationsToGo = 0;
                Scene scene(pixels, size);
                scene.Clear();
                allocationsToGo = failAt;
                bool thrown = false;
                try {
                    operation(scene);
                } catch (const std::bad_alloc&) {
                    thrown = true;
                }
                allocationsToGo = 0;
                EXPECT_EQ(thrown, hasFailed);
                if (thrown) {
                    EXPECT_TRUE(std::all_of(pixels.begin(), pixels.end(),
                                            [](std::uint32_t pixel) { return pixel == 0; }));
                    // What it left in the surface does not show.
                    draw(scene);
                    EXPECT_TRUE(pixels == want);
                }
            });
            EXPECT_GE(failures, 1u);
            EXPECT_EQ(liveBlocks, before);
        }
    }
}

TEST(ScrivelAllocation, ASurfaceNeedsNoMemoryTheSecondTime)
{
    std::vector<std::uint32_t> pixels(24 * 24);
    Scene scene(pixels, 24);
    scene.Surface().FillPath(*scene.path, *scene.brush, true);
    EXPECT_EQ(WithEachAllocationFailing(
                  [&] { scene.Surface().FillPath(*scene.path, *scene.brush, true); }),
              0u);
}

TEST(ScrivelAllocation, CreateOperationsGiveNull)
{
    ObjectFactory factory;
    const Color color;
    const float offset = 0;
    const std::function<SharedInterface*()> creates[] = {
        [&] { return factory.CreatePath(); },
        [&] { return factory.CreateSolidBrush(color); },
        [&] { return factory.CreatePen(color, 1); },
        [&] { return factory.CreateLinearShader({}, {}, &color, &offset, 1); },
        [&] { return factory.CreateRadialShader({}, {}, color, color); },
    };
    const std::ptrdiff_t before = liveBlocks;
    for (const auto& create : creates) {
        EXPECT_GE(WithEachAllocationFailing([&] {
                      const SharedPImpl<SharedInterface> object(create());
                      EXPECT_EQ(!object, hasFailed);
                  }),
                  1u);
    }
    EXPECT_EQ(liveBlocks, before);
    std::uint32_t pixel = 0;
    EXPECT_EQ(WithEachAllocationFailing([&] {
                  EXPECT_EQ(CreatePixelTarget({&pixel, 1, 1, 1}) == nullptr, hasFailed);
              }),
              1u);
}

TEST(ScrivelAllocation, SegmentsAreAddedOrNot)
{
    const SegmentKind kinds[] = {SegmentKind::kMove, SegmentKind::kCurve, SegmentKind::kClose};
    const Point points[] = {{1, 2}, {3, 4}, {5, 6}, {7, 8}};
    const std::size_t failures = WithEachAllocationFailing([&] {
        PathObject path;
        try {
            path.AddSegments(kinds, 3, points, 4);
            EXPECT_FALSE(hasFailed);
            EXPECT_EQ(path.Points().size(), 4u);
        } catch (const std::bad_alloc&) {
            EXPECT_TRUE(path.Points().empty());
            EXPECT_TRUE(path.Kinds().empty());
        }
    });
    EXPECT_EQ(failures, 2u);
}

}  // namespace
}  // namespace kivui::scrivel
