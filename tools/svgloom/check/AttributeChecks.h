// The attributes of one element: their names, its styles, lengths and transform.

#pragma once

#include <cstddef>
#include <string_view>

#include "tools/svgloom/check/CheckedArtwork.h"

namespace svgloom {

/// Names that are not read or come twice, and values that the XML library does not translate.
void CheckNames(CheckedArtwork& artwork, const CheckedElement& element);

/// Styles from attributes, from the `style` attribute and from classes. They go into `element`.
void CheckStyles(CheckedArtwork& artwork, CheckedElement& element, Block kind);

/// The lengths that an element of its name reads.
void CheckLengths(CheckedArtwork& artwork, const CheckedElement& element);

/// The `transform` attribute. It goes into the element's matrix.
void CheckTransform(CheckedArtwork& artwork, CheckedElement& element);

/// A list of transform functions of the attribute `name`, of the element at `offset`. `transform`
/// is new and gets them all, or stays as it is if they cannot be read to their end.
void CheckTransformText(CheckedArtwork& artwork, SVGLoom::AttributeName name, std::string_view text,
                        std::size_t offset, CheckedTransform& transform);

}  // namespace svgloom
