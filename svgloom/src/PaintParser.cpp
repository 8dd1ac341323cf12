// Paints: nothing, a colour, a variable, or a gradient with an optional fallback.

#include <cmath>
#include <cstddef>

#include "svgloom/src/Characters.h"
#include "svgloom/src/SVGStringParser.h"

namespace SVGLoom {

namespace {

constexpr std::string_view kReference = "url(#";
constexpr std::string_view kNone = "none";

void SetUnlessGiven(float& coordinate, float value)
{
    if (!std::isfinite(coordinate)) {
        coordinate = value;
    }
}

/// Fills what the gradient does not give from the size of the viewport.
void SetMissingCoordinates(Gradient& gradient, float width, float height)
{
    if (gradient.type == GradientType::kRadial) {
        SetUnlessGiven(gradient.cx, width / 2);
        SetUnlessGiven(gradient.cy, height / 2);
        SetUnlessGiven(gradient.fx, gradient.cx);
        SetUnlessGiven(gradient.fy, gradient.cy);
        // Half the whole diagonal, not half of the diagonal divided by the root of two, on purpose.
        SetUnlessGiven(gradient.r, std::sqrt(width * width + height * height) / 2);
    } else {
        SetUnlessGiven(gradient.x1, 0);
        SetUnlessGiven(gradient.y1, 0);
        SetUnlessGiven(gradient.x2, width);
        SetUnlessGiven(gradient.y2, 0);
    }
}

void UseGradient(const Gradient& gradient, const Rect& viewport, Paint& paint,
                 std::optional<ColorValue>& colorValue)
{
    if (gradient.stops.size() == 1) {
        paint = gradient.stops[0].color;
        colorValue = gradient.stops[0].color;
        return;
    }
    Gradient used = gradient;
    SetMissingCoordinates(used, viewport.width, viewport.height);
    paint = std::move(used);
    colorValue.reset();
}

/// What a paint shows as long as its colour value is not resolved.
Color Unresolved(const ColorValue& value)
{
    if (const Color* const color = std::get_if<Color>(&value)) {
        return *color;
    }
    const ColorVariable* const variable = std::get_if<ColorVariable>(&value);
    return variable != nullptr ? variable->fallback : Color();
}

}  // namespace

ParseResult SVGStringParser::ParsePaint(std::string_view text, const GradientTable& gradients,
                                        const Rect& viewport, Paint& paint,
                                        std::optional<ColorValue>& colorValue)
{
    const char* current = text.data();
    const char* const end = current + text.size();
    if (!SkipSpace(current, end)) {
        return ParseResult::kInvalid;
    }
    std::string_view rest(current, static_cast<std::size_t>(end - current));
    const bool isReference = rest.starts_with(kReference);
    const Gradient* gradient = nullptr;
    if (isReference) {
        const std::size_t close = rest.find(')', kReference.size());
        if (close == std::string_view::npos) {
            return ParseResult::kInvalid;
        }
        if (const GradientDefinition* const found =
                gradients.Find(rest.substr(kReference.size(), close - kReference.size()))) {
            gradient = &found->gradient;
        }
        current += close + 1;
    }

    // A colour, or the fallback behind a reference, which has to be valid also where it is not
    // used.
    ParseResult result = ParseResult::kSuccess;
    ColorValue value;
    const bool hasValue = SkipSpace(current, end);
    if (hasValue) {
        rest = {current, static_cast<std::size_t>(end - current)};
        if (rest.starts_with(kNone)) {
            current += kNone.size();
            result = ParseResult::kNone;
        } else if (!ParseColor(current, end, value, /*allowCurrentColor=*/true, result)) {
            return result;
        }
        if (SkipSpace(current, end)) {
            return ParseResult::kInvalid;
        }
    }

    if (gradient != nullptr) {
        UseGradient(*gradient, viewport, paint, colorValue);
        return ParseResult::kSuccess;
    }
    if (hasValue && result == ParseResult::kSuccess) {
        paint = Unresolved(value);
        colorValue = std::move(value);
    }
    // A reference to nothing without a fallback is a success that leaves the paint as it was.
    return result;
}

}  // namespace SVGLoom
