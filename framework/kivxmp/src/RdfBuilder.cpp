#include "framework/kivxmp/src/RdfBuilder.h"

#include <utility>

#include "framework/kivxmp/src/TagScanner.h"

#include <kivcore/Trace.h>

namespace kivxmp {
namespace {

bool IsSpaceOnly(std::string_view text) noexcept
{
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

constinit kivcore::debug::TraceSite rawTrace("kivxmp", 5);

}  // namespace

RdfBuilder::RdfBuilder(std::shared_ptr<Packet> packet, ObjectState& object)
    : packet_(std::move(packet)),
      object_(object),
      names_(*object.names),
      terms_(names_.Terms()),
      xmpMeta_(names_.EnsureKey(names_.EnsureText("adobe:ns:meta/"), "xmpmeta"))
{
    Push(Kind::kOutside);
}

RdfBuilder::Frame& RdfBuilder::Push(Kind kind)
{
    if (depth_ == kMaxNesting + 1) {
        throw XMP_Error(kKivXmpTooDeep, "the packet is nested deeper than " +
                                            std::to_string(kMaxNesting) + " elements");
    }
    if (depth_ == frames_.size()) {
        frames_.emplace_back();
    }
    Frame& frame = frames_[depth_++];
    frame.kind = kind;
    frame.content = Content::kOpen;
    frame.isRaw = frame.hasElement = false;
    frame.spans.clear();
    frame.place = nullptr;
    frame.description = kNowhere;
    return frame;
}

RdfBuilder::Frame& RdfBuilder::PropertyOfTop() noexcept
{
    Frame& top = Top();
    return top.kind == Kind::kProperty ? top : frames_[depth_ - 2];
}

void RdfBuilder::Start(const ElementStart& element)
{
    topIsFixed_ = topIsFixed_ || !element.isLiteral;
    switch (Top().kind) {
        case Kind::kOutside:
            StartOutside(element);
            break;
        case Kind::kRdf:
            StartInRdf(element);
            break;
        case Kind::kDescription:
            StartProperty(element, /*isItem=*/false, /*isTop=*/true);
            break;
        case Kind::kProperty:
            StartNodeElement(element);
            break;
        case Kind::kStruct:
            StartProperty(element, /*isItem=*/false, /*isTop=*/false);
            break;
        case Kind::kArray:
            if (element.name->key == terms_.li) {
                StartProperty(element, /*isItem=*/true, /*isTop=*/false);
            } else {
                StartSkipped(element);
            }
            break;
        case Kind::kSkipped:
            Push(Kind::kSkipped);
            break;
    }
}

void RdfBuilder::SetPlace(ElementPlace& place, const ElementStart& element)
{
    place.begin = element.begin;
    place.isFixed = !element.isLiteral;
    place.scope = element.scope;
    place.depth = depth_ - 1;  // the first frame is no element
    if (element.isLiteral) {
        const StartTag tag = ScanStartTag(packet_->text, element.begin);
        place.attributesEnd = tag.attributesEnd;
        place.startTagEnd = place.contentEnd = tag.end;
        place.isEmpty = tag.isEmpty;
    }
}

void RdfBuilder::StartOutside(const ElementStart& element)
{
    const NameKey* const key = element.name->key;
    const bool isFirstRdf = key == terms_.rdf && packet_->rdf.begin == kNowhere;
    Frame& frame = Push(isFirstRdf ? Kind::kRdf : Kind::kOutside);
    if (isFirstRdf) {
        frame.place = &packet_->rdf;
    } else if (key == xmpMeta_ && packet_->root.begin == kNowhere) {
        frame.place = &packet_->root;
    }
    if (frame.place != nullptr) {
        SetPlace(*frame.place, element);
    }
}

bool RdfBuilder::IsForeign(const ElementStart& element) const
{
    if (element.name->key != terms_.description) {
        return true;
    }
    for (const ElementStart::Attribute& attribute : element.attributes) {
        const NameKey* const key = attribute.name->key;
        const bool isAbout = key == terms_.about || (key->uri->empty() && key->local == "about");
        if (isAbout && !attribute.value.empty() && !packet_->about.empty() &&
            attribute.value != packet_->about) {
            return true;  // it tells about another resource
        }
        if (key == terms_.nodeId) {
            return true;
        }
    }
    return false;
}

void RdfBuilder::StartInRdf(const ElementStart& element)
{
    if (packet_->rdf.firstChild == kNowhere) {
        packet_->rdf.firstChild = element.begin;
    }
    topIsFixed_ = !element.isLiteral;
    if (!IsForeign(element)) {
        StartDescription(element);
        return;
    }
    CountNode();
    Frame& frame = Push(Kind::kProperty);
    frame.node = NodeAccess::Make(element.name, NodeForm::kRaw);
    frame.isRaw = true;
    frame.begin = element.begin;
    frame.scope = element.outerScope;
}

void RdfBuilder::StartDescription(const ElementStart& element)
{
    const std::size_t number = packet_->descriptions.size();
    Frame& frame = Push(Kind::kDescription);
    frame.description = number;
    SetPlace(packet_->descriptions.emplace_back(), element);
    if (element.attributes.empty()) {
        return;
    }
    const StartTag tag =
        element.isLiteral ? ScanStartTag(packet_->text, element.begin) : StartTag();
    for (const ElementStart::Attribute& attribute : element.attributes) {
        AddDescriptionAttribute(element, attribute, tag, number);
    }
}

void RdfBuilder::AddDescriptionAttribute(const ElementStart& element,
                                         const ElementStart::Attribute& attribute,
                                         const StartTag& tag, std::size_t description)
{
    const NameKey* const key = attribute.name->key;
    if (key == terms_.about || (key->uri->empty() && key->local == "about")) {
        if (packet_->about.empty()) {
            packet_->about = attribute.value;
        }
        return;
    }
    // They name the description or its language, and are no properties.
    if (key == terms_.id || key->uri == terms_.xmlUri) {
        return;
    }
    const bool isAllowed = key == terms_.type || (key->uri != terms_.rdfUri && !key->uri->empty());
    Node node = MakeText(attribute.name, key == terms_.type ? NodeForm::kUri : NodeForm::kSimple,
                         attribute.value);
    Slot::Place place = Slot::Place::kFixed;
    Span span{element.begin, element.begin};
    Span bytes = span;
    if (attribute.number < tag.attributes.size()) {
        const AttributePlace& found = tag.attributes[attribute.number];
        place = Slot::Place::kAttribute;
        span = {found.spaceBegin, found.span.end};
        bytes = found.span;
    }
    if (!isAllowed) {
        NodeAccess::MakeRaw(node, SourceOf(bytes, element.scope));
    }
    AddSlot(std::move(node), place, span, description, bytes, element.scope);
}

void RdfBuilder::StartSkipped(const ElementStart&)
{
    PropertyOfTop().isRaw = true;
    Push(Kind::kSkipped);
}

void RdfBuilder::StartNodeElement(const ElementStart& element)
{
    Frame& property = Top();
    if (property.content == Content::kFields && !property.isRaw) {
        StartProperty(element, /*isItem=*/false, /*isTop=*/false);
        return;
    }
    std::string& text = NodeAccess::Value(property.node);
    if (property.isRaw || property.content != Content::kOpen || property.hasElement ||
        !IsSpaceOnly(text)) {
        StartSkipped(element);
        return;
    }
    property.hasElement = true;
    text.clear();

    const NameKey* const key = element.name->key;
    constexpr std::pair<const NameKey * RdfTerms::*, NodeForm> kArrays[] = {
        {&RdfTerms::bag, NodeForm::kBag},
        {&RdfTerms::seq, NodeForm::kSeq},
        {&RdfTerms::alt, NodeForm::kAlt},
    };
    for (const auto& [term, form] : kArrays) {
        if (key == terms_.*term) {
            if (!element.attributes.empty()) {
                StartSkipped(element);
                return;
            }
            NodeAccess::SetForm(property.node, form);
            Push(Kind::kArray);
            return;
        }
    }
    const bool isOtherTerm = key->uri == terms_.rdfUri && key != terms_.description;
    if (isOtherTerm || key->uri->empty()) {
        StartSkipped(element);
        return;
    }
    StartStruct(element);
}

void RdfBuilder::StartStruct(const ElementStart& element)
{
    Frame& property = Top();
    Node& node = property.node;
    NodeAccess::SetForm(node, NodeForm::kStruct);
    const NameKey* const key = element.name->key;
    if (key != terms_.description) {
        // The short way to write a type.
        NodeAccess::AddQualifier(
            node,
            MakeText(names_.Ensure("rdf", terms_.type), NodeForm::kUri, *key->uri + key->local),
            terms_);
    }
    for (const ElementStart::Attribute& attribute : element.attributes) {
        const NameKey* const name = attribute.name->key;
        const bool isAbout = name == terms_.about || (name->uri->empty() && name->local == "about");
        if (isAbout && attribute.value.empty()) {
            continue;
        }
        const bool isTerm =
            name->uri == terms_.rdfUri && name != terms_.type && name != terms_.value;
        if (isTerm || name->uri->empty() || name->uri == terms_.xmlUri) {
            StartSkipped(element);
            return;
        }
        NodeAccess::Children(node).push_back(
            MakeText(attribute.name, name == terms_.type ? NodeForm::kUri : NodeForm::kSimple,
                     attribute.value));
        property.spans.emplace_back();
    }
    property.innerScope = element.scope;
    Push(Kind::kStruct);
}

void RdfBuilder::StartProperty(const ElementStart& element, bool isItem, bool isTop)
{
    if (isTop) {
        topIsFixed_ = !element.isLiteral;
        ElementPlace& place = packet_->descriptions[Top().description];
        if (place.firstChild == kNowhere) {
            place.firstChild = element.begin;
        }
    } else if (PropertyOfTop().isRaw) {
        Push(Kind::kSkipped);
        return;
    }
    CountNode();
    Frame& frame = Push(Kind::kProperty);
    frame.node = NodeAccess::Make(element.name, NodeForm::kSimple);
    frame.begin = element.begin;
    frame.scope = element.outerScope;

    const NameKey* const key = element.name->key;
    const bool isTerm = key->uri == terms_.rdfUri && key != terms_.type &&
                        (isTop || key != terms_.value) && (!isItem || key != terms_.li);
    frame.isRaw = isTerm || key->uri->empty() || key->uri == terms_.xmlUri;
    if (!frame.isRaw && !element.attributes.empty()) {
        ReadPropertyAttributes(element, frame);
    }
}

void RdfBuilder::ReadPropertyAttributes(const ElementStart& element, Frame& frame)
{
    const ElementStart::Attribute* resource = nullptr;
    const ElementStart::Attribute* parseType = nullptr;
    const ElementStart::Attribute* datatype = nullptr;
    bool hasValue = false;
    std::size_t others = 0;
    for (const ElementStart::Attribute& attribute : element.attributes) {
        const NameKey* const key = attribute.name->key;
        if (key == terms_.xmlLang) {
            NodeAccess::AddQualifier(
                frame.node, MakeText(attribute.name, NodeForm::kSimple, attribute.value), terms_);
        } else if (key == terms_.resource) {
            resource = &attribute;
        } else if (key == terms_.parseType) {
            parseType = &attribute;
        } else if (key == terms_.datatype) {
            datatype = &attribute;
        } else if (key->uri->empty() || key->uri == terms_.xmlUri ||
                   (key->uri == terms_.rdfUri && key != terms_.value && key != terms_.type)) {
            frame.isRaw = true;
            return;
        } else {
            hasValue = hasValue || key == terms_.value;
            ++others;
        }
    }
    const int ways = (resource != nullptr || others != 0 ? 1 : 0) + (parseType != nullptr ? 1 : 0) +
                     (datatype != nullptr ? 1 : 0);
    if (ways > 1 || (resource != nullptr && hasValue) ||
        (parseType != nullptr && parseType->value != "Resource")) {
        frame.isRaw = true;
        return;
    }
    if (parseType != nullptr) {
        frame.content = Content::kFields;
        frame.innerScope = element.scope;
        NodeAccess::SetForm(frame.node, NodeForm::kStruct);
        return;
    }
    if (datatype != nullptr) {
        frame.content = Content::kText;
        NodeAccess::AddQualifier(frame.node,
                                 MakeText(datatype->name, NodeForm::kUri, datatype->value), terms_);
        return;
    }
    if (ways == 0) {
        return;  // a language only
    }
    frame.content = Content::kNothing;
    if (resource != nullptr) {
        NodeAccess::SetForm(frame.node, NodeForm::kUri);
        NodeAccess::Value(frame.node) = resource->value;
        CountText(resource->value.size());
    } else {
        NodeAccess::SetForm(frame.node, NodeForm::kStruct);
    }
    for (const ElementStart::Attribute& attribute : element.attributes) {
        const NameKey* const key = attribute.name->key;
        if (key == terms_.xmlLang || key == terms_.resource) {
            continue;
        }
        Node node =
            MakeText(attribute.name, key == terms_.type ? NodeForm::kUri : NodeForm::kSimple,
                     attribute.value);
        if (resource != nullptr) {
            NodeAccess::AddQualifier(frame.node, std::move(node), terms_);
        } else {
            NodeAccess::Children(frame.node).push_back(std::move(node));
            frame.spans.emplace_back();
        }
    }
}

void RdfBuilder::Text(std::string_view text)
{
    Frame& top = Top();
    switch (top.kind) {
        case Kind::kProperty:
            if (top.isRaw) {
                break;
            }
            if ((top.content == Content::kOpen && !top.hasElement) ||
                top.content == Content::kText) {
                CountText(text.size());
                NodeAccess::Value(top.node).append(text);
            } else if (!IsSpaceOnly(text)) {
                top.isRaw = true;
            }
            break;
        case Kind::kStruct:
        case Kind::kArray:
            if (!IsSpaceOnly(text)) {
                PropertyOfTop().isRaw = true;
            }
            break;
        default:
            break;  // white space, and text that means nothing where it stands
    }
}

void RdfBuilder::End(std::size_t begin, std::size_t end)
{
    Frame& top = Top();
    if (top.place != nullptr && !top.place->isFixed) {
        top.place->contentEnd = top.place->isEmpty ? top.place->startTagEnd : begin;
    }
    if (top.kind == Kind::kDescription) {
        ElementPlace& place = packet_->descriptions[top.description];
        place.contentEnd = place.isEmpty ? place.startTagEnd : begin;
    }
    if (top.kind == Kind::kProperty) {
        EndProperty(end);
    } else {
        --depth_;
    }
}

void RdfBuilder::EndProperty(std::size_t end)
{
    Frame& frame = Top();
    --depth_;
    Frame& parent = Top();
    const Span span{frame.begin, end};
    Node node = std::move(frame.node);
    if (frame.isRaw || !Assemble(node, frame)) {
        NodeAccess::MakeRaw(node, SourceOf(span, frame.scope));
        if (rawTrace.Enabled()) {
            rawTrace.Write(node.LocalName() + " at byte " + std::to_string(span.begin) +
                           " is RDF that XMP does not allow");
        }
    }
    if (parent.kind == Kind::kDescription || parent.kind == Kind::kRdf) {
        const bool isTop = parent.kind == Kind::kRdf;
        const Slot::Place place = topIsFixed_ ? Slot::Place::kFixed
                                  : isTop     ? Slot::Place::kTopLevel
                                              : Slot::Place::kElement;
        AddSlot(std::move(node), place, span, parent.description, span, frame.scope);
        return;
    }
    Frame& owner = PropertyOfTop();
    if (owner.isRaw) {
        return;
    }
    NodeAccess::Children(owner.node).push_back(std::move(node));
    if (owner.node.Form() == NodeForm::kStruct) {
        owner.spans.push_back(span);
    }
}

Node RdfBuilder::MakeText(const QName* name, NodeForm form, std::string_view value)
{
    CountNode();
    CountText(value.size());
    Node node = NodeAccess::Make(name, form);
    NodeAccess::Value(node) = value;
    return node;
}

void RdfBuilder::CountNode()
{
    if (++object_.nodeCount > kMaxNodes) {
        throw XMP_Error(kKivXmpTooManyNodes,
                        "the packet has more than " + std::to_string(kMaxNodes) + " nodes");
    }
}

void RdfBuilder::CountText(std::size_t bytes)
{
    // Without entities the values cannot be longer than the packet.
    textBytes_ += bytes;
    if (textBytes_ > 2 * kMaxPacketBytes) {
        throw XMP_Error(kKivXmpEntities, "the packet's entities multiply to more than 128 MiB");
    }
}

RawSource RdfBuilder::SourceOf(Span span, const Scope* scope) const
{
    const bool isElement = span.begin < span.end && packet_->text[span.begin] == '<';
    return {packet_, span, scope, isElement};
}

}  // namespace kivxmp
