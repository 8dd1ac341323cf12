#include "framework/kivtoolkit/src/Artwork.h"

#include <algorithm>

namespace kivtoolkit {

namespace {

constexpr std::string_view kGeneral = "document";
constexpr std::string_view kViewIcons[] = {
    "camera",   "caption",   "catalog", kGeneral, "history", "list",
    "location", "newspaper", "person",  "rights", "tag",
};

}  // namespace

void RegisterArtwork()
{
    for (const ArtworkFile& file : ArtworkFiles()) {
        kivui::ui::IconCache::Register(file.name, file.svg, file.mirroring);
    }
}

std::span<const std::string_view> ViewIcons() noexcept
{
    return kViewIcons;
}

std::string_view ViewIcon(std::string_view icon) noexcept
{
    const auto* const found = std::find(std::begin(kViewIcons), std::end(kViewIcons), icon);
    return found != std::end(kViewIcons) ? *found : kGeneral;
}

}  // namespace kivtoolkit
