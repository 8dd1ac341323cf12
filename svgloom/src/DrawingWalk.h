// One draw: the walk over a part of the tree, depth first and in document order, that tells the
// renderer what to draw. The tree is not changed.

#pragma once

#include "svgloom/src/SVGDocumentImpl.h"

namespace SVGLoom {

class DrawingWalk {
public:
    /// The element that a draw starts from is level 1; groups and references count alike. What lies
    /// deeper is left out.
    static constexpr int kMaxLevels = 1024;
    /// Elements that are visited below a `use`, one each, in one draw; the rest below `use` is left
    /// out. So artwork whose references multiply ends.
    static constexpr int kMaxReferenceVisits = 1000000;

    /// `sheet` may be null. Everything has to stand as long as this object.
    DrawingWalk(SVGDocumentImpl& document, const StyleSheet* sheet, const ColorMap& colors)
        : document_(document), renderer_(*document.renderer_), sheet_(sheet), colors_(colors)
    {
    }

    /// Draws `element` and what is below it under `style`. States are popped and the document's
    /// guard is empty however it ends.
    void Draw(const GraphicStyle& style, const SVGDocumentImpl::Element& element);

private:
    using Element = SVGDocumentImpl::Element;

    class State;
    class GuardEntry;

    void Visit(const Element& element);
    void DrawImage(const SVGDocumentImpl::Image& image);
    void DrawGraphic(const SVGDocumentImpl::Graphic& graphic);
    void DrawPath(const Path& path, const GraphicStyle& style, const DocumentFillStyle& fill,
                  const DocumentStrokeStyle& stroke);
    void DrawGroup(const SVGDocumentImpl::Group& group);
    void DrawReference(const SVGDocumentImpl::Reference& reference);

    bool MeetsSheet(const Element& element) const
    {
        return sheet_ != nullptr && !element.classes.empty();
    }
    /// The draw-time step: the records of an element with the attached sheet's rules applied.
    void ApplyAttachedSheet(const Element& element, const StyleTarget& target) const;
    /// The element's graphic style; `own` holds it where the sheet may have changed it.
    const GraphicStyle& StyleOf(const Element& element, DocumentGraphicStyle& own) const;
    static void TraceOnce(bool& traced, const char* text);

    SVGDocumentImpl& document_;
    SVGRenderer& renderer_;
    const StyleSheet* sheet_;
    const ColorMap& colors_;
    int level_ = 0;
    int references_ = 0;  // that lead to where the walk is
    int referenceVisits_ = 0;
    bool levelsTraced_ = false;
    bool visitsTraced_ = false;
};

}  // namespace SVGLoom
