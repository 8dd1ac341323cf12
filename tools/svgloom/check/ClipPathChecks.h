// Clip paths: the one shape of each, and what is not taken of them.

#pragma once

#include "tools/svgloom/check/CheckedArtwork.h"

namespace svgloom {

/// A `clipPath`. Whether it has content goes into the clip paths of `artwork`.
void CheckClip(CheckedArtwork& artwork, const CheckedElement& element);

}  // namespace svgloom
