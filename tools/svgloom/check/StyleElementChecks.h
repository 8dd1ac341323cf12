// The `style` element: whether its text is read, and read whole.

#pragma once

#include "tools/svgloom/check/CheckedArtwork.h"

namespace svgloom {

/// A `style` element. Its rules go into the style sheet of `artwork`.
void CheckStyleElement(CheckedArtwork& artwork, const CheckedElement& element);

}  // namespace svgloom
