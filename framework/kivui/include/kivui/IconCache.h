// Icons: artwork drawn through the node manager's SVG handler, at the size and in the colours that
// are asked for, and kept. Used on the user interface's thread.
//
// Artwork names the colours that follow the theme as variables: `fill="var(--icon, #606060)"`.

#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

#include <kivui/Export.h>
#include <kivui/Painter.h>
#include <kivui/Theme.h>

namespace kivui::ui {

/// A variable of artwork that a colour of the theme stands behind.
struct IconVariable {
    std::string_view name;  // without the leading "--"
    ThemeColor color;
};

/// All of them: "ground", "raised-ground", "field-ground", "hairline", "text", "secondary",
/// "disabled", "accent", "accent-text", "accent-tint", "error", "warning", "icon", "placeholder",
/// "star", "star-empty", "selection", "selection-text" and "link".
KIVUI_API std::span<const IconVariable> IconVariables() noexcept;

/// A variable that one drawing sets by itself.
struct IconColor {
    std::string_view name;  // without the leading "--"
    ColorRGBA color;
};

/// What becomes of an icon where text runs from right to left.
enum class IconMirroring {
    kNever,
    kRightToLeft,  ///< it shows a direction: left and right change places
};

struct IconRequest {
    double sizeUnits = 24;                   ///< design units; the picture is a square
    double scale = 1;                        ///< pixels per design unit
    bool mirrored = false;                   ///< text runs from right to left
    std::span<const IconColor> colors = {};  ///< go before the theme's
};

inline constexpr int kMaxIconSide = 1024;               ///< of a picture, in pixels
inline constexpr std::size_t kMaxIconBytes = 8U << 20;  ///< of all pictures that are kept
inline constexpr std::size_t kMaxIconTexts = 256;  ///< artwork kept that was drawn without a name

/// One for the process. What is kept is bounded; it goes with the node manager, with another SVG
/// handler, with Theme::Terminate, and, the pictures only, when a colour of the theme changes.
class KIVUI_API IconCache {
public:
    IconCache() = delete;

    /// Names an icon, until Theme::Terminate; `svg` is copied. A name that is taken gets the new
    /// artwork.
    static void Register(std::string_view name, std::string_view svg,
                         IconMirroring mirroring = IconMirroring::kNever);
    static bool IsRegistered(std::string_view name) noexcept;

    /// The picture of the icon `name` in the colours of `theme`, SnapUnits(sizeUnits, scale) pixels
    /// wide and high. It is shared and never changes.
    ///
    /// Null, and the caller draws something else, without an SVG handler, for a name that is not
    /// registered, for artwork that is broken or shows nothing, and for a size that is not within
    /// 1..kMaxIconSide pixels. Throws std::bad_alloc, nothing else.
    static std::shared_ptr<const Pixels> Draw(std::string_view name, const Theme& theme,
                                              const IconRequest& request);
    /// The same with artwork at hand.
    static std::shared_ptr<const Pixels> DrawArtwork(std::string_view svg, IconMirroring mirroring,
                                                     const Theme& theme,
                                                     const IconRequest& request);

    /// Lets all pictures and all of the handler's handles go; names stay.
    static void Clear() noexcept;
    /// Lets names go as well.
    static void Terminate() noexcept;

    /// Pictures that are kept now, artwork that turned out to have none included.
    static std::size_t PictureCount() noexcept;
    /// The bytes of their pixels.
    static std::size_t PictureBytes() noexcept;
};

}  // namespace kivui::ui
