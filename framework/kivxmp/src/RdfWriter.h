// Writes nodes as RDF elements, in one spelling: parseType="Resource" for structures, elements for
// everything but languages, URIs and data types.

#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "framework/kivxmp/src/NamePool.h"
#include "framework/kivxmp/src/NodeAccess.h"
#include "framework/kivxmp/src/Packet.h"

#include <kivxmp/XMPNode.h>

namespace kivxmp {

/// White space between elements.
struct Layout {
    bool isPretty = false;  ///< each element on a line of its own
    std::string newLine = "\n";
    std::string indent;      ///< of the element itself
    std::string unit = " ";  ///< added at each level below

    Layout Deeper() const;
    /// What stands in front of an element: a line end and the indent, or nothing.
    std::string Break() const;
};

/// The namespaces that are declared where elements are written, and those that the writing needs
/// declared in addition, at the enclosing rdf:Description.
class NamespaceContext {
public:
    explicit NamespaceContext(const Scope* scope);

    /// A prefix for `uri`: `preferred` if it stands for it, another one that does, or a new one
    /// made from `preferred`.
    std::string PrefixFor(std::string_view uri, std::string_view preferred);
    /// URI of a prefix ("" is the default namespace); empty where it is not declared.
    std::string_view UriOf(std::string_view prefix) const;
    const std::vector<std::pair<std::string, std::string>>& Added() const noexcept
    {
        return added_;
    }

private:
    std::map<std::string, std::string, std::less<>> uriOfPrefix_;
    std::map<std::string, std::string, std::less<>> prefixOfUri_;
    std::vector<std::pair<std::string, std::string>> added_;
    std::map<std::string, std::size_t> lastNumbers_;  // of prefixes that were made from another
};

class RdfWriter {
public:
    /// Characters above `maxCharacter` are written as references.
    RdfWriter(NamespaceContext& context, const RdfTerms& terms, std::uint32_t maxCharacter);

    /// Appends `node` as an element, without what stands in front of it. `depth` is that of the
    /// element in the packet. Throws XMP_Error (kKivXmpTooDeep).
    void Write(std::string& out, const Node& node, const Layout& layout, std::size_t depth);

    std::string EscapedText(std::string_view text) const;
    std::string EscapedAttribute(std::string_view text) const;
    /// ` xmlns:p="uri"` for each pair, with `separator` in place of the space.
    std::string Declarations(const std::vector<std::pair<std::string, std::string>>& pairs,
                             std::string_view separator) const;

private:
    void WriteNamed(std::string& out, const Node& node, const std::string& name,
                    const Layout& layout, std::size_t depth, bool isValueOnly);
    void WriteContent(std::string& out, const Node& node, const std::string& name,
                      const Layout& layout, std::size_t depth);
    void WriteRaw(std::string& out, const RawSource& source) const;
    const std::string& NameOf(const Node& node);
    std::string Rdf(std::string_view local);
    std::string Escaped(std::string_view text, bool isAttribute) const;

    NamespaceContext& context_;
    const RdfTerms& terms_;
    std::uint32_t maxCharacter_;
    std::unordered_map<const QName*, std::string> names_;  // as they are written here
};

}  // namespace kivxmp
