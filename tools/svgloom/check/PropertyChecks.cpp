#include "tools/svgloom/check/PropertyChecks.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <vector>

#include "svgloom/src/Characters.h"
#include "svgloom/src/SVGStringParser.h"

namespace svgloom {

namespace {

using SVGLoom::AttributeName;
using SVGLoom::ColorValue;
using SVGLoom::ColorVariable;
using SVGLoom::ParseResult;
using SVGLoom::SVGStringParser;

constexpr std::string_view kInherit = "inherit";
/// Stands for a percentage's reference where only its being readable counts.
constexpr float kAnyReference = 100;

/// What is checked, and where.
struct Value {
    AttributeName property;
    std::string_view text;
    const Locator& where;
    Reporter& reporter;

    std::string_view Name() const { return SVGLoom::TextOf(property); }
    void Report(Rule rule, const char* place) const
    {
        reporter.Report(rule, where.OffsetOf(place), Name(), Shown(text));
    }
    void Report(Rule rule) const { Report(rule, text.data()); }
};

bool EndsInPercent(std::string_view text)
{
    return WithoutSpace(text).ends_with('%');
}

/// Whether all of it is letters and hyphens.
bool IsWord(std::string_view text)
{
    return !text.empty() &&
           std::ranges::all_of(text, [](char c) { return SVGLoom::IsLetter(c) || c == '-'; });
}

void CheckOpacity(const Value& value)
{
    CheckNumber(value.Name(), value.text, value.where, value.reporter);
}

void CheckMiterLimit(const Value& value)
{
    float limit = 0;
    if (!SVGStringParser::ParseNumber(value.text, limit)) {
        value.Report(Rule::kNumberInvalid);
    }
}

void CheckDisplay(const Value& value)
{
    if (value.text == "none") {
        value.Report(Rule::kDisplay);
    }
}

void CheckVisibility(const Value& value)
{
    if (value.text == "hidden" || value.text == "collapse") {
        value.Report(Rule::kVisibility);
    } else if (value.text != "visible" && value.text != kInherit) {
        value.Report(Rule::kKeywordInvalid);
    }
}

void CheckRule(const Value& value)
{
    if (value.text != "evenodd" && value.text != "nonzero" && value.text != kInherit) {
        value.Report(Rule::kKeywordInvalid);
    }
}

void CheckCap(const Value& value)
{
    if (value.text != "butt" && value.text != "round" && value.text != "square" &&
        value.text != kInherit) {
        value.Report(Rule::kKeywordInvalid);
    }
}

void CheckJoin(const Value& value)
{
    if (value.text != "miter" && value.text != "round" && value.text != "bevel" &&
        value.text != kInherit) {
        value.Report(Rule::kKeywordInvalid);
    }
}

void CheckClipPath(const Value& value)
{
    constexpr std::string_view kBegin = "url(#";
    if (value.text.size() < kBegin.size()) {
        value.reporter.Report(Rule::kClipPathShort, value.where.OffsetOf(value.text.data()),
                              Shown(value.text));
        return;
    }
    // The engine counts the characters around the id and does not look at them.
    if (!value.text.starts_with(kBegin) || !value.text.ends_with(')')) {
        value.reporter.Report(Rule::kClipPathForm, value.where.OffsetOf(value.text.data()),
                              Shown(value.text));
    }
}

void CheckWidth(const Value& value)
{
    float width = 0;
    if (!SVGStringParser::ParseLength(value.text, kAnyReference, width)) {
        value.reporter.Report(Rule::kStrokeWidthInvalid, value.where.OffsetOf(value.text.data()),
                              Shown(value.text));
    } else if (EndsInPercent(value.text) && width != 0) {
        value.Report(Rule::kPercentDiagonal);
    } else if (width < 0) {
        value.Report(Rule::kNumberInvalid);
    }
}

void CheckDashOffset(const Value& value)
{
    float offset = 0;
    if (!SVGStringParser::ParseLength(value.text, kAnyReference, offset)) {
        value.Report(value.text == kInherit ? Rule::kKeywordInvalid : Rule::kNumberInvalid);
    } else if (offset != 0) {
        value.Report(Rule::kDashOffset);
    }
}

void CheckDashes(const Value& value)
{
    if (WithoutSpace(value.text) == "none") {
        return;
    }
    std::vector<float> dashes;
    const bool read = SVGStringParser::ParseLengthList(value.text, kAnyReference, dashes);
    if (!read || std::ranges::any_of(dashes, [](float dash) { return dash < 0; })) {
        value.reporter.Report(Rule::kDashInvalid, value.where.OffsetOf(value.text.data()),
                              Shown(value.text));
    } else if (value.text.find('%') != std::string_view::npos) {
        value.Report(Rule::kPercentDiagonal);
    }
}

struct ColorAdvice {
    std::string_view beginning;  // in lower case
    std::string_view advice;
};

constexpr ColorAdvice kColorAdvice[] = {
    {"#", "write #rgb or #rrggbb, and transparency as an opacity"},
    {"color(", "write #rrggbb"},
    {"color-mix(", "write #rrggbb"},
    {"context-", "write the colour"},
    {"device-cmyk(", "write #rrggbb"},
    {"hsl", "write #rrggbb"},
    {"hwb(", "write #rrggbb"},
    {"inherit", "leave it out, it is inherited unless something sets it"},
    {"initial", "write the value"},
    {"lab(", "write #rrggbb"},
    {"lch(", "write #rrggbb"},
    {"lightblue", "it is not in the table of names, write #add8e6"},
    {"none", "write it in lower case, with nothing behind it"},
    {"oklab(", "write #rrggbb"},
    {"oklch(", "write #rrggbb"},
    {"revert", "write the value"},
    {"rgb(", "write three whole numbers with commas between them, or #rrggbb"},
    {"rgba(", "write rgb(), and the alpha as an opacity"},
    {"transparent", "write none, or opacity 0"},
    {"unset", "write the value"},
    {"url(#", "write url(#id), and behind it nothing or a colour"},
    {"url(", "write url(#id), without quotes or a file"},
    {"var(", "write var(--name, colour)"},
};

std::string Lowered(std::string_view text)
{
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), SVGLoom::ToLower);
    return lower;
}

