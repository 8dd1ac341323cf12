// A node of a packet's tree: a property, field, list item or qualifier. Nodes are read-only here;
// they are changed through the XMP object (<kivxmp/XMPMeta.h>).

#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <kivxmp/Export.h>

namespace kivxmp {

inline constexpr std::string_view kRdfUri = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";
inline constexpr std::string_view kXmlUri = "http://www.w3.org/XML/1998/namespace";

/// What a node is. The numbers are those of KivXmpForm.
enum class NodeForm : unsigned char {
    kSimple,  ///< a text
    kUri,     ///< a URI, written as a resource
    kStruct,  ///< fields, in order
    kBag,     ///< a list without order
    kSeq,     ///< a list with order
    kAlt,     ///< alternatives, as a rule by language
    kRaw,     ///< RDF that XMP does not allow; its value is its source text
};

/// "simple", "uri", "struct", "bag", "seq", "alt", "raw".
KIVXMP_API const char* FormName(NodeForm form) noexcept;

struct QName;
struct RawSource;

class KIVXMP_API Node {
public:
    Node(const Node& other);
    Node(Node&& other) noexcept;
    Node& operator=(const Node& other);
    Node& operator=(Node&& other) noexcept;
    ~Node();

    NodeForm Form() const noexcept { return form_; }
    bool IsArray() const noexcept
    {
        return form_ == NodeForm::kBag || form_ == NodeForm::kSeq || form_ == NodeForm::kAlt;
    }
    /// A simple text or a URI.
    bool IsText() const noexcept { return form_ == NodeForm::kSimple || form_ == NodeForm::kUri; }

    /// Items are named rdf:li. A name that is in no namespace (raw nodes only) has an empty URI.
    const std::string& NamespaceUri() const noexcept;
    const std::string& LocalName() const noexcept;
    /// As the packet wrote it; may be empty.
    const std::string& Prefix() const noexcept;

    /// Text, URI, or the source text of a raw node (UTF-8); empty for lists and structures.
    std::string_view Value() const noexcept;
    /// Fields of a structure or items of a list, in order.
    const std::vector<Node>& Children() const noexcept;
    /// In order, xml:lang among them.
    const std::vector<Node>& Qualifiers() const noexcept;

    /// Null where there is none, as below.
    const Node* FindField(std::string_view uri, std::string_view local) const noexcept;
    const Node* FindQualifier(std::string_view uri, std::string_view local) const noexcept;
    /// The first item of that language; letter case is ignored.
    const Node* FindLanguage(std::string_view language) const noexcept;
    /// Value of xml:lang; empty where there is none. Languages are not inherited.
    std::string_view Language() const noexcept;

    /// Same names, forms, values, qualifiers and parts in the same order. Prefixes do not count.
    KIVXMP_API friend bool operator==(const Node& left, const Node& right) noexcept;

private:
    friend class NodeAccess;
    struct Extra;

    explicit Node(const QName* name, NodeForm form) noexcept;

    const QName* name_;  // belongs to the name pool that an object shares with its clones
    std::string value_;
    std::unique_ptr<Extra> extra_;  // what most nodes do not have: parts, qualifiers, a raw source
    NodeForm form_;
};

}  // namespace kivxmp
