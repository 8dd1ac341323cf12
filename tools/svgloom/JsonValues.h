// The engine's values as JSON.

#pragma once

#include "svgloom/renderer/Records.h"
#include "svgloom/renderer/ScrivelSVGPath.h"
#include "svgloom/renderer/ScrivelSVGTransform.h"
#include "svgloom/src/ColorValue.h"

#include <span>
#include <string>
#include <string_view>

namespace svgloom {

/// [1,0.5,...]
std::string JsonNumbers(std::span<const float> values);

/// [r,g,b,a]
std::string JsonColor(const SVGLoom::Color& color);

/// "kind":"color" or another kind, and what belongs to it, without braces.
std::string JsonColorMembers(const SVGLoom::ColorValue& value);

/// [a,b,c,d,e,f]
std::string JsonMatrix(const SVGLoom::ScrivelSVGTransform& transform);

/// An array of ["M",x,y], ["L",x,y], ["C",x1,y1,x2,y2,x,y] and ["Z"].
std::string JsonPath(const SVGLoom::ScrivelSVGPath& path);

/// {"error":"..."}, for what the engine throws.
std::string JsonError(std::string_view what);

}  // namespace svgloom
