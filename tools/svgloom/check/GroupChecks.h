// Groups, symbols and `use`: what lies in them, or is drawn through them.

#pragma once

#include "tools/svgloom/check/CheckedArtwork.h"

namespace svgloom {

/// A group, symbol, `defs` or root. It goes into the references below `parent`.
///
/// @return what its children get from it
Scope CheckGroup(CheckedArtwork& artwork, const CheckedElement& element, const Scope& scope,
                 References::Index parent, bool isSymbol);

/// What is only a symbol's: styles that are not passed on, and the view box, which becomes that of
/// the artwork.
void CheckSymbol(CheckedArtwork& artwork, const CheckedElement& element);

/// A `use`. It goes into the references, which are checked when all are known.
void CheckUse(CheckedArtwork& artwork, const CheckedElement& element, const Scope& scope);

}  // namespace svgloom
