#include "tools/svgloom/check/GradientChecks.h"

#include <algorithm>
#include <memory>
#include <string_view>

#include "svgloom/src/Attributes.h"
#include "svgloom/src/SVGStringParser.h"
#include "svgloom/src/ShapeBuilder.h"
#include "tools/svgloom/check/AttributeChecks.h"
#include "tools/svgloom/check/PropertyChecks.h"

namespace svgloom {

namespace {

using SVGLoom::AttributeName;
using SVGLoom::Attributes;
using SVGLoom::SVGStringParser;
using SVGLoom::xml::XMLNode;

void CheckStops(CheckedArtwork& artwork, const CheckedElement& element, CheckedGradient& gradient)
{
    Scope scope;
    scope.style = element.style.inherited;
    for (std::unique_ptr<XMLNode> child = element.node.GetFirstChild(); child != nullptr;
         child = child->GetNextSibling()) {
        if (std::string_view(child->GetName()) != "stop") {
            continue;
        }
        CheckedElement stop = artwork.Read(*child, scope);
        CheckNames(artwork, stop);
        CheckStyles(artwork, stop, Block::kNotDrawn);
        float offset = gradient.stops > 0 ? gradient.lastOffset : 0;
        if (stop.Known().Has(AttributeName::kOffset)) {
            const SourceValue value = artwork.Value(stop, AttributeName::kOffset);
            CheckNumber("offset", value.Text(), value, artwork.reporter);
            SVGStringParser::ParseNumber(value.Text(), offset);
        }
        offset = std::clamp(std::max(offset, gradient.lastOffset), 0.0f, 1.0f);
        gradient.firstOffset = gradient.stops == 0 ? offset : gradient.firstOffset;
        gradient.lastOffset = offset;
        ++gradient.stops;
    }
}

}  // namespace

void CheckGradient(CheckedArtwork& artwork, const CheckedElement& element)
{
    artwork.CheckId(element, "the first one counts");
    const Attributes& known = element.Known();
    CheckedGradient gradient;
    if (known.HasHref()) {
        const std::string_view href = known.Href();
        const std::size_t offset = artwork.Value(element, href).OffsetAt(0);
        if (href.empty()) {
            artwork.reporter.Report(Rule::kGradientHrefEmpty, offset);
        } else {
            if (href[0] != '#') {
                artwork.reporter.Report(Rule::kGradientHrefForm, offset, Shown(href));
            }
            if (const CheckedGradient* const base = artwork.gradients.Find(href.substr(1))) {
                gradient = *base;
                gradient.isTold = false;
            } else {
                artwork.reporter.Report(Rule::kGradientHrefUnknown, offset, Shown(href.substr(1)));
            }
        }
    }
    gradient.offset = element.offset;
    const std::size_t inherited = gradient.stops;
    CheckStops(artwork, element, gradient);
    if (inherited > 0 && gradient.stops > inherited) {
        artwork.reporter.Report(Rule::kGradientStopsAdded, element.offset,
                                Shown(known.Href().substr(1)));
    }
    gradient.type = element.name == "linearGradient" ? SVGLoom::GradientType::kLinear
                                                     : SVGLoom::GradientType::kRadial;
    const SVGLoom::LengthReader lengths(artwork.viewBox);
    if (gradient.type == SVGLoom::GradientType::kLinear) {
        lengths.Read(known, AttributeName::kX1, gradient.x1);
        lengths.Read(known, AttributeName::kY1, gradient.y1);
        lengths.Read(known, AttributeName::kX2, gradient.x2);
        lengths.Read(known, AttributeName::kY2, gradient.y2);
    } else {
        lengths.Read(known, AttributeName::kCx, gradient.cx);
        lengths.Read(known, AttributeName::kCy, gradient.cy);
        lengths.Read(known, AttributeName::kFx, gradient.fx);
        lengths.Read(known, AttributeName::kFy, gradient.fy);
        lengths.Read(known, AttributeName::kR, gradient.r);
    }
    const std::string_view units = element.attributes.Find("gradientUnits");
    if (!units.empty()) {
        gradient.isInUserSpace = units == "userSpaceOnUse";
    }
    const SourceValue spread = artwork.Value(element, AttributeName::kSpreadMethod);
    if (spread.Text() == "reflect" || spread.Text() == "repeat") {
        gradient.spread = spread.Text();
    } else if (spread.Text() == "pad") {
        if (!gradient.spread.empty()) {
            artwork.reporter.Report(Rule::kKeywordDefault, spread.OffsetAt(0), "spreadMethod",
                                    "pad");
        }
    } else if (known.Has(AttributeName::kSpreadMethod)) {
        artwork.reporter.Report(Rule::kKeywordInvalid, spread.OffsetAt(0), "spreadMethod",
                                Shown(spread.Text()));
    }
    if (known.Has(AttributeName::kGradientTransform)) {
        CheckedTransform transform;
        CheckTransformText(artwork, AttributeName::kGradientTransform,
                           known.Text(AttributeName::kGradientTransform), element.offset,
                           transform);
        const kivui::scrivel::Matrix& matrix = transform.Engine();
        gradient.matrix = {matrix.a, matrix.b, matrix.c, matrix.d};
    }
    artwork.gradients.Add(element.Id(), gradient);
}

}  // namespace svgloom
