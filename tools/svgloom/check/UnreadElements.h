// Elements that the engine does not look into.

#pragma once

#include "tools/svgloom/check/CheckedArtwork.h"

namespace svgloom {

/// An element that the engine does not look into, but whose styles it resolves.
void CheckUnread(CheckedArtwork& artwork, const CheckedElement& element);

}  // namespace svgloom
