// The RapidXML parser, always with the same sizes of its pools: all of the engine includes it here.

#pragma once

// What stands in a document itself: enough for nearly all icons. A pool of its own costs an
// allocator more than the icon costs the parser.
#define BOOST_PROPERTY_TREE_RAPIDXML_STATIC_POOL_SIZE (48 * 1024)

#include <boost/property_tree/detail/rapidxml.hpp>

#include <cstring>

namespace SVGLoom::xml {

namespace rapidxml = boost::property_tree::detail::rapidxml;

/// For texts without CDATA sections and without any "&".
inline constexpr int kPlainFlags = rapidxml::parse_validate_closing_tags |
                                   rapidxml::parse_no_data_nodes |
                                   rapidxml::parse_no_entity_translation;

}  // namespace SVGLoom::xml

namespace boost::property_tree::detail::rapidxml {

/// With those flags the library looks for the end of a value byte by byte, path data included; the
/// C library does it many bytes at a time.
template <>
template <>
inline void xml_document<char>::skip<xml_document<char>::attribute_value_pred<'"'>,
                                     SVGLoom::xml::kPlainFlags>(char*& text)
{
    char* const quote = std::strchr(text, '"');
    text = quote != nullptr ? quote : text + std::strlen(text);
}

}  // namespace boost::property_tree::detail::rapidxml
