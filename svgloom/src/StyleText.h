// CSS text before it is taken apart.

#pragma once

#include <string>
#include <string_view>

namespace SVGLoom {

/// Every line end becomes a space, both ends are trimmed, and the space behind a "}" becomes a line
/// feed, so that each rule stands on a line of its own.
std::string CleanStyleText(std::string_view text);

/// Takes comments out, without a space in their place. One that is not closed runs to the end.
void RemoveComments(std::string& text);

}  // namespace SVGLoom
