// What the root of an artwork says for the whole of it: its size, and prefixes of names.

#pragma once

#include "tools/svgloom/check/CheckedArtwork.h"

namespace svgloom {

/// Keeps the view box and the prefixes of SVG's namespace in `artwork`.
void CheckViewBox(CheckedArtwork& artwork, const CheckedElement& root);

}  // namespace svgloom
