// The gradients of an artwork as far as they have been read, and what is drawn differently of each.

#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

#include "svgloom/src/Attributes.h"
#include "svgloom/src/GradientTable.h"
#include "tools/svgloom/check/PropertyChecks.h"
#include "tools/svgloom/check/Reporter.h"

namespace svgloom {

/// What the check keeps of a gradient. What it takes over from another one is in it.
struct CheckedGradient {
    SVGLoom::GradientType type = SVGLoom::GradientType::kLinear;
    float x1 = SVGLoom::kNotGiven;
    float y1 = SVGLoom::kNotGiven;
    float x2 = SVGLoom::kNotGiven;
    float y2 = SVGLoom::kNotGiven;
    float cx = SVGLoom::kNotGiven;
    float cy = SVGLoom::kNotGiven;
    float fx = SVGLoom::kNotGiven;
    float fy = SVGLoom::kNotGiven;
    float r = SVGLoom::kNotGiven;
    bool isInUserSpace = false;
    std::string_view spread;
    std::array<float, 4> matrix{1, 0, 0, 1};  // of the gradient transform, without what it moves
    std::size_t stops = 0;
    float firstOffset = 0;
    float lastOffset = 0;
    std::size_t offset = 0;  // of its element in the file
    bool isTold = false;
};

class Gradients {
public:
    explicit Gradients(Reporter& reporter) : reporter_(reporter) {}

    /// Null if none of that id has been read.
    const CheckedGradient* Find(std::string_view id) const { return gradients_.Find(id); }
    /// Whether the id was free.
    bool Add(std::string_view id, const CheckedGradient& gradient);

    /// The gradients as the paint parser looks them up: with the right kind, and with none, one or
    /// two stops.
    const SVGLoom::GradientTable& Table() const { return table_; }

    /// Tells, once, what is drawn differently when the gradient fills something.
    void TellUse(std::string_view id, const SVGLoom::Rect& viewBox);

private:
    void TellRadial(const CheckedGradient& gradient, const SVGLoom::Rect& viewBox);

    Reporter& reporter_;
    SVGLoom::NameMap<CheckedGradient> gradients_;
    SVGLoom::GradientTable table_;
};

}  // namespace svgloom
