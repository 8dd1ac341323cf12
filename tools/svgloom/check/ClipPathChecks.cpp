#include "tools/svgloom/check/ClipPathChecks.h"

#include <memory>
#include <string_view>

#include "svgloom/src/Attributes.h"
#include "svgloom/src/ElementParser.h"
#include "svgloom/src/ShapeBuilder.h"
#include "tools/svgloom/check/AttributeChecks.h"
#include "tools/svgloom/check/ShapeChecks.h"
#include "tools/svgloom/check/UnreadNames.h"

namespace svgloom {

namespace {

using SVGLoom::AttributeName;
using SVGLoom::xml::XMLNode;

}  // namespace

void CheckClip(CheckedArtwork& artwork, const CheckedElement& element)
{
    if (!element.Known().Has(AttributeName::kId)) {
        return;
    }
    artwork.CheckId(element, "of clip paths the last one counts");
    const auto tellClipped = [&artwork](const CheckedElement& clipped) {
        if ((clipped.style.set & BitOf(AttributeName::kClipPath)) != 0) {
            artwork.reporter.Report(Rule::kClipPathClipped, clipped.offset);
        }
    };
    tellClipped(element);
    const std::string_view units = element.attributes.Find("clipPathUnits");
    if (!units.empty() && units != "userSpaceOnUse") {
        artwork.reporter.Report(Rule::kClipPathUnits,
                                artwork.OffsetOf(units.data(), element.offset));
    }
    if (element.Known().Has(AttributeName::kTransform)) {
        artwork.reporter.Report(Rule::kAttributeUnread,
                                artwork.Value(element, AttributeName::kTransform).OffsetAt(0),
                                "transform", "put it on the shape in the clip path");
    }
    Scope scope;
    scope.style = element.style.inherited;
    bool hasContent = false;
    for (std::unique_ptr<XMLNode> child = element.node.GetFirstChild(); child != nullptr;
         child = child->GetNextSibling()) {
        CheckedElement shape = artwork.Read(*child, scope);
        if (!hasContent && SVGLoom::IsShape(shape.name)) {
            CheckNames(artwork, shape);
            CheckLengths(artwork, shape);
            hasContent = CheckOutline(artwork, shape) != nullptr;
            if (hasContent) {
                CheckStyles(artwork, shape, Block::kNotDrawn);
                CheckTransform(artwork, shape);
                tellClipped(shape);
            }
        } else if (SVGLoom::ElementParser::Knows(shape.name) ||
                   LookUpElement(shape.name).loss == Loss::kElement) {
            artwork.reporter.Report(Rule::kClipPathChild, shape.offset, shape.name);
        }
    }
    artwork.clipPaths[element.Id()] = hasContent;
}

}  // namespace svgloom
