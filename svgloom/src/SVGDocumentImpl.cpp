#include "svgloom/src/SVGDocumentImpl.h"

#include <algorithm>
#include <utility>

#include "svgloom/src/DrawingWalk.h"
#include "svgloom/src/ElementParser.h"

namespace SVGLoom {

SVGDocumentImpl::SVGDocumentImpl(std::shared_ptr<SVGRenderer> renderer)
    : renderer_(std::move(renderer)), root_(DocumentGraphicStyle(), ClassSet())
{
}

SVGDocumentImpl::~SVGDocumentImpl()
{
    // A group that holds itself, as its first child, would never go.
    for (Group* const symbol : symbols_) {
        if (symbol != nullptr) {
            const std::shared_ptr<Element> kept = symbol->children.TakeFirst();
        }
    }
}

void SVGDocumentImpl::Parse(xml::XMLNode* root)
{
    if (root != nullptr) {
        ElementParser(*this).ParseRoot(*root);
    }
}

void SVGDocumentImpl::Add(Group& group, std::shared_ptr<Element> element, std::string_view id)
{
    if (!id.empty()) {
        const auto [registered, isNew] = ids_.Add(id);
        if (isNew) {
            registered = element;
        }
    }
    group.children.Append(std::move(element));
}

void SVGDocumentImpl::Render(const ColorMap& colors, float width, float height)
{
    RenderElement(root_, colors, width, height);
}

void SVGDocumentImpl::Render(std::string_view id, const ColorMap& colors, float width, float height)
{
    if (const std::shared_ptr<Element>* const found = ids_.Find(id)) {
        RenderElement(**found, colors, width, height);
    } else {
        attachedSheet_ = nullptr;
    }
}

void SVGDocumentImpl::RenderElement(const Element& element, const ColorMap& colors, float width,
                                    float height)
{
    const StyleSheet* const sheet = std::exchange(attachedSheet_, nullptr);
    const float scale = std::min(width / viewBox_.width, height / viewBox_.height);
    GraphicStyle style;
    style.transform = Created(renderer_->CreateTransform(1, 0, 0, 1, 0, 0));
    style.transform->Translate(-viewBox_.x, -viewBox_.y);
    style.transform->Scale(scale, scale);
    DrawingWalk(*this, sheet, colors).Draw(style, element);
}

}  // namespace SVGLoom
