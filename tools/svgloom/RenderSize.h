// How large a picture of artwork becomes.

#pragma once

#include "svgloom/renderer/Records.h"
#include "tools/common/CommandLine.h"

#include <optional>
#include <string>

namespace svgloom {

struct RenderSize {
    // What the artwork is fitted into.
    float width = 0;
    float height = 0;
    // The same, rounded up.
    int pixelWidth = 0;
    int pixelHeight = 0;
};

/// What the command line says about sizes: --width, --height and --zoom.
class SizeOptions {
public:
    /// Throws UsageError for what is no number.
    explicit SizeOptions(const tools::Arguments& arguments);

    /// The size for artwork of this viewBox. Where one of width and height is not given, it follows
    /// from the other by the viewBox; where neither is, the viewBox gives both. All is multiplied
    /// by the zoom and by `scale`.
    ///
    /// Throws std::runtime_error for a size that no picture can have.
    RenderSize For(const SVGLoom::Rect& viewBox, float scale = 1) const;

private:
    std::optional<float> width_;
    std::optional<float> height_;
    float zoom_;
};

}  // namespace svgloom
