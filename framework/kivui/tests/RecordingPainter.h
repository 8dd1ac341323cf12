// A painter that draws nothing and notes each call as one line of text, and a theme whose colours
// are all different, so that the lines can name them.

#pragma once

#include <string>
#include <vector>

#include <kivui/Painter.h>
#include <kivui/Theme.h>

namespace kivui::ui {

/// "field-ground" for kFieldGround; the names of the theme documents.
struct ThemeColorName {
    ThemeColor color;
    const char* name;
};
inline constexpr ThemeColorName kThemeColorNames[] = {
    {kGround, "ground"},
    {kRaisedGround, "raised-ground"},
    {kFieldGround, "field-ground"},
    {kHairline, "hairline"},
    {kText, "text"},
    {kSecondaryText, "secondary-text"},
    {kDisabledText, "disabled-text"},
    {kAccent, "accent"},
    {kAccentText, "accent-text"},
    {kAccentTint, "accent-tint"},
    {kError, "error"},
    {kWarning, "warning"},
    {kHoverTint, "hover-tint"},
    {kPressedTint, "pressed-tint"},
    {kFieldFrame, "field-frame"},
    {kFocus, "focus"},
    {kAccentHover, "accent-hover"},
    {kAccentPressed, "accent-pressed"},
    {kSelection, "selection"},
    {kSelectionText, "selection-text"},
    {kIcon, "icon"},
    {kPlaceholder, "placeholder"},
    {kStar, "star"},
    {kStarEmpty, "star-empty"},
    {kChipGround, "chip-ground"},
    {kDisabledGround, "disabled-ground"},
    {kDisabledFrame, "disabled-frame"},
    {kFieldFrameHover, "field-frame-hover"},
    {kChangedDot, "changed-dot"},
    {kLink, "link"},
    {kClearOverlay, "clear-overlay"},
};

/// Colour i is (i / 255, 0, 0); sizes are 12, 13 and 18.
class NumberedTheme : public Theme {
public:
    void SetBrightness(float) override {}
    float Brightness() const override { return 0; }
    ColorRGBA Color(std::size_t index) const override
    {
        return {static_cast<float>(index) / 255.0f, 0, 0, 1};
    }
    double FontSize(std::size_t index) const override
    {
        constexpr double kSizes[] = {12, 13, 18};
        return index < std::size(kSizes) ? kSizes[index] : 0;
    }
    std::size_t ChangeCount() const override { return 1; }
};

class RecordingPainter : public Painter {
public:
    void Fill(const Rect& rect, double radius, const ColorRGBA& color) override;
    void Frame(const Rect& rect, double radius, double width, const ColorRGBA& color) override;
    void Text(kivcore::UStringView text, const Rect& rect, const TextStyle& style) override;
    /// Half the size for each unit of text.
    Size MeasureText(kivcore::UStringView text, const TextStyle& style) override;
    double DeviceScale() const override { return deviceScale; }
    /// Expects an icon of FakeArtwork.
    void DrawPixels(const Pixels& pixels, const Point& at) override;

    const std::vector<std::string>& Calls() const { return calls_; }

    double deviceScale = 1;

private:
    std::vector<std::string> calls_;
};

}  // namespace kivui::ui
