// Parses the input as a document and draws it, all of it and by each of a few ids, with and without
// an attached sheet. States have to be popped however a draw ends, and a draw changes nothing.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "svgloom/src/DocumentCreator.h"

namespace {

using SVGLoom::SVGDocumentImpl;

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

class CountingPath : public SVGLoom::Path {
public:
    void AddRect(float, float, float, float) override { ++calls; }
    void AddRoundedRect(float, float, float, float, float, float) override { ++calls; }
    void AddEllipse(float, float, float, float) override { ++calls; }
    void MoveTo(float, float) override { ++calls; }
    void LineTo(float, float) override { ++calls; }
    void CurveTo(float, float, float, float, float, float) override { ++calls; }
    void QuadTo(float, float, float, float) override { ++calls; }
    void ClosePath() override { ++calls; }

    std::size_t calls = 0;
};

class NoTransform : public SVGLoom::Transform {
public:
    void SetMatrix(float, float, float, float, float, float) override {}
    void Rotate(float) override {}
    void Translate(float, float) override {}
    void Scale(float, float) override {}
    void Concat(float, float, float, float, float, float) override {}
};

class UnitImage : public SVGLoom::ImageData {
public:
    float Width() const override { return 1; }
    float Height() const override { return 1; }
};

class CountingRenderer : public SVGLoom::SVGRenderer {
public:
    std::unique_ptr<SVGLoom::ImageData> CreateImageData(std::string_view,
                                                        SVGLoom::ImageFormat) override
    {
        return std::make_unique<UnitImage>();
    }
    std::unique_ptr<SVGLoom::Path> CreatePath() override
    {
        return std::make_unique<CountingPath>();
    }
    std::unique_ptr<SVGLoom::Transform> CreateTransform(float, float, float, float, float,
                                                        float) override
    {
        return std::make_unique<NoTransform>();
    }
    void PushState(const SVGLoom::GraphicStyle& style) override
    {
        ++depth;
        Check(style);
    }
    void PopState() override { --depth; }
    void DrawPath(const SVGLoom::Path& path, const SVGLoom::GraphicStyle& style,
                  const SVGLoom::FillStyle& fill, const SVGLoom::StrokeStyle& stroke) override
    {
        Check(style);
        drawn += static_cast<const CountingPath&>(path).calls + 1;
        Require(fill.fillOpacity >= 0 && fill.fillOpacity <= 1);
        Require(stroke.strokeOpacity >= 0 && stroke.strokeOpacity <= 1);
        Require(stroke.dashArray.size() % 2 == 0);
        Require(stroke.miterLimit >= 1);
    }
    void DrawImage(const SVGLoom::ImageData&, const SVGLoom::GraphicStyle& style,
                   const SVGLoom::Rect&, const SVGLoom::Rect&) override
    {
        Check(style);
        ++drawn;
    }

    int depth = 0;
    std::size_t drawn = 0;

private:
    static void Check(const SVGLoom::GraphicStyle& style)
    {
        Require(style.opacity >= 0 && style.opacity <= 1);
    }
};

/// What a draw did; the number of errors counts too.
template <class Render>
std::size_t Draw(CountingRenderer& renderer, const Render& render)
{
    renderer.drawn = 0;
    try {
        render();
    } catch (const std::out_of_range&) {
        ++renderer.drawn;
    } catch (const std::invalid_argument&) {
        ++renderer.drawn;
    }
    Require(renderer.depth == 0);
    return renderer.drawn;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto renderer = std::make_shared<CountingRenderer>();
    const SVGLoom::ColorMap colors{{"a", {1, 0, 0, 1}}};
    std::unique_ptr<SVGDocumentImpl> document;
    SVGLoom::StyleSheet sheet;
    try {
        document = SVGLoom::CreateDocument(text, renderer);
        sheet.Add(".a{fill:url(#a) red;stroke-dasharray:1 2 3;opacity:0.5;}.b{clip-path:url(#a);}");
    } catch (const std::out_of_range&) {
        return 0;
    } catch (const std::invalid_argument&) {
        return 0;
    }
    const auto all = [&] { document->Render(colors, 30, 40); };
    const std::size_t drawn = Draw(*renderer, all);
    document->AttachStyleSheet(&sheet);
    Draw(*renderer, all);
    int left = 5;
    for (const auto& [id, element] : document->Ids()) {
        if (left-- == 0)
            break;
        Draw(*renderer,
             [&document = document, &id = id, &colors] { document->Render(id, colors, 30, 40); });
    }
    Require(Draw(*renderer, all) == drawn);
    return 0;
}
