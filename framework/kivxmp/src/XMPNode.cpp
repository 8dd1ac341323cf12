#include <kivxmp/XMPNode.h>

#include <algorithm>

#include "framework/kivxmp/src/NodeAccess.h"

#include <kivcore/NeverDestroyed.h>
#include <kivxmp/kivxmp.h>

namespace kivxmp {
namespace {

struct FormRow {
    NodeForm form;
    KivXmpForm cForm;
    const char* name;
};

constexpr FormRow kForms[] = {
    {NodeForm::kSimple, kKivXmpSimple, "simple"}, {NodeForm::kUri, kKivXmpUri, "uri"},
    {NodeForm::kStruct, kKivXmpStruct, "struct"}, {NodeForm::kBag, kKivXmpBag, "bag"},
    {NodeForm::kSeq, kKivXmpSeq, "seq"},          {NodeForm::kAlt, kKivXmpAlt, "alt"},
    {NodeForm::kRaw, kKivXmpRaw, "raw"},
};

constexpr bool FormsStandByNumber()
{
    int number = 0;
    for (const FormRow& row : kForms) {
        if (static_cast<int>(row.form) != number || static_cast<int>(row.cForm) != number) {
            return false;
        }
        ++number;
    }
    return true;
}
static_assert(FormsStandByNumber());

const std::vector<Node>& NoNodes() noexcept
{
    static constinit kivcore::NeverDestroyed<std::vector<Node>> empty;
    return *empty;
}

char Lower(char c) noexcept
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

const Node* FindNamed(const std::vector<Node>& nodes, std::string_view uri,
                      std::string_view local) noexcept
{
    const auto found = std::find_if(nodes.begin(), nodes.end(), [&](const Node& node) {
        return node.LocalName() == local && node.NamespaceUri() == uri;
    });
    return found == nodes.end() ? nullptr : &*found;
}

const Node* FindKeyed(const std::vector<Node>& nodes, const NameKey* key) noexcept
{
    const auto found = std::find_if(nodes.begin(), nodes.end(), [key](const Node& node) {
        return NodeAccess::Key(node) == key;
    });
    return found == nodes.end() ? nullptr : &*found;
}

}  // namespace

const char* FormName(NodeForm form) noexcept
{
    const auto number = static_cast<std::size_t>(form);
    return number < std::size(kForms) ? kForms[number].name : "";
}

bool EqualIgnoringCase(std::string_view left, std::string_view right) noexcept
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return Lower(a) == Lower(b); });
}

Node::Node(const QName* name, NodeForm form) noexcept : name_(name), form_(form) {}

Node::Node(const Node& other)
    : name_(other.name_),
      value_(other.value_),
      extra_(other.extra_ ? std::make_unique<Extra>(*other.extra_) : nullptr),
      form_(other.form_)
{
}

Node::Node(Node&& other) noexcept = default;

Node& Node::operator=(const Node& other)
{
    if (this != &other) {
        *this = Node(other);
    }
    return *this;
}

Node& Node::operator=(Node&& other) noexcept = default;
Node::~Node() = default;

const std::string& Node::NamespaceUri() const noexcept
{
    return *name_->key->uri;
}
const std::string& Node::LocalName() const noexcept
{
    return name_->key->local;
}
const std::string& Node::Prefix() const noexcept
{
    return *name_->prefix;
}

std::string_view Node::Value() const noexcept
{
    return form_ == NodeForm::kRaw && extra_ ? extra_->raw.Text() : std::string_view(value_);
}

const std::vector<Node>& Node::Children() const noexcept
{
    return extra_ ? extra_->children : NoNodes();
}

const std::vector<Node>& Node::Qualifiers() const noexcept
{
    return extra_ ? extra_->qualifiers : NoNodes();
}

const Node* Node::FindField(std::string_view uri, std::string_view local) const noexcept
{
    return form_ == NodeForm::kStruct ? FindNamed(Children(), uri, local) : nullptr;
}

const Node* Node::FindQualifier(std::string_view uri, std::string_view local) const noexcept
{
    return FindNamed(Qualifiers(), uri, local);
}