std::string_view AdviceFor(std::string_view text)
{
    constexpr std::size_t kLongest = 16;
    const std::string lower = Lowered(WithoutSpace(text).substr(0, kLongest));
    const auto* const found = std::ranges::find_if(kColorAdvice, [&lower](const ColorAdvice& row) {
        return lower.starts_with(row.beginning);
    });
    return found != std::end(kColorAdvice) ? found->advice : "write #rrggbb";
}

void ReportColor(const Value& value)
{
    value.reporter.Report(Rule::kColorInvalid, value.where.OffsetOf(value.text.data()),
                          Assigned(value.Name(), value.text), AdviceFor(value.text));
}

/// The fallback of a variable that is one itself, or the current colour, is black.
void CheckFallback(const Value& value, std::string_view text)
{
    const std::size_t comma = text.find(',');
    if (comma == std::string_view::npos) {
        return;
    }
    const char* current = text.data() + comma + 1;
    ColorValue fallback;
    ParseResult result{};
    if (SVGStringParser::ParseColor(current, text.data() + text.size(), fallback,
                                    /*allowCurrentColor=*/true, result) &&
        !std::holds_alternative<SVGLoom::Color>(fallback)) {
        value.Report(Rule::kVariableFallback, text.data() + comma + 1);
    }
}

void CheckPaint(const Value& value)
{
    if (WithoutSpace(value.text) == kInherit) {
        return;  // it changes nothing, and so is inherited
    }
    static const SVGLoom::GradientTable& noGradients = *new SVGLoom::GradientTable;
    SVGLoom::Paint paint;
    std::optional<ColorValue> color;
    if (SVGStringParser::ParsePaint(value.text, noGradients, {}, paint, color) ==
        ParseResult::kInvalid) {
        ReportColor(value);
    } else if (color.has_value() && std::holds_alternative<ColorVariable>(*color)) {
        CheckFallback(value, value.text);
    }
}

void CheckColor(const Value& value)
{
    const char* current = value.text.data();
    const char* const end = current + value.text.size();
    ColorValue color;
    ParseResult result{};
    if (!SVGStringParser::ParseColor(current, end, color, /*allowCurrentColor=*/true, result)) {
        if (value.property != AttributeName::kColor || value.text != kInherit) {
            ReportColor(value);
        }
        return;
    }
    if (SVGLoom::SkipSpace(current, end)) {
        value.Report(Rule::kColorCut);
    }
    if (std::holds_alternative<ColorVariable>(color)) {
        CheckFallback(value, value.text);
        if (value.property == AttributeName::kStopColor) {
            value.Report(Rule::kStopVariable);
        }
    }
}

