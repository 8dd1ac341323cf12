#include "tools/svgloom/check/Rules.h"

#include <algorithm>
#include <iterator>

namespace svgloom {

namespace {

constexpr RuleSeverity kError = RuleSeverity::kError;
constexpr RuleSeverity kWarning = RuleSeverity::kWarning;

constexpr RuleRow kRules[] = {
    {Rule::kFile, "file", kError, "%1", "the file cannot be read"},
    {Rule::kEncoding, "encoding", kError,
     "the text is UTF-16, which is not read: save it as UTF-8; nothing is drawn",
     "the file is UTF-16"},
    {Rule::kNul, "nul", kError, "a NUL ends the text here; what follows is not read",
     "a NUL byte stands in the text"},
    {Rule::kXml, "xml", kError, "malformed XML (%1): nothing is drawn", "the XML is malformed"},
    {Rule::kNesting, "nesting", kError,
     "elements are nested deeper than %1 levels: nothing is drawn; use fewer groups inside groups",
     "an element stands more than 512 levels deep"},
    {Rule::kRoot, "root", kError, "%1: the root has to be \"svg\"; nothing is drawn",
     "there is no root, or it is not named \"svg\""},
    {Rule::kSecondRoot, "second-root", kError,
     "only the first root is read: put everything inside one \"svg\"",
     "another element follows the root"},
    {Rule::kEntity, "entity", kWarning, "\"%1\" is not translated: write the text itself",
     "a value names an entity other than amp, lt, gt, quot and apos"},
    {Rule::kMoreFindings, "more-findings", kWarning, "%1 further findings are not listed",
     "one file has more findings than are listed"},

    {Rule::kClipPathShort, "clip-path-short", kError,
     "clip-path=\"%1\" ends the reading and nothing is drawn: write url(#id), or leave it out",
     "a clip-path value has fewer than five characters, \"none\" included"},
    {Rule::kGradientHrefEmpty, "gradient-href-empty", kError,
     "the empty href of a gradient ends the reading and nothing is drawn: leave it out",
     "a gradient's href is empty"},
    {Rule::kDeclarationNoColon, "declaration-no-colon", kError,
     "\"%1\" has no \":\", which ends the reading; nothing is drawn: write name:value;",
     "something between two \";\" has no \":\", or there is nothing between them"},
    {Rule::kSelectorEmpty, "selector-empty", kError,
     "the selector \".\" ends the reading and nothing is drawn: name the class",
     "a selector is a lone \".\""},

    {Rule::kElementUnsupported, "element-unsupported", kError, "\"%1\" is never drawn: %2",
     "an element is not supported, such as text, image, a nested svg"},
    {Rule::kElementIgnored, "element-ignored", kWarning, "\"%1\" is not read: %2",
     "an element that changes others is not supported, such as filter, mask, animate"},
    {Rule::kElementUnknown, "element-unknown", kError,
     "\"%1\" is not known and never drawn, with all that is in it: is it misspelt?",
     "an element is unknown"},
    {Rule::kElementPrefix, "element-prefix", kError,
     "\"%1\" is never drawn: write \"%2\", without a prefix",
     "an element of SVG is written with a namespace prefix"},
    {Rule::kShapeEmpty, "shape-empty", kError, "the \"%1\" is never drawn: %2",
     "a shape has no extent, no points or no data"},
    {Rule::kIdDuplicate, "id-duplicate", kWarning,
     "the id \"%1\" is taken already: %2; give each element an id of its own", "an id comes again"},

    {Rule::kAttributeUnread, "attribute-unread", kWarning, "\"%1\" is not read: %2",
     "an attribute of SVG that would show is not read"},
    {Rule::kAttributeUnknown, "attribute-unknown", kWarning,
     "\"%1\" is no attribute that is read: is it misspelt?", "an attribute is unknown"},
    {Rule::kAttributeTwice, "attribute-twice", kWarning,
     "\"%1\" stands here twice: the first one counts", "an element has the same attribute twice"},
    {Rule::kPropertyUnread, "property-unread", kWarning, "the property \"%1\" is not read: %2",
     "a property that would show is not read in style sheets and style attributes"},
    {Rule::kPropertyUnknown, "property-unknown", kWarning,
     "\"%1\" is no property that is read: is it misspelt?", "a property is unknown"},

    {Rule::kViewBoxInvalid, "viewbox-invalid", kWarning,
     "viewBox=\"%1\" does not count: write four numbers, x y width height",
     "a viewBox is not four numbers"},
    {Rule::kViewBoxEmpty, "viewbox-empty", kError,
     "the size %1 cannot be scaled: nothing is drawn; write a width and a height above 0",
     "the viewBox has neither width nor height"},
    {Rule::kViewBoxMissing, "viewbox-missing", kWarning,
     "the artwork is taken as %1 units large: write a viewBox",
     "there is neither a viewBox nor a width and a height in units"},
    {Rule::kPreserveAspectRatio, "preserve-aspect-ratio", kWarning,
     "preserveAspectRatio=\"%1\" is not read: artwork is fitted to the upper left corner "
     "(xMinYMin meet); draw it in a viewBox of the shape that it is shown in",
     "the root has a preserveAspectRatio other than xMinYMin"},
    {Rule::kLengthInvalid, "length-invalid", kWarning,
     "%1=\"%2\" is no length and does not count: write a number", "a length cannot be read"},
    {Rule::kLengthUnit, "length-unit", kWarning,
     "%1=\"%2\" does not count: of units only px, pt, pc, in, cm, mm and % are read",
     "a length has a unit that is not read, such as em, ex, rem, vw"},
    {Rule::kPercentDiagonal, "percent-diagonal", kWarning,
     "%1=\"%2\": the percentage is of the whole diagonal, 1.41 times what other programs take: "
     "write a number",
     "a radius or a stroke length is a percentage"},
    {Rule::kNegativeSize, "negative-size", kWarning,
     "%1=\"%2\" is drawn where other programs draw nothing: write a size above 0",
     "a width, a height or a radius is negative, or one side of the viewBox is 0"},
    {Rule::kSizeRatio, "size-ratio", kWarning,
     "width and height have another ratio than the viewBox, which alone counts: write them alike",
     "the root's width and height do not go with its viewBox"},
    {Rule::kRoundedRect, "rounded-rect", kWarning,
     "the corners of a rounded rect are sharper here: draw it as a path with arcs, or leave out "
     "rx and ry",
     "a rect has rounded corners"},
    {Rule::kPointsInvalid, "points-invalid", kError,
     "points=\"%1\" cannot be read, and the shape is never drawn: write numbers only",
     "the points of a polygon or polyline cannot be read"},
    {Rule::kPointsOdd, "points-odd", kWarning,
     "the last number of the points has no partner and "
     "is left out",
     "a polygon or polyline has an odd number of coordinates"},

    {Rule::kPathStopped, "path-stopped", kError,
     "path data cannot be read at %1: nothing of this path is drawn from here on",
     "path data has an error"},
    {Rule::kPathCommand, "path-command", kWarning, "\"%1\" is no path command and is skipped%2",
     "path data has an unknown command, such as a \"+\" that begins a repeated command"},
    {Rule::kPathMove, "path-move", kWarning,
     "a subpath that begins without a move begins elsewhere here: write an M behind the Z",
     "a command other than M follows Z where x and y of the start differ"},
    {Rule::kPathArcRotation, "path-arc-rotation", kWarning,
     "the rotation of an arc is not drawn: write the arc as curves (C)",
     "an arc of an ellipse is rotated"},
    {Rule::kPathSmooth, "path-smooth", kWarning,
     "S behind another command takes up an earlier control point here: write C",
     "an S or s follows something other than C and S"},
    {Rule::kPathQuadratic, "path-quadratic", kWarning,
     "a quadratic curve (Q, T) has another shape here: write it as C",
     "path data has a quadratic curve"},
    {Rule::kPathNegativeArc, "path-negative-arc", kWarning,
     "the sign of an arc's radius counts here: write it without a minus",
     "a radius of an arc is negative"},
    {Rule::kPathNotFinite, "path-not-finite", kError,
     "the path has a point that is no number, and is never drawn: %1",
     "an arc has a radius of 0 or no length, or numbers are too large"},

    {Rule::kTransformInvalid, "transform-invalid", kWarning,
     "%1 cannot be read at \"%2\", and all of it does not count", "a transform list has an error"},
    {Rule::kTransformOrder, "transform-order", kWarning,
     "%1: a translate or scale acts last here wherever it stands, unlike in other programs: write "
     "%2, or the translate first and only rotate, skew and matrix behind it",
     "a translate or scale stands behind something of another kind in a transform list, or a "
     "rotate has a centre"},
    {Rule::kTransformRoot, "transform-root", kWarning,
     "the transform of the root does not count: put it on a group", "the root has a transform"},

    {Rule::kNumberInvalid, "number-invalid", kWarning,
     "%1: \"%2\" is no number that is read here, and does not count", "a number cannot be read"},
    {Rule::kNumberPercent, "number-percent", kWarning,
     "%1: the percentage \"%2\" does not count: write it as a number, 50% as 0.5",
     "an opacity or offset is a percentage"},
    {Rule::kKeywordInvalid, "keyword-invalid", kWarning,
     "%1: \"%2\" is not known here and changes nothing", "a keyword is unknown"},
    {Rule::kKeywordDefault, "keyword-default", kWarning,
     "%1: \"%2\" does not undo what is inherited: set the other value only where it is wanted",
     "butt, miter or pad is to undo an inherited value"},
    {Rule::kImportant, "important", kWarning,
     "%1: \"!important\" makes the value unreadable: leave it out", "a value ends in !important"},
    {Rule::kColorInvalid, "color-invalid", kWarning, "%1 is no colour that is read: %2",
     "a colour or paint cannot be read"},
    {Rule::kColorCut, "color-cut", kWarning,
     "%1: only the first part of \"%2\" is read: write it as #rrggbb",
     "a colour name that begins with another one, or something follows a colour"},
    {Rule::kVariableFallback, "variable-fallback", kWarning,
     "%1: the fallback of \"%2\" is black here: write a colour",
     "the fallback of a var() is a variable or currentColor"},
    {Rule::kDisplay, "display", kWarning,
     "display does not count: the element is drawn; remove it from the artwork",
     "an element has display:none"},
    {Rule::kVisibility, "visibility", kWarning,
     "visibility does not count: the element is drawn; remove it from the artwork",
     "an element is hidden or collapsed"},
    {Rule::kOpacityOverlap, "opacity-overlap", kWarning,
     "the opacity is applied to %1 one by one, so overlaps show: make one shape of all, or write "
     "lighter colours",
     "an opacity below 1 is on a shape with fill and stroke, or on a group whose shapes may "
     "overlap"},
    {Rule::kStrokeWidthInvalid, "stroke-width-invalid", kWarning,
     "stroke-width=\"%1\" cannot be read and switches the stroke off: write a number",
     "a stroke width cannot be read"},
    {Rule::kStrokeStaysOff, "stroke-stays-off", kWarning,
     "the stroke stays off: the stroke-width 0 around it switched it off; set stroke here too",
     "a stroke width is set where an inherited width of 0 switched the stroke off"},
    {Rule::kDashInvalid, "dash-invalid", kWarning,
     "stroke-dasharray=\"%1\" cannot be read: the line is solid; write numbers only",
     "a list of dashes cannot be read"},
    {Rule::kDashOffset, "dash-offset", kWarning,
     "stroke-dashoffset is not applied: begin the list of dashes where the line begins",
     "a dash offset is not 0"},

    {Rule::kPaintUnknown, "paint-unknown", kWarning,
     "%1: there is no gradient \"%2\": the inherited paint is used",
     "a fill or stroke names something that is no gradient, such as a pattern"},
    {Rule::kPaintLater, "paint-later", kWarning,
     "%1: the gradient \"%2\" stands further down, so the inherited paint is used: put gradients "
     "in front of what uses them",
     "a fill or stroke names a gradient that stands further down"},
    {Rule::kGradientOpacity, "gradient-opacity", kWarning,
     "the gradient fill takes no opacity: set stop-opacity on its stops",
     "a gradient fills something under a fill-opacity or opacity below 1"},
    {Rule::kGradientStroke, "gradient-stroke", kWarning,
     "the stroke is drawn in the colour of the gradient's first stop: draw it as a filled shape",
     "a gradient paints a stroke"},
    {Rule::kGradientUnits, "gradient-units", kWarning,
     "the gradient's coordinates count in units of the viewBox: write "
     "gradientUnits=\"userSpaceOnUse\", and the coordinates so",
     "a gradient fills something and does not say gradientUnits=\"userSpaceOnUse\""},
    {Rule::kGradientHrefUnknown, "gradient-href-unknown", kWarning,
     "no gradient \"%1\" stands in front of this one, so nothing is taken over from it",
     "a gradient refers to one that is not there or stands further down"},
    {Rule::kGradientHrefForm, "gradient-href-form", kWarning,
     "the first character of href=\"%1\" is dropped, \"#\" or not: write #id",
     "a gradient's href does not begin with \"#\""},
    {Rule::kGradientStopsAdded, "gradient-stops-added", kWarning,
     "the stops are added to those of \"%1\" instead of replacing them: do not refer to it",
     "a gradient has stops of its own and takes over others"},
    {Rule::kGradientUneven, "gradient-uneven", kWarning,
     "the gradient transform stretches unevenly, which only moves the ends: write coordinates "
     "without it",
     "a gradient transform does not keep angles"},
    {Rule::kSpreadMethod, "spread-method", kWarning,
     "spreadMethod=\"%1\" is not drawn: repeat the stops instead",
     "a gradient has the spread method reflect or repeat"},
    {Rule::kRadialStops, "radial-stops", kWarning,
     "a radial gradient goes evenly from its first stop to its last: use two stops, at 0 and 1",
     "a radial gradient has more than two stops, or other offsets than 0 and 1"},
    {Rule::kRadialFocus, "radial-focus", kWarning,
     "the focal point is not drawn: leave out fx and fy",
     "a radial gradient has a focal point that is not its centre"},
    {Rule::kRadialRadius, "radial-radius", kWarning,
     "without an r the radius is half the diagonal of the viewBox: write r",
     "a radial gradient has no radius"},
    {Rule::kStopVariable, "stop-variable", kWarning,
     "%1: a variable has no colour in a gradient yet, so its fallback is used: use a plain colour",
     "a gradient stop's colour is a var()"},

    {Rule::kClipPathForm, "clip-path-form", kWarning,
     "clip-path=\"%1\" clips nothing: write url(#id)", "a clip-path is not of the form url(#id)"},
    {Rule::kClipPathUnknown, "clip-path-unknown", kWarning,
     "there is no clip path \"%1\": nothing is clipped",
     "a clip-path names a clip path that is not there"},
    {Rule::kClipPathLater, "clip-path-later", kWarning,
     "the clip path \"%1\" stands further down, so nothing is clipped: put clip paths in front of "
     "what uses them",
     "a clip-path names a clip path that stands further down"},
    {Rule::kClipPathEmpty, "clip-path-empty", kError,
     "the clip path \"%1\" has no shape of its own, so this is never drawn: put one shape directly "
     "into it",
     "something is clipped by a clip path without a shape"},
    {Rule::kClipPathUnits, "clip-path-units", kWarning,
     "clipPathUnits is not read: write the clip path in the units of what it clips",
     "a clip path has clipPathUnits=\"objectBoundingBox\""},
    {Rule::kClipPathChild, "clip-path-child", kWarning,
     "\"%1\" does not clip: only the first shape directly in a clip path does; make one path of "
     "all",
     "a clip path holds more than one shape, or something that is no shape"},
    {Rule::kClipPathClipped, "clip-path-clipped", kWarning,
     "a clip path is not clipped itself: draw the part that is left",
     "a clip-path stands on a clipPath or inside one"},

    {Rule::kUseHref, "use-href", kError,
     "href=\"%1\" is never drawn: write #id, of an element of this file",
     "the href of a use is missing or does not begin with \"#\""},
    {Rule::kUseUnknown, "use-unknown", kError,
     "there is no element \"%1\" that could be drawn: nothing is drawn here",
     "a use names an element that is not there, or is not drawn"},
    {Rule::kUseStyle, "use-style", kWarning,
     "%1 is not passed on to \"%2\", which keeps its own style: set it there",
     "what surrounds a use has another style than what surrounds its target"},
    {Rule::kUseSize, "use-size", kWarning,
     "width and height of a use do not count: write a transform with scale",
     "a use of a symbol has a width or a height"},
    {Rule::kUseCycle, "use-cycle", kWarning,
     "the use shows a group that it stands in, and is drawn once more: take it out of there",
     "a use leads to itself"},
    {Rule::kUseMultiplies, "use-multiplies", kError,
     "what use draws comes to more than %1 elements, and the rest is never drawn: use fewer",
     "references multiply to more than 1000000 elements"},
    {Rule::kUseLevels, "use-levels", kError,
     "groups and references are more than %1 levels deep, and the rest is never drawn: use fewer",
     "references go more than 1024 levels deep"},
    {Rule::kSymbolViewBox, "symbol-viewbox", kWarning,
     "the viewBox of a symbol replaces that of the whole artwork: leave it out and use a transform",
     "a symbol has a viewBox"},
    {Rule::kSymbolStyle, "symbol-style", kWarning,
     "%1 of a symbol is not passed on to what is in it: put a group into the symbol",
     "a symbol sets a property that is inherited"},

    {Rule::kStyleComment, "style-comment", kWarning,
     "a comment stays part of a style attribute and spoils its declaration: leave it out",
     "a style attribute holds a comment"},
    {Rule::kDeclarationOpen, "declaration-open", kWarning,
     "\"%1\" does not count: end the last declaration with \";\" too",
     "a last declaration is not ended by \";\""},
    {Rule::kDeclarationTwice, "declaration-twice", kWarning,
     "%1 stands here twice: the first one counts, unlike in other programs",
     "a block declares the same property twice"},
    {Rule::kClassOverStyle, "class-over-style", kWarning,
     "%1 of the class \"%2\" wins over the style attribute, unlike in other programs: take it out "
     "of one of them",
     "a class rule and the style attribute set the same property"},
    {Rule::kClassOrder, "class-order", kWarning,
     "%1 of the class \"%2\" wins because it is named last, unlike in other programs, where the "
     "later rule does: name the classes in the order of their rules",
     "two classes of an element set the same property, and the order of their rules is another"},
    {Rule::kSelectorUnmatched, "selector-unmatched", kWarning,
     "the selector \"%1\" matches nothing: only classes are matched, written .name",
     "a selector is no single class"},
    {Rule::kAtRule, "at-rule", kWarning,
     "\"%1\" is not read as one, and can spoil the rules behind it: leave it out",
     "a style sheet holds an at-rule"},
    {Rule::kStyleLate, "style-late", kWarning,
     "the rule \"%1\" does not reach elements in front of it: put the style element first",
     "a style element stands behind elements of its classes"},
    {Rule::kStyleSplit, "style-split", kWarning,
     "only the first piece of a style element is read: leave out comments and sections",
     "the text of a style element comes in several pieces, or stands in a comment"},
    {Rule::kStyleMedia, "style-media", kWarning, "media=\"%1\" is not read: the rules always count",
     "a style element has a media attribute"},
};

constexpr bool AreRulesInOrder()
{
    for (std::size_t i = 0; i < std::size(kRules); ++i) {
        if (static_cast<std::size_t>(kRules[i].rule) != i) {
            return false;
        }
    }
    return std::size(kRules) == static_cast<std::size_t>(Rule::kStyleMedia) + 1;
}
static_assert(AreRulesInOrder());

}  // namespace

std::span<const RuleRow> RuleTable()
{
    return kRules;
}

const RuleRow& RowOf(Rule rule)
{
    return kRules[static_cast<std::size_t>(rule)];
}

const RuleRow* FindRule(std::string_view id)
{
    const auto* const found = std::ranges::find(kRules, id, &RuleRow::id);
    return found != std::end(kRules) ? found : nullptr;
}

std::string MessageOf(Rule rule, std::string_view first, std::string_view second)
{
    std::string text;
    const std::string_view message = RowOf(rule).message;
    for (std::size_t i = 0; i < message.size(); ++i) {
        const char next = i + 1 < message.size() ? message[i + 1] : '\0';
        if (message[i] == '%' && (next == '1' || next == '2')) {
            text.append(next == '1' ? first : second);
            ++i;
        } else {
            text += message[i];
        }
    }
    return text;
}

}  // namespace svgloom
