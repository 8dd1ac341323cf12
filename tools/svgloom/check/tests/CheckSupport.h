// Findings as one line each, for tests.

#pragma once

#include <string>
#include <string_view>

#include "tools/svgloom/check/ArtworkCheck.h"
#include "tools/svgloom/check/SourceText.h"

namespace svgloom::testing_support {

/// "LINE:COLUMN id" for each finding, joined by "; ".
inline std::string Places(std::string_view text)
{
    // A block of exactly its size, so that sanitizers see what is read behind it.
    const std::string copy(text);
    LinePlaces places(copy);
    std::string all;
    for (const ArtworkFinding& each : CheckArtwork(copy)) {
        const LinePlaces::Place place = places.Advance(each.offset);
        all += (all.empty() ? "" : "; ") + std::to_string(place.line) + ":" +
               std::to_string(place.column) + " " + std::string(RowOf(each.rule).id);
    }
    return all;
}

/// The same for what stands inside an svg element of 30 by 40 units, on line 2.
inline std::string PlacesInside(std::string_view content)
{
    return Places("<svg viewBox='0 0 30 40'>\n" + std::string(content) + "\n</svg>");
}

}  // namespace svgloom::testing_support
