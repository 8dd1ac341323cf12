// A renderer that writes down what a document asks it to do, one line a call.

#pragma once

#include <cmath>
#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "svgloom/renderer/SVGRenderer.h"
#include "svgloom/src/tests/TestSupport.h"

namespace SVGLoom::testing_support {

class FixedImage : public ImageData {
public:
    FixedImage(float width, float height) : width_(width), height_(height) {}
    float Width() const override { return width_; }
    float Height() const override { return height_; }

private:
    float width_;
    float height_;
};

inline std::string Text(const Rect& rect)
{
    return Text(rect.x) + " " + Text(rect.y) + " " + Text(rect.width) + " " + Text(rect.height);
}

class RecordingRenderer : public SVGRenderer {
public:
    std::unique_ptr<ImageData> CreateImageData(std::string_view base64, ImageFormat format) override
    {
        lines.push_back("image data " + std::string(base64) +
                        (format == ImageFormat::kPNG ? " png" : " jpeg"));
        return CountCreation() && base64 != "refused"
                   ? std::make_unique<FixedImage>(imageWidth, imageHeight)
                   : nullptr;
    }
    std::unique_ptr<Path> CreatePath() override
    {
        return CountCreation() ? std::make_unique<RecordingPath>() : nullptr;
    }
    std::unique_ptr<Transform> CreateTransform(float a, float b, float c, float d, float e,
                                               float f) override
    {
        if (!CountCreation()) {
            return nullptr;
        }
        auto transform = std::make_unique<RecordingTransform>();
        if (a != 1 || b != 0 || c != 0 || d != 1 || e != 0 || f != 0) {
            transform->log.Add("Create", a, b, c, d, e, f);
        }
        return transform;
    }

    void PushState(const GraphicStyle& style) override
    {
        ++depth;
        Write("push" + Describe(style));
    }
    void PopState() override
    {
        --depth;
        lines.push_back("pop");
    }
    void DrawPath(const Path& path, const GraphicStyle& graphic, const FillStyle& fill,
                  const StrokeStyle& stroke) override
    {
        Write("path " + static_cast<const RecordingPath&>(path).log.Written() + Describe(graphic) +
              Describe(fill) + Describe(stroke));
    }
    void DrawImage(const ImageData& image, const GraphicStyle& graphic, const Rect& clipArea,
                   const Rect& fillArea) override
    {
        Write("image " + Text(image.Width()) + "x" + Text(image.Height()) + Describe(graphic) +
              " clip " + Text(clipArea) + " fill " + Text(fillArea));
    }

    std::vector<std::string> lines;
    int depth = 0;  // of pushed states
    float imageWidth = 100;
    float imageHeight = 50;
    std::size_t failingCreation = 0;  // the n-th object is not made; 0: all are
    std::size_t creations = 0;
    std::size_t throwingLine = 0;  // the n-th line is not written, an int is thrown; 0: none

private:
    bool CountCreation() { return ++creations != failingCreation; }
    void Write(std::string line)
    {
        if (lines.size() + 1 == throwingLine) {
            throw 7;
        }
        lines.push_back(std::move(line));
    }

    static std::string Written(const Transform& transform)
    {
        return static_cast<const RecordingTransform&>(transform).log.Written();
    }
    static std::string Describe(const GraphicStyle& style)
    {
        std::string text;
        if (style.opacity != 1) {
            text += " opacity=" + Text(style.opacity);
        }
        if (style.transform != nullptr) {
            text += " transform=[" + Written(*style.transform) + "]";
        }
        if (const ClippingPath* const clip = style.clippingPath.get()) {
            text += " clip=[";
            text += clip->path != nullptr
                        ? static_cast<const RecordingPath&>(*clip->path).log.Written()
                        : "none";
            text += clip->clipRule == FillRule::kEvenOdd ? " evenodd" : "";
            text += clip->transform != nullptr ? " " + Written(*clip->transform) : "";
            text += "]";
        }
        return text;
    }
    static std::string Describe(const Paint& paint)
    {
        const Gradient* const gradient = std::get_if<Gradient>(&paint);
        if (gradient == nullptr) {
            return Text(std::get<Color>(paint));
        }
        std::string text = gradient->type == GradientType::kLinear ? "linear(" : "radial(";
        const char* separator = "";
        for (const float each :
             {gradient->x1, gradient->y1, gradient->x2, gradient->y2, gradient->cx, gradient->cy,
              gradient->fx, gradient->fy, gradient->r}) {
            if (!std::isnan(each)) {
                text += separator + Text(each);
                separator = " ";
            }
        }
        for (const ColorStop& stop : gradient->stops) {
            text += "; " + Text(stop.offset) + ": " + Text(stop.color);
        }
        return text + ")" +
               (gradient->transform != nullptr ? "[" + Written(*gradient->transform) + "]" : "");
    }
    static std::string Describe(const FillStyle& fill)
    {
        if (!fill.hasFill) {
            return "";
        }
        return " fill=" + Describe(fill.paint) +
               (fill.fillRule == FillRule::kEvenOdd ? " evenodd" : "") +
               (fill.fillOpacity != 1 ? " fillOpacity=" + Text(fill.fillOpacity) : "");
    }
    static std::string Describe(const StrokeStyle& stroke)
    {
        if (!stroke.hasStroke) {
            return "";
        }
        return " stroke=" + Describe(stroke.paint) + " width=" + Text(stroke.lineWidth) +
               (stroke.lineCap != LineCap::kButt
                    ? " cap=" + std::to_string(static_cast<unsigned>(stroke.lineCap))
                    : "");
    }
};

}  // namespace SVGLoom::testing_support
