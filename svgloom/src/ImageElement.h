// The `image` element: its data, and where it lies.

#pragma once

#include <memory>
#include <optional>

#include "svgloom/renderer/SVGRenderer.h"
#include "svgloom/src/Attributes.h"

namespace SVGLoom {

struct PlacedImage {
    std::shared_ptr<ImageData> data;
    Rect clipArea;  // the element's viewport
    Rect fillArea;  // where the scaled image lands
};

/// Empty for an href that holds no PNG or JPEG itself, for data that the renderer does not take,
/// and for an image without extent.
std::optional<PlacedImage> BuildImage(const Attributes& attributes, const Rect& viewBox,
                                      SVGRenderer& renderer);

}  // namespace SVGLoom
