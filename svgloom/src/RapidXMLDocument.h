// The XML interfaces over the RapidXML parser that Boost.PropertyTree carries.

#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

#include "svgloom/src/RapidXML.h"
#include "svgloom/src/XMLDocument.h"

namespace SVGLoom::xml {

/// A handle that looks at a node of the library, or at none.
class RapidXMLNode final : public XMLNode {
public:
    /// `node` may be null, and has to stand as long as this object.
    explicit RapidXMLNode(const rapidxml::xml_node<char>* node) : node_(node) {}

    const char* GetName() const override { return node_ != nullptr ? node_->name() : nullptr; }
    const char* GetValue() const override;
    std::unique_ptr<XMLNode> GetFirstChild() const override;
    std::unique_ptr<XMLNode> GetNextSibling() const override;
    std::pair<bool, const char*> GetAttribute(const char* name, const char* prefix) const override;
    void VisitAttributes(AttributeVisitor& visitor) const override;
    bool MoveToNextSibling() override;
    bool MoveToFirstChild() override;
    void MoveToParent() override { node_ = node_->parent(); }
    std::string_view Name() const override
    {
        return node_ != nullptr ? std::string_view(node_->name(), node_->name_size())
                                : std::string_view();
    }

private:
    using Attribute = rapidxml::xml_attribute<char>;

    const Attribute* FindAttribute(std::string_view prefix, std::string_view name) const;

    const rapidxml::xml_node<char>* node_;
};

/// The nodes of a small document lie in the object itself, which is some 50 kilobytes large.
class RapidXMLDocument : public XMLDocument {
public:
    /// Parses `text`, which ends in zero, in place: the buffer is changed, and has to stand as long
    /// as this object. A byte-order mark is skipped; comments, declarations, processing
    /// instructions and doctypes are left out.
    ///
    /// @throws boost::property_tree::detail::rapidxml::parse_error (RapidXML.h) for malformed XML,
    ///         and for elements nested deeper than kMaxDepth (XMLChecks.h)
    explicit RapidXMLDocument(char* text) : RapidXMLDocument(text, std::strlen(text)) {}
    /// The same where the size is known. A zero before it ends the text.
    RapidXMLDocument(char* text, std::size_t size);

    std::unique_ptr<XMLNode> GetFirstNode() const override;
    /// The same as a handle that may be without a node.
    RapidXMLNode FirstNode() const;

private:
    rapidxml::xml_document<char> document_;
};

}  // namespace SVGLoom::xml
