// One picture of many pieces of artwork, each with its name: a band for each brightness of the
// theme, in the theme's ground, and in it a grid with the artwork at each scale.

#pragma once

#include "tools/svgloom/Artwork.h"
#include "tools/svgloom/SheetLayout.h"

#include <memory>
#include <string>
#include <vector>

namespace svgloom {

class ContactSheet {
public:
    /// Takes --contact-sheet, --brightness and --scales. `settings` and `size` have to stand as
    /// long as this object. Throws UsageError.
    ContactSheet(const tools::Arguments& arguments, const DrawSettings& settings,
                 const SizeOptions& size);

    /// Throws std::runtime_error for artwork whose size no picture can have.
    void Add(const std::string& label, std::unique_ptr<Artwork> artwork);

    /// Draws the sheet and writes it; without artwork, nothing. Throws tools::Failure.
    /// @return false if some of the artwork could not be drawn, which is told
    bool Write() const;

private:
    struct Colors;

    void DrawTexts(std::size_t band, const SheetLayout& layout, const Colors& colors,
                   Picture& picture) const;
    void DrawArtwork(std::size_t band, std::size_t entry, const SheetLayout& layout,
                     const Colors& colors, Picture& picture) const;

    const std::string output_;
    std::vector<float> brightnesses_;  // in percent
    std::vector<float> scales_;
    const DrawSettings& settings_;
    const SizeOptions& size_;
    std::vector<SheetEntry> entries_;
    std::vector<std::unique_ptr<Artwork>> artworks_;  // of the entries
};

}  // namespace svgloom
