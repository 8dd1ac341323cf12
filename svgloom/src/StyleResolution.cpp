#include "svgloom/src/StyleResolution.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "svgloom/src/Declarations.h"
#include "svgloom/src/SVGStringParser.h"

namespace SVGLoom {

ClassSet ResolveStyles(const Attributes& attributes, const StyleSheet& sheet,
                       const StyleSources& sources, const StyleTarget& target)
{
    const auto apply = [&sources, &target](AttributeName property, std::string_view text) {
        ApplyProperty(property, text, sources, target);
    };
    if (attributes.Has(AttributeName::kStyle)) {
        // Read before anything is applied: its error goes before that of a clip path.
        const PropertySet declared = ParseDeclarations(attributes.Text(AttributeName::kStyle));
        attributes.ForEachProperty(apply);
        declared.ForEach(apply);
    } else {
        attributes.ForEachProperty(apply);
    }
    if (!attributes.Has(AttributeName::kClass)) {
        return {};
    }
    std::vector<std::string> names;
    for (const std::string_view name :
         SVGStringParser::SplitWords(attributes.Text(AttributeName::kClass))) {
        names.emplace_back(name);
        for (const PropertyText& each : sheet.FindClass(name)) {
            apply(each.property, each.text);
        }
    }
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return ClassSet(std::move(names));
}

void ApplySheet(const StyleSheet& sheet, const ClassSet& classes, const StyleSources& sources,
                const StyleTarget& target)
{
    for (const std::string& name : classes) {
        for (const PropertyText& each : sheet.FindClass(name)) {
            ApplyProperty(each.property, each.text, sources, target);
        }
    }
}

Color ResolveColor(const ColorValue& color, const ColorMap& colors)
{
    return ResolveColor(color, Color(), colors);
}

Color ResolveColor(const ColorValue& value, const Color& current, const ColorMap& colors)
{
    if (const Color* const color = std::get_if<Color>(&value)) {
        return *color;
    }
    if (const ColorVariable* const variable = std::get_if<ColorVariable>(&value)) {
        const auto found = colors.find(variable->name);
        return found != colors.end() ? found->second : variable->fallback;
    }
    return current;
}

bool NeedsResolution(const std::optional<ColorValue>& paintValue)
{
    return paintValue.has_value() && !std::holds_alternative<Color>(*paintValue);
}

FillStyle ResolveFill(const DocumentFillStyle& fill, const ColorMap& colors)
{
    FillStyle resolved = fill;
    if (fill.paintValue.has_value()) {
        resolved.paint = ResolveColor(*fill.paintValue, ResolveColor(fill.color, colors), colors);
    }
    return resolved;
}

StrokeStyle ResolveStroke(const DocumentStrokeStyle& stroke, const DocumentFillStyle& fill,
                          const ColorMap& colors)
{
    StrokeStyle resolved = stroke;
    if (stroke.paintValue.has_value()) {
        resolved.paint = ResolveColor(*stroke.paintValue, ResolveColor(fill.color, colors), colors);
    }
    return resolved;
}

}  // namespace SVGLoom
