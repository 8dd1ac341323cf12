#include "tools/svgloom/SheetLayout.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tools/svgloom/StrokeFont.h"

namespace svgloom {
namespace {

RenderSize Size(int width, int height)
{
    return {static_cast<float>(width), static_cast<float>(height), width, height};
}

std::vector<SheetEntry> Entries(std::size_t count, const std::vector<RenderSize>& sizes)
{
    std::vector<SheetEntry> entries;
    for (std::size_t i = 0; i < count; ++i)
        entries.push_back({"icon-" + std::to_string(i), sizes});
    return entries;
}

bool IsInside(const PixelArea& inner, const PixelArea& outer)
{
    return inner.x >= outer.x && inner.y >= outer.y &&
           inner.x + inner.width <= outer.x + outer.width &&
           inner.y + inner.height <= outer.y + outer.height;
}

bool AreApart(const PixelArea& a, const PixelArea& b)
{
    return a.x + a.width <= b.x || b.x + b.width <= a.x || a.y + a.height <= b.y ||
           b.y + b.height <= a.y;
}

PixelArea AreaOf(const SheetLayout::Line& line)
{
    return {line.place.x, line.place.baseLine - 8, static_cast<int>(TextWidth(line.text, 1)), 11};
}

struct SheetCase {
    std::size_t count;
    std::size_t bands;
    std::vector<RenderSize> sizes;
};

TEST(SheetLayout, NothingOverlapsAndAllIsInItsBand)
{
    const SheetCase kCases[] = {
        {1, 1, {Size(1, 1)}},     {7, 3, {Size(24, 24), Size(36, 36), Size(48, 48), Size(72, 72)}},
        {40, 2, {Size(16, 20)}},  {25, 1, {Size(640, 480)}},
        {2, 1, {Size(30000, 5)}},
    };
    for (const SheetCase& row : kCases) {
        SCOPED_TRACE(row.count);
        std::vector<SheetEntry> entries = Entries(row.count, row.sizes);
        entries.back().label = "a-very-long-name that is broken and then cut off at its end";
        entries.back().sizes.back() = Size(1, 2);  // smaller than the others
        const SheetLayout layout(entries, row.bands);
        for (std::size_t band = 0; band < row.bands; ++band) {
            const PixelArea area = layout.Band(band);
            EXPECT_EQ(area.width, layout.Width());
            EXPECT_EQ(area.height * static_cast<int>(row.bands), layout.Height());
            std::vector<PixelArea> areas = {layout.Rule(band)};
            areas.push_back({layout.Heading(band).x, layout.Heading(band).baseLine - 12, 100, 15});
            for (std::size_t entry = 0; entry < row.count; ++entry) {
                for (std::size_t scale = 0; scale < row.sizes.size(); ++scale) {
                    areas.push_back(layout.Slot(band, entry, scale));
                    EXPECT_EQ(areas.back().width, entries[entry].sizes[scale].pixelWidth);
                    EXPECT_EQ(areas.back().height, entries[entry].sizes[scale].pixelHeight);
                }
                for (const SheetLayout::Line& line : layout.Label(band, entry))
                    areas.push_back(AreaOf(line));
            }
            for (std::size_t i = 0; i < areas.size(); ++i) {
                EXPECT_TRUE(IsInside(areas[i], area)) << i;
                for (std::size_t j = 0; j < i; ++j)
                    EXPECT_TRUE(AreApart(areas[i], areas[j])) << i << " " << j;
            }
        }
    }
}

TEST(SheetLayout, LabelsAreBrokenAndCut)
{
    struct LabelCase {
        const char* label;
        std::vector<std::string> want;
    };
    const LabelCase kCases[] = {
        {"short", {"short"}},
        {"arrow-up-right-circle-fill", {"arrow-up-right-", "circle-fill"}},
        {"this_one_has_so_many_words_that_it_is_cut", {"this_one_has_so_", "many_words_tha..."}},
        {"", {""}},
    };
    for (const LabelCase& row : kCases) {
        SCOPED_TRACE(row.label);
        const std::vector<SheetEntry> entries = {{row.label, {Size(24, 24)}}};
        const std::vector<SheetLayout::Line> lines = SheetLayout(entries, 1).Label(0, 0);
        ASSERT_EQ(lines.size(), row.want.size());
        for (std::size_t i = 0; i < lines.size(); ++i)
            EXPECT_EQ(lines[i].text, row.want[i]);
    }
}

TEST(SheetLayout, CharactersAreNotCutInTwo)
{
    std::string label;
    for (int i = 0; i < 40; ++i)
        label += "\u00f6";
    const std::vector<SheetEntry> entries = {{label, {Size(24, 24)}}};
    const std::vector<SheetLayout::Line> lines = SheetLayout(entries, 1).Label(0, 0);
    ASSERT_EQ(lines.size(), 1U);
    const std::string& text = lines[0].text;
    ASSERT_GT(text.size(), 3U);
    EXPECT_EQ(text.substr(text.size() - 3), "...");
    EXPECT_EQ(text.size() % 2, 1U);  // whole characters of two bytes
}

TEST(SheetLayout, RatherWiderThanUsualThanTooHigh)
{
    const std::vector<SheetEntry> few = Entries(20, {Size(100, 1000)});
    EXPECT_LE(SheetLayout(few, 1).Width(), 1600);
    const std::vector<SheetEntry> many = Entries(500, {Size(100, 1000)});
    const SheetLayout layout(many, 1);
    EXPECT_GT(layout.Width(), 1600);
    EXPECT_LE(layout.Height(), Picture::kMaxSide);
}

TEST(SheetLayout, NoSheetIsLargerThanAPicture)
{
    EXPECT_THROW(SheetLayout(Entries(1, {Size(32767, 1)}), 1), tools::Failure);
    EXPECT_THROW(SheetLayout(Entries(1, {Size(20000, 1), Size(20000, 1)}), 1), tools::Failure);
    EXPECT_THROW(SheetLayout(Entries(1, {Size(1, 11000)}), 3), tools::Failure);
    EXPECT_THROW(SheetLayout(Entries(1000, {Size(10000, 1000)}), 1), tools::Failure);
    EXPECT_THROW(SheetLayout(Entries(1, {Size(1, 1)}), 1000000), tools::Failure);
}

}  // namespace
}  // namespace svgloom
