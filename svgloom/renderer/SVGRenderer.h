// What the document draws with: an abstract renderer and the objects that it makes. The document
// asks it for paths, transforms and images, fills them, and hands them back with the records that
// say how to paint.
//
// The operations stand in their table in the order of declaration, which is fixed; new ones go to
// the end. A renderer, and all that it made, is used by one thread at a time. All numbers are
// 32-bit floats in user units.

#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "svgloom/renderer/PathSegments.h"
#include "svgloom/renderer/Records.h"

namespace SVGLoom {

/// A list of segments. Every operation appends; nothing is drawn before SVGRenderer::DrawPath.
class Path {
public:
    Path() = default;
    Path(const Path&) = delete;
    Path& operator=(const Path&) = delete;
    virtual ~Path() = default;

    virtual void AddRect(float x, float y, float width, float height) = 0;
    /// Corners are quarters of an ellipse with the radii `rx` and `ry`.
    virtual void AddRoundedRect(float x, float y, float width, float height, float rx,
                                float ry) = 0;
    virtual void AddEllipse(float cx, float cy, float rx, float ry) = 0;
    virtual void MoveTo(float x, float y) = 0;
    virtual void LineTo(float x, float y) = 0;
    /// A cubic curve to (x, y).
    virtual void CurveTo(float x1, float y1, float x2, float y2, float x, float y) = 0;
    /// A quadratic curve to (x, y).
    virtual void QuadTo(float cx, float cy, float x, float y) = 0;
    virtual void ClosePath() = 0;
    /// Appends many segments, as if each came by its own operation.
    virtual void AddSegments(const PathSegments& segments)
    {
        using Kind = PathSegments::Kind;
        segments.ForEach([this](Kind kind, const float* n) {
            switch (kind) {
                case Kind::kMove:
                    MoveTo(n[0], n[1]);
                    break;
                case Kind::kLine:
                    LineTo(n[0], n[1]);
                    break;
                case Kind::kCurve:
                    CurveTo(n[0], n[1], n[2], n[3], n[4], n[5]);
                    break;
                case Kind::kClose:
                    ClosePath();
                    break;
                case Kind::kQuad:
                    QuadTo(n[0], n[1], n[2], n[3]);
                    break;
            }
        });
    }
};

/// An affine matrix for row vectors: x' = x*a + y*c + e, y' = x*b + y*d + f.
///
/// The operations multiply in different orders on purpose. Rotate and Concat act before what is
/// there (new * M), Translate and Scale after it (M * new).
class Transform {
public:
    Transform() = default;
    Transform(const Transform&) = delete;
    Transform& operator=(const Transform&) = delete;
    virtual ~Transform() = default;

    virtual void SetMatrix(float a, float b, float c, float d, float e, float f) = 0;
    virtual void Rotate(float angleDegrees) = 0;
    virtual void Translate(float tx, float ty) = 0;
    virtual void Scale(float sx, float sy) = 0;
    virtual void Concat(float a, float b, float c, float d, float e, float f) = 0;
};

class ImageData {
public:
    ImageData() = default;
    ImageData(const ImageData&) = delete;
    ImageData& operator=(const ImageData&) = delete;
    virtual ~ImageData() = default;

    virtual float Width() const = 0;
    virtual float Height() const = 0;
};

enum class ImageFormat : std::uint32_t { kPNG, kJPEG };

class SVGRenderer {
public:
    SVGRenderer() = default;
    SVGRenderer(const SVGRenderer&) = delete;
    SVGRenderer& operator=(const SVGRenderer&) = delete;
    virtual ~SVGRenderer() = default;

    /// `base64` is the image file as the artwork holds it; it is not kept. An empty pointer means
    /// that the image cannot be had.
    virtual std::unique_ptr<ImageData> CreateImageData(std::string_view base64,
                                                       ImageFormat format) = 0;
    /// An empty path. An empty pointer means that memory ran out, here, in CreatePathOf and in
    /// CreateTransform.
    virtual std::unique_ptr<Path> CreatePath() = 0;
    virtual std::unique_ptr<Transform> CreateTransform(float a, float b, float c, float d, float e,
                                                       float f) = 0;

    /// Saves the target's state, then applies the transform, the clip and the opacity of `style`
    /// until the matching PopState.
    virtual void PushState(const GraphicStyle& style) = 0;
    virtual void PopState() = 0;

    /// Fills, then strokes, under `graphic` as PushState would apply it. `path` is one of this
    /// renderer's own.
    virtual void DrawPath(const Path& path, const GraphicStyle& graphic, const FillStyle& fill,
                          const StrokeStyle& stroke) = 0;
    /// `clipArea` is where the image may show, `fillArea` where the whole image would lie.
    virtual void DrawImage(const ImageData& image, const GraphicStyle& graphic,
                           const Rect& clipArea, const Rect& fillArea) = 0;

    /// A path that has these segments already: what CreatePath and AddSegments would make, which a
    /// renderer can have in one block.
    virtual std::unique_ptr<Path> CreatePathOf(const PathSegments& segments)
    {
        std::unique_ptr<Path> path = CreatePath();
        if (path != nullptr) {
            path->AddSegments(segments);
        }
        return path;
    }
};

}  // namespace SVGLoom
