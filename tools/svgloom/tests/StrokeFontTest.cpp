#include "tools/svgloom/StrokeFont.h"

#include <gtest/gtest.h>
#include <kivui/ScrivelTargets.h>

#include <algorithm>
#include <string>
#include <vector>

namespace svgloom {
namespace {

// A line of text on pixels, as text: "#" where most of a pixel is covered.
std::vector<std::string> Drawn(std::string_view text, float size = 1)
{
    constexpr int kWidth = 40;
    constexpr int kHeight = 14;
    std::vector<std::uint32_t> pixels(std::size_t{kWidth} * kHeight);
    const auto target = kivui::scrivel::CreatePixelTarget({pixels.data(), kWidth, kHeight, kWidth});
    DrawText(*target, text, 1, 10, size, {0, 0, 0, 1});
    std::vector<std::string> rows;
    for (auto begin = pixels.begin(); begin != pixels.end(); begin += kWidth) {
        std::string row;
        for (auto pixel = begin; pixel != begin + kWidth; ++pixel)
            row += *pixel >> 24 > 0x80 ? '#' : ' ';
        row.erase(row.find_last_not_of(' ') + 1);
        rows.push_back(row);
    }
    return rows;
}

TEST(StrokeFont, StemsFallOnPixels)
{
    EXPECT_EQ(Drawn("lHL"), (std::vector<std::string>{
                                "",
                                " #   #    #  #",
                                " #   #    #  #",
                                " #   #    #  #",
                                " #   #    #  #",
                                " #   ######  #",
                                " #   #    #  #",
                                " #   #    #  #",
                                " #   #    #  #",
                                "  #  #    #  #####",
                                "",
                                "",
                                "",
                                "",
                            }));
}

TEST(StrokeFont, EveryCharacterShowsAndIsAsWideAsItSays)
{
    std::vector<std::vector<std::string>> seen;
    for (char letter = '!'; letter <= '~'; ++letter) {
        SCOPED_TRACE(letter);
        const std::string text(1, letter);
        const std::vector<std::string> rows = Drawn(text);
        const std::size_t width =
            std::max_element(rows.begin(), rows.end(), [](const auto& a, const auto& b) {
                return a.size() < b.size();
            })->size();
        EXPECT_GT(width, 0U);
        EXPECT_LE(static_cast<float>(width), 1 + TextWidth(text, 1) + 1);
        EXPECT_EQ(std::count(seen.begin(), seen.end(), rows), 0) << "looks like another";
        seen.push_back(rows);
    }
}

TEST(StrokeFont, Widths)
{
    EXPECT_EQ(TextWidth("", 1), 0);
    EXPECT_EQ(TextWidth("H", 1), 6);
    EXPECT_EQ(TextWidth("HH", 1), 14);
    EXPECT_EQ(TextWidth("HH", 2), 28);
    // One box for a character, not for a byte.
    EXPECT_EQ(TextWidth("\u00f6", 1), 5);
    EXPECT_EQ(TextWidth("\U0001f600", 1), 5);
    EXPECT_EQ(Drawn("\u00f6"), Drawn("\U0001f600"));
    EXPECT_EQ(Drawn("\n"), Drawn("\u00f6"));
}

}  // namespace
}  // namespace svgloom