struct CheckRow {
    AttributeName property;
    void (*check)(const Value& value);
};

constexpr CheckRow kChecks[] = {
    {AttributeName::kOpacity, CheckOpacity},
    {AttributeName::kClipPath, CheckClipPath},
    {AttributeName::kDisplay, CheckDisplay},
    {AttributeName::kStopOpacity, CheckOpacity},
    {AttributeName::kStopColor, CheckColor},
    {AttributeName::kFill, CheckPaint},
    {AttributeName::kFillOpacity, CheckOpacity},
    {AttributeName::kFillRule, CheckRule},
    {AttributeName::kColor, CheckColor},
    {AttributeName::kVisibility, CheckVisibility},
    {AttributeName::kClipRule, CheckRule},
    {AttributeName::kStroke, CheckPaint},
    {AttributeName::kStrokeWidth, CheckWidth},
    {AttributeName::kStrokeLinecap, CheckCap},
    {AttributeName::kStrokeLinejoin, CheckJoin},
    {AttributeName::kStrokeMiterlimit, CheckMiterLimit},
    {AttributeName::kStrokeDashoffset, CheckDashOffset},
    {AttributeName::kStrokeDasharray, CheckDashes},
    {AttributeName::kStrokeOpacity, CheckOpacity},
};

constexpr bool HasEachProperty()
{
    for (std::size_t i = 0; i < std::size(kChecks); ++i) {
        if (static_cast<std::size_t>(kChecks[i].property) != i) {
            return false;
        }
    }
    return std::size(kChecks) == SVGLoom::kPropertyCount;
}
static_assert(HasEachProperty());

}  // namespace

void CheckProperty(AttributeName property, std::string_view text, const Locator& where,
                   Reporter& reporter)
{
    const Value value{property, text, where, reporter};
    // What ends the reading goes before all else.
    if (property != AttributeName::kClipPath && text.find("!important") != std::string_view::npos) {
        value.Report(Rule::kImportant);
        return;
    }
    kChecks[static_cast<std::size_t>(property)].check(value);
}

void CheckNumber(std::string_view name, std::string_view text, const Locator& where,
                 Reporter& reporter)
{
    float number = 0;
    if (!SVGStringParser::ParseNumber(text, number)) {
        const bool isInherited =
            text == kInherit && name != "opacity" && name != "offset" && name != "stop-opacity";
        if (!isInherited) {
            reporter.Report(EndsInPercent(text) ? Rule::kNumberPercent : Rule::kNumberInvalid,
                            where.OffsetOf(text.data()), name, Shown(text));
        }
    }
}

bool CheckLength(AttributeName name, std::string_view text, float reference, const Locator& where,
                 Reporter& reporter, float& value)
{
    const std::size_t offset = where.OffsetOf(text.data());
    if (!SVGStringParser::ParseLength(text, reference, value)) {
        // Digits and then letters: a unit.
        const std::string_view trimmed = WithoutSpace(text);
        const std::size_t digits = trimmed.find_last_of("0123456789.");
        const bool hasUnit = digits != std::string_view::npos && IsWord(trimmed.substr(digits + 1));
        reporter.Report(hasUnit ? Rule::kLengthUnit : Rule::kLengthInvalid, offset,
                        SVGLoom::TextOf(name), Shown(text));
        return false;
    }
    if (name == AttributeName::kR && EndsInPercent(text) && value != 0) {
        reporter.Report(Rule::kPercentDiagonal, offset, SVGLoom::TextOf(name), Shown(text));
    }
    return true;
}

std::string Assigned(std::string_view name, std::string_view text)
{
    return std::string(name) + "=\"" + Shown(text) + "\"";
}

std::string_view ReferenceIn(std::string_view text)
{
    constexpr std::string_view kBegin = "url(#";
    text = WithoutSpace(text);
    if (!text.starts_with(kBegin)) {
        return {};
    }
    text.remove_prefix(kBegin.size());
    return text.substr(0, text.find(')'));
}

std::string_view WithoutSpace(std::string_view text)
{
    while (!text.empty() && SVGLoom::IsSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && SVGLoom::IsSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

}  // namespace svgloom
