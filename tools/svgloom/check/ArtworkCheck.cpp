// The walk goes over the elements as the element parser does: those that it does not visit are not
// looked into. Values are read by the engine's own parsers.

#include "tools/svgloom/check/ArtworkCheck.h"

#include <memory>
#include <optional>
#include <string>

#include "svgloom/src/ElementParser.h"
#include "svgloom/src/RapidXMLDocument.h"
#include "svgloom/src/ShapeBuilder.h"
#include "svgloom/src/XMLChecks.h"
#include "tools/svgloom/check/AttributeChecks.h"
#include "tools/svgloom/check/CheckedArtwork.h"
#include "tools/svgloom/check/ClipPathChecks.h"
#include "tools/svgloom/check/GradientChecks.h"
#include "tools/svgloom/check/GroupChecks.h"
#include "tools/svgloom/check/RootChecks.h"
#include "tools/svgloom/check/ShapeChecks.h"
#include "tools/svgloom/check/StyleElementChecks.h"
#include "tools/svgloom/check/UnreadElements.h"

namespace svgloom {

namespace {

using SVGLoom::AttributeName;
using SVGLoom::xml::XMLNode;

/// What the XML library would not tell, or not well.
bool TellUnreadable(CheckedArtwork& artwork, std::string_view text)
{
    if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF") ||
        text.starts_with(std::string_view("<\0", 2)) ||
        text.starts_with(std::string_view("\0<", 2))) {
        artwork.reporter.Report(Rule::kEncoding, 0);
        return true;
    }
    if (artwork.source.Original().size() < text.size()) {
        artwork.reporter.Report(Rule::kNul, artwork.source.Original().size());
    }
    const char* const begin = artwork.source.Copy();
    if (const char* const place =
            SVGLoom::xml::FindTooDeep(begin, begin + artwork.source.Original().size())) {
        artwork.reporter.Report(Rule::kNesting, artwork.source.OffsetOf(place),
                                std::to_string(SVGLoom::xml::kMaxDepth));
        return true;
    }
    return false;
}

[[gnu::noinline]] std::optional<Scope> Enter(CheckedArtwork& artwork, const XMLNode& node,
                                             const Scope& scope, bool isRoot)
{
    CheckedElement element = artwork.Read(node, scope);
    const std::string_view name = element.name;
    const bool isShape = SVGLoom::IsShape(name);
    if (!isRoot && (!SVGLoom::ElementParser::Knows(name) || name == "image")) {
        CheckUnread(artwork, element);
        return std::nullopt;
    }
    CheckNames(artwork, element);
    if (isRoot) {
        CheckViewBox(artwork, element);
    }
    const bool isDrawn = isShape || name == "g" || name == "use";
    CheckStyles(artwork, element,
                isRoot    ? Block::kRoot
                : isDrawn ? Block::kApplied
                          : Block::kNotDrawn);
    CheckLengths(artwork, element);
    if (isRoot) {
        if (element.Known().Has(AttributeName::kTransform)) {
            artwork.reporter.Report(Rule::kTransformRoot,
                                    artwork.Value(element, AttributeName::kTransform).OffsetAt(0));
        }
        return CheckGroup(artwork, element, scope, References::kNone, /*isSymbol=*/false);
    }
    if (isShape) {
        CheckTransform(artwork, element);
        CheckShape(artwork, element, scope);
    } else if (name == "g") {
        CheckTransform(artwork, element);
        return CheckGroup(artwork, element, scope, scope.node, /*isSymbol=*/false);
    } else if (name == "defs") {
        return CheckGroup(artwork, element, scope, References::kNone, /*isSymbol=*/false);
    } else if (name == "symbol") {
        CheckTransform(artwork, element);
        CheckSymbol(artwork, element);
        return CheckGroup(artwork, element, scope, References::kNone, /*isSymbol=*/true);
    } else if (name == "use") {
        CheckTransform(artwork, element);
        CheckUse(artwork, element, scope);
    } else if (name == "linearGradient" || name == "radialGradient") {
        CheckGradient(artwork, element);
    } else if (name == "clipPath") {
        CheckClip(artwork, element);
    } else if (name == "style") {
        CheckStyleElement(artwork, element);
    }
    return std::nullopt;
}

void CheckChildren(CheckedArtwork& artwork, const XMLNode& node, const Scope& scope)
{
    for (std::unique_ptr<XMLNode> child = node.GetFirstChild(); child != nullptr;
         child = child->GetNextSibling()) {
        // All that an element needs of the stack is given back before its children come.
        if (const std::optional<Scope> inner = Enter(artwork, *child, scope, /*isRoot=*/false)) {
            CheckChildren(artwork, *child, *inner);
        }
    }
}

void CheckRoot(CheckedArtwork& artwork, const XMLNode& root)
{
    const std::string_view name = root.GetName();
    if (name != "svg") {
        artwork.reporter.Report(Rule::kRoot, artwork.OffsetOf(name.data(), 1) - 1,
                                "\"" + Shown(name) + "\"");
        return;
    }
    if (const std::unique_ptr<XMLNode> second = root.GetNextSibling()) {
        artwork.reporter.Report(Rule::kSecondRoot, artwork.OffsetOf(second->GetName(), 1) - 1);
    }
    if (const std::optional<Scope> scope = Enter(artwork, root, {}, /*isRoot=*/true)) {
        CheckChildren(artwork, root, *scope);
    }
}

}  // namespace

std::vector<ArtworkFinding> CheckArtwork(std::string_view text)
{
    CheckedArtwork artwork(text);
    if (TellUnreadable(artwork, text)) {
        return artwork.reporter.Take();
    }
    std::unique_ptr<SVGLoom::xml::RapidXMLDocument> document;
    try {
        document = std::make_unique<SVGLoom::xml::RapidXMLDocument>(artwork.source.Copy());
    } catch (const SVGLoom::xml::rapidxml::parse_error& error) {
        artwork.reporter.Report(Rule::kXml, artwork.OffsetOf(error.where<char>(), 0), error.what());
        return artwork.reporter.Take();
    }
    if (const std::unique_ptr<XMLNode> root = document->GetFirstNode()) {
        CheckRoot(artwork, *root);
    } else {
        artwork.reporter.Report(Rule::kRoot, 0, "there is no element");
    }
    artwork.styles.TellMissing();
    artwork.references.Check(artwork.reporter);
    return artwork.reporter.Take();
}

}  // namespace svgloom
