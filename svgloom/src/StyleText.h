// CSS text before it is taken apart.

#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "svgloom/src/Declarations.h"

namespace SVGLoom {

/// Every line end becomes a space, both ends are trimmed, and the space behind a "}" becomes a line
/// feed, so that each rule stands on a line of its own.
std::string CleanStyleText(std::string_view text);

/// Takes comments out, without a space in their place. One that is not closed runs to the end.
void RemoveComments(std::string& text);

/// Calls take(selectors, block) for each rule of a cleaned text without comments. A rule without
/// its closing brace runs to the end of the text.
template <class Take>
void ForEachRule(std::string_view text, const Take& take)
{
    for (std::size_t open = text.find('{'); open != std::string_view::npos; open = text.find('{')) {
        const std::string_view selectors = text.substr(0, open);
        text.remove_prefix(open + 1);
        const std::size_t close = std::min(text.find('}'), text.size());
        take(selectors, text.substr(0, close));
        text.remove_prefix(std::min(close + 1, text.size()));
    }
}

/// Calls take(selector) for each selector of a list, trimmed; empty ones are skipped.
template <class Take>
void ForEachSelector(std::string_view list, const Take& take)
{
    for (bool more = true; more;) {
        const std::size_t comma = list.find(',');
        more = comma != std::string_view::npos;
        const std::string_view text = TrimStyleText(list.substr(0, comma));
        list.remove_prefix(more ? comma + 1 : list.size());
        if (!text.empty()) {
            take(text);
        }
    }
}

}  // namespace SVGLoom
