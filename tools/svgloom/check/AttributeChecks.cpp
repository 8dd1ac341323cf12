#include "tools/svgloom/check/AttributeChecks.h"

#include <array>
#include <string>
#include <string_view>

#include "svgloom/src/Attributes.h"
#include "svgloom/src/Characters.h"
#include "svgloom/src/Declarations.h"
#include "svgloom/src/SVGStringParser.h"
#include "tools/svgloom/check/PropertyChecks.h"
#include "tools/svgloom/check/UnreadNames.h"

namespace svgloom {

namespace {

using SVGLoom::AttributeName;
using SVGLoom::Attributes;
using SVGLoom::SVGStringParser;

struct LengthRow {
    std::string_view element;
    AttributeName name;
    bool isSize;  // has to be 0 or more
};

// The lengths that each element reads.
constexpr LengthRow kLengths[] = {
    {"rect", AttributeName::kX, false},
    {"rect", AttributeName::kY, false},
    {"rect", AttributeName::kWidth, true},
    {"rect", AttributeName::kHeight, true},
    {"rect", AttributeName::kRx, true},
    {"rect", AttributeName::kRy, true},
    {"circle", AttributeName::kCx, false},
    {"circle", AttributeName::kCy, false},
    {"circle", AttributeName::kR, true},
    {"ellipse", AttributeName::kCx, false},
    {"ellipse", AttributeName::kCy, false},
    {"ellipse", AttributeName::kRx, true},
    {"ellipse", AttributeName::kRy, true},
    {"line", AttributeName::kX1, false},
    {"line", AttributeName::kY1, false},
    {"line", AttributeName::kX2, false},
    {"line", AttributeName::kY2, false},
    {"use", AttributeName::kX, false},
    {"use", AttributeName::kY, false},
    {"linearGradient", AttributeName::kX1, false},
    {"linearGradient", AttributeName::kY1, false},
    {"linearGradient", AttributeName::kX2, false},
    {"linearGradient", AttributeName::kY2, false},
    {"radialGradient", AttributeName::kCx, false},
    {"radialGradient", AttributeName::kCy, false},
    {"radialGradient", AttributeName::kFx, false},
    {"radialGradient", AttributeName::kFy, false},
    {"radialGradient", AttributeName::kR, true},
};

/// "&name;" as it stands in a value where the XML library copied it; empty if there is none.
std::string_view UntranslatedEntity(std::string_view text)
{
    for (std::size_t at = text.find('&'); at != std::string_view::npos;
         at = text.find('&', at + 1)) {
        std::size_t end = at + 1;
        while (end < text.size() &&
               (SVGLoom::IsLetter(text[end]) || SVGLoom::IsDigit(text[end]) || text[end] == '_')) {
            ++end;
        }
        if (end > at + 1 && end < text.size() && text[end] == ';') {
            return text.substr(at, end + 1 - at);
        }
    }
    return {};
}

void CheckClassRules(CheckedArtwork& artwork, CheckedElement& element, const StyleTexts& declared)
{
    struct Winner {
        std::string_view text;
        std::size_t order = 0;
    };
    std::array<Winner, SVGLoom::kPropertyCount> winners;
    const SourceValue value = artwork.Value(element, AttributeName::kClass);
    for (const std::string_view name : SVGStringParser::SplitWords(value.Text())) {
        artwork.classes.used[name] = true;
        const FixedPlace place(value.OffsetOf(name.data()));
        const std::size_t* const order = artwork.classes.order.Find(name);
        for (const SVGLoom::PropertyText& each : artwork.sheet.FindClass(name)) {
            const auto tell = [&](Rule rule) {
                artwork.reporter.Report(rule, place.OffsetOf(nullptr),
                                        SVGLoom::TextOf(each.property), Shown(name));
            };
            const std::string_view other = declared[static_cast<std::size_t>(each.property)];
            if (!other.empty() && other != each.text) {
                tell(Rule::kClassOverStyle);
            }
            Winner& winner = winners[static_cast<std::size_t>(each.property)];
            if (order != nullptr && *order < winner.order && each.text != winner.text) {
                tell(Rule::kClassOrder);
            }
            winner = {each.text, order != nullptr ? *order : 0};
            artwork.styles.Apply(each.property, each.text, place, element.style);
        }
    }
}

}  // namespace

void CheckNames(CheckedArtwork& artwork, const CheckedElement& element)
{
    Attributes seen;
    for (const NamedValue& each : element.attributes.All()) {
        const std::size_t offset = artwork.OffsetOf(each.name.data(), element.offset);
        const AttributeName known = SVGLoom::FindAttribute(each.name);
        if (known == AttributeName::kUnknown) {
            if (each.name.find(':') != std::string_view::npos) {
                continue;
            }
            const UnreadName unread = LookUpAttribute(each.name, each.value);
            if (unread.loss == Loss::kEffect) {
                artwork.reporter.Report(Rule::kAttributeUnread, offset, Shown(each.name),
                                        unread.advice);
            } else if (unread.loss == Loss::kUnknown) {
                artwork.reporter.Report(Rule::kAttributeUnknown, offset, Shown(each.name));
            }
            continue;
        }
        if (seen.Has(known)) {
            artwork.reporter.Report(Rule::kAttributeTwice, offset, each.name);
        }
        seen.VisitAttribute(each.name, each.value);
        const std::string_view entity = UntranslatedEntity(each.value);
        if (!entity.empty()) {
            artwork.reporter.Report(Rule::kEntity,
                                    artwork.Value(element, each.value).OffsetOf(entity.data()),
                                    Shown(entity));
        }
    }
}

void CheckStyles(CheckedArtwork& artwork, CheckedElement& element, Block kind)
{
    const Attributes& known = element.Known();
    const auto skips = [kind](AttributeName property) {
        // What is never drawn by itself is hidden without harm.
        return kind == Block::kNotDrawn &&
               (property == AttributeName::kDisplay || property == AttributeName::kVisibility);
    };
    known.ForEachProperty([&](AttributeName property, std::string_view text) {
        if (!skips(property)) {
            const SourceValue value = artwork.Value(element, text);
            CheckProperty(property, text, value, artwork.reporter);
            artwork.styles.Apply(property, text, value, element.style);
        }
    });
    StyleTexts declared{};
    if (known.Has(AttributeName::kStyle)) {
        const SourceValue value = artwork.Value(element, AttributeName::kStyle);
        if (CheckStyleAttribute(value, kind, artwork.reporter)) {
            SVGLoom::ParseDeclarations(value.Text())
                .ForEach([&](AttributeName property, std::string_view text) {
                    declared[static_cast<std::size_t>(property)] = text;
                    if (!skips(property)) {
                        artwork.styles.Apply(property, text, value, element.style);
                    }
                });
        }
    }
    if (known.Has(AttributeName::kClass)) {
        CheckClassRules(artwork, element, declared);
    }
}

void CheckLengths(CheckedArtwork& artwork, const CheckedElement& element)
{
    for (const LengthRow& row : kLengths) {
        if (row.element != element.name || !element.Known().Has(row.name)) {
            continue;
        }
        const SourceValue value = artwork.Value(element, row.name);
        float length = 0;
        constexpr float kAnyReference = 100;
        if (CheckLength(row.name, value.Text(), kAnyReference, value, artwork.reporter, length) &&
            row.isSize && length < 0) {
            artwork.reporter.Report(Rule::kNegativeSize, value.OffsetAt(0),
                                    SVGLoom::TextOf(row.name), Shown(value.Text()));
        }
    }
}

void CheckTransform(CheckedArtwork& artwork, CheckedElement& element)
{
    if (!element.Known().Has(AttributeName::kTransform)) {
        return;
    }
    CheckedTransform transform;
    CheckTransformText(artwork, AttributeName::kTransform,
                       element.Known().Text(AttributeName::kTransform), element.offset, transform);
    const kivui::scrivel::Matrix& own = transform.Engine();
    const kivui::scrivel::Matrix& outer = element.matrix;
    SVGLoom::ScrivelSVGTransform whole(outer.a, outer.b, outer.c, outer.d, outer.e, outer.f);
    whole.Concat(own.a, own.b, own.c, own.d, own.e, own.f);
    element.matrix = whole.Matrix();
}

void CheckTransformText(CheckedArtwork& artwork, AttributeName name, std::string_view text,
                        std::size_t offset, CheckedTransform& transform)
{
    const SourceValue value(artwork.source, text, offset);
    const char* current = text.data();
    const char* const end = current + text.size();
    if (!SVGStringParser::ParseTransform(current, end, transform)) {
        const std::string rest = Shown({current, static_cast<std::size_t>(end - current)});
        artwork.reporter.Report(Rule::kTransformInvalid, value.OffsetOf(current),
                                SVGLoom::TextOf(name), rest);
        transform.SetMatrix(1, 0, 0, 1, 0, 0);
    } else if (transform.Differs()) {
        artwork.reporter.Report(Rule::kTransformOrder, value.OffsetAt(0),
                                Assigned(SVGLoom::TextOf(name), text), transform.Meant());
    }
}

}  // namespace svgloom
