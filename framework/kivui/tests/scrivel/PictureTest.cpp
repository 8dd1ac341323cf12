// Whole pictures: the same bit for bit on every platform, and safe with any numbers.

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <kivui/ScrivelTargets.h>

#include "framework/kivui/tests/scrivel/PixelCanvas.h"

namespace kivui::scrivel {
namespace {

// FNV-1a over the pixels.
std::uint64_t HashOf(const std::vector<std::uint32_t>& pixels)
{
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const std::uint32_t pixel : pixels) {
        hash = (hash ^ pixel) * 0x100000001B3;
    }
    return hash;
}

// One of everything, under an uneven transform.
void DrawAll(PixelCanvas& canvas)
{
    constexpr const char* kBlob =
        "M 10 10 C 30 -20 90 40 70 60 C 60 90 20 100 15 70 L 40 50 Z M 30 30 L 60 35 L 45 60 Z";
    SurfaceInterface& surface = canvas.Surface();
    const Color colors[] = {{1, 0.1f, 0, 1}, {0.3f, 0.9f, 0.2f, 0.6f}, {0, 0.2f, 1, 0.9f}};
    const float offsets[] = {0.1f, 0.4f, 0.95f};
    const LinearShaderP linear(
        canvas.Factory().CreateLinearShader({12, 5}, {77, 83}, colors, offsets, 3));
    const RadialShaderP radial(
        canvas.Factory().CreateRadialShader({50, 50}, {90, 60}, colors[0], colors[2]));
    surface.Save();
    surface.Concat({1.1f, 0.23f, -0.31f, 0.77f, 17.3f, -3.9f});
    surface.FillPathLinear(*canvas.Path(kBlob), *linear, true);
    surface.Save();
    canvas.Clip("M 5 50 C 5 0 95 0 95 50 C 95 100 5 100 5 50 Z");
    canvas.Clip("M 50 0 L 100 60 L 0 70 Z");
    surface.FillPathRadial(*canvas.Path("M 0 0 L 100 0 L 100 100 L 0 100 Z"), *radial, false);
    surface.Restore();
    canvas.Fill(kBlob, {0.2f, 0.4f, 0.6f, 0.3f}, false);
    const float dash[] = {7.5f, 3.1f, 0, 4};
    for (int i = 0; i < 9; ++i) {
        surface.Concat({0.97f, 0.11f, -0.13f, 1.02f, 1, 2});
        canvas.Stroke(kBlob, 0.4f + 0.9f * static_cast<float>(i), [&](PenInterface& pen) {
            pen.SetLineJoin(static_cast<LineJoin>(i % 3));
            pen.SetLineCap(static_cast<LineCap>(i / 3));
            pen.SetMiterLimit(1.5f + static_cast<float>(i));
            pen.SetDashPattern(dash, i % 2 == 0 ? 0 : 4);
        });
    }
    surface.Restore();
}

TEST(Picture, IsTheSameOnEveryPlatform)
{
    // Changes with every change of how pixels are computed, and then on all platforms alike.
    PixelCanvas canvas(120, 110);
    DrawAll(canvas);
    EXPECT_EQ(HashOf(canvas.Pixels()), 17401324680574316084u);
}

TEST(Picture, PixelsStayPremultiplied)
{
    PixelCanvas canvas(120, 110);
    DrawAll(canvas);
    for (const std::uint32_t pixel : canvas.Pixels()) {
        const std::uint32_t alpha = pixel >> 24;
        ASSERT_LE(pixel >> 16 & 255, alpha);
        ASSERT_LE(pixel >> 8 & 255, alpha);
        ASSERT_LE(pixel & 255, alpha);
    }
}

// Floats of all magnitudes, and some plain ones.
class Numbers {
public:
    explicit Numbers(std::uint32_t seed) : state_(seed) {}

    std::uint32_t Bits()
    {
        state_ = state_ * 6364136223846793005u + 1442695040888963407u;
        return static_cast<std::uint32_t>(state_ >> 32);
    }
    float Any()
    {
        switch (Bits() % 8) {
            case 0:
                return std::bit_cast<float>(Bits());
            case 1:
                return 0;
            case 2:
                return static_cast<float>(Bits() % 2000) * 1e35f - 1e38f;
            default:
                return static_cast<float>(Bits() % 4000) / 100 - 12;
        }
    }
    float Finite()
    {
        const float value = Any();
        return value - value == 0 ? value : 3;
    }

private:
    std::uint64_t state_;
};

TEST(Picture, AnyNumbersEndInsideTheBuffer)
{
    constexpr int kSize = 16;
    constexpr int kGuard = 64;
    for (std::uint32_t seed = 0; seed < 1500; ++seed) {
        SCOPED_TRACE(seed);
        Numbers numbers(seed);
        std::vector<std::uint32_t> memory(kSize * kSize + 2 * kGuard, 0);
        const auto target = CreatePixelTarget({memory.data() + kGuard, kSize, kSize, kSize});
        FactoryInterface& factory = target->Factory();
        const PathP path(factory.CreatePath());
        for (std::uint32_t i = numbers.Bits() % 12; i > 0; --i) {
            const float n[] = {numbers.Finite(), numbers.Finite(), numbers.Finite(),
                               numbers.Finite(), numbers.Finite(), numbers.Finite()};
            switch (numbers.Bits() % 4) {
                case 0:
                    path->MoveTo(n[0], n[1]);
                    break;
                case 1:
                    path->LineTo(n[0], n[1]);
                    break;
                case 2:
                    path->CurveTo(n[0], n[1], n[2], n[3], n[4], n[5]);
                    break;
                default:
                    path->Close();
                    break;
            }
        }
        SurfaceInterface& surface = target->Surface();
        if (seed % 3 != 0) {
            surface.Concat({numbers.Any(), numbers.Any(), numbers.Any(), numbers.Any(),
                            numbers.Any(), numbers.Any()});
        }
        const Color colors[] = {{numbers.Any(), numbers.Any(), numbers.Any(), numbers.Any()},
                                {1, 1, 1, 1}};
        const float offsets[] = {numbers.Any(), numbers.Any()};
        const LinearShaderP linear(factory.CreateLinearShader(
            {numbers.Any(), numbers.Any()}, {numbers.Any(), numbers.Any()}, colors, offsets, 2));
        const RadialShaderP radial(factory.CreateRadialShader(
            {numbers.Any(), numbers.Any()}, {numbers.Any(), numbers.Any()}, colors[0], colors[1]));
        const PenP pen(factory.CreatePen(colors[1], numbers.Any()));
        pen->SetMiterLimit(numbers.Any());
        pen->SetLineJoin(static_cast<LineJoin>(numbers.Bits() % 3));
        pen->SetLineCap(static_cast<LineCap>(numbers.Bits() % 3));
        const float dash[] = {numbers.Any(), numbers.Any(), numbers.Any()};
        surface.FillPathLinear(*path, *linear, seed % 2 == 0);
        surface.StrokePath(*path, *pen);
        surface.ClipPath(*path, seed % 2 == 1, nullptr);
        surface.FillPathRadial(*path, *radial, true);
        pen->SetDashPattern(dash, seed % 4);
        surface.StrokePath(*path, *pen);
        for (int i = 0; i < kGuard; ++i) {
            ASSERT_EQ(memory[static_cast<std::size_t>(i)], 0u);
            ASSERT_EQ(memory[memory.size() - 1 - static_cast<std::size_t>(i)], 0u);
        }
    }
}

}  // namespace
}  // namespace kivui::scrivel
