// Turns the elements of a packet into properties, by the rules of RDF/XML as XMP narrows them.
// What those do not allow becomes a raw node.

#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "framework/kivxmp/src/ObjectState.h"

namespace kivxmp {

struct StartTag;

/// A start tag with its names resolved. Namespace declarations are not among the attributes.
struct ElementStart {
    struct Attribute {
        const QName* name;
        std::string_view value;
        std::size_t number;  ///< among all attributes of the tag; kNowhere for a default of the DTD
    };
    const QName* name;
    const std::vector<Attribute>& attributes;
    std::size_t begin;        ///< offset of its '<', or of the entity reference it comes from
    bool isLiteral;           ///< it does stand in the text
    const Scope* outerScope;  ///< without its own declarations
    const Scope* scope;
};

class RdfBuilder {
public:
    RdfBuilder(std::shared_ptr<Packet> packet, ObjectState& object);

    // In document order. Throw XMP_Error where a limit is passed.
    void Start(const ElementStart& element);
    void Text(std::string_view text);
    /// `begin` and `end` enclose the end tag; both are behind an empty element's tag.
    void End(std::size_t begin, std::size_t end);
    /// Behind the last element: hands the properties over.
    void Finish();

private:
    enum class Kind {
        kOutside,  // around rdf:RDF or beside it
        kRdf,
        kDescription,  // an rdf:Description right in rdf:RDF
        kProperty,     // a property, field, item or qualifier
        kStruct,       // the node element of a structure
        kArray,        // rdf:Bag, rdf:Seq, rdf:Alt
        kSkipped,      // part of a raw node
    };
    enum class Content {
        kOpen,     // a text or one node element
        kText,     // a text
        kFields,   // parseType="Resource"
        kNothing,  // attributes have said all
    };
    struct Frame {
        Kind kind = Kind::kOutside;
        // Of properties:
        Content content = Content::kOpen;
        bool isRaw = false;
        bool hasElement = false;
        Node node = NodeAccess::Make(nullptr, NodeForm::kSimple);
        std::vector<Span> spans;            // of the node's parts; empty ones for attributes
        const Scope* innerScope = nullptr;  // around the parts
        // Of all that have a place in the text:
        std::size_t begin = 0;
        const Scope* scope = nullptr;
        ElementPlace* place = nullptr;
        std::size_t description = kNowhere;
    };

    Frame& Push(Kind kind);
    Frame& Top() noexcept { return frames_[depth_ - 1]; }
    Frame& PropertyOfTop() noexcept;

    void StartOutside(const ElementStart& element);
    void StartInRdf(const ElementStart& element);
    void StartDescription(const ElementStart& element);
    void AddDescriptionAttribute(const ElementStart& element,
                                 const ElementStart::Attribute& attribute, const StartTag& tag,
                                 std::size_t description);
    void StartNodeElement(const ElementStart& element);
    void StartStruct(const ElementStart& element);
    void StartProperty(const ElementStart& element, bool isItem, bool isTop);
    void ReadPropertyAttributes(const ElementStart& element, Frame& frame);
    void StartSkipped(const ElementStart& element);

    void EndProperty(std::size_t end);
    bool Assemble(Node& node, const Frame& frame);
    bool TakeValue(Node& node);
    void AddSlot(Node node, Slot::Place place, Span span, std::size_t description, Span bytes,
                 const Scope* scope);

    void SetPlace(ElementPlace& place, const ElementStart& element);
    bool IsForeign(const ElementStart& element) const;
    Node MakeText(const QName* name, NodeForm form, std::string_view value);
    void CountNode();
    void CountText(std::size_t bytes);
    RawSource SourceOf(Span span, const Scope* scope) const;

    std::shared_ptr<Packet> packet_;
    ObjectState& object_;
    NamePool& names_;
    const RdfTerms& terms_;
    const NameKey* xmpMeta_;
    std::shared_ptr<std::vector<Node>> originals_ = std::make_shared<std::vector<Node>>();
    std::deque<Frame> frames_;  // addresses stay; made when first needed
    std::size_t depth_ = 0;
    std::size_t textBytes_ = 0;
    bool topIsFixed_ = false;  // part of the property at hand comes out of an entity
};

}  // namespace kivxmp
