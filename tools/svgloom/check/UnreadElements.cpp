#include "tools/svgloom/check/UnreadElements.h"

#include <cstddef>
#include <string_view>

#include "svgloom/src/Attributes.h"
#include "tools/svgloom/check/PropertyChecks.h"
#include "tools/svgloom/check/UnreadNames.h"

namespace svgloom {

namespace {

using SVGLoom::AttributeName;

/// Whether an url() of the file leads to the id.
bool IsReferred(CheckedArtwork& artwork, std::string_view id)
{
    constexpr std::string_view kBegin = "url(#";
    constexpr std::size_t kLongest = 256;  // so that the time stays linear
    if (!artwork.referred.has_value()) {
        artwork.referred.emplace();
        const std::string_view text = artwork.source.Original();
        for (std::size_t at = text.find(kBegin); at != std::string_view::npos;
             at = text.find(kBegin, at)) {
            at += kBegin.size();
            const std::string_view rest = text.substr(at, kLongest);
            (*artwork.referred)[rest.substr(0, rest.find_first_of(")\"'<>"))] = true;
        }
    }
    return !id.empty() && artwork.referred->Find(id) != nullptr;
}

}  // namespace

void CheckUnread(CheckedArtwork& artwork, const CheckedElement& element)
{
    const std::size_t colon = element.name.find(':');
    if (colon == std::string_view::npos) {
        const UnreadName unread = LookUpElement(element.name);
        if (unread.loss == Loss::kUnknown) {
            artwork.reporter.Report(Rule::kElementUnknown, element.offset, Shown(element.name));
        } else if (unread.loss != Loss::kNothing &&
                   (unread.loss != Loss::kDefinition || IsReferred(artwork, element.Id()))) {
            artwork.reporter.Report(
                unread.loss == Loss::kElement ? Rule::kElementUnsupported : Rule::kElementIgnored,
                element.offset, element.name, unread.advice);
        }
    } else {
        const std::string_view local = element.name.substr(colon + 1);
        if (artwork.prefixes.Find(element.name.substr(0, colon)) != nullptr &&
            IsElementOfSVG(local)) {
            artwork.reporter.Report(Rule::kElementPrefix, element.offset, Shown(element.name),
                                    local);
        }
    }
    const QuietWhile quiet(artwork.reporter);
    for (const AttributeName name : {AttributeName::kClipPath, AttributeName::kStyle}) {
        if (!element.Known().Has(name)) {
            continue;
        }
        const SourceValue value = artwork.Value(element, name);
        if (name == AttributeName::kStyle) {
            CheckStyleAttribute(value, Block::kNotDrawn, artwork.reporter);
        } else {
            CheckProperty(name, value.Text(), value, artwork.reporter);
        }
    }
}

}  // namespace svgloom
