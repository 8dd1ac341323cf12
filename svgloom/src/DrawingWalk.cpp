#include "svgloom/src/DrawingWalk.h"

#include <kivcore/NeverDestroyed.h>
#include <kivcore/Trace.h>

namespace SVGLoom {

namespace {

constinit kivcore::debug::TraceSite limitSite("SVGLoom.Draw", 6);

}  // namespace

/// A pushed state, popped on every way out.
class DrawingWalk::State {
public:
    State(SVGRenderer& renderer, const GraphicStyle& style) : renderer_(renderer)
    {
        renderer_.PushState(style);
    }
    ~State() { renderer_.PopState(); }
    State(const State&) = delete;
    State& operator=(const State&) = delete;

private:
    SVGRenderer& renderer_;
};

/// A reference in the guard, taken out on every way out.
class DrawingWalk::GuardEntry {
public:
    GuardEntry(std::set<const Element*>& guard, const Element& reference) : guard_(guard)
    {
        const auto [place, isNew] = guard_.insert(&reference);
        place_ = place;
        isNew_ = isNew;
    }
    ~GuardEntry()
    {
        if (isNew_) {
            guard_.erase(place_);
        }
    }
    GuardEntry(const GuardEntry&) = delete;
    GuardEntry& operator=(const GuardEntry&) = delete;

    bool IsNew() const { return isNew_; }

private:
    std::set<const Element*>& guard_;
    std::set<const Element*>::iterator place_;
    bool isNew_ = false;
};

void DrawingWalk::Draw(const GraphicStyle& style, const Element& element)
{
    const State state(renderer_, style);
    Visit(element);
}

void DrawingWalk::Visit(const Element& element)
{
    if (element.style.clippingPath != nullptr && !element.style.clippingPath->hasClipContent) {
        return;
    }
    if (level_ == kMaxLevels) {
        TraceOnce(levelsTraced_, "too many levels: what lies deeper is left out");
        return;
    }
    if (references_ > 0) {
        if (referenceVisits_ == kMaxReferenceVisits) {
            TraceOnce(visitsTraced_, "too many elements below references: the rest is left out");
            return;
        }
        ++referenceVisits_;
    }
    ++level_;
    switch (element.Kind()) {
        case SVGDocumentImpl::ElementKind::kImage:
            DrawImage(static_cast<const SVGDocumentImpl::Image&>(element));
            break;
        case SVGDocumentImpl::ElementKind::kGraphic:
            DrawGraphic(static_cast<const SVGDocumentImpl::Graphic&>(element));
            break;
        case SVGDocumentImpl::ElementKind::kGroup:
            DrawGroup(static_cast<const SVGDocumentImpl::Group&>(element));
            break;
        case SVGDocumentImpl::ElementKind::kReference:
            DrawReference(static_cast<const SVGDocumentImpl::Reference&>(element));
            break;
    }
    --level_;
}

void DrawingWalk::DrawImage(const SVGDocumentImpl::Image& image)
{
    DocumentGraphicStyle own;
    renderer_.DrawImage(*image.data, StyleOf(image, own), image.clipArea, image.fillArea);
}

void DrawingWalk::DrawGraphic(const SVGDocumentImpl::Graphic& graphic)
{
    if (!MeetsSheet(graphic)) {
        DrawPath(*graphic.path, graphic.style, *graphic.fill, *graphic.stroke);
        return;
    }
    DocumentGraphicStyle style;
    static_cast<GraphicStyle&>(style) = graphic.style;
    SharedFillStyle fill = graphic.fill;
    SharedStrokeStyle stroke = graphic.stroke;
    ApplyAttachedSheet(graphic, {style, fill, stroke});
    DrawPath(*graphic.path, style, *fill, *stroke);
}

void DrawingWalk::DrawPath(const Path& path, const GraphicStyle& style,
                           const DocumentFillStyle& fill, const DocumentStrokeStyle& stroke)
{
    if (NeedsResolution(fill.paintValue) || NeedsResolution(stroke.paintValue)) {
        renderer_.DrawPath(path, style, ResolveFill(fill, colors_),
                           ResolveStroke(stroke, fill, colors_));
    } else {
        renderer_.DrawPath(path, style, fill, stroke);
    }
}

void DrawingWalk::DrawGroup(const SVGDocumentImpl::Group& group)
{
    DocumentGraphicStyle own;
    const State state(renderer_, StyleOf(group, own));
    for (const std::shared_ptr<Element>& child : group.children) {
        if (child.get() != &group) {  // the group of a symbol is a child of itself
            Visit(*child);
        }
    }
}

void DrawingWalk::DrawReference(const SVGDocumentImpl::Reference& reference)
{
    const GuardEntry entry(document_.guard_, reference);
    if (!entry.IsNew()) {
        return;
    }
    const std::shared_ptr<Element>* const target = document_.ids_.Find(reference.targetId);
    if (target == nullptr) {
        return;
    }
    DocumentGraphicStyle own;
    const State state(renderer_, StyleOf(reference, own));
    ++references_;
    Visit(**target);
    --references_;
}

void DrawingWalk::ApplyAttachedSheet(const Element& element, const StyleTarget& target) const
{
    // Gradients and clip paths were only there while the document was parsed.
    static kivcore::NeverDestroyed<GradientTable> noGradients;
    static kivcore::NeverDestroyed<ClipPathTable> noClipPaths;
    ApplySheet(*sheet_, element.classes, {*noGradients, *noClipPaths, document_.viewBox_}, target);
}

const GraphicStyle& DrawingWalk::StyleOf(const Element& element, DocumentGraphicStyle& own) const
{
    if (!MeetsSheet(element)) {
        return element.style;
    }
    static_cast<GraphicStyle&>(own) = element.style;
    SharedFillStyle fill;
    SharedStrokeStyle stroke;
    ApplyAttachedSheet(element, {own, fill, stroke});
    return own;
}

void DrawingWalk::TraceOnce(bool& traced, const char* text)
{
    if (!traced) {
        traced = true;
        limitSite.Report(text);
    }
}

}  // namespace SVGLoom
