// What each property means: its values, its limits, and what an unreadable value does.

#pragma once

#include <string_view>

#include "svgloom/src/AttributeNames.h"
#include "svgloom/src/GradientTable.h"
#include "svgloom/src/StyleMemo.h"
#include "svgloom/src/Styles.h"

namespace SVGLoom {

/// What values can refer to.
struct StyleSources {
    const GradientTable& gradients;
    const ClipPathTable& clipPaths;
    const Rect& viewBox;
    StyleMemos* memos = nullptr;  // may be null
};

/// The records of one element.
struct StyleTarget {
    DocumentGraphicStyle& graphic;
    SharedFillStyle& fill;
    SharedStrokeStyle& stroke;
};

/// Reads the value of one property into the record that it belongs to. A value that cannot be read
/// leaves the record as it is, where the property's reader does not say otherwise.
///
/// @throws std::out_of_range "invalid string position" for a clip-path value below five characters
void ApplyProperty(AttributeName property, std::string_view text, const StyleSources& sources,
                   const StyleTarget& target);

/// The length that percentages of stroke properties refer to: the whole diagonal, not the diagonal
/// divided by the root of two, on purpose.
float DiagonalOf(const Rect& viewBox);

}  // namespace SVGLoom
