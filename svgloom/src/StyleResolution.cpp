#include "svgloom/src/StyleResolution.h"

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "svgloom/src/Declarations.h"
#include "svgloom/src/SVGStringParser.h"

namespace SVGLoom {

namespace {

/// The names in the order of the text, as many as there usually are without a list on the heap.
class Words {
public:
    explicit Words(std::string_view text)
    {
        SVGStringParser::ForEachWord(text, [this](std::string_view word) { Add(word); });
    }
    std::span<std::string_view> All()
    {
        return count_ <= kFew ? std::span(few_, count_) : std::span(many_);
    }

private:
    static constexpr std::size_t kFew = 8;

    void Add(std::string_view word)
    {
        if (count_ < kFew) {
            few_[count_] = word;
        } else {
            if (count_ == kFew) {
                many_.assign(few_, few_ + kFew);
            }
            many_.push_back(word);
        }
        ++count_;
    }

    std::string_view few_[kFew];
    std::size_t count_ = 0;
    std::vector<std::string_view> many_;
};

/// Calls apply(property, text) for what the rules of the classes set.
template <class Apply>
ClassSet ApplyClasses(std::string_view text, const StyleSheet& sheet, const Apply& apply)
{
    Words names(text);
    if (!sheet.empty()) {
        for (const std::string_view name : names.All()) {
            for (const PropertyText& each : sheet.FindClass(name)) {
                apply(each.property, each.text);
            }
        }
    }
    return ClassSet(names.All());
}

}  // namespace

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
    return ApplyClasses(attributes.Text(AttributeName::kClass), sheet, apply);
}

void ApplySheet(const StyleSheet& sheet, const ClassSet& classes, const StyleSources& sources,
                const StyleTarget& target)
{
    for (const std::string_view name : classes) {
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
