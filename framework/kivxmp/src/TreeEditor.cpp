#include "framework/kivxmp/src/TreeEditor.h"

#include <algorithm>
#include <utility>

#include "framework/kivxmp/src/Encoding.h"
#include "framework/kivxmp/src/XmlName.h"

#include <kivxmp/XMPError.h>
#include <kivxmp/XMPNamespaces.h>

namespace kivxmp {
namespace {

constexpr std::string_view kXmlnsUri = "http://www.w3.org/2000/xmlns/";
constexpr std::string_view kDefaultLanguage = "x-default";

bool IsName(const PathStep& step) noexcept
{
    return step.kind == PathStep::Kind::kField || step.kind == PathStep::Kind::kQualifier;
}

bool IsLanguageQualifier(const PathStep& step) noexcept
{
    return step.kind == PathStep::Kind::kQualifier && step.uri == kXmlUri && step.local == "lang";
}

/// XML elements inside one another that writing the node takes.
std::size_t ElementDepth(const Node& node, const RdfTerms& terms) noexcept
{
    std::size_t deepest = 0;
    for (const Node& child : node.Children()) {
        deepest = std::max(deepest, ElementDepth(child, terms));
    }
    std::size_t own = 1 + deepest + (node.IsArray() ? 1u : 0u);
    if (NodeAccess::HasGeneralQualifiers(node, terms)) {
        ++own;
        for (const Node& qualifier : node.Qualifiers()) {
            own = std::max(own, 1 + ElementDepth(qualifier, terms));
        }
    }
    return own;
}

/// True if the text refers to entities of its packet's own DTD.
bool RefersToEntities(std::string_view text) noexcept
{
    constexpr std::string_view kBuiltIn[] = {"#", "lt;", "gt;", "amp;", "quot;", "apos;"};
    for (std::size_t at = text.find('&'); at != std::string_view::npos;
         at = text.find('&', at + 1)) {
        const std::string_view name = text.substr(at + 1, 8);
        if (std::none_of(std::begin(kBuiltIn), std::end(kBuiltIn), [name](std::string_view one) {
                return name.substr(0, one.size()) == one;
            })) {
            return true;
        }
    }
    return false;
}

/// True if the node has nothing but this part, doubles of a field counted as one.
bool IsAllOf(const Node& node, const Node& part) noexcept
{
    const std::vector<Node>& parts = node.Children();
    return parts.size() == 1 ||
           (!node.IsArray() && std::all_of(parts.begin(), parts.end(), [&part](const Node& one) {
               return NodeAccess::Key(one) == NodeAccess::Key(part);
           }));
}

}  // namespace

TreeEditor::TreeEditor(ObjectState& object, const Path& path)
    : object_(object), path_(path), terms_(object.names->Terms())
{
    if (path_.empty() || path_.size() > kMaxPathSteps ||
        path_.front().kind != PathStep::Kind::kField) {
        throw XMP_Error(kKivXmpBadPath, "the path does not begin with a property");
    }
}

void TreeEditor::Fail(KivXmpCode code, const std::string& reason) const
{
    throw XMP_Error(code, PrintPath(path_, object_.Prefixes()) + ": " + reason);
}

void TreeEditor::CheckNames() const
{
    for (std::size_t i = 0; i < path_.size(); ++i) {
        const PathStep& step = path_[i];
        if (step.kind == PathStep::Kind::kLanguage &&
            (step.language.empty() || !IsXmlText(step.language))) {
            Fail(kKivXmpBadPath, "this cannot be a language");
        }
        if (!IsName(step)) {
            continue;
        }
        const bool isType = step.uri == kRdfUri && step.local == "type";
        const bool isLanguage = IsLanguageQualifier(step) && i + 1 == path_.size();
        if (step.uri.empty() || step.uri == kXmlnsUri || (step.uri == kRdfUri && !isType) ||
            (step.uri == kXmlUri && !isLanguage) || !IsXmlText(step.uri) ||
            !IsXmlName(step.local)) {
            Fail(kKivXmpBadPath, "{" + step.uri + "}" + step.local + " cannot be a property");
        }
    }
}

void TreeEditor::CheckSlot() const
{
    const PathStep& step = path_.front();
    const std::size_t slot = object_.SlotOf(object_.names->FindKey(step.uri, step.local));
    if (slot != kNowhere) {
        if (object_.slots[slot].place == Slot::Place::kFixed) {
            Fail(kKivXmpNotEditable, "the packet builds this property from entities");
        }
        return;
    }
    const Packet& packet = *object_.packet;
    const auto isOpen = [](const ElementPlace& place) { return !place.isFixed; };
    const bool hasDescription =
        std::any_of(packet.descriptions.begin(), packet.descriptions.end(), isOpen);
    const ElementPlace& around = packet.rdf.begin != kNowhere ? packet.rdf : packet.root;
    if (!hasDescription && around.isFixed) {
        Fail(kKivXmpNotEditable, "the packet is built from entities; nothing can be added");
    }
}

void TreeEditor::CheckTwins(const NameKey* key) const
{
    const std::size_t number = object_.SlotOf(key);
    if (number == kNowhere || !object_.slots[number].hasTwins) {
        return;
    }
    const Slot& first = object_.slots[number];
    for (const Slot& slot : object_.slots) {
        if (&slot != &first && slot.place == Slot::Place::kAttribute && first.place == slot.place &&
            slot.description == first.description && slot.Current() != nullptr &&
            NodeAccess::Key(*slot.Current()) == key) {
            Fail(kKivXmpNotEditable, "an element of the packet has this attribute twice");
        }
    }
}

void TreeEditor::CheckWay(std::size_t inside) const
{
    CheckNames();
    CheckSlot();
    const PathStep& first = path_.front();
    CheckTwins(object_.names->FindKey(first.uri, first.local));
    const Node* node = object_.FindProperty(object_.names->FindKey(first.uri, first.local));
    constexpr std::size_t kUsualDepth = 4;  // x:xmpmeta, rdf:RDF, rdf:Description, the property
    std::size_t depth = object_.packet->descriptions.empty()
                            ? kUsualDepth
                            : object_.packet->descriptions.front().depth + 1;
    for (std::size_t i = 1; i < path_.size(); ++i) {
        const PathStep& step = path_[i];
        CheckStep(node, step);
        const bool isPart = step.kind != PathStep::Kind::kQualifier;
        depth += IsName(step) ? 1 : 2;
        if (node != nullptr) {
            depth += isPart && NodeAccess::HasGeneralQualifiers(*node, terms_) ? 1 : 0;
            node = FindStep(*node, step, *object_.names);
        }
    }
    if (depth + inside > kMaxNesting) {
        Fail(kKivXmpTooDeep, "this is nested too deep");
    }
}

void TreeEditor::CheckStep(const Node* node, const PathStep& step) const
{
    if (node != nullptr && node->Form() == NodeForm::kRaw) {
        Fail(kKivXmpWrongForm, "part of the path is RDF that XMP does not allow");
    }
    switch (step.kind) {
        case PathStep::Kind::kField:
            if (node != nullptr && node->Form() != NodeForm::kStruct) {
                Fail(kKivXmpWrongForm, "what has the field " + step.local + " is no structure");
            }
            break;
        case PathStep::Kind::kQualifier:
            if (node == nullptr) {
                Fail(kKivXmpNotFound, "there is nothing to qualify");
            }
            break;
        case PathStep::Kind::kItem:
            if (node == nullptr) {
                Fail(kKivXmpNotFound, "there is no list");
            }
            if (!node->IsArray()) {
                Fail(kKivXmpWrongForm, "what has the items is no list");
            }
            if (step.index == 0 || step.index > node->Children().size() + 1) {
                Fail(kKivXmpNotFound,
                     "the list has " + std::to_string(node->Children().size()) + " items");
            }
            break;
        case PathStep::Kind::kLanguage:
            if (node != nullptr && !node->IsArray() && node->Form() != NodeForm::kSimple) {
                Fail(kKivXmpWrongForm, "what has the languages is no list");
            }
            break;
    }
}

void TreeEditor::CheckNodeCount(std::size_t added) const
{
    // Each step may have to make a node and its language.
    if (added + 2 * path_.size() > kMaxNodes - std::min(kMaxNodes, object_.nodeCount)) {
        Fail(kKivXmpTooManyNodes,
             "the packet would have more than " + std::to_string(kMaxNodes) + " nodes");
    }
}

void TreeEditor::CheckText(std::string_view value) const
{
    if (value.size() > kMaxPacketBytes) {
        Fail(kKivXmpTooBig, "the value is longer than a packet may be");
    }
    if (!IsXmlText(value)) {
        Fail(kKivXmpBadValue, "the value has characters that a packet cannot hold");
    }
}

void TreeEditor::CheckIsNoLanguage() const
{
    if (IsLanguageQualifier(path_.back())) {
        Fail(kKivXmpWrongForm, "a language is a simple text");
    }
}

NodeForm TreeEditor::FormAhead(std::size_t number) const noexcept
{
    if (number + 1 == path_.size()) {
        return NodeForm::kSimple;
    }
    return path_[number + 1].kind == PathStep::Kind::kLanguage ? NodeForm::kAlt : NodeForm::kStruct;
}

Node& TreeEditor::Writable(Slot& slot)
{
    if (slot.changed.use_count() != 1) {
        slot.changed = std::make_shared<Node>(*slot.Current());
    }
    return *slot.changed;
}

const QName* TreeEditor::NameOf(const PathStep& step)
{
    return object_.names->Ensure(step.prefix.empty() ? PrefixOfNamespace(step.uri) : step.prefix,
                                 step.uri, step.local);
}

Node& TreeEditor::ReachSlot()
{
    const QName* const name = NameOf(path_.front());
    if (object_.SlotOf(name->key) == kNowhere) {
        object_.SetSlotOf(name->key, object_.slots.size());
        object_.slots.emplace_back();
    }
    Slot& slot = object_.slots[object_.SlotOf(name->key)];
    if (slot.Current() == nullptr) {
        // A property that comes back is written as it was before.
        const QName* const own = slot.original != nullptr ? NodeAccess::Name(*slot.original) : name;
        slot.changed = std::make_shared<Node>(NodeAccess::Make(own, FormAhead(0)));
        slot.isRemoved = false;
        ++object_.nodeCount;
    }
    return Writable(slot);
}

Node& TreeEditor::Reach(std::size_t steps)
{
    Node* node = &ReachSlot();
    for (std::size_t i = 1; i < steps; ++i) {
        node = &ReachStep(*node, i);
    }
    return *node;
}

Node& TreeEditor::ReachStep(Node& node, std::size_t number)
{
    const PathStep& step = path_[number];
    if (step.kind == PathStep::Kind::kLanguage && node.Form() == NodeForm::kSimple) {
        Node item = MakeItem(kDefaultLanguage);
        NodeAccess::Value(item) = node.Value();
        NodeAccess::ClearContent(node);
        NodeAccess::RemoveQualifier(node, terms_.datatype);
        NodeAccess::SetForm(node, NodeForm::kAlt);
        if (!item.Value().empty()) {
            NodeAccess::Children(node).push_back(std::move(item));
        }
    }
    if (const Node* const found = FindStep(node, step, *object_.names)) {
        return const_cast<Node&>(*found);  // `node` is ours to change, and so are its parts
    }
    std::vector<Node>& parts = NodeAccess::Children(node);
    switch (step.kind) {
        case PathStep::Kind::kField:
            ++object_.nodeCount;
            return parts.emplace_back(NodeAccess::Make(NameOf(step), FormAhead(number)));
        case PathStep::Kind::kQualifier:
            ++object_.nodeCount;
            return NodeAccess::AddQualifier(node, NodeAccess::Make(NameOf(step), FormAhead(number)),
                                            terms_);
        case PathStep::Kind::kLanguage: {
            // x-default comes first: readers that know no languages take the first item.
            const bool isFirst = EqualIgnoringCase(step.language, kDefaultLanguage);
            Node item = MakeItem(step.language);
            NodeAccess::SetForm(item, FormAhead(number));
            return *parts.insert(isFirst ? parts.begin() : parts.end(), std::move(item));
        }
        case PathStep::Kind::kItem:
            break;
    }
    Node item = MakeItem({});
    NodeAccess::SetForm(item, FormAhead(number));
    return parts.emplace_back(std::move(item));
}

Node TreeEditor::MakeText(const QName* name, std::string_view value)
{
    ++object_.nodeCount;
    Node node = NodeAccess::Make(name, NodeForm::kSimple);
    NodeAccess::Value(node) = value;
    return node;
}

Node TreeEditor::MakeItem(std::string_view language)
{
    Node item = MakeText(object_.names->Ensure("rdf", terms_.li), {});
    SetLanguage(item, language);
    return item;
}

void TreeEditor::SetLanguage(Node& item, std::string_view language)
{
    if (item.Language() == language) {
        return;
    }
    NodeAccess::RemoveQualifier(item, terms_.xmlLang);
    if (!language.empty()) {
        NodeAccess::AddQualifier(
            item, MakeText(object_.names->Ensure("xml", terms_.xmlLang), language), terms_);
    }
}

void TreeEditor::Finish(Node& node, std::size_t countBefore)
{
    if (node.Form() != NodeForm::kSimple) {
        NodeAccess::RemoveQualifier(node, terms_.datatype);
    }
    object_.nodeCount += CountNodes(node);
    object_.nodeCount -= std::min(object_.nodeCount, countBefore);
}

void TreeEditor::SetText(NodeForm form, std::string_view value)
{
    if (form == NodeForm::kUri) {
        CheckIsNoLanguage();
    }
    CheckText(value);
    CheckWay(/*inside=*/0);
    CheckNodeCount(0);
    std::string text(value);  // it may belong to the node that is about to change
    Node& node = Reach(path_.size());
    const std::size_t before = CountNodes(node);
    const bool staysUri = form == NodeForm::kSimple && node.Form() == NodeForm::kUri;
    NodeAccess::ClearContent(node);
    NodeAccess::SetForm(node, staysUri ? NodeForm::kUri : form);
    NodeAccess::Value(node) = std::move(text);
    Finish(node, before);
}

void TreeEditor::Ensure(NodeForm form)
{
    if (!IsArrayForm(form) && form != NodeForm::kStruct) {
        Fail(kKivXmpBadArgument, "this is no form of a list or structure");
    }
    CheckIsNoLanguage();
    CheckWay(/*inside=*/1);
    CheckNodeCount(0);
    Node& node = Reach(path_.size());
    const std::size_t before = CountNodes(node);
    if (node.Form() != form && !(node.IsArray() && IsArrayForm(form))) {
        NodeAccess::ClearContent(node);
    }
    NodeAccess::SetForm(node, form);
    Finish(node, before);
}

void TreeEditor::Adopt(Node& node) const
{
    const QName& own = *NodeAccess::Name(node);
    NodeAccess::SetName(node, object_.names->Ensure(*own.prefix, *own.key->uri, own.key->local));
    if (const RawSource* const raw = NodeAccess::Raw(node)) {
        if (!raw->isElement || (raw->packet != object_.packet && RefersToEntities(raw->Text()))) {
            Fail(kKivXmpNotEditable, "this RDF cannot be copied");
        }
        return;
    }
    if (!node.Children().empty()) {
        for (Node& child : NodeAccess::Children(node)) {
            Adopt(child);
        }
    }
    if (!node.Qualifiers().empty()) {
        for (Node& qualifier : NodeAccess::EnsureQualifiers(node)) {
            Adopt(qualifier);
        }
    }
}

void TreeEditor::SetCopy(const Node& source)
{
    const PathStep& last = path_.back();
    if (source.Form() != NodeForm::kSimple) {
        CheckIsNoLanguage();
    }
    CheckWay(ElementDepth(source, terms_) - 1);
    Node copy = source;
    Adopt(copy);
    const bool hasThatName = IsName(last)
                                 ? copy.LocalName() == last.local && copy.NamespaceUri() == last.uri
                                 : NodeAccess::Key(copy) == terms_.li;
    if (copy.Form() == NodeForm::kRaw && !hasThatName) {
        Fail(kKivXmpWrongForm, "RDF that XMP does not allow cannot get another name");
    }
    const std::size_t count = CountNodes(copy);
    CheckNodeCount(count);
    Node& node = Reach(path_.size());
    const std::size_t before = CountNodes(node);
    if (!hasThatName) {
        NodeAccess::SetName(copy, NodeAccess::Name(node));
    }
    node = std::move(copy);
    if (last.kind == PathStep::Kind::kLanguage &&
        !EqualIgnoringCase(node.Language(), last.language) && node.Form() != NodeForm::kRaw) {
        SetLanguage(node, last.language);
    }
    Finish(node, before);
}

void TreeEditor::RemoveProperty(const NameKey* key)
{
    Slot& first = object_.slots[object_.SlotOf(key)];
    if (first.hasTwins) {
        const auto isTwin = [key](const Slot& slot) {
            return slot.place != Slot::Place::kTopLevel && slot.Current() != nullptr &&
                   NodeAccess::Key(*slot.Current()) == key;
        };
        if (std::any_of(object_.slots.begin(), object_.slots.end(), [&](const Slot& slot) {
                return slot.place == Slot::Place::kFixed && isTwin(slot);
            })) {
            Fail(kKivXmpNotEditable, "the packet builds this property from entities");
        }
        for (Slot& slot : object_.slots) {
            if (isTwin(slot)) {
                slot.isRemoved = true;
                slot.changed.reset();
            }
        }
    }
    first.isRemoved = true;
    first.changed.reset();
}

bool TreeEditor::Remove()
{
    const NameKey* const key = object_.names->FindKey(path_[0].uri, path_[0].local);
    std::vector<const Node*> way{object_.FindProperty(key)};
    for (std::size_t i = 1; i < path_.size() && way.back() != nullptr; ++i) {
        way.push_back(FindStep(*way.back(), path_[i], *object_.names));
    }
    if (way.back() == nullptr) {
        return false;
    }
    CheckSlot();
    std::size_t last = path_.size() - 1;
    while (last > 0 && path_[last].kind != PathStep::Kind::kQualifier &&
           IsAllOf(*way[last - 1], *way[last])) {
        --last;  // what would be left empty goes, too
    }
    const std::size_t removed = CountNodes(*way[last]);
    if (last == 0) {
        RemoveProperty(key);
    } else {
        RemovePart(last);
    }
    object_.nodeCount -= std::min(object_.nodeCount, removed);
    return true;
}

void TreeEditor::RemovePart(std::size_t last)
{
    // The way was found in what may be a shared tree; here it is followed in our own.
    Node& parent = Reach(last);
    const Node* const part = FindStep(parent, path_[last], *object_.names);
    if (path_[last].kind == PathStep::Kind::kQualifier) {
        NodeAccess::RemoveQualifier(parent, NodeAccess::Key(*part));
        return;
    }
    std::vector<Node>& parts = NodeAccess::Children(parent);
    if (parent.IsArray()) {
        parts.erase(parts.begin() + (part - parts.data()));
        return;
    }
    // Doubles of a field go with it; else the next one would take its place.
    const NameKey* const key = NodeAccess::Key(*part);
    std::erase_if(parts, [key](const Node& one) { return NodeAccess::Key(one) == key; });
}

}  // namespace kivxmp
