// The gradients of a document by id, as the paint parser looks them up.

#pragma once

#include <cstdint>

#include "svgloom/renderer/Records.h"
#include "svgloom/src/NameMap.h"

namespace SVGLoom {

enum class SpreadMethod : std::uint32_t { kPad = 0, kReflect = 1, kRepeat = 2 };

/// A gradient as it is defined. Coordinates that the artwork does not give stay kNotGiven until a
/// paint uses it.
struct GradientDefinition {
    Gradient gradient;
    SpreadMethod spreadMethod = SpreadMethod::kPad;  // read, and not drawn
};

using GradientTable = NameMap<GradientDefinition>;

}  // namespace SVGLoom
