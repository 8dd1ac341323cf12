// The colour keywords.

#pragma once

#include <span>
#include <string_view>

#include "svgloom/renderer/Records.h"

namespace SVGLoom {

struct NamedColor {
    std::string_view name;  // lower case
    Color color;
};

/// All 148 rows in their order.
std::span<const NamedColor> NamedColorTable();

/// The first row whose name is the beginning of `text` in any case; null if there is none.
const NamedColor* FindNamedColor(std::string_view text);

}  // namespace SVGLoom
