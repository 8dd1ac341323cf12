// Text in a font of strokes, drawn as any path: for labels, where no font is at hand.

#pragma once

#include "svgloom/renderer/Records.h"

#include <kivui/Scrivel.h>

#include <string_view>

namespace svgloom {

/// Of size 1, in pixels: capitals are 8 high, and what hangs below the base line 3.
inline constexpr float kCapHeight = 8;

/// What the text takes, in pixels. Characters beyond ASCII are boxes, here and in DrawText.
float TextWidth(std::string_view utf8, float size);

/// Draws from `x` on along the base line at `y`. Whole numbers and size 1 give crisp stems.
void DrawText(kivui::scrivel::DrawingTarget& target, std::string_view utf8, float x, float y,
              float size, const SVGLoom::Color& color);

}  // namespace svgloom
