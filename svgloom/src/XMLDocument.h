// XML as the document parser sees it: a node at a time, through handles.
//
// The operations stand in their tables in the order of declaration, which is fixed; new ones go to
// the end. Texts are bytes as they stand in the file, with entities translated.

#pragma once

#include <memory>
#include <string_view>
#include <utility>

namespace SVGLoom::xml {

/// Receives the attributes of a node in document order.
class AttributeVisitor {
public:
    virtual void VisitAttribute(std::string_view name, std::string_view value) = 0;

protected:
    ~AttributeVisitor() = default;
};

/// A handle; its texts and nodes stand as long as the document.
class XMLNode {
public:
    /// Zero-terminated. Empty for a node without a name, null for a handle without a node.
    virtual const char* GetName() const = 0;
    /// The node's first text or, where that is empty, its first CDATA section; "" if it has
    /// neither.
    virtual const char* GetValue() const = 0;
    /// A new handle for the first child element, or an empty pointer.
    virtual std::unique_ptr<XMLNode> GetFirstChild() const = 0;
    /// A new handle for the next element beside this one, or an empty pointer.
    virtual std::unique_ptr<XMLNode> GetNextSibling() const = 0;

    /// The value of the first attribute of that name, case-sensitive; where there is none and
    /// `prefix` is not null, of the first one named "prefix:name". A null `name` stands for the
    /// first attribute, whatever it is.
    ///
    /// @return found, and the value (zero-terminated; null if not found)
    virtual std::pair<bool, const char*> GetAttribute(const char* name,
                                                      const char* prefix) const = 0;
    virtual ~XMLNode() = default;

    /// Shows all attributes to `visitor`, those included that GetAttribute does not reach. A value
    /// ends at its first NUL, as GetAttribute's does.
    virtual void VisitAttributes(AttributeVisitor& visitor) const = 0;

    /// Makes this the handle of the next element beside it, so that a walk needs one handle. False,
    /// and nothing changes, where there is none.
    virtual bool MoveToNextSibling() = 0;
    /// The same for the first child element, and back to the element around. The latter requires a
    /// handle that was moved to a child.
    virtual bool MoveToFirstChild() = 0;
    virtual void MoveToParent() = 0;

    /// GetName with its length; empty for a handle without a node.
    virtual std::string_view Name() const = 0;

    XMLNode() = default;
    XMLNode(const XMLNode&) = delete;
    XMLNode& operator=(const XMLNode&) = delete;
};

class XMLDocument {
public:
    /// A new handle for the first node, or an empty pointer if the document has none.
    virtual std::unique_ptr<XMLNode> GetFirstNode() const = 0;
    virtual ~XMLDocument() = default;

    XMLDocument() = default;
    XMLDocument(const XMLDocument&) = delete;
    XMLDocument& operator=(const XMLDocument&) = delete;
};

}  // namespace SVGLoom::xml
