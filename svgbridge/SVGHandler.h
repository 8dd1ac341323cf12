// The service that kivui draws vector artwork with, on the SVG engine: it owns the documents and
// hands out numbered handles.
//
// Used on the user interface's thread; nothing is locked.

#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string_view>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <kivcore/NeverDestroyed.h>
#include <kivui/SVG.h>

#include "svgloom/renderer/ScrivelSVGRenderer.h"
#include "svgloom/src/SVGDocumentImpl.h"

namespace svgloom {

class SVGHandler final : public kivui::svg::ISVGHandler {
public:
    /// The only one: created on the first call, never destroyed.
    static SVGHandler& Get();

    /// Text that cannot be parsed gives an empty document.
    ///
    /// @throws as SVGLoom::CreateDocument; nothing is kept then
    boost::intrusive_ptr<kivui::svg::ISVGDocument> CreateDocument(std::string_view text) override;
    /// @throws as SVGLoom::StyleSheet::Add
    boost::intrusive_ptr<kivui::svg::ICSSData> CreateStyleData(std::string_view text) override;
    /// Draws with the sheet and the colours of `style`, or with neither; what an earlier draw was
    /// given counts no more.
    ///
    /// @throws as SVGLoom::SVGDocumentImpl::Render; the document can be drawn again afterwards
    void Render(kivui::scrivel::DrawingTarget& context,
                boost::intrusive_ptr<kivui::svg::ISVGDocument> document,
                boost::intrusive_ptr<kivui::svg::ICSSData> style, std::int32_t width,
                std::int32_t height) override;

    /// Destroys all documents and counts ids from 0 again; does nothing while the next id is 0.
    ///
    /// Handles that are still held find nothing then. Once their ids are given out anew they stand
    /// for the new documents, and letting one go destroys the new one. That is on purpose;
    /// SVGHandler.IdsAreUsedAgainAfterClearing holds it.
    void Clear() noexcept;

    /// The document behind an id, or null. Looks only, until the document is destroyed.
    const SVGLoom::SVGDocumentImpl* FindDocument(std::uint32_t id) const noexcept;
    /// Destroys the document of that id, if there is one.
    void Forget(std::uint32_t id) noexcept;

private:
    friend class kivcore::NeverDestroyed<SVGHandler>;
    friend class SVGHandlerState;  // in the tests: the wrap of the counter

    struct Document {
        std::unique_ptr<SVGLoom::SVGDocumentImpl> document;  // never null
        SVGLoom::ScrivelSVGRenderer* renderer;               // which the document holds
    };

    SVGHandler() = default;
    ~SVGHandler() = default;

    std::map<std::uint32_t, Document> documents_;
    std::uint32_t nextId_ = 0;  // wraps: a document whose id comes again is replaced
};

}  // namespace svgloom
