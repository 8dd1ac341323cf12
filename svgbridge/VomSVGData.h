// The handle of a style sheet, which it owns.

#pragma once

#include <utility>

#include <kivui/SVG.h>

#include "svgloom/src/StyleSheet.h"

namespace svgloom {

class VomSVGData final : public kivui::svg::ICSSData {
public:
    explicit VomSVGData(SVGLoom::StyleSheet sheet) : sheet_(std::move(sheet)) {}
    ~VomSVGData() override = default;

    const SVGLoom::StyleSheet& Sheet() const noexcept { return sheet_; }

private:
    SVGLoom::StyleSheet sheet_;
};

}  // namespace svgloom
