// The dialog's artwork: the files of resources/artwork, byte for byte, which the module carries.

#pragma once

#include <span>
#include <string_view>

#include <kivui/IconCache.h>

namespace kivtoolkit {

struct ArtworkFile {
    std::string_view name;  // of the file, without its ending
    std::string_view svg;
    kivui::ui::IconMirroring mirroring;
};

/// All of them, by name. The table is written when the module is built.
std::span<const ArtworkFile> ArtworkFiles() noexcept;

/// Names them all in kivui's icon cache, which forgets them with the theme.
void RegisterArtwork();

/// Names of the icons that the dialog draws beside those of kivui's controls.
namespace icons {
inline constexpr std::string_view kAdd = "add";
inline constexpr std::string_view kChevronDown = "chevron-down";
inline constexpr std::string_view kRemove = "remove";
inline constexpr std::string_view kSearch = "search";
}  // namespace icons

/// What a view's definition can name as its icon.
std::span<const std::string_view> ViewIcons() noexcept;

/// The icon of a view whose definition names `icon`: the same, or the general one for what is none
/// of ViewIcons.
std::string_view ViewIcon(std::string_view icon) noexcept;

}  // namespace kivtoolkit
