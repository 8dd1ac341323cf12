// What the library's start and tear-down need of the bridge.

#pragma once

#include <kivui/SVG.h>

namespace svgloom {

/// The library's handler: created on the first call, never destroyed.
kivui::svg::ISVGHandler& Handler();

/// Destroys the handler's documents, for the tear-down; the handler lives on. Handles that are
/// still held find nothing then (SVGHandler::Clear).
void ClearDocuments() noexcept;

}  // namespace svgloom
