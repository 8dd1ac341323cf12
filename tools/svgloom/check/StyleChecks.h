// Declarations, in `style` attributes and in rules, and style sheets.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "svgloom/src/NameMap.h"
#include "tools/svgloom/check/Reporter.h"
#include "tools/svgloom/check/SourceText.h"

namespace svgloom {

/// The classes of an artwork.
struct SheetClasses {
    SVGLoom::NameMap<bool> used;          // by the elements so far
    SVGLoom::NameMap<std::size_t> order;  // of their last rules
};

/// A `style` attribute. Whether what is never drawn by itself is hidden does not matter.
///
/// @return false if an error ends the reading
bool CheckStyleAttribute(const SourceValue& value, bool isDrawn, Reporter& reporter);

/// The text of a `style` element.
///
/// @return false if an error ends the reading
bool CheckStyleSheet(const SourceValue& value, SheetClasses& classes, Reporter& reporter);

}  // namespace svgloom
