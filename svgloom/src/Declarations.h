// Declarations as they stand in the block of a rule and in a `style` attribute.

#pragma once

#include <cstddef>
#include <stdexcept>
#include <string_view>

#include "svgloom/src/PropertySet.h"

namespace SVGLoom {

/// Without space, tab, line feed, carriage return, form feed and vertical tab at both ends.
std::string_view TrimStyleText(std::string_view text);

/// Calls take(piece) for each piece of the block that ends with ";", and returns what is left.
template <class Take>
std::string_view ForEachPiece(std::string_view block, const Take& take)
{
    for (std::size_t end = block.find(';'); end != std::string_view::npos; end = block.find(';')) {
        take(block.substr(0, end));
        block.remove_prefix(end + 1);
    }
    return block;
}

/// Calls take(name, value) for each declaration that has a value, trimmed, in the order of the
/// text.
///
/// Every declaration ends with ";", the last one too: what stands behind the last ";" is no
/// declaration, so "fill:red" alone is none. That is on purpose.
///
/// @throws std::invalid_argument "value not found" at a piece without ":", an empty one included
template <class Take>
void ForEachDeclaration(std::string_view block, const Take& take)
{
    ForEachPiece(block, [&take](std::string_view piece) {
        const std::size_t colon = piece.find(':');
        if (colon == std::string_view::npos) {
            throw std::invalid_argument("value not found");
        }
        const std::string_view value = TrimStyleText(piece.substr(colon + 1));
        if (!value.empty()) {
            take(TrimStyleText(piece.substr(0, colon)), value);
        }
    });
}

/// The properties that `block` declares. The first declaration of a property wins.
///
/// @throws std::invalid_argument as ForEachDeclaration
PropertySet ParseDeclarations(std::string_view block);

}  // namespace SVGLoom
