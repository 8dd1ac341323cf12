// What a colour property can hold before it is drawn: a colour, a variable that the drawing's
// colour map resolves, or the element's own "color".

#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "svgloom/renderer/Records.h"

namespace SVGLoom {

struct ColorVariable {
    std::string name;  // without the leading "--"
    Color fallback;    // for a name that the colour map does not have

    friend bool operator==(const ColorVariable&, const ColorVariable&) = default;
};

/// Stands for the "color" property of the element.
struct CurrentColor {
    std::uint32_t payload = 0;

    friend bool operator==(const CurrentColor&, const CurrentColor&) = default;
};

/// By index: 0 a colour, 1 a variable, 2 the current colour.
using ColorValue = std::variant<Color, ColorVariable, CurrentColor>;

/// What the colour and paint parsers answer; `kNone` comes from the paint parser only.
enum class ParseResult : std::uint32_t { kSuccess = 0, kInvalid = 1, kNone = 2 };

}  // namespace SVGLoom
