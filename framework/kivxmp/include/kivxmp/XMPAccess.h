// Typed access to the values of an XMP object. The type is the caller's, from a schema definition;
// what the packet holds instead is read as far as it makes sense and otherwise gives nothing, so
// that it can be shown as the text it is.

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <kivxmp/Export.h>
#include <kivxmp/XMPMeta.h>
#include <kivxmp/XMPNode.h>
#include <kivxmp/XMPValue.h>

namespace kivxmp {

/// The text or URI of a node; of alternatives the x-default item or else the first; of another
/// list its only item. Nothing for a null node, structures, raw nodes and longer lists.
KIVXMP_API std::optional<std::string> TextOf(const Node* node);

/// The items of a language alternative in order. A simple text is one item x-default (or of its
/// own language), an item without language has the language "". Nothing for a null node,
/// structures, and lists with items that are no texts.
KIVXMP_API std::optional<std::vector<LanguageText>> LanguagesOf(const Node* node);

/// The texts of a list, whatever its kind. A simple text is a list of one. Nothing as above.
KIVXMP_API std::optional<std::vector<std::string>> ListOf(const Node* node);

/// Values of TextOf; nothing where it is not of the type.
KIVXMP_API std::optional<Date> DateOf(const Node* node);
KIVXMP_API std::optional<std::int64_t> IntegerOf(const Node* node);
KIVXMP_API std::optional<double> RealOf(const Node* node);
KIVXMP_API std::optional<Rational> RationalOf(const Node* node);
KIVXMP_API std::optional<bool> BooleanOf(const Node* node);

/// `node` as JSON: texts and URIs as strings, lists as arrays, alternatives whose items all have
/// languages of their own and structures as objects; "null" for a null node. Qualifiers are left
/// out.
KIVXMP_API std::string ToJson(const __XMPMeta__& meta, const Node* node);

/// `text` as a JSON string, with its quotes.
KIVXMP_API std::string JsonString(std::string_view text);

/// One difference between two objects.
struct Change {
    std::string path;
    std::string oldJson;  ///< "null" where absent
    std::string newJson;
    bool operator==(const Change&) const = default;
};

/// What differs between two objects, in `before`'s order, what is new last. Structures are followed
/// down to their fields and alternatives to their languages where both sides allow it; other lists
/// are compared whole. A change of qualifiers only shows equal values.
KIVXMP_API std::vector<Change> Compare(const __XMPMeta__& before, const __XMPMeta__& after);

/// "path<TAB>old<TAB>new".
KIVXMP_API std::string PrintChange(const Change& change);

}  // namespace kivxmp
