#include "tools/svgloom/check/UnreadNames.h"

#include "svgloom/src/ElementParser.h"

#include <algorithm>
#include <iterator>

namespace svgloom {

namespace {

struct ElementRow {
    std::string_view name;
    Loss loss;
    std::string_view advice;
};

constexpr std::string_view kNoAnimation = "artwork stands still, draw the state that is to be seen";
constexpr std::string_view kNoFilter = "draw the effect as shapes";
constexpr std::string_view kNoText = "convert the text to paths";

constexpr ElementRow kElements[] = {
    {"a", Loss::kElement, "put a group in its place"},
    {"animate", Loss::kEffect, kNoAnimation},
    {"animateColor", Loss::kEffect, kNoAnimation},
    {"animateMotion", Loss::kEffect, kNoAnimation},
    {"animateTransform", Loss::kEffect, kNoAnimation},
    {"audio", Loss::kNothing, {}},
    {"canvas", Loss::kElement, "draw it as shapes"},
    {"color-profile", Loss::kEffect, "write colours as sRGB"},
    {"cursor", Loss::kNothing, {}},
    {"desc", Loss::kNothing, {}},
    {"filter", Loss::kDefinition, kNoFilter},
    {"font", Loss::kEffect, kNoText},
    {"font-face", Loss::kEffect, kNoText},
    {"foreignObject", Loss::kElement, "draw it as shapes"},
    {"iframe", Loss::kElement, "draw it as shapes"},
    {"image", Loss::kElement, "pictures are not shown, draw it as shapes"},
    {"link", Loss::kEffect, "put the rules into a style element"},
    {"marker", Loss::kDefinition, "draw the markers as shapes"},
    {"mask", Loss::kDefinition, "use a clip path, or draw the part that is left"},
    {"meshgradient", Loss::kEffect, "use a linear or radial gradient"},
    {"metadata", Loss::kNothing, {}},
    {"missing-glyph", Loss::kNothing, {}},
    {"hatch", Loss::kEffect, "draw the hatching as shapes"},
    {"pattern", Loss::kDefinition, "draw the pattern as shapes"},
    {"script", Loss::kEffect, "it is not run, draw what it would make"},
    {"set", Loss::kEffect, kNoAnimation},
    {"solidColor", Loss::kEffect, "write the colour where it is used"},
    {"solidcolor", Loss::kEffect, "write the colour where it is used"},
    {"stop", Loss::kNothing, {}},
    {"svg", Loss::kElement, "put a group with a transform in place of the inner svg"},
    {"switch", Loss::kElement, "leave only the part that is wanted, in a group"},
    {"text", Loss::kElement, kNoText},
    {"textPath", Loss::kElement, kNoText},
    {"title", Loss::kNothing, {}},
    {"tref", Loss::kElement, kNoText},
    {"tspan", Loss::kElement, kNoText},
    {"video", Loss::kElement, "draw it as shapes"},
    {"view", Loss::kNothing, {}},
};

struct AttributeRow {
    std::string_view name;
    Loss loss;
    std::string_view without;  // the values that lose nothing, with "|" between them
    std::string_view advice;
};

constexpr std::string_view kNoMarker = "draw the markers as shapes";
constexpr std::string_view kNoOrigin = "write a translate in front, or the transform as one matrix";
constexpr std::string_view kAsAttribute = "write it as an attribute";

constexpr AttributeRow kAttributes[] = {
    // Whoever looks at a picture does not see these.
    {"about", Loss::kNothing, {}, {}},
    {"align-items", Loss::kNothing, {}, {}},
    {"alignment-baseline", Loss::kNothing, {}, {}},
    {"all", Loss::kNothing, {}, {}},
    {"background", Loss::kNothing, {}, {}},
    {"baseline-shift", Loss::kNothing, {}, {}},
    {"baseProfile", Loss::kNothing, {}, {}},
    {"block-progression", Loss::kNothing, {}, {}},
    {"bottom", Loss::kNothing, {}, {}},
    {"box-sizing", Loss::kNothing, {}, {}},
    {"clip", Loss::kNothing, {}, {}},
    {"color-interpolation-filters", Loss::kNothing, {}, {}},
    {"color-profile", Loss::kNothing, {}, {}},
    {"color-rendering", Loss::kNothing, {}, {}},
    {"contentScriptType", Loss::kNothing, {}, {}},
    {"contentStyleType", Loss::kNothing, {}, {}},
    {"cursor", Loss::kNothing, {}, {}},
    {"datatype", Loss::kNothing, {}, {}},
    {"direction", Loss::kNothing, {}, {}},
    {"dominant-baseline", Loss::kNothing, {}, {}},
    {"enable-background", Loss::kNothing, {}, {}},
    {"externalResourcesRequired", Loss::kNothing, {}, {}},
    {"float", Loss::kNothing, {}, {}},
    {"flood-color", Loss::kNothing, {}, {}},
    {"flood-opacity", Loss::kNothing, {}, {}},
    {"focusable", Loss::kNothing, {}, {}},
    {"font", Loss::kNothing, {}, {}},
    {"glyph-orientation-horizontal", Loss::kNothing, {}, {}},
    {"glyph-orientation-vertical", Loss::kNothing, {}, {}},
    {"image-rendering", Loss::kNothing, {}, {}},
    {"isolation", Loss::kNothing, {}, {}},
    {"kerning", Loss::kNothing, {}, {}},
    {"lang", Loss::kNothing, {}, {}},
    {"left", Loss::kNothing, {}, {}},
    {"letter-spacing", Loss::kNothing, {}, {}},
    {"lighting-color", Loss::kNothing, {}, {}},
    {"line-height", Loss::kNothing, {}, {}},
    {"margin", Loss::kNothing, {}, {}},
    {"markerHeight", Loss::kNothing, {}, {}},
    {"markerWidth", Loss::kNothing, {}, {}},
    {"max-height", Loss::kNothing, {}, {}},
    {"max-width", Loss::kNothing, {}, {}},
    {"media", Loss::kNothing, {}, {}},
    {"min-height", Loss::kNothing, {}, {}},
    {"min-width", Loss::kNothing, {}, {}},
    {"nonce", Loss::kNothing, {}, {}},
    {"orphans", Loss::kNothing, {}, {}},
    {"outline", Loss::kNothing, {}, {}},
    {"overflow", Loss::kNothing, {}, {}},
    {"padding", Loss::kNothing, {}, {}},
    {"pointer-events", Loss::kNothing, {}, {}},
    {"position", Loss::kNothing, {}, {}},
    {"prefix", Loss::kNothing, {}, {}},
    {"property", Loss::kNothing, {}, {}},
    {"rel", Loss::kNothing, {}, {}},
    {"requiredExtensions", Loss::kNothing, {}, {}},
    {"resource", Loss::kNothing, {}, {}},
    {"rev", Loss::kNothing, {}, {}},
    {"right", Loss::kNothing, {}, {}},
    {"role", Loss::kNothing, {}, {}},
    {"shape-inside", Loss::kNothing, {}, {}},
    {"shape-margin", Loss::kNothing, {}, {}},
    {"shape-padding", Loss::kNothing, {}, {}},
    {"shape-rendering", Loss::kNothing, {}, {}},
    {"solid-color", Loss::kNothing, {}, {}},
    {"solid-opacity", Loss::kNothing, {}, {}},
    {"speak", Loss::kNothing, {}, {}},
    {"tabindex", Loss::kNothing, {}, {}},
    {"target", Loss::kNothing, {}, {}},
    {"title", Loss::kNothing, {}, {}},
    {"top", Loss::kNothing, {}, {}},
    {"touch-action", Loss::kNothing, {}, {}},
    {"type", Loss::kNothing, {}, {}},
    {"typeof", Loss::kNothing, {}, {}},
    {"unicode-bidi", Loss::kNothing, {}, {}},
    {"user-select", Loss::kNothing, {}, {}},
    {"vector-effect", Loss::kEffect, "none", "the line width follows the scale"},
    {"version", Loss::kNothing, {}, {}},
    {"vertical-align", Loss::kNothing, {}, {}},
    {"white-space", Loss::kNothing, {}, {}},
    {"widows", Loss::kNothing, {}, {}},
    {"will-change", Loss::kNothing, {}, {}},
    {"word-spacing", Loss::kNothing, {}, {}},
    {"writing-mode", Loss::kNothing, {}, {}},
    {"xmlns", Loss::kNothing, {}, {}},
    {"z-index", Loss::kNothing, {}, {}},
    {"zoomAndPan", Loss::kNothing, {}, {}},
    // Read elsewhere in the check, where they count.
    {"clipPathUnits", Loss::kNothing, {}, {}},
    {"gradientUnits", Loss::kNothing, {}, {}},
    // These show.
    {"animation", Loss::kEffect, "none", kNoAnimation},
    {"backdrop-filter", Loss::kEffect, "none", kNoFilter},
    {"background-color", Loss::kEffect, "none", "draw a rect behind everything"},
    {"color-interpolation", Loss::kEffect, "sRGB|auto", "colours are mixed as sRGB"},
    {"filter", Loss::kEffect, "none", kNoFilter},
    {"fr", Loss::kEffect, "0", "the gradient begins at its centre"},
    {"marker", Loss::kEffect, "none", kNoMarker},
    {"marker-end", Loss::kEffect, "none", kNoMarker},
    {"marker-mid", Loss::kEffect, "none", kNoMarker},
    {"marker-start", Loss::kEffect, "none", kNoMarker},
    {"mask", Loss::kEffect, "none", "use a clip path, or draw the part that is left"},
    {"mask-image", Loss::kEffect, "none", "use a clip path, or draw the part that is left"},
    {"mix-blend-mode", Loss::kEffect, "normal", "colours lie over each other"},
    {"paint-order", Loss::kEffect,
     "normal|fill|fill stroke|fill stroke markers|fill markers stroke|markers fill stroke|markers "
     "fill",
     "the fill comes first, then the stroke"},
    {"pathLength", Loss::kEffect, {}, "dashes count in user units"},
    {"requiredFeatures", Loss::kNothing, {}, {}},
    {"rotate", Loss::kEffect, "none", "write it in a transform attribute"},
    {"scale", Loss::kEffect, "none", "write it in a transform attribute"},
    {"systemLanguage", Loss::kEffect, {}, "the element is always drawn"},
    {"transform-box", Loss::kEffect, "view-box", kNoOrigin},
    {"transform-origin", Loss::kEffect, "0 0|0px 0px|0|top left|left top", kNoOrigin},
    {"transition", Loss::kNothing, {}, {}},
    {"translate", Loss::kEffect, "none", "write it in a transform attribute"},
};

// Whole families that lose nothing.
constexpr std::string_view kHarmlessBeginnings[] = {
    "-",       "aria-",       "data-",      "font-",      "on",     "text-",
    "mask-",   "background-", "animation-", "inline-",    "flex",   "border",
    "margin-", "padding-",    "outline-",   "scrollbar-", "xmlns:",
};

bool IsOneOf(std::string_view values, std::string_view value)
{
    for (bool more = true; more;) {
        const std::size_t bar = values.find('|');
        more = bar != std::string_view::npos;
        if (values.substr(0, bar) == value) {
            return true;
        }
        values.remove_prefix(more ? bar + 1 : values.size());
    }
    return false;
}

}  // namespace

UnreadName LookUpElement(std::string_view name)
{
    const auto* const row = std::ranges::find(kElements, name, &ElementRow::name);
    if (row != std::end(kElements)) {
        return {row->loss, row->advice};
    }
    return {};
}

UnreadName LookUpAttribute(std::string_view name, std::string_view value)
{
    const auto* const row = std::ranges::find(kAttributes, name, &AttributeRow::name);
    if (row != std::end(kAttributes)) {
        return IsOneOf(row->without, value) ? UnreadName{Loss::kNothing, {}}
                                            : UnreadName{row->loss, row->advice};
    }
    if (name.starts_with("--")) {
        return {Loss::kEffect,
                "variables get their colours from the program that shows the artwork"};
    }
    for (const std::string_view beginning : kHarmlessBeginnings) {
        if (name.starts_with(beginning)) {
            return {Loss::kNothing, {}};
        }
    }
    if (SVGLoom::FindAttribute(name) != SVGLoom::AttributeName::kUnknown) {
        return {Loss::kEffect, kAsAttribute};
    }
    return {};
}

bool IsElementOfSVG(std::string_view name)
{
    return name == "svg" || SVGLoom::ElementParser::Knows(name) ||
           LookUpElement(name).loss == Loss::kElement;
}

}  // namespace svgloom
