// The theme in force: 385 colours that follow the brightness of the user interface, and font sizes.

#pragma once

#include <cstddef>
#include <memory>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <kivcore/RefCounted.h>
#include <kivui/Export.h>

namespace kivui::ui {

/// A colour, each component 0..1, not premultiplied.
struct ColorRGBA {
    float red = 0;
    float green = 0;
    float blue = 0;
    float alpha = 1;
    bool operator==(const ColorRGBA&) const = default;
};

/// The colours that the dialog draws with; the others of the 385 belong to skins.
enum ThemeColor : std::size_t {
    kGround = 0,
    kRaisedGround,
    kFieldGround,
    kHairline,
    kText,
    kSecondaryText,
    kDisabledText,
    kAccent,
    kAccentText,
    kAccentTint,
    kError,
    kWarning,
    kHoverTint,
    kPressedTint,
    kFieldFrame,
    kFocus,
    kAccentHover,
    kAccentPressed,
    kSelection,
    kSelectionText,
    kIcon,
    kPlaceholder,
    kStar,
    kStarEmpty,
    kChipGround,
    kDisabledGround,
    kDisabledFrame,
    kFieldFrameHover,
    kChangedDot,
    kLink,
    kClearOverlay = 236,
};

/// The font sizes of the dialog.
enum ThemeFontSize : std::size_t {
    kLabelSize = 0,  ///< 12: labels and hints
    kBodySize,       ///< 13
    kTitleSize,      ///< 18: the view's name
};

class KIVUI_API Theme : public kivcore::utility::RefCountedObject {
public:
    ~Theme() override;

    /// Makes `theme` the one in force, and holds it.
    static void Initialize(boost::intrusive_ptr<Theme> theme);
    /// The theme in force; throws std::logic_error where there is none.
    static Theme& Get();
    static bool IsInitialized() noexcept;
    /// Lets the theme go, and all icons (IconCache); silent when there is none.
    static void Terminate() noexcept;

    /// Any value is kept as it is; what draws uses DrawingBrightness.
    virtual void SetBrightness(float brightness) = 0;
    virtual float Brightness() const = 0;
    /// The brightness kept within 0 and 1; what is not a number counts as 0.5.
    float DrawingBrightness() const;

    /// The colour at the brightness in force; transparent black for an index that is not there.
    virtual ColorRGBA Color(std::size_t index) const = 0;
    /// In design units; 0 for an index that is not there.
    virtual double FontSize(std::size_t index) const = 0;
    /// Moves whenever a colour may look different.
    virtual std::size_t ChangeCount() const = 0;

protected:
    Theme();
};

/// A theme whose colours are tables of key frames (brightness and colour), read from the theme
/// document of the skins in force; colours between two frames are interpolated.
class KIVUI_API KeyframeThemeEditor : public Theme {
public:
    /// A theme of `colorCount` colours, `fontSizeCount` font sizes and `variantCount` variants.
    KeyframeThemeEditor(std::size_t colorCount, std::size_t fontSizeCount,
                        std::size_t variantCount);
    ~KeyframeThemeEditor() override;

    void SetBrightness(float brightness) override;
    float Brightness() const override;
    ColorRGBA Color(std::size_t index) const override;
    double FontSize(std::size_t index) const override;
    std::size_t ChangeCount() const override;

    /// Fixes one colour at every brightness. An index that is not there is ignored.
    void SetColor(std::size_t index, const ColorRGBA& color);
    void SetFontSize(std::size_t index, double size);
    /// Tells those who watch that colours or sizes changed.
    void NotifyThemeChanged();

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace kivui::ui
