#include "svgloom/src/PropertyReaders.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <stdexcept>
#include <utility>
#include <vector>

#include "svgloom/src/SVGStringParser.h"

namespace SVGLoom {

namespace {

/// A plain number, limited to 0..1. True if it can be read.
bool ReadOpacity(std::string_view text, float& opacity)
{
    float value = 0;
    if (!SVGStringParser::ParseNumber(text, value)) {
        return false;
    }
    opacity = std::max(std::min(value, 1.0f), 0.0f);
    return true;
}

bool ReadFillRule(std::string_view text, FillRule& rule)
{
    if (text == "evenodd") {
        rule = FillRule::kEvenOdd;
    } else if (text == "nonzero") {
        rule = FillRule::kNonZero;
    } else {
        return false;
    }
    return true;
}

/// A colour, whatever stands behind it.
bool ReadColor(std::string_view text, ColorValue& value)
{
    const char* current = text.data();
    ParseResult result{};
    return SVGStringParser::ParseColor(current, current + text.size(), value,
                                       /*allowCurrentColor=*/true, result);
}

/// `has` is the flag of the record that says whether it is painted; `shown` is what it is painted
/// with as long as `value`, a colour or the current one, is not resolved.
template <class Value, class Style>
void PaintWith(const Color& shown, const Value& value, bool Style::*has, SharedStyle<Style>& style)
{
    const std::optional<ColorValue>& before = style->paintValue;
    const Value* const known = before.has_value() ? std::get_if<Value>(&*before) : nullptr;
    if ((*style).*has && known != nullptr && *known == value) {
        return;  // stays as it is, and shared
    }
    Style& own = style.Edit();
    own.*has = true;
    own.paint = shown;
    own.paintValue = value;
}

/// For "fill" and "stroke": `has` is the flag of the record that says whether it is painted.
template <class Style>
void ParsePaintProperty(std::string_view text, const StyleSources& sources, bool Style::*has,
                        SharedStyle<Style>& style)
{
    Paint paint = style->paint;
    std::optional<ColorValue> value = style->paintValue;
    const ParseResult result =
        SVGStringParser::ParsePaint(text, sources.gradients, sources.viewBox, paint, value);
    if (result == ParseResult::kInvalid) {
        return;
    }
    const bool paints = result == ParseResult::kSuccess;
    const bool staysAsItIs =
        (*style).*has == paints && (!paints || (value.has_value() && value == style->paintValue));
    if (staysAsItIs) {
        return;  // and shared
    }
    Style& own = style.Edit();
    own.*has = paints;
    if (paints) {
        own.paint = std::move(paint);
        own.paintValue = std::move(value);
    }
}

/// The same; most paints are plain colours, nothing, or the current colour.
template <class Style>
void ReadPaint(std::string_view text, const StyleSources& sources, bool Style::*has,
               SharedStyle<Style>& style)
{
    Color color;
    if (SVGStringParser::ParseHexColor(text, color)) {
        PaintWith(color, color, has, style);
    } else if (text == "none") {
        if ((*style).*has) {
            style.Edit().*has = false;
        }
    } else if (text == "currentColor") {
        PaintWith(color, CurrentColor(), has, style);
    } else {
        ParsePaintProperty(text, sources, has, style);
    }
}

void ReadOpacityProperty(std::string_view text, const StyleSources&, const StyleTarget& target)
{
    ReadOpacity(text, target.graphic.opacity);
}

void ReadClipPath(std::string_view text, const StyleSources& sources, const StyleTarget& target)
{
    // "url(#" and ")" are counted, not compared, on purpose. A text that is too short for them ends
    // the parse.
    constexpr std::size_t kBefore = 5;
    if (text.size() < kBefore) {
        throw std::out_of_range("invalid string position");
    }
    text.remove_prefix(kBefore);
    text.remove_suffix(text.empty() ? 0 : 1);
    // Only clip paths that stand before their use are there.
    if (const std::shared_ptr<ClippingPath>* const found = sources.clipPaths.Find(text)) {
        target.graphic.clippingPath = *found;
    }
}

void ReadDisplay(std::string_view text, const StyleSources&, const StyleTarget& target)
{
    // The other way round than one expects, on purpose: whoever reads the flag relies on it.
    if (text != "none") {
        target.graphic.display = false;
    }
}

void ReadStopOpacity(std::string_view text, const StyleSources&, const StyleTarget& target)
{
    ReadOpacity(text, target.graphic.stopOpacity);
}

void ReadStopColor(std::string_view text, const StyleSources&, const StyleTarget& target)
{
    ReadColor(text, target.graphic.stopColor);
}

void ReadFill(std::string_view text, const StyleSources& sources, const StyleTarget& target)
{
    ReadPaint(text, sources, static_cast<bool DocumentFillStyle::*>(&FillStyle::hasFill),
              target.fill);
}

void ReadFillOpacity(std::string_view text, const StyleSources&, const StyleTarget& target)
{
    float opacity = 0;
    if (ReadOpacity(text, opacity)) {
        target.fill.Edit().fillOpacity = opacity;
    }
}

void ReadFillRuleProperty(std::string_view text, const StyleSources&, const StyleTarget& target)
{
    FillRule rule{};
    if (ReadFillRule(text, rule)) {
        target.fill.Edit().fillRule = rule;
    }
}

void ReadColorProperty(std::string_view text, const StyleSources&, const StyleTarget& target)
{
    ColorValue value;
    if (ReadColor(text, value)) {
        target.fill.Edit().color = std::move(value);
    }
}

void ReadVisibility(std::string_view text, const StyleSources&, const StyleTarget& target)
{
    if (text == "hidden") {
        target.fill.Edit().visible = false;
    } else if (text == "visible" || text == "collapse") {  // both visible, on purpose
        target.fill.Edit().visible = true;
    }
}

void ReadClipRule(std::string_view text, const StyleSources&, const StyleTarget& target)
{
    FillRule rule{};
    if (ReadFillRule(text, rule)) {
        target.fill.Edit().clipRule = rule;
    }
}

void ReadStroke(std::string_view text, const StyleSources& sources, const StyleTarget& target)
{
    ReadPaint(text, sources, static_cast<bool DocumentStrokeStyle::*>(&StrokeStyle::hasStroke),
              target.stroke);
}

void ReadStrokeWidth(std::string_view text, const StyleSources& sources, const StyleTarget& target)
{
    // A width that cannot be read counts as 0: both switch the stroke off, on purpose. A negative
    // one is ignored.
    float width = 0;
    const bool read = SVGStringParser::ParseLength(text, DiagonalOf(sources.viewBox), width);
    if (read && width >= 0) {
        target.stroke.Edit().lineWidth = width;
    }
    if (width == 0) {
        target.stroke.Edit().hasStroke = false;
    }
}

void ReadStrokeLinecap(std::string_view text, const StyleSources&, const StyleTarget& target)
{
    // "butt" sets nothing, on purpose: an inherited cap cannot be taken back.
    if (text == "round") {
        target.stroke.Edit().lineCap = LineCap::kRound;
    } else if (text == "square") {
        target.stroke.Edit().lineCap = LineCap::kSquare;
    }
}

void ReadStrokeLinejoin(std::string_view text, const StyleSources&, const StyleTarget& target)
{
    // Nor does "miter".
    if (text == "round") {
        target.stroke.Edit().lineJoin = LineJoin::kRound;
    } else if (text == "bevel") {
        target.stroke.Edit().lineJoin = LineJoin::kBevel;
    }
}

void ReadStrokeMiterlimit(std::string_view text, const StyleSources&, const StyleTarget& target)
{
    float limit = 0;
    if (SVGStringParser::ParseNumber(text, limit) && limit >= 1) {
        target.stroke.Edit().miterLimit = limit;
    }
}

void ReadStrokeDashoffset(std::string_view text, const StyleSources& sources,
                          const StyleTarget& target)
{
    float offset = 0;
    if (SVGStringParser::ParseLength(text, DiagonalOf(sources.viewBox), offset)) {
        target.stroke.Edit().dashOffset = offset;
    }
}

void ReadStrokeDasharray(std::string_view text, const StyleSources& sources,
                         const StyleTarget& target)
{
    // A list that cannot be read ("none" too), or with an entry below 0, makes a solid line.
    std::vector<float> dashes;
    SVGStringParser::ParseLengthList(text, DiagonalOf(sources.viewBox), dashes);
    if (std::any_of(dashes.begin(), dashes.end(), [](float dash) { return dash < 0; })) {
        dashes.clear();
    }
    if (dashes.size() % 2 != 0) {
        dashes.reserve(2 * dashes.size());
        dashes.insert(dashes.end(), dashes.begin(), dashes.end());
    }
    target.stroke.Edit().dashArray = SharedVector<float>(std::move(dashes));
}

void ReadStrokeOpacity(std::string_view text, const StyleSources&, const StyleTarget& target)
{
    float opacity = 0;
    if (ReadOpacity(text, opacity)) {
        target.stroke.Edit().strokeOpacity = opacity;
    }
}

using Reader = void (*)(std::string_view, const StyleSources&, const StyleTarget&);

struct ReaderRow {
    AttributeName property;
    Reader read;
};

constexpr ReaderRow kReaders[] = {
    {AttributeName::kOpacity, ReadOpacityProperty},
    {AttributeName::kClipPath, ReadClipPath},
    {AttributeName::kDisplay, ReadDisplay},
    {AttributeName::kStopOpacity, ReadStopOpacity},
    {AttributeName::kStopColor, ReadStopColor},
    {AttributeName::kFill, ReadFill},
    {AttributeName::kFillOpacity, ReadFillOpacity},
    {AttributeName::kFillRule, ReadFillRuleProperty},
    {AttributeName::kColor, ReadColorProperty},
    {AttributeName::kVisibility, ReadVisibility},
    {AttributeName::kClipRule, ReadClipRule},
    {AttributeName::kStroke, ReadStroke},
    {AttributeName::kStrokeWidth, ReadStrokeWidth},
    {AttributeName::kStrokeLinecap, ReadStrokeLinecap},
    {AttributeName::kStrokeLinejoin, ReadStrokeLinejoin},
    {AttributeName::kStrokeMiterlimit, ReadStrokeMiterlimit},
    {AttributeName::kStrokeDashoffset, ReadStrokeDashoffset},
    {AttributeName::kStrokeDasharray, ReadStrokeDasharray},
    {AttributeName::kStrokeOpacity, ReadStrokeOpacity},
};
static_assert(std::size(kReaders) == kPropertyCount);

constexpr bool AreReadersInOrder()
{
    for (std::size_t i = 0; i < kPropertyCount; ++i) {
        if (static_cast<std::size_t>(kReaders[i].property) != i) {
            return false;
        }
    }
    return true;
}
static_assert(AreReadersInOrder());

constexpr bool IsOfFill(AttributeName property)
{
    return property >= AttributeName::kFill && property <= AttributeName::kClipRule;
}

constexpr bool IsOfStroke(AttributeName property)
{
    return property >= AttributeName::kStroke && property <= AttributeName::kStrokeOpacity;
}

}  // namespace

void ApplyProperty(AttributeName property, std::string_view text, const StyleSources& sources,
                   const StyleTarget& target)
{
    const auto read = [property, text, &sources, &target] {
        kReaders[static_cast<std::size_t>(property)].read(text, sources, target);
    };
    const bool isShort = sources.memos != nullptr && StyleMemo<DocumentFillStyle>::Takes(text);
    if (isShort && IsOfFill(property)) {
        sources.memos->fill.Apply(property, text, target.fill, read);
    } else if (isShort && IsOfStroke(property)) {
        sources.memos->stroke.Apply(property, text, target.stroke, read);
    } else {
        read();
    }
}

float DiagonalOf(const Rect& viewBox)
{
    return std::sqrt(viewBox.width * viewBox.width + viewBox.height * viewBox.height);
}

}  // namespace SVGLoom
