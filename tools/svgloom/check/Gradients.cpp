#include "tools/svgloom/check/Gradients.h"

#include <cmath>

namespace svgloom {

namespace {

float Given(float value, float otherwise)
{
    return std::isfinite(value) ? value : otherwise;
}

/// Whether right angles stay right, and for circles lengths alike.
bool IsUneven(const CheckedGradient& gradient, const SVGLoom::Rect& viewBox)
{
    constexpr float kSeen = 1e-2f;
    const auto& [a, b, c, d] = gradient.matrix;
    float x = 1;
    float y = 0;
    if (gradient.type == SVGLoom::GradientType::kLinear) {
        x = Given(gradient.x2, viewBox.width) - Given(gradient.x1, 0);
        y = Given(gradient.y2, 0) - Given(gradient.y1, 0);
    }
    // The direction of the gradient and the one across it, transformed.
    const float alongX = x * a + y * c;
    const float alongY = x * b + y * d;
    const float acrossX = -y * a + x * c;
    const float acrossY = -y * b + x * d;
    const float along = std::hypot(alongX, alongY);
    const float across = std::hypot(acrossX, acrossY);
    const bool isSkewed = std::abs(alongX * acrossX + alongY * acrossY) > kSeen * along * across;
    const bool isStretched = gradient.type == SVGLoom::GradientType::kRadial &&
                             std::abs(along - across) > kSeen * std::max(along, across);
    return isSkewed || isStretched;
}

}  // namespace

bool Gradients::Add(std::string_view id, const CheckedGradient& gradient)
{
    const auto [stored, isNew] = gradients_.Add(id);
    if (!isNew) {
        return false;
    }
    stored = gradient;
    SVGLoom::GradientDefinition& definition = table_[id];
    definition.gradient.type = gradient.type;
    for (std::size_t i = 0; i < std::min<std::size_t>(gradient.stops, 2); ++i) {
        definition.gradient.stops.Append({});
    }
    return true;
}

void Gradients::TellUse(std::string_view id, const SVGLoom::Rect& viewBox)
{
    const auto [gradient, isNew] = gradients_.Add(id);
    if (isNew || gradient.isTold) {
        return;
    }
    gradient.isTold = true;
    if (!gradient.isInUserSpace) {
        reporter_.Report(Rule::kGradientUnits, gradient.offset);
    }
    if (!gradient.spread.empty()) {
        reporter_.Report(Rule::kSpreadMethod, gradient.offset, gradient.spread);
    }
    if (IsUneven(gradient, viewBox)) {
        reporter_.Report(Rule::kGradientUneven, gradient.offset);
    }
    if (gradient.type == SVGLoom::GradientType::kRadial) {
        TellRadial(gradient, viewBox);
    }
}

void Gradients::TellRadial(const CheckedGradient& gradient, const SVGLoom::Rect& viewBox)
{
    constexpr float kSeen = 1e-2f;
    if (gradient.stops > 2 || gradient.firstOffset > kSeen || gradient.lastOffset < 1 - kSeen) {
        reporter_.Report(Rule::kRadialStops, gradient.offset);
    }
    if (!std::isfinite(gradient.r)) {
        reporter_.Report(Rule::kRadialRadius, gradient.offset);
        return;
    }
    const float cx = Given(gradient.cx, viewBox.width / 2);
    const float cy = Given(gradient.cy, viewBox.height / 2);
    const float distance = std::hypot(Given(gradient.fx, cx) - cx, Given(gradient.fy, cy) - cy);
    if (distance > kSeen * std::abs(gradient.r)) {
        reporter_.Report(Rule::kRadialFocus, gradient.offset);
    }
}

}  // namespace svgloom
