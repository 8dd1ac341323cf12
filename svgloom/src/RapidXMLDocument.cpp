#include "svgloom/src/RapidXMLDocument.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "svgloom/src/Characters.h"
#include "svgloom/src/XMLChecks.h"

namespace SVGLoom::xml {

namespace {

using Node = rapidxml::xml_node<char>;
using Attribute = rapidxml::xml_attribute<char>;

// Texts of their own are made for CDATA sections only: without any, the library leaves them out,
// which is faster, and the elements' values are the same.
constexpr int kFlags = rapidxml::parse_validate_closing_tags;
constexpr int kFlagsWithoutTexts = kFlags | rapidxml::parse_no_data_nodes;

bool HasSection(std::string_view text)
{
    for (std::size_t at = text.find('!'); at != std::string_view::npos;
         at = text.find('!', at + 1)) {
        if (text.substr(at).starts_with("![CDATA[")) {
            return true;
        }
    }
    return false;
}

/// The first element from `node` on; null if there is none.
const Node* ElementFrom(const Node* node)
{
    while (node != nullptr && node->type() != rapidxml::node_element) {
        node = node->next_sibling();
    }
    return node;
}

/// For the first element from `node` on.
std::unique_ptr<XMLNode> HandleOfElement(const Node* node)
{
    const Node* const element = ElementFrom(node);
    return element != nullptr ? std::make_unique<RapidXMLNode>(element) : nullptr;
}

/// A reference to NUL ends a value, as it does for who reads up to the zero.
void CutValuesAtNul(const Node* node)
{
    const Node* const top = node;
    while (node != nullptr) {
        for (Attribute* each = node->first_attribute(); each != nullptr;
             each = each->next_attribute()) {
            each->value(each->value(), std::strlen(each->value()));
        }
        const Node* next = node->first_node();
        while (next == nullptr && node != top) {
            next = node->next_sibling();
            node = next == nullptr ? node->parent() : node;
        }
        node = next;
    }
}

}  // namespace

std::unique_ptr<XMLNode> RapidXMLNode::GetFirstChild() const
{
    return HandleOfElement(node_ != nullptr ? node_->first_node() : nullptr);
}

std::unique_ptr<XMLNode> RapidXMLNode::GetNextSibling() const
{
    return HandleOfElement(node_ != nullptr ? node_->next_sibling() : nullptr);
}

const char* RapidXMLNode::GetValue() const
{
    if (node_ == nullptr) {
        return "";
    }
    // White space alone counts as empty: drawing programs put line ends before the section.
    const char* const text = node_->value();
    const char* const end = text + node_->value_size();
    if (!std::all_of(text, end, IsSpace)) {
        return text;
    }
    for (const Node* child = node_->first_node(); child != nullptr; child = child->next_sibling()) {
        if (child->type() == rapidxml::node_cdata) {
            return child->value();
        }
    }
    return text;
}

const RapidXMLNode::Attribute* RapidXMLNode::FindAttribute(std::string_view prefix,
                                                           std::string_view name) const
{
    const std::size_t length = prefix.size() + name.size();
    for (const Attribute* each = node_->first_attribute(); each != nullptr;
         each = each->next_attribute()) {
        const std::string_view have(each->name(), each->name_size());
        if (have.size() == length && have.starts_with(prefix) && have.ends_with(name)) {
            return each;
        }
    }
    return nullptr;
}

std::pair<bool, const char*> RapidXMLNode::GetAttribute(const char* name, const char* prefix) const
{
    const Attribute* found = nullptr;
    if (node_ != nullptr && name == nullptr) {
        found = node_->first_attribute();
    } else if (node_ != nullptr) {
        found = FindAttribute("", name);
        if (found == nullptr && prefix != nullptr) {
            found = FindAttribute(std::string(prefix) + ":", name);
        }
    }
    return found != nullptr ? std::pair(true, static_cast<const char*>(found->value()))
                            : std::pair(false, static_cast<const char*>(nullptr));
}

void RapidXMLNode::VisitAttributes(AttributeVisitor& visitor) const
{
    if (node_ == nullptr) {
        return;
    }
    for (const Attribute* each = node_->first_attribute(); each != nullptr;
         each = each->next_attribute()) {
        visitor.VisitAttribute({each->name(), each->name_size()},
                               {each->value(), each->value_size()});
    }
}

bool RapidXMLNode::MoveToNextSibling()
{
    const Node* const next = ElementFrom(node_ != nullptr ? node_->next_sibling() : nullptr);
    node_ = next != nullptr ? next : node_;
    return next != nullptr;
}

bool RapidXMLNode::MoveToFirstChild()
{
    const Node* const child = ElementFrom(node_ != nullptr ? node_->first_node() : nullptr);
    node_ = child != nullptr ? child : node_;
    return child != nullptr;
}

RapidXMLDocument::RapidXMLDocument(char* text, std::size_t size)
{
    const bool hasReferences = std::memchr(text, '&', size) != nullptr;
    const bool hasSection = HasSection({text, size});
    if (!hasReferences && !hasSection) {
        document_.parse<kPlainFlags>(text);
        return;
    }
    char* const end = text + std::strlen(text);
    const char* const tooDeep = HasManyTags(text, end) ? FindTooDeep(text, end) : nullptr;
    if (tooDeep != nullptr) {
        throw rapidxml::parse_error("elements are nested too deeply", text + (tooDeep - text));
    }
    if (hasReferences) {
        TameReferences(text, end);
    }
    if (hasSection) {
        document_.parse<kFlags>(text);
    } else {
        document_.parse<kFlagsWithoutTexts>(text);
    }
    if (hasReferences) {
        CutValuesAtNul(&document_);
    }
}

std::unique_ptr<XMLNode> RapidXMLDocument::GetFirstNode() const
{
    return HandleOfElement(document_.first_node());
}

RapidXMLNode RapidXMLDocument::FirstNode() const
{
    return RapidXMLNode(ElementFrom(document_.first_node()));
}

}  // namespace SVGLoom::xml
