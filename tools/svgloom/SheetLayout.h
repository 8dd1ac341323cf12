// Where everything stands on a contact sheet. Bands lie one below the other and are alike: a
// heading and a grid of cells. A cell holds one piece of artwork at each scale, side by side with
// their middles on one line, and its label below.

#pragma once

#include "tools/svgloom/Picture.h"
#include "tools/svgloom/RenderSize.h"

#include <string>
#include <vector>

namespace svgloom {

struct SheetEntry {
    std::string label;
    std::vector<RenderSize> sizes;  // by scale
};

/// The beginning of a line of text, which stands on its base line.
struct TextPlace {
    int x = 0;
    int baseLine = 0;
};

class SheetLayout {
public:
    /// The text size of headings; labels have size 1.
    static constexpr float kHeadingSize = 1.5f;

    /// `entries` is not empty, and all have as many sizes. Throws tools::Failure for a sheet that
    /// is too large for a picture.
    SheetLayout(const std::vector<SheetEntry>& entries, std::size_t bands);

    int Width() const { return width_; }
    int Height() const { return bandHeight_ * bands_; }
    PixelArea Band(std::size_t band) const;
    TextPlace Heading(std::size_t band) const;
    /// The line below the heading.
    PixelArea Rule(std::size_t band) const;
    /// Where the picture of an entry at a scale goes; as large as the picture.
    PixelArea Slot(std::size_t band, std::size_t entry, std::size_t scale) const;

    struct Line {
        std::string text;
        TextPlace place;
    };
    /// The label of an entry, broken and cut to fit.
    std::vector<Line> Label(std::size_t band, std::size_t entry) const;

private:
    PixelArea Cell(std::size_t band, std::size_t entry) const;

    const std::vector<SheetEntry>& entries_;
    const int bands_;
    std::vector<std::vector<std::string>> labels_;  // lines, by entry
    std::vector<int> slotWidths_;                   // by scale
    int slotHeight_ = 0;
    int cellWidth_ = 0;
    int cellHeight_ = 0;
    std::size_t columns_ = 0;
    int width_ = 0;
    int bandHeight_ = 0;
};

}  // namespace svgloom
