// The changing side of Node, for the sources of this library.

#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "framework/kivxmp/src/NamePool.h"
#include "framework/kivxmp/src/Packet.h"

#include <kivxmp/XMPNode.h>

namespace kivxmp {

struct Node::Extra {
    std::vector<Node> children;
    std::vector<Node> qualifiers;
    RawSource raw;  // of raw nodes
};

class NodeAccess {
public:
    static Node Make(const QName* name, NodeForm form) { return Node(name, form); }

    static const QName* Name(const Node& node) noexcept { return node.name_; }
    static const NameKey* Key(const Node& node) noexcept { return node.name_->key; }
    static void SetName(Node& node, const QName* name) noexcept { node.name_ = name; }
    static void SetForm(Node& node, NodeForm form) noexcept { node.form_ = form; }
    static std::string& Value(Node& node) noexcept { return node.value_; }
    static std::vector<Node>& Children(Node& node);
    static std::vector<Node>& EnsureQualifiers(Node& node);
    /// Null unless the node is raw.
    static const RawSource* Raw(const Node& node) noexcept;
    /// Turns the node into a raw one without parts and qualifiers.
    static void MakeRaw(Node& node, RawSource source);
    /// Takes value, parts and the raw source away; qualifiers stay.
    static void ClearContent(Node& node) noexcept;

    static const Node* FindQualifier(const Node& node, const NameKey* key) noexcept;
    static const Node* FindField(const Node& node, const NameKey* key) noexcept;
    /// Adds a qualifier where it belongs: xml:lang first, then rdf:datatype, then the others.
    static Node& AddQualifier(Node& node, Node qualifier, const RdfTerms& terms);
    static void RemoveQualifier(Node& node, const NameKey* key) noexcept;
    /// True if it has qualifiers that do not fit into attributes of its element.
    static bool HasGeneralQualifiers(const Node& node, const RdfTerms& terms) noexcept;
};

/// Nodes of the tree below and including `node`, qualifiers counted.
std::size_t CountNodes(const Node& node) noexcept;

/// Letter case of ASCII letters ignored, as for language tags.
bool EqualIgnoringCase(std::string_view left, std::string_view right) noexcept;

}  // namespace kivxmp
