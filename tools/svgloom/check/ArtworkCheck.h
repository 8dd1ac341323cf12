// The check of one artwork: what the engine will ignore or treat specially, with its places.

#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "tools/svgloom/check/Reporter.h"

namespace svgloom {

/// Takes any bytes. Time and memory are linear in the text; the number of findings is limited.
/// Findings come in the order of their places.
std::vector<ArtworkFinding> CheckArtwork(std::string_view text);

}  // namespace svgloom
