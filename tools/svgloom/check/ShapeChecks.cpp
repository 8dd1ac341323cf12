#include "tools/svgloom/check/ShapeChecks.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "svgloom/src/SVGStringParser.h"
#include "svgloom/src/ShapeBuilder.h"
#include "tools/svgloom/check/PropertyChecks.h"

namespace svgloom {

namespace {

using SVGLoom::AttributeName;
using SVGLoom::SVGStringParser;

std::string_view WhyEmpty(std::string_view shape)
{
    if (shape == "rect") {
        return "write a width and a height other than 0";
    }
    if (shape == "circle") {
        return "write an r other than 0";
    }
    if (shape == "ellipse") {
        return "write an rx and an ry other than 0";
    }
    return shape == "path" ? "write path data into d" : "write points";
}

/// Whether a distance in the units of an element is one of pixels where artwork is shown.
bool IsSeen(const CheckedArtwork& artwork, const CheckedElement& element, float distance)
{
    constexpr float kSeen = 1e-3f;  // of the whole
    const kivui::scrivel::Matrix& matrix = element.matrix;
    const float scale = std::sqrt(std::abs(matrix.a * matrix.d - matrix.b * matrix.c));
    return distance * scale > kSeen * std::max(artwork.viewBox.width, artwork.viewBox.height);
}

std::shared_ptr<CheckedPath> CheckPathData(CheckedArtwork& artwork, const CheckedElement& element)
{
    const std::string_view text = element.Known().Text(AttributeName::kD);
    if (WithoutSpace(text).empty()) {
        artwork.reporter.Report(Rule::kShapeEmpty, element.offset, element.name,
                                WhyEmpty(element.name));
        return std::make_shared<CheckedPath>();  // the engine has an element for it
    }
    const SourceValue value = artwork.Value(element, text);
    const auto path = std::make_shared<CheckedPath>();
    SVGLoom::PathNotes notes;
    SVGStringParser::ParsePath(text, *path, &notes);
    const auto rest = [&text](const char* place) {
        return Shown(text.substr(static_cast<std::size_t>(place - text.data())));
    };
    using SVGLoom::PathNote;
    const char* const end = text.data() + text.size();
    const char* const unknown = notes.PlaceOf(PathNote::kUnknownCommand);
    if (unknown != nullptr) {
        artwork.reporter.Report(Rule::kPathCommand, value.OffsetOf(unknown), Shown({unknown, 1}),
                                *unknown == '+' ? ": leave it out" : "");
    }
    // Behind an unknown command the end comes early by itself.
    const char* const stopped = notes.PlaceOf(PathNote::kStopped);
    if (stopped != nullptr && (stopped != end || unknown == nullptr)) {
        artwork.reporter.Report(Rule::kPathStopped, value.OffsetOf(stopped),
                                stopped != end ? "\"" + rest(stopped) + "\"" : "the end");
    }
    struct NoteRow {
        PathNote note;
        Rule rule;
    };
    constexpr NoteRow kNotes[] = {{PathNote::kMoveBehindClose, Rule::kPathMove},
                                  {PathNote::kRotatedArc, Rule::kPathArcRotation},
                                  {PathNote::kNegativeArc, Rule::kPathNegativeArc},
                                  {PathNote::kSmoothStart, Rule::kPathSmooth}};
    for (const NoteRow& row : kNotes) {
        if (const char* const place = notes.PlaceOf(row.note)) {
            artwork.reporter.Report(row.rule, value.OffsetOf(place));
        }
    }
    if (IsSeen(artwork, element, notes.QuadraticDistance())) {
        artwork.reporter.Report(Rule::kPathQuadratic,
                                value.OffsetOf(notes.PlaceOf(PathNote::kQuadratic)));
    }
    if (!path->IsFinite()) {
        artwork.reporter.Report(
            Rule::kPathNotFinite, value.OffsetAt(0),
            "write lines for arcs with a radius of 0, and leave out arcs that end "
            "where they begin");
    }
    return path;
}

void CheckPoints(CheckedArtwork& artwork, const CheckedElement& element)
{
    if (!element.name.starts_with("poly")) {
        return;
    }
    const SourceValue value = artwork.Value(element, AttributeName::kPoints);
    std::vector<float> numbers;
    const bool isRead = SVGStringParser::ParseNumberList(value.Text(), numbers);
    if (!isRead || numbers.size() == 1) {
        artwork.reporter.Report(Rule::kPointsInvalid, value.OffsetAt(0), Shown(value.Text()));
    } else if (numbers.size() % 2 != 0) {
        artwork.reporter.Report(Rule::kPointsOdd, value.OffsetAt(0));
    }
}

/// Where opacities count one by one.
void CheckOpacity(CheckedArtwork& artwork, const CheckedElement& element, const Scope& scope,
                  const CheckedPath& path)
{
    const InheritedStyle& style = element.style.inherited;
    if (style.hasFill && style.hasStroke && element.style.IsTranslucent()) {
        artwork.reporter.Report(Rule::kOpacityOverlap, element.offset, "fill and stroke");
    }
    TranslucentGroup* const group = scope.translucent.get();
    if (group == nullptr || group->isTold || element.style.hasClip ||
        (!style.hasFill && !style.hasStroke)) {
        return;
    }
    const Box box = path.Covered().Mapped(element.matrix);
    if (std::ranges::any_of(group->boxes, [&box](const Box& each) { return each.Overlaps(box); })) {
        group->isTold = true;
        artwork.reporter.Report(Rule::kOpacityOverlap, group->offset, "the shapes of the group");
    } else if (group->boxes.size() < TranslucentGroup::kMaxBoxes) {
        group->boxes.push_back(box);
    }
}

}  // namespace

void CheckShape(CheckedArtwork& artwork, const CheckedElement& element, const Scope& scope)
{
    artwork.CheckId(element, "the first one counts");
    const std::shared_ptr<CheckedPath> path = CheckOutline(artwork, element);
    if (path == nullptr) {
        return;
    }
    CheckOpacity(artwork, element, scope, *path);
    const ElementStyle& style = element.style;
    const bool fillsGradient =
        style.inherited.hasFill && style.inherited.fill == PaintKind::kGradient;
    if (fillsGradient) {
        artwork.gradients.TellUse(style.inherited.fillGradient, artwork.viewBox);
        if (style.inherited.fillOpacity < 1 || style.IsTranslucent()) {
            artwork.reporter.Report(Rule::kGradientOpacity, element.offset);
        }
    }
    if (style.inherited.hasStroke && style.inherited.stroke == PaintKind::kGradient) {
        artwork.reporter.Report(Rule::kGradientStroke, element.offset);
    }
    if (element.Id().empty()) {
        artwork.references.AddShape(scope.node, style.Taken(), fillsGradient);
        return;
    }
    References::Entry entry;
    entry.parent = scope.node;
    entry.offset = element.offset;
    entry.texts = scope.style.texts;
    entry.taken = style.Taken();
    entry.fillsGradient = fillsGradient;
    artwork.references.Add(entry, element.Id());
}

std::shared_ptr<CheckedPath> CheckOutline(CheckedArtwork& artwork, const CheckedElement& element)
{
    if (element.name == "path") {
        return CheckPathData(artwork, element);
    }
    CheckPoints(artwork, element);
    CheckedRenderer renderer;  // makes no other paths
    const std::shared_ptr<SVGLoom::Path> built = SVGLoom::BuildShape(
        SVGLoom::FindElement(element.name), element.Known(), artwork.viewBox, renderer);
    const auto path = std::static_pointer_cast<CheckedPath>(built);
    // The corners are up to a twentieth of their radius away.
    constexpr float kCornerPart = 1.0f / 20;
    if (path != nullptr && IsSeen(artwork, element, kCornerPart * path->CornerRadius())) {
        artwork.reporter.Report(Rule::kRoundedRect, element.offset);
    }
    if (path == nullptr && !(element.name.starts_with("poly") &&
                             !WithoutSpace(element.Known().Text(AttributeName::kPoints)).empty())) {
        artwork.reporter.Report(Rule::kShapeEmpty, element.offset, element.name,
                                WhyEmpty(element.name));
    }
    return path;
}

}  // namespace svgloom
