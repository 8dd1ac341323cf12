// One SVG image in memory: a tree of elements, parsed once and drawn any number of times.
//
// Elements are built by ElementParser and walked by DrawingWalk. Nothing in the tree looks back at
// the XML text. One thread at a time.

#pragma once

#include <cstdint>
#include <iterator>
#include <memory>
#include <new>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "svgloom/renderer/SVGRenderer.h"
#include "svgloom/src/ClassSet.h"
#include "svgloom/src/NameMap.h"
#include "svgloom/src/StyleResolution.h"
#include "svgloom/src/Styles.h"
#include "svgloom/src/XMLDocument.h"

namespace SVGLoom {

class SVGDocumentImpl {
public:
    /// The numbers are fixed.
    enum class ElementKind : std::uint32_t { kImage = 0, kGraphic = 1, kGroup = 2, kReference = 3 };

    class Children;

    /// The order of the operations is fixed.
    class Element {
    public:
        virtual ~Element() = default;
        virtual ElementKind Kind() const = 0;

        GraphicStyle style;
        ClassSet classes;     // for a sheet that is attached when it is drawn
        bool display = true;  // read and kept; nothing tests it

        Element(const Element&) = delete;
        Element& operator=(const Element&) = delete;

    private:
        friend class Children;
        std::shared_ptr<Element> next_;  // of the group that it is a child of

    protected:
        explicit Element(const DocumentGraphicStyle& graphicStyle, ClassSet classNames)
            : style(graphicStyle), classes(std::move(classNames)), display(graphicStyle.display)
        {
        }
    };

    /// The children of a group in document order. An element is a child of one group at most.
    class Children {
    public:
        class Iterator {
        public:
            explicit Iterator(const std::shared_ptr<Element>& at) : at_(&at) {}
            const std::shared_ptr<Element>& operator*() const { return *at_; }
            Iterator& operator++()
            {
                at_ = &(*at_)->next_;
                return *this;
            }
            friend bool operator==(const Iterator& at, std::default_sentinel_t)
            {
                return *at.at_ == nullptr;
            }

        private:
            const std::shared_ptr<Element>* at_;
        };

        Children() = default;
        /// One after another: a child that held the next would end all behind it by recursion.
        ~Children()
        {
            while (!empty()) {
                TakeFirst();
            }
        }
        Children(const Children&) = delete;
        Children& operator=(const Children&) = delete;

        bool empty() const { return first_ == nullptr; }
        Iterator begin() const { return Iterator(first_); }
        std::default_sentinel_t end() const { return {}; }

        /// `element` is no child yet, neither here nor elsewhere.
        void Append(std::shared_ptr<Element> element) noexcept
        {
            std::shared_ptr<Element>& place = last_ != nullptr ? last_->next_ : first_;
            last_ = element.get();
            place = std::move(element);
        }
        /// Requires a child.
        std::shared_ptr<Element> TakeFirst() noexcept
        {
            std::shared_ptr<Element> taken = std::move(first_);
            first_ = std::move(taken->next_);
            last_ = first_ != nullptr ? last_ : nullptr;
            return taken;
        }

    private:
        std::shared_ptr<Element> first_;
        Element* last_ = nullptr;
    };

    class Image : public Element {
    public:
        Image(const DocumentGraphicStyle& graphicStyle, ClassSet classNames,
              std::shared_ptr<ImageData> imageData, const Rect& clip, const Rect& fill)
            : Element(graphicStyle, std::move(classNames)),
              data(std::move(imageData)),
              clipArea(clip),
              fillArea(fill)
        {
        }
        ElementKind Kind() const override { return ElementKind::kImage; }

        std::shared_ptr<ImageData> data;
        Rect clipArea;  // the element's viewport
        Rect fillArea;  // where the scaled image lands
    };

    class Graphic : public Element {
    public:
        Graphic(const DocumentGraphicStyle& graphicStyle, ClassSet classNames,
                SharedFillStyle fillStyle, SharedStrokeStyle strokeStyle,
                std::unique_ptr<Path> outline)
            : Element(graphicStyle, std::move(classNames)),
              fill(std::move(fillStyle)),
              stroke(std::move(strokeStyle)),
              path(std::move(outline))
        {
        }
        ElementKind Kind() const override { return ElementKind::kGraphic; }

