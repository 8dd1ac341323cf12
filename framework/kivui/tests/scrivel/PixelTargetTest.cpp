#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include <kivui/ScrivelTargets.h>

#include "framework/kivui/tests/scrivel/PixelCanvas.h"

namespace kivui::scrivel {
namespace {

constexpr const char* kEverywhere = "M -99 -99 L 99 -99 L 99 99 L -99 99 Z";

/// Calls visit(column, row, x, y) for the middles of all pixels of a square canvas.
template <class Visit>
void ForEachPixelInUserSpace(const Matrix& m, int size, Visit visit)
{
    const auto value = [](float number) { return static_cast<double>(number); };
    const double determinant = value(m.a) * value(m.d) - value(m.b) * value(m.c);
    for (int row = 0; row < size; ++row) {
        for (int column = 0; column < size; ++column) {
            const double x = column + 0.5 - value(m.e);
            const double y = row + 0.5 - value(m.f);
            visit(column, row, (x * value(m.d) - y * value(m.c)) / determinant,
                  (y * value(m.a) - x * value(m.b)) / determinant);
        }
    }
}

constexpr Matrix kTransforms[] = {
    {1, 0, 0, 1, 0.3f, 0.7f},
    {1.5f, 0, 0, 0.5f, 0, 1},
    {0.7f, 0.4f, -0.3f, 1.1f, 2, 0},
    {-1, 0, 0, 1, 11, 0},
};

struct FillCase {
    const char* path;
    bool nonZero;
    const char* want;  // 4 by 4
};

constexpr FillCase kFillCases[] = {
    {"M 1 1 L 3 1 L 3 3 L 1 3 Z", true, "....\n.##.\n.##.\n....\n"},
    // Open parts are closed.
    {"M 1 1 L 3 1 L 3 3 L 1 3", true, "....\n.##.\n.##.\n....\n"},
    // Exact areas: halves of pixels, and a quarter.
    {"M 0.5 0.5 L 2 0.5 L 2 2 L 0.5 2 Z", true, "25..\n5#..\n....\n....\n"},
    {"M 0 0 L 4 0 L 0 4 Z", true, "###5\n##5.\n#5..\n5...\n"},
    // A part within a part: nothing by the even-odd rule, filled by the nonzero one.
    {"M 0 0 L 4 0 L 4 4 L 0 4 Z M 1 1 L 3 1 L 3 3 L 1 3 Z", true, "####\n####\n####\n####\n"},
    {"M 0 0 L 4 0 L 4 4 L 0 4 Z M 1 1 L 3 1 L 3 3 L 1 3 Z", false, "####\n#..#\n#..#\n####\n"},
    // The other way round it is a hole by both rules.
    {"M 0 0 L 4 0 L 4 4 L 0 4 Z M 1 1 L 1 3 L 3 3 L 3 1 Z", true, "####\n#..#\n#..#\n####\n"},
    // What lies outside on any side is cut off, and counts to its right.
    {"M -9 -9 L 2 -9 L 2 9 L -9 9 Z", true, "##..\n##..\n##..\n##..\n"},
    {"M 2 -9 L 99 -9 L 99 2 L 2 2 Z", true, "..##\n..##\n....\n....\n"},
    {"M -big -big L big -big L big big L -big big Z", true, "####\n####\n####\n####\n"},
    {"M -8 0 L 4 0 L 4 4 Z", true, "####\n####\n8###\n.158\n"},
    // Without a current point a line begins where it leads to.
    {"L 1 1 L 3 1 L 3 3 L 1 3", true, "....\n.##.\n.##.\n....\n"},
    // Behind a close the part's start is current.
    {"M 1 1 L 2 1 L 2 2 L 1 2 Z L 3 3 L 1 3", true, "....\n.#..\n.#5.\n....\n"},
    {"", true, "....\n....\n....\n....\n"},
    {"Z", true, "....\n....\n....\n....\n"},
    {"M 1 1 L 3 3", true, "....\n....\n....\n....\n"},
    // Nothing of a path with a number that is not finite.
    {"M 0 0 L 4 0 L 4 4 Z M nan 0 L 1 1", true, "....\n....\n....\n....\n"},
    {"M 0 0 L inf 0 L 4 4 Z", true, "....\n....\n....\n....\n"},
};

TEST(PixelTarget, FillPath)
{
    for (const FillCase& row : kFillCases) {
        SCOPED_TRACE(row.path);
        PixelCanvas canvas(4, 4);
        canvas.Fill(row.path, {0, 0, 0, 1}, row.nonZero);
        EXPECT_EQ(canvas.Picture(), row.want);
    }
}

TEST(PixelTarget, CurvesCoverWhatTheyEnclose)
{
    // A circle of four curves, radius 40.
    PixelCanvas canvas(100, 100);
    canvas.Fill(
        "M 90 50 C 90 27.9 72.1 10 50 10 C 27.9 10 10 27.9 10 50 C 10 72.1 27.9 90 50 90 "
        "C 72.1 90 90 72.1 90 50 Z");
    EXPECT_NEAR(canvas.Area(), 3.14159 * 40 * 40, 8);
    EXPECT_EQ(canvas.AlphaAt(50, 50), 255);
    EXPECT_EQ(canvas.AlphaAt(14, 14), 0);
}

TEST(PixelTarget, ColorsArePremultipliedAndGoOver)
{
    PixelCanvas canvas(1, 1);
    canvas.Fill("M 0 0 L 1 0 L 1 1 L 0 1 Z", {1, 0.5f, 0, 0.5f});
    EXPECT_EQ(canvas.At(0, 0), 0x80804000u);
    canvas.Fill("M 0 0 L 1 0 L 1 1 L 0 1 Z", {0, 0, 1, 0.5f});
    EXPECT_EQ(canvas.At(0, 0), 0xC0402080u);
    // Out of range and not a number: clamped.
    canvas.Fill("M 0 0 L 1 0 L 1 1 L 0 1 Z", {7, std::numeric_limits<float>::quiet_NaN(), -1, 9});
    EXPECT_EQ(canvas.At(0, 0), 0xFFFF0000u);
}

TEST(PixelTarget, WideSurface)
{
    // Wider than the longest line that AGG draws in one go.
    PixelCanvas canvas(32767, 2);
    canvas.Fill("M 0 0 L 32767 2 L 0 2 Z");
    EXPECT_NEAR(canvas.Area(), 32767, 2 * 32767 / 256.0);  // each pixel to a 256th
    canvas.Stroke("M 0 1 L 32767 1", 2);
    EXPECT_EQ(canvas.Area(), 2 * 32767);
}

TEST(PixelTarget, RowsFollowTheStride)
{
    std::vector<std::uint32_t> pixels(6, 0x11111111);
    const auto target = CreatePixelTarget({pixels.data(), 2, 2, 3});
    const PathP path(target->Factory().CreatePath());
    path->LineTo(0, 0);
    path->LineTo(9, 0);
    path->LineTo(9, 9);
    path->LineTo(0, 9);
    const BrushP brush(target->Factory().CreateSolidBrush({1, 1, 1, 1}));
    target->Surface().FillPath(*path, *brush, true);
    EXPECT_EQ(pixels, (std::vector<std::uint32_t>{0xFFFFFFFF, 0xFFFFFFFF, 0x11111111, 0xFFFFFFFF,
                                                  0xFFFFFFFF, 0x11111111}));
}

TEST(PixelTarget, BadBuffers)
{
    std::uint32_t pixel = 0;
    EXPECT_EQ(CreatePixelTarget({nullptr, 1, 1, 1}), nullptr);
    EXPECT_EQ(CreatePixelTarget({&pixel, 0, 1, 1}), nullptr);
    EXPECT_EQ(CreatePixelTarget({&pixel, 1, -1, 1}), nullptr);
    EXPECT_EQ(CreatePixelTarget({&pixel, 1, 1, 0}), nullptr);
    EXPECT_EQ(CreatePixelTarget({&pixel, 1, kMaxPixels + 1, 1}), nullptr);
    EXPECT_NE(CreatePixelTarget({&pixel, 1, 1, 1}), nullptr);
}

TEST(PixelTarget, ConcatActsFirst)
{
    PixelCanvas canvas(4, 4);
    canvas.Surface().Concat({2, 0, 0, 2, 0, 0});
    canvas.Surface().Concat({1, 0, 0, 1, 1, 0});
    canvas.Fill("M 0 0 L 1 0 L 1 1 L 0 1 Z");
    EXPECT_EQ(canvas.Picture(), "..##\n..##\n....\n....\n");
}

TEST(PixelTarget, TransformsThatAreNotFiniteDrawNothing)
{
    constexpr float kHuge = std::numeric_limits<float>::max();
    for (const float entry :
         {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(), kHuge}) {
        PixelCanvas canvas(4, 4);
        for (int i = 0; i < 12; ++i) {  // products beyond all doubles
            canvas.Surface().Concat({entry, 0, 0, entry, 0, 0});
        }
        canvas.Fill("M -1 -1 L 9 -1 L 9 9 L -1 9 Z");
        canvas.Stroke("M 0 0 L 9 9", 5);
        EXPECT_TRUE(canvas.IsEmpty());
    }
}

TEST(PixelTarget, SaveAndRestore)
{
    PixelCanvas canvas(4, 1);
    canvas.Surface().Save();
    canvas.Surface().Concat({1, 0, 0, 1, 2, 0});
    canvas.Clip("M 0 0 L 1 0 L 1 1 L 0 1 Z");
    canvas.Fill("M -9 0 L 9 0 L 9 1 L -9 1 Z");
    EXPECT_EQ(canvas.Picture(), "..#.\n");
    canvas.Surface().Restore();
    canvas.Surface().Restore();  // one too many
    canvas.Fill("M 0 0 L 1 0 L 1 1 L 0 1 Z");
    EXPECT_EQ(canvas.Picture(), "#.#.\n");
}

struct ClipCase {
    const char* first;
    const char* second;  // null: one clip only
    bool nonZero;
    const char* want;  // 4 by 4, all filled
};

constexpr ClipCase kClipCases[] = {
    {"M 1 1 L 3 1 L 3 3 L 1 3 Z", nullptr, true, "....\n.##.\n.##.\n....\n"},
    // Antialiased, alone and multiplied.
    {"M 0 0 L 4 0 L 0 4 Z", nullptr, true, "###5\n##5.\n#5..\n5...\n"},
    {"M 0 0 L 4 0 L 0 4 Z", "M 0 0 L 4 0 L 0 4 Z", true, "###2\n##2.\n#2..\n2...\n"},
    {"M 0 0 L 4 0 L 0 4 Z", "M 1 0 L 4 0 L 4 2 L 1 2 Z", true, ".##5\n.#5.\n....\n....\n"},
    {"M 0 0 L 4 0 L 4 4 L 0 4 Z M 1 1 L 3 1 L 3 3 L 1 3 Z", nullptr, false,
     "####\n#..#\n#..#\n####\n"},
    // Nothing is left: no area, apart, outside, not finite.
    {"", nullptr, true, "....\n....\n....\n....\n"},
    {"M 0 0 L 1 0 L 1 4 L 0 4 Z", "M 2 0 L 3 0 L 3 4 L 2 4 Z", true, "....\n....\n....\n....\n"},
    {"M 8 8 L 9 8 L 9 9 Z", nullptr, true, "....\n....\n....\n....\n"},
    {"M 0 0 L nan 0 L 4 4 Z", nullptr, true, "....\n....\n....\n....\n"},
};

TEST(PixelTarget, ClipPath)
{
    for (const ClipCase& row : kClipCases) {
        SCOPED_TRACE(row.first);
        PixelCanvas canvas(4, 4);
        canvas.Clip(row.first, row.nonZero);
        if (row.second != nullptr) {
            canvas.Clip(row.second, row.nonZero);
        }
        canvas.Fill("M -1 -1 L 9 -1 L 9 9 L -1 9 Z");
        EXPECT_EQ(canvas.Picture(), row.want);
    }
}

TEST(PixelTarget, ClipTransformActsBeforeTheCurrentOne)
{
    PixelCanvas canvas(4, 1);
    canvas.Surface().Concat({2, 0, 0, 2, 0, 0});
    const Matrix transform = {1, 0, 0, 1, 1, 0};
    canvas.Surface().ClipPath(*canvas.Path("M 0 0 L 1 0 L 1 1 L 0 1 Z"), true, &transform);
    canvas.Fill("M 0 0 L 9 0 L 9 9 L 0 9 Z");
    EXPECT_EQ(canvas.Picture(), "..##\n");
}

TEST(PixelTarget, LinearShader)
{
    PixelCanvas canvas(8, 1);
    const Color colors[] = {{1, 0, 0, 1}, {0, 1, 0, 1}, {0, 0, 1, 1}};
    const float offsets[] = {0.25f, 0.25f, 0.75f};
    const LinearShaderP shader(
        canvas.Factory().CreateLinearShader({0, 0}, {8, 0}, colors, offsets, 3));
    canvas.Surface().FillPathLinear(*canvas.Path("M 0 0 L 8 0 L 8 1 L 0 1 Z"), *shader, true);
    // Before the first stop its colour, a hard step at the shared offset, then all stops.
    EXPECT_EQ(canvas.At(0, 0), 0xFFFF0000u);
    EXPECT_EQ(canvas.At(1, 0), 0xFFFF0000u);
    EXPECT_NEAR(static_cast<double>(canvas.At(2, 0) >> 8 & 255), 255 * 7 / 8.0, 1);
    EXPECT_NEAR(static_cast<double>(canvas.At(5, 0) & 255), 255 * 7 / 8.0, 1);
    EXPECT_EQ(canvas.At(6, 0), 0xFF0000FFu);
    EXPECT_EQ(canvas.At(7, 0), 0xFF0000FFu);
}

TEST(PixelTarget, LinearShaderUnderASkew)
{
    // x' = x + y: the colours' lines lean as the shape does.
    PixelCanvas canvas(8, 2);
    canvas.Surface().Concat({1, 0, 1, 1, 0, 0});
    const Color colors[] = {{0, 0, 0, 1}, {1, 1, 1, 1}};
    const float offsets[] = {0.5f, 0.5f};
    const LinearShaderP shader(
        canvas.Factory().CreateLinearShader({0, 0}, {4.5f, 0}, colors, offsets, 2));
    canvas.Surface().FillPathLinear(*canvas.Path("M -9 0 L 9 0 L 9 2 L -9 2 Z"), *shader, true);
    // The step is at x = 2.25 + y; pixel middles of the rows have y = 0.5 and 1.5.
    EXPECT_EQ(canvas.At(2, 0), 0xFF000000u);
    EXPECT_EQ(canvas.At(3, 0), 0xFFFFFFFFu);
    EXPECT_EQ(canvas.At(3, 1), 0xFF000000u);
    EXPECT_EQ(canvas.At(4, 1), 0xFFFFFFFFu);
}

TEST(PixelTarget, RadialShader)
{
    PixelCanvas canvas(9, 3);
    canvas.Surface().Concat({1, 0, 0, 0.5f, 0, 0});  // an ellipse of half the height
    const RadialShaderP shader(
        canvas.Factory().CreateRadialShader({4.5f, 3}, {8.5f, 3}, {0, 0, 0, 1}, {1, 1, 1, 1}));
    canvas.Surface().FillPathRadial(*canvas.Path("M 0 0 L 9 0 L 9 6 L 0 6 Z"), *shader, true);
    EXPECT_EQ(canvas.At(4, 1), 0xFF000000u);
    EXPECT_EQ(canvas.At(0, 1), 0xFFFFFFFFu);
    EXPECT_EQ(canvas.At(8, 1), 0xFFFFFFFFu);
    EXPECT_NEAR(static_cast<double>(canvas.At(6, 1) & 255), 127.5, 1);
    EXPECT_NEAR(static_cast<double>(canvas.At(4, 0) & 255), 127.5, 1);
}

TEST(PixelTarget, ShadersWithoutExtent)
{
    PixelCanvas canvas(1, 1);
    const Color colors[] = {{1, 0, 0, 1}, {0, 1, 0, 1}};
    const float offsets[] = {0, 1};
    const PathP path = canvas.Path("M 0 0 L 1 0 L 1 1 L 0 1 Z");
    const LinearShaderP line(
        canvas.Factory().CreateLinearShader({3, 3}, {3, 3}, colors, offsets, 2));
    canvas.Surface().FillPathLinear(*path, *line, true);
    EXPECT_EQ(canvas.At(0, 0), 0xFF00FF00u);
    const RadialShaderP circle(
        canvas.Factory().CreateRadialShader({3, 3}, {3, 3}, colors[1], colors[0]));
    canvas.Surface().FillPathRadial(*path, *circle, true);
    EXPECT_EQ(canvas.At(0, 0), 0xFFFF0000u);
}

TEST(PixelTarget, ShadersThatAreNotFiniteDrawNothing)
{
    PixelCanvas canvas(1, 1);
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    const Color color;
    const float offset = 0;
    const PathP path = canvas.Path("M 0 0 L 1 0 L 1 1 L 0 1 Z");
    const LinearShaderP line(
        canvas.Factory().CreateLinearShader({0, kNaN}, {1, 0}, &color, &offset, 1));
    const LinearShaderP empty(
        canvas.Factory().CreateLinearShader({0, 0}, {1, 0}, nullptr, nullptr, 0));
    const RadialShaderP circle(
        canvas.Factory().CreateRadialShader({0, 0}, {kNaN, 0}, color, color));
    canvas.Surface().FillPathLinear(*path, *line, true);
    canvas.Surface().FillPathLinear(*path, *empty, true);
    canvas.Surface().FillPathRadial(*path, *circle, true);
    EXPECT_TRUE(canvas.IsEmpty());
}

// What a channel of an opaque ramp from 0 to 1 is at `t`.
double ByteAt(double t)
{
    return 255 * std::min(std::max(t, 0.0), 1.0);
}

struct ShaderCase {
    Matrix matrix;
    Point start;
    Point end;
};

constexpr ShaderCase kShaderCases[] = {
    {{1, 0, 0, 1, 0, 0}, {0, 0}, {20, 0}},      {{1, 0, 0, 1, 0, 0}, {3, 17}, {15, 2}},
    {{2, 0, 0, 0.5f, 1, 2}, {1, 3}, {8, 20}},   {{0.8f, 0.6f, -0.6f, 0.8f, 9, -1}, {2, 2}, {14, 9}},
    {{-1, 0, 0.5f, 1, 15, 0}, {0, 0}, {9, 12}},
};

TEST(PixelTarget, LinearShadersAreWhatTheyAreComputedToBe)
{
    const Color colors[] = {{0, 0, 0, 1}, {1, 1, 1, 1}};
    const float offsets[] = {0, 1};
    for (const ShaderCase& row : kShaderCases) {
        PixelCanvas canvas(20, 20);
        canvas.Surface().Concat(row.matrix);
        const LinearShaderP shader(
            canvas.Factory().CreateLinearShader(row.start, row.end, colors, offsets, 2));
        canvas.Surface().FillPathLinear(*canvas.Path(kEverywhere), *shader, true);
        ForEachPixelInUserSpace(row.matrix, 20, [&](int px, int py, double x, double y) {
            const double dx = static_cast<double>(row.end.x - row.start.x);
            const double dy = static_cast<double>(row.end.y - row.start.y);
            const double t = ((x - static_cast<double>(row.start.x)) * dx +
                              (y - static_cast<double>(row.start.y)) * dy) /
                             (dx * dx + dy * dy);
            ASSERT_NEAR(static_cast<double>(canvas.At(px, py) & 255), ByteAt(t), 1);
            ASSERT_EQ(canvas.AlphaAt(px, py), 255);
        });
    }
}

TEST(PixelTarget, RadialShadersAreWhatTheyAreComputedToBe)
{
    for (const ShaderCase& row : kShaderCases) {
        PixelCanvas canvas(20, 20);
        canvas.Surface().Concat(row.matrix);
        const RadialShaderP shader(
            canvas.Factory().CreateRadialShader(row.start, row.end, {0, 0, 0, 1}, {1, 1, 1, 1}));
        canvas.Surface().FillPathRadial(*canvas.Path(kEverywhere), *shader, true);
        ForEachPixelInUserSpace(row.matrix, 20, [&](int px, int py, double x, double y) {
            const auto distance = [&](double toX, double toY) {
                return std::hypot(toX - static_cast<double>(row.start.x),
                                  toY - static_cast<double>(row.start.y));
            };
            const double radius =
                distance(static_cast<double>(row.end.x), static_cast<double>(row.end.y));
            ASSERT_NEAR(static_cast<double>(canvas.At(px, py) & 255),
                        ByteAt(distance(x, y) / radius), 1);
        });
    }
}

TEST(PixelTarget, ShadersGoThroughCoverageAndClip)
{
    PixelCanvas canvas(4, 1);
    canvas.Clip("M 0 0 L 4 0 L 4 0.5 L 0 0.5 Z");
    const RadialShaderP shader(
        canvas.Factory().CreateRadialShader({0, 0}, {1, 0}, {1, 0, 0, 1}, {1, 0, 0, 1}));
    canvas.Surface().FillPathRadial(*canvas.Path("M 0.5 0 L 3 0 L 3 1 L 0.5 1 Z"), *shader, true);
    EXPECT_EQ(canvas.Picture(), "255.\n");
    EXPECT_EQ(canvas.At(0, 0), 0x40400000u);
    EXPECT_EQ(canvas.At(1, 0), 0x80800000u);
}

TEST(PixelTarget, ClipsLieInTheCurrentTransform)
{
    // A triangle of user space, as a clip and as what is filled: the same picture.
    for (const Matrix& matrix : kTransforms) {
        PixelCanvas filled(12, 12);
        filled.Surface().Concat(matrix);
        filled.Fill("M 1 1 L 9 2 L 3 8 Z");
        PixelCanvas clipped(12, 12);
        clipped.Surface().Concat(matrix);
        clipped.Clip("M 1 1 L 9 2 L 3 8 Z");
        clipped.Fill(kEverywhere);
        EXPECT_EQ(clipped.Pixels(), filled.Pixels());
        EXPECT_FALSE(filled.IsEmpty());
        // And so as the clip's own transform.
        PixelCanvas own(12, 12);
        own.Surface().ClipPath(*own.Path("M 1 1 L 9 2 L 3 8 Z"), true, &matrix);
        own.Fill(kEverywhere);
        EXPECT_EQ(own.Pixels(), filled.Pixels());
    }
}

TEST(PixelTarget, NestedClipsComeBackOneByOne)
{
    PixelCanvas canvas(4, 4);
    const auto shown = [&canvas] {
        std::fill(canvas.Pixels().begin(), canvas.Pixels().end(), 0);
        canvas.Fill(kEverywhere);
        return canvas.Picture();
    };
    const std::string all = shown();
    canvas.Surface().Save();
    canvas.Clip("M 0 0 L 4 0 L 0 4 Z");
    const std::string first = shown();
    canvas.Surface().Save();
    canvas.Clip("M 0 0 L 4 0 L 4 2 L 0 2 Z");
    const std::string second = shown();
    canvas.Surface().Save();
    canvas.Clip("");
    EXPECT_EQ(shown(), "....\n....\n....\n....\n");
    EXPECT_EQ(second, "###5\n##5.\n....\n....\n");
    canvas.Surface().Restore();
    EXPECT_EQ(shown(), second);
    canvas.Surface().Restore();
    EXPECT_EQ(shown(), first);
    canvas.Surface().Restore();
    EXPECT_EQ(shown(), all);
}

TEST(PixelTarget, MirroredIsTheMirrorImage)
{
    constexpr int kSize = 24;
    constexpr const char* kShape = "M 2 3 C 20 -4 30 20 9 21 L 5.3 11.7 Z";
    const auto draw = [&](PixelCanvas& canvas) {
        canvas.Fill(kShape, {0, 0, 0, 0.5f}, false);
        canvas.Stroke(kShape, 1.7f);
    };
    PixelCanvas plain(kSize, kSize);
    draw(plain);
    PixelCanvas across(kSize, kSize);
    across.Surface().Concat({-1, 0, 0, 1, kSize, 0});
    draw(across);
    PixelCanvas down(kSize, kSize);
    down.Surface().Concat({1, 0, 0, -1, 0, kSize});
    draw(down);
    for (int y = 0; y < kSize; ++y) {
        for (int x = 0; x < kSize; ++x) {
            // But for halves of a level, which go the other way.
            ASSERT_NEAR(plain.AlphaAt(x, y), across.AlphaAt(kSize - 1 - x, y), 1);
            ASSERT_NEAR(plain.AlphaAt(x, y), down.AlphaAt(x, kSize - 1 - y), 1);
        }
    }
}

TEST(PixelTarget, OnePixel)
{
    PixelCanvas canvas(1, 1);
    canvas.Fill("M -5 -5 L 5 -5 L 5 0.5 L -5 0.5 Z");
    EXPECT_EQ(canvas.AlphaAt(0, 0), 128);
    canvas.Stroke("M 0 0.75 L 1 0.75", 0.5f);
    EXPECT_EQ(canvas.AlphaAt(0, 0), 192);
    canvas.Clip("M 0 0 L 1 0 L 0 1 Z");
    canvas.Fill(kEverywhere, {0, 0, 0, 1});
    EXPECT_EQ(canvas.AlphaAt(0, 0), 192 + 32);
}

TEST(PixelTarget, OneRowOfManyPixels)
{
    PixelCanvas canvas(kMaxPixels, 1);
    canvas.Clip("M 0 0 L 32767 0 L 32767 0.5 L 0 0.5 Z");
    canvas.Stroke("M 0.5 0 L 32766.5 0", 4,
                  [](PenInterface& pen) { pen.SetLineCap(LineCap::kTEPSquareCap); });
    for (const int x : {0, 1, 12345, 32765, 32766}) {
        EXPECT_EQ(canvas.AlphaAt(x, 0), 128) << x;
    }
    PixelCanvas column(1, kMaxPixels);
    column.Fill("M 0 32766 L 1 32766 L 1 32767 L 0 32767 Z");
    EXPECT_EQ(column.Area(), 1);
    EXPECT_EQ(column.AlphaAt(0, 32766), 255);
}

TEST(PixelTarget, ObjectsMayOutliveTheTarget)
{
    std::uint32_t pixel = 0;
    auto target = CreatePixelTarget({&pixel, 1, 1, 1});
    const PathP path(target->Factory().CreatePath());
    target.reset();
    PathP other;
    other = path;  // two references
    other->MoveTo(1, 2);
    EXPECT_TRUE(path);
    EXPECT_FALSE(PathP());
}

}  // namespace
}  // namespace kivui::scrivel
