#include "tools/svgloom/SheetLayout.h"

#include "tools/svgloom/StrokeFont.h"

#include <algorithm>
#include <cstdint>

namespace svgloom {

namespace {

// All in pixels.
constexpr int kMargin = 32;
constexpr int kHeadingHeight = 12;
constexpr int kAboveRule = 12;
constexpr int kBelowRule = 28;
constexpr int kBetweenScales = 16;
constexpr int kBetweenCells = 32;
constexpr int kBetweenRows = 28;
constexpr int kAboveLabel = 20;  // to its first base line
constexpr int kLabelLine = 15;   // from base line to base line
constexpr int kLabelDepth = 3;
constexpr int kMinCellWidth = 108;
constexpr int kMinWidth = 480;
constexpr int kUsualWidth = 1600;
constexpr std::size_t kMaxLabelLines = 2;

bool IsFitting(const std::string& text, int width)
{
    return TextWidth(text, 1) <= static_cast<float>(width);
}

void DropLastCharacter(std::string& utf8)
{
    while (!utf8.empty() && (static_cast<unsigned char>(utf8.back()) & 0xC0) == 0x80)
        utf8.pop_back();
    if (!utf8.empty())
        utf8.pop_back();
}

std::string Shortened(std::string text, int width)
{
    constexpr const char* kDots = "...";
    if (IsFitting(text, width))
        return text;
    do {
        DropLastCharacter(text);
    } while (!text.empty() && !IsFitting(text + kDots, width));
    return text + kDots;
}

// Broken behind hyphens and the like.
std::vector<std::string> LinesOf(const std::string& label, int width)
{
    constexpr std::string_view kBreaks = "-_ .";
    std::vector<std::string> lines;
    std::string rest = label;
    while (lines.size() + 1 < kMaxLabelLines && !IsFitting(rest, width)) {
        std::size_t cut = 0;
        for (std::size_t at = rest.find_first_of(kBreaks);
             at != std::string::npos && IsFitting(rest.substr(0, at + 1), width);
             at = rest.find_first_of(kBreaks, at + 1))
            cut = at + 1;
        if (cut == 0)
            break;
        lines.push_back(rest.substr(0, cut));
        rest.erase(0, cut);
    }
    lines.push_back(Shortened(rest, width));
    return lines;
}

// What `count` things of a size take with gaps between them. The count may be large.
std::int64_t Span(std::size_t count, int size, int gap)
{
    return static_cast<std::int64_t>(count) * (size + gap) - gap;
}

}  // namespace

SheetLayout::SheetLayout(const std::vector<SheetEntry>& entries, std::size_t bands)
    : entries_(entries), bands_(static_cast<int>(bands))
{
    slotWidths_.resize(entries[0].sizes.size());
    for (const SheetEntry& entry : entries) {
        for (std::size_t i = 0; i < entry.sizes.size(); ++i) {
            slotWidths_[i] = std::max(slotWidths_[i], entry.sizes[i].pixelWidth);
            slotHeight_ = std::max(slotHeight_, entry.sizes[i].pixelHeight);
        }
    }
    std::int64_t cellWidth = -kBetweenScales;
    for (const int width : slotWidths_)
        cellWidth += width + kBetweenScales;
    cellWidth_ =
        static_cast<int>(std::clamp<std::int64_t>(cellWidth, kMinCellWidth, Picture::kMaxSide));

    std::size_t lines = 1;
    for (const SheetEntry& entry : entries) {
        labels_.push_back(LinesOf(entry.label, cellWidth_));
        lines = std::max(lines, labels_.back().size());
    }
    cellHeight_ =
        slotHeight_ + kAboveLabel + static_cast<int>(lines - 1) * kLabelLine + kLabelDepth;

    // As wide as usual; wider only where it would be too high.
    const auto columnsIn = [&](int width) {
        return static_cast<std::size_t>(
            std::max(1, (width - 2 * kMargin + kBetweenCells) / (cellWidth_ + kBetweenCells)));
    };
    const std::size_t mostColumns = std::min(columnsIn(Picture::kMaxSide), entries.size());
    std::size_t columns = std::min(columnsIn(kUsualWidth), entries.size());
    const auto bandHeightOf = [&](std::size_t rows) {
        return 2 * kMargin + kHeadingHeight + kAboveRule + 1 + kBelowRule +
               Span(rows, cellHeight_, kBetweenRows);
    };
    const auto rowsOf = [&] { return (entries.size() + columns - 1) / columns; };
    while (columns < mostColumns && bandHeightOf(rowsOf()) * bands_ > Picture::kMaxSide)
        ++columns;
    const std::int64_t bandHeight = bandHeightOf(rowsOf());
    // Rows of the same length, the last one excepted.
    columns_ = (entries.size() + rowsOf() - 1) / rowsOf();
    const std::int64_t width =
        std::max<std::int64_t>(2 * kMargin + Span(columns_, cellWidth_, kBetweenCells), kMinWidth);
    if (cellWidth > cellWidth_ || width > Picture::kMaxSide ||
        bandHeight * bands_ > Picture::kMaxSide)
        throw tools::Failure("the contact sheet would be larger than " +
                             std::to_string(Picture::kMaxSide) + " pixels");
    width_ = static_cast<int>(width);
    bandHeight_ = static_cast<int>(bandHeight);
}

PixelArea SheetLayout::Band(std::size_t band) const
{
    return {0, static_cast<int>(band) * bandHeight_, width_, bandHeight_};
}

TextPlace SheetLayout::Heading(std::size_t band) const
{
    return {kMargin, Band(band).y + kMargin + kHeadingHeight};
}

PixelArea SheetLayout::Rule(std::size_t band) const
{
    return {kMargin, Heading(band).baseLine + kAboveRule, width_ - 2 * kMargin, 1};
}

PixelArea SheetLayout::Cell(std::size_t band, std::size_t entry) const
{
    const auto column = static_cast<int>(entry % columns_);
    const auto row = static_cast<int>(entry / columns_);
    return {kMargin + column * (cellWidth_ + kBetweenCells),
            Rule(band).y + 1 + kBelowRule + row * (cellHeight_ + kBetweenRows), cellWidth_,
            cellHeight_};
}

PixelArea SheetLayout::Slot(std::size_t band, std::size_t entry, std::size_t scale) const
{
    const PixelArea cell = Cell(band, entry);
    int slots = -kBetweenScales;
    for (const int width : slotWidths_)
        slots += width + kBetweenScales;
    int x = cell.x + (cell.width - slots) / 2;
    for (std::size_t i = 0; i < scale; ++i)
        x += slotWidths_[i] + kBetweenScales;
    const RenderSize& size = entries_[entry].sizes[scale];
    return {x + (slotWidths_[scale] - size.pixelWidth) / 2,
            cell.y + (slotHeight_ - size.pixelHeight) / 2, size.pixelWidth, size.pixelHeight};
}

std::vector<SheetLayout::Line> SheetLayout::Label(std::size_t band, std::size_t entry) const
{
    const PixelArea cell = Cell(band, entry);
    std::vector<Line> lines;
    int baseLine = cell.y + slotHeight_ + kAboveLabel;
    for (const std::string& text : labels_[entry]) {
        const int width = static_cast<int>(TextWidth(text, 1));
        lines.push_back({text, {cell.x + (cell.width - width) / 2, baseLine}});
        baseLine += kLabelLine;
    }
    return lines;
}

}  // namespace svgloom