        SharedFillStyle fill;
        SharedStrokeStyle stroke;
        std::unique_ptr<Path> path;
    };

    class Group : public Element {
    public:
        Group(const DocumentGraphicStyle& graphicStyle, ClassSet classNames)
            : Element(graphicStyle, std::move(classNames))
        {
        }
        ElementKind Kind() const override { return ElementKind::kGroup; }

        Children children;
    };

    class Reference : public Element {
    public:
        Reference(const DocumentGraphicStyle& graphicStyle, ClassSet classNames,
                  SharedFillStyle fillStyle, SharedStrokeStyle strokeStyle, std::string id)
            : Element(graphicStyle, std::move(classNames)),
              fill(std::move(fillStyle)),
              stroke(std::move(strokeStyle)),
              targetId(std::move(id))
        {
        }
        ElementKind Kind() const override { return ElementKind::kReference; }

        // Those at the point of the `use`; the target is drawn with its own.
        SharedFillStyle fill;
        SharedStrokeStyle stroke;
        std::string targetId;  // looked up when it is drawn
    };

    /// An empty document. Every path, transform and image is created through `renderer`, and every
    /// draw goes to it.
    explicit SVGDocumentImpl(std::shared_ptr<SVGRenderer> renderer);
    ~SVGDocumentImpl();
    SVGDocumentImpl(const SVGDocumentImpl&) = delete;
    SVGDocumentImpl& operator=(const SVGDocumentImpl&) = delete;

    /// Builds the tree. Null, and a root that is not named "svg", leave the document empty. `root`
    /// and its document may be released behind the call; the handle may stand elsewhere then. At
    /// most once.
    ///
    /// @throws std::out_of_range "invalid string position", std::invalid_argument "value not found"
    ///         or "empty CSS selector" for bad content, std::bad_alloc. The document can be used as
    ///         far as it was parsed then.
    void Parse(xml::XMLNode* root);

    /// Draws the whole image so that the viewBox fits into `width` by `height`; its upper left
    /// corner goes to the origin. `colors` resolves variables.
    ///
    /// @throws what Parse throws, for bad content of an attached sheet, and what the renderer
    /// throws
    void Render(const ColorMap& colors, float width, float height);
    /// Draws one element and what is below it; an unknown id draws nothing.
    void Render(std::string_view id, const ColorMap& colors, float width, float height);

    /// Attaches a sheet for the next draw, however that ends; null for none. It has to stand until
    /// then.
    void AttachStyleSheet(const StyleSheet* sheet) { attachedSheet_ = sheet; }

    /// The rectangle of user space that is mapped onto the output; its size is the image's own.
    const Rect& ViewBox() const { return viewBox_; }
    const Group& Root() const { return root_; }
    /// The elements that an id leads to; the first element with an id has it.
    const NameMap<std::shared_ptr<Element>>& Ids() const { return ids_; }

private:
    friend class ElementParser;
    friend class DrawingWalk;

    /// Appends `element` to `group` and registers its id, if it has one and it is free.
    void Add(Group& group, std::shared_ptr<Element> element, std::string_view id);
    void RenderElement(const Element& element, const ColorMap& colors, float width, float height);

    Rect viewBox_{0, 0, 320, 200};
    std::shared_ptr<SVGRenderer> renderer_;
    Group root_;
    NameMap<std::shared_ptr<Element>> ids_;
    std::set<const Element*> guard_;  // the references that are being drawn
    std::vector<Group*> symbols_;  // each a child of itself, which the destructor undoes; or null
    const StyleSheet* attachedSheet_ = nullptr;
};

/// What a create operation of the renderer made. An empty pointer means that memory ran out.
///
/// @throws std::bad_alloc for an empty pointer
template <class Object>
std::unique_ptr<Object> Created(std::unique_ptr<Object> object)
{
    if (object == nullptr) {
        throw std::bad_alloc();
    }
    return object;
}

}  // namespace SVGLoom
