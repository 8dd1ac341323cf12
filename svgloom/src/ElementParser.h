// From XML to elements: one parse of one document. Whatever is not known is skipped silently.
//
// Styles and the group that receives the next element come down as arguments, so there is nothing
// to put back when an exception leaves.

#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>

#include "svgloom/src/Attributes.h"
#include "svgloom/src/ElementNames.h"
#include "svgloom/src/GradientTable.h"
#include "svgloom/src/SVGDocumentImpl.h"
#include "svgloom/src/ShapeBuilder.h"
#include "svgloom/src/StyleSheet.h"

namespace SVGLoom {

class ElementParser {
public:
    /// Stops that gradients take over from others and add their own to, in one document. Such a
    /// list is a copy, so behind this many a gradient takes over none.
    static constexpr std::size_t kMaxInheritedStops = 1000000;

    explicit ElementParser(SVGDocumentImpl& document) : document_(document) {}

    /// Whether an element of that name is read, shapes included. Those that only stand inside
    /// others ("stop"), and the root, are not.
    static bool Knows(std::string_view name);

    /// Nothing happens where `root` is not named "svg".
    ///
    /// @throws as SVGDocumentImpl::Parse
    void ParseRoot(xml::XMLNode& root);

private:
    using Group = SVGDocumentImpl::Group;

    /// What an element gets from those around it.
    struct Scope {
        SharedFillStyle fill;
        SharedStrokeStyle stroke;
        Group* group;                  // receives it
        std::shared_ptr<Group> owned;  // that group where nothing else holds it
    };

    /// An element whose attributes and styles have been read.
    struct Parsed {
        xml::XMLNode& node;  // may be moved, and stands here again then
        const Scope& outer;
        const ElementName name;
        Attributes attributes;
        DocumentGraphicStyle graphic;
        SharedFillStyle fill;
        SharedStrokeStyle stroke;
        ClassSet classes;

        Parsed(xml::XMLNode& xmlNode, const Scope& scope)
            : node(xmlNode),
              outer(scope),
              name(FindElement(xmlNode.Name())),
              attributes(xmlNode),
              fill(scope.fill),
              stroke(scope.stroke)
        {
        }
        std::string_view Id() const { return attributes.Text(AttributeName::kId); }
    };

    /// The scope of an element's children; empty if they are not to be visited.
    using Inner = std::optional<Scope>;

    /// Does what an element asks for.
    using Action = Inner (ElementParser::*)(Parsed& element);
    struct ActionRow {
        ElementName name;
        Action act;
    };
    static const ActionRow kActions[kElementCount - kShapeCount];
    static constexpr bool AreActionsInOrder();

    void ParseElement(xml::XMLNode& node, const Scope& scope, bool isRoot);
    Inner EnterElement(xml::XMLNode& node, const Scope& scope, bool isRoot);
    void ResolveStylesOf(Parsed& element, bool isRoot);

    Inner ParseGroup(Parsed& element);
    Inner ParseDefs(Parsed& element);
    Inner ParseSymbol(Parsed& element);
    Inner ParseUse(Parsed& element);
    Inner ParseImage(Parsed& element);
    Inner ParseGradient(Parsed& element);
    Inner ParseClipPath(Parsed& element);
    Inner ParseStyle(Parsed& element);
    Inner ParseNothing(Parsed&) { return std::nullopt; }

    void AddStops(const Parsed& element, Gradient& gradient);
    void ReadViewBox(const Attributes& attributes);
    LengthReader Lengths() const { return LengthReader(document_.viewBox_); }
    StyleSources Sources() { return {gradients_, clipPaths_, document_.viewBox_, &memos_}; }
    /// The transform that `text` describes; empty if it cannot be read.
    std::shared_ptr<Transform> ParseTransform(std::string_view text) const;

    SVGDocumentImpl& document_;
    StyleSheet sheet_;
    GradientTable gradients_;
    ClipPathTable clipPaths_;
    StyleMemos memos_;
    std::size_t inheritedStops_ = 0;
};

}  // namespace SVGLoom