const Node* Node::FindLanguage(std::string_view language) const noexcept
{
    if (!IsArray()) {
        return nullptr;
    }
    const std::vector<Node>& items = Children();
    const auto found = std::find_if(items.begin(), items.end(), [language](const Node& item) {
        const std::string_view own = item.Language();
        return !own.empty() && EqualIgnoringCase(own, language);
    });
    return found == items.end() ? nullptr : &*found;
}

std::string_view Node::Language() const noexcept
{
    const Node* language = FindQualifier(kXmlUri, "lang");
    return language != nullptr ? language->Value() : std::string_view();
}

bool operator==(const Node& left, const Node& right) noexcept
{
    if (&left == &right) {
        return true;
    }
    const NameKey* const leftKey = left.name_->key;
    const NameKey* const rightKey = right.name_->key;
    if (left.form_ != right.form_ || (leftKey != rightKey && (leftKey->local != rightKey->local ||
                                                              *leftKey->uri != *rightKey->uri))) {
        return false;
    }
    return left.Value() == right.Value() && left.Children() == right.Children() &&
           left.Qualifiers() == right.Qualifiers();
}

std::vector<Node>& NodeAccess::Children(Node& node)
{
    if (!node.extra_) {
        node.extra_ = std::make_unique<Node::Extra>();
    }
    return node.extra_->children;
}

std::vector<Node>& NodeAccess::EnsureQualifiers(Node& node)
{
    if (!node.extra_) {
        node.extra_ = std::make_unique<Node::Extra>();
    }
    return node.extra_->qualifiers;
}

const RawSource* NodeAccess::Raw(const Node& node) noexcept
{
    return node.form_ == NodeForm::kRaw && node.extra_ ? &node.extra_->raw : nullptr;
}

void NodeAccess::MakeRaw(Node& node, RawSource source)
{
    EnsureQualifiers(node).clear();
    node.extra_->raw = std::move(source);
    node.form_ = NodeForm::kRaw;
    node.value_.clear();
    node.extra_->children.clear();
}

void NodeAccess::ClearContent(Node& node) noexcept
{
    node.value_.clear();
    if (node.extra_) {
        node.extra_->children.clear();
        node.extra_->raw = RawSource();
    }
}

const Node* NodeAccess::FindQualifier(const Node& node, const NameKey* key) noexcept
{
    return FindKeyed(node.Qualifiers(), key);
}

const Node* NodeAccess::FindField(const Node& node, const NameKey* key) noexcept
{
    return node.form_ == NodeForm::kStruct ? FindKeyed(node.Children(), key) : nullptr;
}

Node& NodeAccess::AddQualifier(Node& node, Node qualifier, const RdfTerms& terms)
{
    const auto rank = [&terms](const Node& one) {
        const NameKey* const key = Key(one);
        return key == terms.xmlLang ? 0 : key == terms.datatype ? 1 : 2;
    };
    std::vector<Node>& all = EnsureQualifiers(node);
    const int own = rank(qualifier);
    const auto place =
        own == 2 ? all.end() : std::find_if(all.begin(), all.end(), [&](const Node& other) {
            return rank(other) > own;
        });
    return *all.insert(place, std::move(qualifier));
}

void NodeAccess::RemoveQualifier(Node& node, const NameKey* key) noexcept
{
    if (node.extra_) {
        std::erase_if(node.extra_->qualifiers,
                      [key](const Node& qualifier) { return Key(qualifier) == key; });
    }
}

bool NodeAccess::HasGeneralQualifiers(const Node& node, const RdfTerms& terms) noexcept
{
    const std::vector<Node>& all = node.Qualifiers();
    // They stand in this order, so the last one tells.
    return !all.empty() && Key(all.back()) != terms.xmlLang && Key(all.back()) != terms.datatype;
}

std::size_t CountNodes(const Node& node) noexcept
{
    std::size_t count = 1;
    for (const Node& qualifier : node.Qualifiers()) {
        count += CountNodes(qualifier);
    }
    for (const Node& child : node.Children()) {
        count += CountNodes(child);
    }
    return count;
}

}  // namespace kivxmp
