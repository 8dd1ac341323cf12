// The elements of gradients, with their stops.

#pragma once

#include "tools/svgloom/check/CheckedArtwork.h"

namespace svgloom {

/// A `linearGradient` or `radialGradient`. It goes into the gradients of `artwork`.
void CheckGradient(CheckedArtwork& artwork, const CheckedElement& element);

}  // namespace svgloom
