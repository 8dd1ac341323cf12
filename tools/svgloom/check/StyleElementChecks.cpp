#include "tools/svgloom/check/StyleElementChecks.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace svgloom {

namespace {

/// Behind the ">" of its start tag.
std::size_t EndOfTag(const CheckedArtwork& artwork, const CheckedElement& element)
{
    std::size_t offset = element.offset;
    if (!element.attributes.All().empty()) {
        const std::string_view last = element.attributes.All().back().value;
        offset = artwork.Value(element, last).OffsetAt(last.size());
    }
    const std::string_view text = artwork.source.Original();
    return std::min(text.find('>', std::min(offset, text.size())), text.size() - 1) + 1;
}

}  // namespace

void CheckStyleElement(CheckedArtwork& artwork, const CheckedElement& element)
{
    const std::string_view media = element.attributes.Find("media");
    if (!media.empty() && media != "all" && media != "screen") {
        artwork.reporter.Report(Rule::kStyleMedia, artwork.OffsetOf(media.data(), element.offset),
                                Shown(media));
    }
    const std::string_view text = element.node.GetValue();
    const SourceValue value = artwork.Value(element, text);
    const std::size_t end = artwork.source.Holds(text.data()) ? value.OffsetAt(text.size())
                                                              : EndOfTag(artwork, element);
    // Behind the one piece that is read, the element ends.
    std::string_view behind = artwork.source.Original().substr(end);
    constexpr std::string_view kSectionEnd = "]]>";
    if (behind.starts_with(kSectionEnd)) {
        behind.remove_prefix(kSectionEnd.size());
        behind.remove_prefix(std::min(behind.find_first_not_of(" \t\r\n"), behind.size()));
    }
    if (!text.empty() ? !behind.starts_with("</") : behind.starts_with("<!")) {
        artwork.reporter.Report(Rule::kStyleSplit, end);
    }
    if (!CheckStyleSheet(value, artwork.classes, artwork.reporter)) {
        return;
    }
    artwork.sheet.Add(text);
}

}  // namespace svgloom
