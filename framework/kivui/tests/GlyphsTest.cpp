#include <gtest/gtest.h>

#include <kivui/Controls.h>

#include "framework/kivui/tests/RecordingPainter.h"

namespace kivui::ui {
namespace {

constexpr std::size_t kGlyphCount = static_cast<std::size_t>(Glyph::kPerson) + 1;

std::vector<Point> CornersOf(Glyph glyph, const Rect& rect, bool mirrored)
{
    const boost::intrusive_ptr<NumberedTheme> theme(new NumberedTheme);
    RecordingPainter painter;
    DrawGlyph(Drawing{painter, *theme, 1, mirrored}, glyph, rect, theme->Color(kIcon));
    return painter.Corners();
}

TEST(Glyphs, AllButNoneDrawWithinTheirPlace)
{
    EXPECT_TRUE(CornersOf(Glyph::kNone, {0, 0, 16, 16}, false).empty());
    for (std::size_t i = 1; i < kGlyphCount; ++i) {
        SCOPED_TRACE(i);
        const std::vector<Point> corners =
            CornersOf(static_cast<Glyph>(i), {100, 200, 40, 32}, false);
        EXPECT_FALSE(corners.empty());
        for (const Point& corner : corners) {
            // The square in the middle of the wider rectangle, less half a stroke.
            EXPECT_GE(corner.x, 105.5);
            EXPECT_LE(corner.x, 134.5);
            EXPECT_GE(corner.y, 201.5);
            EXPECT_LE(corner.y, 230.5);
        }
    }
}

TEST(Glyphs, OnlyThoseOfADirectionAreMirrored)
{
    for (std::size_t i = 1; i < kGlyphCount; ++i) {
        SCOPED_TRACE(i);
        const Glyph glyph = static_cast<Glyph>(i);
        const bool isDirected = glyph == Glyph::kChevronNext || glyph == Glyph::kRevert ||
                                glyph == Glyph::kList || glyph == Glyph::kTag;
        const std::vector<Point> plain = CornersOf(glyph, {0, 0, 16, 16}, false);
        const std::vector<Point> mirrored = CornersOf(glyph, {0, 0, 16, 16}, true);
        ASSERT_EQ(plain.size(), mirrored.size());
        for (std::size_t k = 0; k < plain.size(); ++k) {
            EXPECT_DOUBLE_EQ(mirrored[k].x, isDirected ? 16 - plain[k].x : plain[k].x);
            EXPECT_DOUBLE_EQ(mirrored[k].y, plain[k].y);
        }
    }
}

}  // namespace
}  // namespace kivui::ui
