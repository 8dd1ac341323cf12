// The RapidXML parser, always with the same sizes of its pools: all of the engine includes it here.

#pragma once

// What stands in a document itself: enough for nearly all icons. A pool of its own costs an
// allocator more than the icon costs the parser.
#define BOOST_PROPERTY_TREE_RAPIDXML_STATIC_POOL_SIZE (48 * 1024)

#include <boost/property_tree/detail/rapidxml.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "svgloom/src/Characters.h"
#include "svgloom/src/XMLChecks.h"

namespace SVGLoom::xml {

namespace rapidxml = boost::property_tree::detail::rapidxml;

/// For texts without CDATA sections and without any "&": most artwork. Elements are read by the
/// functions below then, which find the same nodes and the same errors as the library's own and
/// take about half the steps. They also count levels.
inline constexpr int kPlainFlags = rapidxml::parse_validate_closing_tags |
                                   rapidxml::parse_no_data_nodes |
                                   rapidxml::parse_no_entity_translation;

/// The library's classes of characters, a bit for each.
enum CharacterClass : std::uint8_t {
    kSpaceClass = 1,
    kElementNameClass = 2,
    kAttributeNameClass = 4
};

constexpr std::array<std::uint8_t, 256> MakeCharacterClasses()
{
    std::array<std::uint8_t, 256> classes{};
    for (std::size_t i = 0; i < classes.size(); ++i) {
        const auto c = static_cast<char>(i);
        const bool isElementName = IsElementNameCharacter(c);
        classes[i] = static_cast<std::uint8_t>(
            (IsSpace(c) ? kSpaceClass : 0) | (isElementName ? kElementNameClass : 0) |
            (IsAttributeNameCharacter(c) ? kAttributeNameClass : 0));
    }
    return classes;
}

inline constexpr std::array<std::uint8_t, 256> kCharacterClasses = MakeCharacterClasses();

inline bool IsOf(CharacterClass which, char c)
{
    return (kCharacterClasses[static_cast<unsigned char>(c)] & which) != 0;
}

/// Up to the first character that is not of the class; a zero is of none.
inline void SkipClass(CharacterClass which, char*& text)
{
    char* at = text;
    while (IsOf(which, *at)) {
        ++at;
    }
    text = at;
}

}  // namespace SVGLoom::xml

namespace boost::property_tree::detail::rapidxml {

/// The attributes of a tag, the white space behind each included.
template <>
template <>
inline void xml_document<char>::parse_node_attributes<SVGLoom::xml::kPlainFlags>(
    char*& text, xml_node<char>* node)
{
    using namespace SVGLoom::xml;
    while (IsOf(kAttributeNameClass, *text)) {
        char* const name = text;
        SkipClass(kAttributeNameClass, text);
        char* const nameEnd = text;
        xml_attribute<char>* const attribute = this->allocate_attribute();
        attribute->name(name, static_cast<std::size_t>(nameEnd - name));
        node->append_attribute(attribute);

        SkipClass(kSpaceClass, text);
        if (*text != '=') {
            throw parse_error("expected =", text);
        }
        ++text;
        *nameEnd = '\0';
        SkipClass(kSpaceClass, text);
        const char quote = *text;
        if (quote != '"' && quote != '\'') {
            throw parse_error("expected ' or \"", text);
        }
        ++text;

        // The C library looks at many bytes of path data at once.
        char* const value = text;
        text = std::strchr(value, quote);
        if (text == nullptr) {
            text = value + std::strlen(value);
            throw parse_error("expected ' or \"", text);
        }
        attribute->value(value, static_cast<std::size_t>(text - value));
        *text = '\0';
        ++text;
        SkipClass(kSpaceClass, text);
    }
}

/// One element with all that is in it.
template <>
template <>
inline xml_node<char>* xml_document<char>::parse_element<SVGLoom::xml::kPlainFlags>(char*& text)
{
    using namespace SVGLoom::xml;
    xml_node<char>* top = nullptr;
    xml_node<char>* open = nullptr;  // whose contents are being read
    int depth = 0;
    for (;;) {
        // A tag, behind its "<".
        if (depth == kMaxDepth) {
            throw parse_error("elements are nested too deeply", text - 1);
        }
        char* const name = text;
        SkipClass(kElementNameClass, text);
        char* const nameEnd = text;
        if (nameEnd == name) {
            throw parse_error("expected element name", text);
        }
        xml_node<char>* const element = this->allocate_node(node_element);
        element->name(name, static_cast<std::size_t>(nameEnd - name));
        if (open != nullptr) {
            open->append_node(element);
        } else {
            top = element;
        }
        SkipClass(kSpaceClass, text);
        parse_node_attributes<kPlainFlags>(text, element);
        const bool opens = *text == '>';
        if (!opens) {
            if (*text != '/') {
                throw parse_error("expected >", text);
            }
            ++text;
            if (*text != '>') {
                throw parse_error("expected >", text);
            }
        }
        ++text;
        *nameEnd = '\0';
        if (opens) {
            open = element;
            ++depth;
        }

        // What is around it, up to behind the "<" of the next tag.
        for (bool atTag = false; !atTag;) {
            if (open == nullptr) {
                return top;
            }
            if (*text != '<') {
                char* const value = text;
                while (*text != '<' && *text != '\0') {
                    ++text;
                }
                if (*text == '\0') {
                    throw parse_error("unexpected end of data", text);
                }
                if (*open->value() == '\0') {
                    open->value(value, static_cast<std::size_t>(text - value));
                }
                *text = '\0';  // the end of the value
            }
            ++text;
            if (*text == '/') {
                ++text;
                const char* const closing = text;
                SkipClass(kElementNameClass, text);
                if (std::string_view(closing, static_cast<std::size_t>(text - closing)) !=
                    std::string_view(open->name(), open->name_size())) {
                    throw parse_error("invalid closing tag name", text);
                }
                SkipClass(kSpaceClass, text);
                if (*text != '>') {
                    throw parse_error("expected >", text);
                }
                ++text;
                open = open != top ? open->parent() : nullptr;
                --depth;
            } else if (*text == '!' || *text == '?') {
                parse_node<kPlainFlags>(text);  // keeps none of these
            } else {
                atTag = true;
            }
        }
    }
}

}  // namespace boost::property_tree::detail::rapidxml
