// The styles of one element: from its attributes, its `style` attribute and the rules of its
// classes while it is parsed, and once more from an attached sheet and the colour map when it is
// drawn.

#pragma once

#include <map>
#include <string>

#include "svgloom/src/Attributes.h"
#include "svgloom/src/ClassSet.h"
#include "svgloom/src/PropertyReaders.h"
#include "svgloom/src/StyleSheet.h"
#include "svgloom/src/Styles.h"

namespace SVGLoom {

/// Colours by the names of variables, without "--".
using ColorMap = std::map<std::string, Color, std::less<>>;

/// Applies the property sets of an element in this order: its attributes, its `style` attribute,
/// then one set for each name in the order of its `class` attribute. A later set overrides an
/// earlier one, so a class rule wins over the `style` attribute. That is on purpose.
///
/// @return the class names
/// @throws std::out_of_range as ApplyProperty, std::invalid_argument as ForEachDeclaration
ClassSet ResolveStyles(const Attributes& attributes, const StyleSheet& sheet,
                       const StyleSources& sources, const StyleTarget& target);

/// The draw-time step: applies the rules of `sheet` for the names of `classes`, in their order.
///
/// @throws std::invalid_argument "empty CSS selector" for an empty name; std::out_of_range as
///         ApplyProperty
void ApplySheet(const StyleSheet& sheet, const ClassSet& classes, const StyleSources& sources,
                const StyleTarget& target);

/// The colour that the "color" property stands for; the current-colour marker is opaque black.
Color ResolveColor(const ColorValue& color, const ColorMap& colors);

/// The colour of a paint or stop; the current-colour marker is `current`.
Color ResolveColor(const ColorValue& value, const Color& current, const ColorMap& colors);

/// True if drawing depends on the colour map or on the "color" property.
bool NeedsResolution(const std::optional<ColorValue>& paintValue);

/// What a renderer gets: the records with their paints resolved. Gradients stay as they are.
FillStyle ResolveFill(const DocumentFillStyle& fill, const ColorMap& colors);
StrokeStyle ResolveStroke(const DocumentStrokeStyle& stroke, const DocumentFillStyle& fill,
                          const ColorMap& colors);

}  // namespace SVGLoom
