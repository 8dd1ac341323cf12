// Shapes: their outlines, and where the paint of one or of several comes out differently.

#pragma once

#include <memory>

#include "tools/svgloom/check/CheckedArtwork.h"

namespace svgloom {

/// A shape that is drawn, with its styles and transform. It goes into the references.
void CheckShape(CheckedArtwork& artwork, const CheckedElement& element, const Scope& scope);

/// The path of the shape; null if it is never drawn.
std::shared_ptr<CheckedPath> CheckOutline(CheckedArtwork& artwork, const CheckedElement& element);

}  // namespace svgloom
