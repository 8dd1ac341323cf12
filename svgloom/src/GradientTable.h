// The gradients of a document by id, as the paint parser looks them up.

#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "svgloom/renderer/Records.h"

namespace SVGLoom {

enum class SpreadMethod : std::uint32_t { kPad = 0, kReflect = 1, kRepeat = 2 };

/// A gradient as it is defined. Coordinates that the artwork does not give stay kNotGiven until a
/// paint uses it.
struct GradientDefinition {
    Gradient gradient;
    SpreadMethod spreadMethod = SpreadMethod::kPad;  // read, and not drawn
};

using GradientTable = std::map<std::string, GradientDefinition, std::less<>>;

}  // namespace SVGLoom
