// What is known of a packet's bytes: where its parts stand, so that changes can be spliced in.
// All offsets count in the UTF-8 text.

#pragma once

#include <cstddef>
#include <deque>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "framework/kivxmp/src/Encoding.h"

namespace kivxmp {

inline constexpr std::size_t kNowhere = std::numeric_limits<std::size_t>::max();

struct Span {
    std::size_t begin = 0;
    std::size_t end = 0;
};

/// Namespace declarations of one element, and those around it.
struct Scope {
    const Scope* parent = nullptr;
    std::vector<std::pair<std::string, std::string>> bindings;  // prefix ("" is the default), URI

    /// URI that `prefix` stands for; null where nothing declares it.
    const std::string* Find(std::string_view prefix) const noexcept;
};

/// An element into which others can be put.
struct ElementPlace {
    std::size_t begin = kNowhere;       ///< its '<'
    std::size_t attributesEnd = 0;      ///< behind the last attribute, or the name
    std::size_t startTagEnd = 0;        ///< behind the '>' of its start tag
    std::size_t contentEnd = 0;         ///< the '<' of its end tag; startTagEnd if isEmpty
    std::size_t firstChild = kNowhere;  ///< '<' of its first element
    bool isEmpty = false;               ///< written "<name/>"
    bool isFixed = false;               ///< comes out of an entity: there are no bytes to change
    const Scope* scope = nullptr;
    std::size_t depth = 0;  ///< XML elements around it, itself included
};

struct Packet {
    std::string bytes;    ///< as read; empty for a new object
    std::string recoded;  ///< the same in UTF-8 where `bytes` are in another encoding
    Encoding encoding = Encoding::kUtf8;
    bool isNew = false;  ///< `recoded` is the frame of an object that was not read

    /// Without the zero bytes behind the packet.
    std::string_view text;

    bool hasWrapper = false;
    std::size_t headerEnd = 0;     ///< behind <?xpacket begin ...?>
    std::size_t trailerBegin = 0;  ///< the '<' of <?xpacket end ...?>

    ElementPlace root;  ///< begin is kNowhere for an empty wrapper
    ElementPlace rdf;   ///< begin is kNowhere where there is none
    std::vector<ElementPlace> descriptions;
    std::string about;  ///< of the first description that has one

    std::deque<Scope> scopes;  // addresses stay
};

/// Where the bytes of a node stand that XMP does not allow.
struct RawSource {
    std::shared_ptr<const Packet> packet;
    Span span;
    const Scope* scope = nullptr;  ///< around the element
    bool isElement = false;        ///< the bytes are one whole element

    std::string_view Text() const noexcept
    {
        return packet->text.substr(span.begin, span.end - span.begin);
    }
};

}  // namespace kivxmp
