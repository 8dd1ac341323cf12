// The RapidXML parser, always with the same sizes of its pools: all of the engine includes it here.

#pragma once

// What stands in a document itself: enough for most icons.
#define BOOST_PROPERTY_TREE_RAPIDXML_STATIC_POOL_SIZE (16 * 1024)

#include <boost/property_tree/detail/rapidxml.hpp>

namespace SVGLoom::xml {

namespace rapidxml = boost::property_tree::detail::rapidxml;

}  // namespace SVGLoom::xml
