#include "tools/svgloom/check/GroupChecks.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "svgloom/src/Attributes.h"
#include "svgloom/src/SVGStringParser.h"

namespace svgloom {

namespace {

using SVGLoom::AttributeName;
using SVGLoom::SVGStringParser;

}  // namespace

Scope CheckGroup(CheckedArtwork& artwork, const CheckedElement& element, const Scope& scope,
                 References::Index parent, bool isSymbol)
{
    // An id of "defs" leads nowhere.
    const bool hasId = element.name != "defs";
    artwork.CheckId(element, "the first one counts");
    References::Entry entry;
    entry.parent = parent;
    entry.offset = element.offset;
    entry.texts = scope.style.texts;
    entry.own = isSymbol ? 0 : element.style.set;
    entry.isSymbol = isSymbol;
    Scope inner;
    inner.node = artwork.references.Add(entry, hasId ? element.Id() : std::string_view());
    // What is in a symbol has the styles around it, not its own.
    inner.style = isSymbol ? scope.style : element.style.inherited;
    inner.style.opacity = scope.style.opacity * element.style.opacity;
    inner.matrix = element.matrix;
    inner.translucent = scope.translucent;
    if (parent == References::kNone && element.name != "svg") {
        // Drawn from elsewhere only.
        inner.style.opacity = 1;
        inner.matrix = {1, 0, 0, 1, 0, 0};
        inner.translucent = nullptr;
    } else if (inner.translucent == nullptr && element.style.opacity < 1) {
        inner.translucent = std::make_shared<TranslucentGroup>();
        inner.translucent->offset = element.offset;
    }
    return inner;
}

void CheckSymbol(CheckedArtwork& artwork, const CheckedElement& element)
{
    std::string names;
    for (std::size_t i = 0; i < SVGLoom::kPropertyCount; ++i) {
        const auto property = static_cast<AttributeName>(i);
        const bool isInherited = property >= AttributeName::kFill;
        if (isInherited && (element.style.set & BitOf(property)) != 0) {
            names.append(names.empty() ? "" : ", ").append(SVGLoom::TextOf(property));
        }
    }
    if (!names.empty()) {
        artwork.reporter.Report(Rule::kSymbolStyle, element.offset, names);
    }
    if (!element.Known().Has(AttributeName::kViewBox)) {
        return;
    }
    const SourceValue value = artwork.Value(element, AttributeName::kViewBox);
    std::vector<float> numbers;
    SVGStringParser::ParseNumberList(value.Text(), numbers);
    if (numbers.size() < 4) {
        artwork.reporter.Report(Rule::kViewBoxInvalid, value.OffsetAt(0), Shown(value.Text()));
        return;
    }
    const SVGLoom::Rect box{numbers[0], numbers[1], numbers[2], numbers[3]};
    if (box != artwork.viewBox) {
        artwork.reporter.Report(Rule::kSymbolViewBox, value.OffsetAt(0));
    }
    artwork.viewBox = box;
}

void CheckUse(CheckedArtwork& artwork, const CheckedElement& element, const Scope& scope)
{
    artwork.CheckId(element, "the first one counts");
    const std::string_view href = element.Known().Href();
    if (!href.starts_with('#')) {
        const std::size_t offset =
            element.Known().HasHref() ? artwork.Value(element, href).OffsetAt(0) : element.offset;
        artwork.reporter.Report(Rule::kUseHref, offset, Shown(href));
        return;
    }
    References::Entry entry;
    entry.parent = scope.node;
    entry.offset = element.offset;
    entry.texts = element.style.inherited.texts;
    entry.own = element.style.set;
    entry.isUse = true;
    entry.target = href.substr(1);
    entry.isTranslucent = element.style.IsTranslucent() || element.style.inherited.fillOpacity < 1;
    entry.hasSize =
        element.Known().Has(AttributeName::kWidth) || element.Known().Has(AttributeName::kHeight);
    artwork.references.Add(entry, element.Id());
}

}  // namespace svgloom
