#include "dictionary/DictionaryLine.h"

#include <algorithm>
#include <cstddef>

namespace morvish_private {

namespace {

// Finds the next quote at or after `from` that does not follow a backslash. Only one unit back is
// looked at: a quote behind two backslashes counts as escaped too.
std::size_t FindQuote(std::u16string_view line, std::size_t from)
{
    std::size_t quote = line.find(u'"', from);
    while (quote != std::u16string_view::npos && quote > 0 && line[quote - 1] == u'\\')
        quote = line.find(u'"', quote + 1);
    return quote;
}

}  // namespace

LineParts SplitLine(std::u16string_view line)
{
    LineParts parts;
    std::u16string_view content = line;
    const std::size_t open = FindQuote(line, 0);
    if (open != std::u16string_view::npos) {
        parts.hasQuotes = true;
        const std::size_t close = FindQuote(line, open + 1);
        parts.hasClosingQuote = close != std::u16string_view::npos;
        content = line.substr(open + 1, parts.hasClosingQuote ? close - open - 1 : close);
    }
    if (content.starts_with(u'$')) {
        if (!content.starts_with(u"$$$"))
            return parts;
        parts.hasPrefix = true;
        content.remove_prefix(3);
    }
    const std::size_t equals = content.find(u'=');
    parts.valid = true;
    parts.key = content.substr(0, equals);
    if (equals != std::u16string_view::npos) {
        parts.hasEquals = true;
        parts.value = content.substr(equals + 1);
    }
    return parts;
}

void NarrowKey(std::u16string_view key, std::string& bytes)
{
    bytes.resize(key.size());
    std::transform(key.begin(), key.end(), bytes.begin(),
                   [](char16_t unit) { return static_cast<char>(unit & 0xFF); });
}

}  // namespace morvish_private
