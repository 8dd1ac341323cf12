// Reads the input as a colour, with and without the current-colour marker, and as a paint against a
// few gradients. What a colour consumes is a colour of the same value by itself.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <vector>

#include "svgloom/src/SVGStringParser.h"

namespace {

using SVGLoom::Color;
using SVGLoom::ColorValue;
using SVGLoom::ParseResult;
using SVGLoom::SVGStringParser;

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

bool IsInRange(const Color& color)
{
    for (const float part : {color.red, color.green, color.blue, color.alpha}) {
        if (!(part >= 0 && part <= 1))
            return false;
    }
    return true;
}

struct Outcome {
    bool parsed = false;
    ColorValue value;
    std::size_t consumed = 0;
};

Outcome Parse(std::string_view text, bool allowCurrentColor)
{
    Outcome outcome;
    const ColorValue before = outcome.value;
    ParseResult result = ParseResult::kNone;
    const char* current = text.data();
    const char* const end = text.data() + text.size();
    outcome.parsed =
        SVGStringParser::ParseColor(current, end, outcome.value, allowCurrentColor, result);
    Require(current >= text.data() && current <= end);
    outcome.consumed = static_cast<std::size_t>(current - text.data());
    Require(outcome.parsed == (result == ParseResult::kSuccess));
    Require(outcome.parsed || outcome.value == before);
    Require(result != ParseResult::kNone || current == end);
    return outcome;
}

void CheckColor(std::string_view text, bool allowCurrentColor)
{
    const Outcome whole = Parse(text, allowCurrentColor);
    if (!whole.parsed)
        return;
    if (const Color* const color = std::get_if<Color>(&whole.value))
        Require(IsInRange(*color));
    Require(allowCurrentColor || !std::holds_alternative<SVGLoom::CurrentColor>(whole.value));
    const std::vector<char> part(text.begin(), text.begin() + whole.consumed);
    const Outcome alone = Parse({part.data(), part.size()}, allowCurrentColor);
    Require(alone.parsed && alone.value == whole.value && alone.consumed == part.size());
}

const SVGLoom::GradientTable& Gradients()
{
    static const SVGLoom::GradientTable& table = *[] {
        auto* const gradients = new SVGLoom::GradientTable;
        for (const char* const id : {"a", "b", "c"}) {
            SVGLoom::Gradient& gradient = (*gradients)[id].gradient;
            gradient.type =
                *id == 'c' ? SVGLoom::GradientType::kRadial : SVGLoom::GradientType::kLinear;
            gradient.stops.Append({0, {1, 0, 0, 1}});
            if (*id != 'a')
                gradient.stops.Append({1, {0, 1, 0, 1}});
        }
        return gradients;
    }();
    return table;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    CheckColor(text, false);
    CheckColor(text, true);

    SVGLoom::Paint paint = Color{0.5f, 0.5f, 0.5f, 0.5f};
    std::optional<ColorValue> value;
    const ParseResult result =
        SVGStringParser::ParsePaint(text, Gradients(), {0, 0, 30, 40}, paint, value);
    if (result != ParseResult::kSuccess) {
        Require(std::get<Color>(paint).alpha == 0.5f && !value.has_value());
    } else if (const SVGLoom::Gradient* const gradient = std::get_if<SVGLoom::Gradient>(&paint)) {
        Require(gradient->stops.size() == 2 && !value.has_value());
    } else {
        Require(IsInRange(std::get<Color>(paint)));
    }
    return 0;
}
