#include "svgbridge/SVGHandler.h"

#include "svgbridge/VomSVGData.h"
#include "svgbridge/VomSVGDocument.h"
#include "svgloom/src/DocumentCreator.h"
#include "svgloom/src/StyleSheet.h"

#include <string>
#include <utility>

namespace svgloom {

namespace {

SVGLoom::ColorMap EngineColors(const kivui::svg::ColorMap& colors)
{
    SVGLoom::ColorMap map;
    for (const auto& [name, color] : colors) {
        map.emplace_hint(map.end(), name,
                         SVGLoom::Color{color.red, color.green, color.blue, color.alpha});
    }
    return map;
}

// A draw that throws leaves the renderer without the caller's target, too.
class BoundTarget {
public:
    BoundTarget(SVGLoom::ScrivelSVGRenderer& renderer, kivui::scrivel::DrawingTarget& target)
        : renderer_(renderer)
    {
        renderer_.Bind(target);
    }
    BoundTarget(const BoundTarget&) = delete;
    BoundTarget& operator=(const BoundTarget&) = delete;
    ~BoundTarget() { renderer_.Unbind(); }

private:
    SVGLoom::ScrivelSVGRenderer& renderer_;
};

}  // namespace

SVGHandler& SVGHandler::Get()
{
    static kivcore::NeverDestroyed<SVGHandler> handler;
    return *handler;
}

boost::intrusive_ptr<kivui::svg::ISVGDocument> SVGHandler::CreateDocument(std::string_view text)
{
    const auto renderer = std::make_shared<SVGLoom::ScrivelSVGRenderer>();
    Document created{SVGLoom::CreateDocument(text, renderer), renderer.get()};
    const std::uint32_t id = nextId_++;
    documents_.insert_or_assign(id, std::move(created));
    try {
        return {new VomSVGDocument(id)};
    } catch (...) {
        Forget(id);  // nobody else would
        throw;
    }
}

boost::intrusive_ptr<kivui::svg::ICSSData> SVGHandler::CreateStyleData(std::string_view text)
{
    SVGLoom::StyleSheet sheet;
    sheet.Add(text);
    return {new VomSVGData(std::move(sheet))};
}

void SVGHandler::Render(kivui::scrivel::DrawingTarget& context,
                        boost::intrusive_ptr<kivui::svg::ISVGDocument> document,
                        boost::intrusive_ptr<kivui::svg::ICSSData> style, std::int32_t width,
                        std::int32_t height)
{
    const auto* const handle = dynamic_cast<const VomSVGDocument*>(document.get());
    if (handle == nullptr) {
        return;
    }
    const auto found = documents_.find(handle->Id());
    if (found == documents_.end()) {
        return;
    }
    SVGLoom::SVGDocumentImpl& drawn = *found->second.document;
    drawn.AttachStyleSheet(nullptr);
    const auto* const data = dynamic_cast<const VomSVGData*>(style.get());
    SVGLoom::ColorMap colors;
    if (data != nullptr) {
        colors = EngineColors(data->colors);
        drawn.AttachStyleSheet(&data->Sheet());
    }
    const BoundTarget bound(*found->second.renderer, context);
    drawn.Render(colors, static_cast<float>(width), static_cast<float>(height));
}

void SVGHandler::Clear() noexcept
{
    // Also true right behind a wrap of the counter: the documents stay then.
    if (nextId_ == 0) {
        return;
    }
    documents_.clear();
    nextId_ = 0;
}

const SVGLoom::SVGDocumentImpl* SVGHandler::FindDocument(std::uint32_t id) const noexcept
{
    const auto found = documents_.find(id);
    return found != documents_.end() ? found->second.document.get() : nullptr;
}

void SVGHandler::Forget(std::uint32_t id) noexcept
{
    documents_.erase(id);
}

}  // namespace svgloom
