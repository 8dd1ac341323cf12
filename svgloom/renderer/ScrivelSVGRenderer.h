// The renderer onto kivui's 2-D drawing layer.

#pragma once

#include <memory>
#include <vector>

#include <kivui/Scrivel.h>

#include "svgloom/renderer/SVGRenderer.h"

namespace SVGLoom {

class ScrivelSVGPath;

/// Draws on the target that is bound; without one, nothing. Owned by a std::shared_ptr: DrawPath
/// throws std::bad_weak_ptr otherwise. Drawing throws std::bad_alloc where the target is out of
/// memory; the states that a failed operation pushed are popped again.
class ScrivelSVGRenderer final : public SVGRenderer,
                                 public std::enable_shared_from_this<ScrivelSVGRenderer> {
public:
    ScrivelSVGRenderer() = default;
    ~ScrivelSVGRenderer() override;

    /// `target` has to stand until Unbind, another Bind, or this object's end, each of which pops
    /// the states that are still open.
    void Bind(kivui::scrivel::DrawingTarget& target) noexcept;
    /// Also frees what the states took.
    void Unbind() noexcept;

    std::unique_ptr<ImageData> CreateImageData(std::string_view base64,
                                               ImageFormat format) override;
    std::unique_ptr<Path> CreatePath() override;
    std::unique_ptr<Transform> CreateTransform(float a, float b, float c, float d, float e,
                                               float f) override;
    void PushState(const GraphicStyle& style) override;
    void PopState() override;
    void DrawPath(const Path& path, const GraphicStyle& graphic, const FillStyle& fill,
                  const StrokeStyle& stroke) override;
    void DrawImage(const ImageData& image, const GraphicStyle& graphic, const Rect& clipArea,
                   const Rect& fillArea) override;
    std::unique_ptr<Path> CreatePathOf(const PathSegments& segments) override;

private:
    class PushedState;

    kivui::scrivel::PathP BuildPath(const ScrivelSVGPath* path, bool isTraced) const;
    void Clip(const ClippingPath& clip) const;
    void Fill(const kivui::scrivel::PathInterface& path, const FillStyle& fill) const;
    void FillGradient(const kivui::scrivel::PathInterface& path, const Gradient& gradient,
                      bool nonZero) const;
    void Stroke(const kivui::scrivel::PathInterface& path, const StrokeStyle& stroke) const;

    kivui::scrivel::DrawingTarget* target_ = nullptr;
    // One for each open state, whose surface state is saved with it: the product of all opacities.
    std::vector<float> opacities_;
};

}  // namespace SVGLoom
