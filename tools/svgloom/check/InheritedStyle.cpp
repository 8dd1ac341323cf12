#include "tools/svgloom/check/InheritedStyle.h"

#include <algorithm>
#include <optional>

#include "svgloom/src/PropertyReaders.h"
#include "svgloom/src/SVGStringParser.h"
#include "tools/svgloom/check/PropertyChecks.h"

namespace svgloom {

namespace {

using SVGLoom::AttributeName;
using SVGLoom::ParseResult;
using SVGLoom::SVGStringParser;

// The order of the table of names.
constexpr AttributeName kNotInherited[] = {AttributeName::kOpacity, AttributeName::kClipPath,
                                           AttributeName::kDisplay, AttributeName::kStopOpacity,
                                           AttributeName::kStopColor};

float LimitedOpacity(std::string_view text, float otherwise)
{
    float value = otherwise;
    SVGStringParser::ParseNumber(text, value);
    return std::clamp(value, 0.0f, 1.0f);
}

void SetText(AttributeName property, std::string_view text, ElementStyle& style)
{
    // Most elements share their texts with those around them.
    auto own = std::make_shared<StyleTexts>(*style.inherited.texts);
    (*own)[static_cast<std::size_t>(property)] = WithoutSpace(text);
    style.inherited.texts = std::move(own);
}

}  // namespace

PropertyBits ElementStyle::Taken() const
{
    using enum AttributeName;
    PropertyBits taken = BitOf(kFill) | BitOf(kStroke);
    if (inherited.hasFill) {
        taken |= BitOf(kFillRule) | BitOf(kFillOpacity);
    }
    if (inherited.hasStroke) {
        taken |= BitOf(kStrokeWidth) | BitOf(kStrokeLinecap) | BitOf(kStrokeLinejoin) |
                 BitOf(kStrokeMiterlimit) | BitOf(kStrokeDasharray) | BitOf(kStrokeOpacity);
    }
    const bool usesColor = (inherited.hasFill && inherited.fill == PaintKind::kCurrentColor) ||
                           (inherited.hasStroke && inherited.stroke == PaintKind::kCurrentColor);
    return (usesColor ? taken | BitOf(kColor) : taken) & ~set;
}

void StyleReader::Apply(AttributeName property, std::string_view text, const Locator& where,
                        ElementStyle& style)
{
    const std::size_t offset = where.OffsetOf(text.data());
    style.set |= BitOf(property);
    if (std::ranges::find(kNotInherited, property) == std::end(kNotInherited)) {
        SetText(property, text, style);
    }
    switch (property) {
        case AttributeName::kOpacity:
            style.opacity = LimitedOpacity(text, style.opacity);
            break;
        case AttributeName::kClipPath:
            ApplyClipPath(text, offset, style);
            break;
        case AttributeName::kFill:
        case AttributeName::kStroke:
            ApplyPaint(property, text, offset, style);
            break;
        case AttributeName::kFillOpacity:
            style.inherited.fillOpacity = LimitedOpacity(text, style.inherited.fillOpacity);
            break;
        case AttributeName::kStrokeWidth:
            ApplyStrokeWidth(text, offset, style);
            break;
        case AttributeName::kStrokeLinecap:
            if (text == "butt" && style.inherited.hasCap) {
                reporter_.Report(Rule::kKeywordDefault, offset, TextOf(property), text);
            }
            style.inherited.hasCap |= text == "round" || text == "square";
            break;
        case AttributeName::kStrokeLinejoin:
            if (text == "miter" && style.inherited.hasJoin) {
                reporter_.Report(Rule::kKeywordDefault, offset, TextOf(property), text);
            }
            style.inherited.hasJoin |= text == "round" || text == "bevel";
            break;
        default:
            break;
    }
}

void StyleReader::ApplyPaint(AttributeName property, std::string_view text, std::size_t offset,
                             ElementStyle& style)
{
    SVGLoom::Paint paint;
    std::optional<SVGLoom::ColorValue> color;
    const ParseResult result =
        SVGStringParser::ParsePaint(text, gradients_.Table(), viewBox_, paint, color);
    if (result == ParseResult::kInvalid) {
        return;
    }
    InheritedStyle& inherited = style.inherited;
    const bool paints = result == ParseResult::kSuccess;
    const bool isFill = property == AttributeName::kFill;
    (isFill ? inherited.hasFill : inherited.hasStroke) = paints;
    if (!isFill) {
        inherited.isStrokeOffByWidth = false;
    }
    if (!paints) {
        return;
    }
    PaintKind& kind = isFill ? inherited.fill : inherited.stroke;
    if (color.has_value()) {
        kind = std::holds_alternative<SVGLoom::CurrentColor>(*color) ? PaintKind::kCurrentColor
                                                                     : PaintKind::kPlain;
    } else if (std::holds_alternative<SVGLoom::Gradient>(paint)) {
        kind = PaintKind::kGradient;
        if (isFill) {
            inherited.fillGradient = ReferenceIn(text);
        }
    } else {
        missing_.push_back(
            {Rule::kPaintLater, Rule::kPaintUnknown, ReferenceIn(text), TextOf(property), offset});
    }
}

void StyleReader::ApplyStrokeWidth(std::string_view text, std::size_t offset, ElementStyle& style)
{
    float width = 0;
    SVGStringParser::ParseLength(text, SVGLoom::DiagonalOf(viewBox_), width);
    InheritedStyle& inherited = style.inherited;
    if (width == 0) {
        inherited.isStrokeOffByWidth = inherited.isStrokeOffByWidth || inherited.hasStroke;
        inherited.hasStroke = false;
    } else if (width > 0 && inherited.isStrokeOffByWidth) {
        reporter_.Report(Rule::kStrokeStaysOff, offset);
    }
}

void StyleReader::ApplyClipPath(std::string_view text, std::size_t offset, ElementStyle& style)
{
    const std::string_view id = ReferenceIn(text);
    if (id.empty()) {
        return;
    }
    if (const bool* const hasContent = clipPaths_.Find(id)) {
        style.hasClip = true;
        style.clipsAll = !*hasContent;
        if (!*hasContent) {
            reporter_.Report(Rule::kClipPathEmpty, offset, Shown(id));
        }
    } else {
        missing_.push_back({Rule::kClipPathLater, Rule::kClipPathUnknown, id, {}, offset});
    }
}

void StyleReader::TellMissing()
{
    for (const Missing& each : missing_) {
        const bool isClip = each.property.empty();
        const bool came =
            isClip ? clipPaths_.Find(each.id) != nullptr : gradients_.Find(each.id) != nullptr;
        const std::string id = Shown(each.id);
        reporter_.Report(came ? each.later : each.unknown, each.offset,
                         isClip ? std::string_view(id) : each.property, id);
    }
}

}  // namespace svgloom
