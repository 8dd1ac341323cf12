// Declarations, in `style` attributes and in rules, and style sheets.

#pragma once

#include <cstddef>
#include <cstdint>
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

enum class Block : std::uint8_t {
    kApplied,
    kRoot,       // of the root: its size there is that of a page
    kNotDrawn,   // of what is never drawn by itself: whether it is hidden does not matter
    kUnmatched,  // of what matches nothing: only what ends the reading is told
};

/// A `style` attribute.
///
/// @return false if an error ends the reading
bool CheckStyleAttribute(const SourceValue& value, Block kind, Reporter& reporter);

/// The text of a `style` element.
///
/// @return false if an error ends the reading
bool CheckStyleSheet(const SourceValue& value, SheetClasses& classes, Reporter& reporter);

}  // namespace svgloom
