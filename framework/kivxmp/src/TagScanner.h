// Finds the parts of a start tag in text that the XML parser has already found well-formed.

#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "framework/kivxmp/src/Packet.h"

namespace kivxmp {

struct AttributePlace {
    std::string_view name;
    std::size_t spaceBegin = 0;  ///< of the white space in front of the name
    Span span;                   ///< name to closing quote
};

struct StartTag {
    std::string_view name;
    std::size_t nameEnd = 0;
    std::size_t attributesEnd = 0;  ///< behind the last attribute, or the name
    std::size_t end = 0;            ///< behind '>'
    bool isEmpty = false;           ///< "/>"
    std::vector<AttributePlace> attributes;
};

/// `begin` is at the '<' of a start tag. What is not as expected ends the tag early; nothing behind
/// the text is read.
StartTag ScanStartTag(std::string_view text, std::size_t begin);

/// Prefixes ("" where a name has none and is an element's) that names in `xml`, one whole element,
/// are written with. Sorted, each once.
std::vector<std::string_view> PrefixesUsed(std::string_view xml);

/// The part of "prefix:local" in front of the colon; empty where there is none.
std::string_view PrefixOf(std::string_view name) noexcept;

}  // namespace kivxmp
