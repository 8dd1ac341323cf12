// The walk goes over the elements as the element parser does: those that it does not visit are not
// looked into. Values are read by the engine's own parsers.

#include "tools/svgloom/check/ArtworkCheck.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "svgloom/src/Attributes.h"
#include "svgloom/src/Characters.h"
#include "svgloom/src/Declarations.h"
#include "svgloom/src/ElementParser.h"
#include "svgloom/src/RapidXMLDocument.h"
#include "svgloom/src/SVGStringParser.h"
#include "svgloom/src/ShapeBuilder.h"
#include "svgloom/src/StyleSheet.h"
#include "svgloom/src/XMLChecks.h"
#include "tools/svgloom/check/EngineObjects.h"
#include "tools/svgloom/check/Gradients.h"
#include "tools/svgloom/check/InheritedStyle.h"
#include "tools/svgloom/check/PropertyChecks.h"
#include "tools/svgloom/check/References.h"
#include "tools/svgloom/check/SourceText.h"
#include "tools/svgloom/check/StyleChecks.h"
#include "tools/svgloom/check/UnreadNames.h"

namespace svgloom {

namespace {

using SVGLoom::AttributeName;
using SVGLoom::Attributes;
using SVGLoom::SVGStringParser;
using SVGLoom::xml::XMLNode;

constexpr std::string_view kNamespace = "http://www.w3.org/2000/svg";

struct NamedValue {
    std::string_view name;
    std::string_view value;
};

/// All attributes of a node, also those that the engine does not read.
class AllAttributes final : public SVGLoom::xml::AttributeVisitor {
public:
    explicit AllAttributes(const XMLNode& node) { node.VisitAttributes(*this); }

    void VisitAttribute(std::string_view name, std::string_view value) override
    {
        all_.push_back({name, value});
        known_.VisitAttribute(name, value);
    }

    const std::vector<NamedValue>& All() const { return all_; }
    const Attributes& Known() const { return known_; }
    /// The first of that name; empty if there is none.
    std::string_view Find(std::string_view name) const
    {
        const auto found = std::ranges::find(all_, name, &NamedValue::name);
        return found != all_.end() ? found->value : std::string_view();
    }

private:
    std::vector<NamedValue> all_;
    Attributes known_;
};

/// A group with an opacity below 1, and where its shapes are: a limited number of them.
struct TranslucentGroup {
    static constexpr std::size_t kMaxBoxes = 64;

    std::size_t offset = 0;
    std::vector<Box> boxes;
    bool isTold = false;
};

/// What the children of an element get from it.
struct Scope {
    InheritedStyle style;
    kivui::scrivel::Matrix matrix{1, 0, 0, 1, 0, 0};
    std::shared_ptr<TranslucentGroup> translucent;  // the outermost; null if there is none
    References::Index node = References::kNone;
};

struct Element {
    const XMLNode& node;
    std::string_view name;
    std::size_t offset;  // of its "<"
    AllAttributes attributes;
    ElementStyle style;
    kivui::scrivel::Matrix matrix{1, 0, 0, 1, 0, 0};  // of it in the whole artwork

    const Attributes& Known() const { return attributes.Known(); }
    std::string_view Id() const { return Known().Text(AttributeName::kId); }
};

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

std::string SizeText(const SVGLoom::Rect& viewBox)
{
    char text[64];
    std::snprintf(text, sizeof text, "%g by %g", static_cast<double>(viewBox.width),
                  static_cast<double>(viewBox.height));
    return text;
}

class Checker {
public:
    explicit Checker(std::string_view text) : text_(text), source_(text), gradients_(reporter_) {}

    std::vector<ArtworkFinding> Run();

private:
    bool TellUnreadable();
    void CheckRoot(const XMLNode& root);
    void CheckViewBox(const Element& root);
    void CheckSizeRatio(const Element& root);
    void CheckChildren(const XMLNode& node, const Scope& scope);
    std::optional<Scope> Enter(const XMLNode& node, const Scope& scope, bool isRoot);

    Element Read(const XMLNode& node, const Scope& scope);
    void CheckNames(const Element& element);
    void CheckStyles(Element& element, Block kind);
    void CheckClassRules(Element& element, const StyleTexts& declared);
    void CheckLengths(const Element& element);
    void CheckTransform(Element& element);
    void CheckTransformText(AttributeName name, std::string_view text, std::size_t offset,
                            CheckedTransform& transform);
    void CheckUnread(const Element& element);
    bool IsReferred(std::string_view id);
    void CheckId(const Element& element, std::string_view effect);

    void CheckShape(const Element& element, const Scope& scope);
    /// The path of the shape; null if it is never drawn.
    std::shared_ptr<CheckedPath> CheckOutline(const Element& element);
    std::shared_ptr<CheckedPath> CheckPathData(const Element& element);
    void CheckOpacity(const Element& element, const Scope& scope, const CheckedPath& path);
    void CheckPoints(const Element& element);
    /// Whether a distance in the units of an element is one of pixels where artwork is shown.
    bool IsSeen(const Element& element, float distance) const;
    std::optional<Scope> CheckGroup(const Element& element, const Scope& scope,
                                    References::Index parent, bool isSymbol);
    void CheckUse(const Element& element, const Scope& scope);
    void CheckSymbol(const Element& element);
    void CheckGradient(const Element& element);
    void CheckStops(const Element& element, CheckedGradient& gradient);
    void CheckClip(const Element& element);
    void CheckStyleElement(const Element& element);

    /// Behind the ">" of its start tag.
    std::size_t EndOfTag(const Element& element) const;

    std::size_t OffsetOf(const char* place, std::size_t otherwise) const
    {
        return source_.Holds(place) ? source_.OffsetOf(place) : otherwise;
    }
    SourceValue Value(const Element& element, std::string_view text) const
    {
        return {source_, text, element.offset};
    }
    SourceValue Value(const Element& element, AttributeName name) const
    {
        return Value(element, element.Known().Text(name));
    }

    std::string_view text_;
    SourceText source_;
    Reporter reporter_;
    Gradients gradients_;
    ClipPaths clipPaths_;
    SVGLoom::Rect viewBox_{0, 0, 320, 200};
    StyleReader styles_{gradients_, clipPaths_, viewBox_, reporter_};
    References references_;
    SVGLoom::StyleSheet sheet_;
    SheetClasses classes_;
    SVGLoom::NameMap<bool> ids_;
    SVGLoom::NameMap<bool> prefixes_;                 // of SVG's namespace
    std::optional<SVGLoom::NameMap<bool>> referred_;  // by an url(); made when it is asked for
    CheckedRenderer renderer_;
};

std::vector<ArtworkFinding> Checker::Run()
{
    if (TellUnreadable()) {
        return reporter_.Take();
    }
    std::unique_ptr<SVGLoom::xml::RapidXMLDocument> document;
    try {
        document = std::make_unique<SVGLoom::xml::RapidXMLDocument>(source_.Copy());
    } catch (const SVGLoom::xml::rapidxml::parse_error& error) {
        reporter_.Report(Rule::kXml, OffsetOf(error.where<char>(), 0), error.what());
        return reporter_.Take();
    }
    if (const std::unique_ptr<XMLNode> root = document->GetFirstNode()) {
        CheckRoot(*root);
    } else {
        reporter_.Report(Rule::kRoot, 0, "there is no element");
    }
    styles_.TellMissing();
    references_.Check(reporter_);
    return reporter_.Take();
}

/// What the XML library would not tell, or not well.
bool Checker::TellUnreadable()
{
    if (text_.starts_with("\xFF\xFE") || text_.starts_with("\xFE\xFF") ||
        text_.starts_with(std::string_view("<\0", 2)) ||
        text_.starts_with(std::string_view("\0<", 2))) {
        reporter_.Report(Rule::kEncoding, 0);
        return true;
    }
    if (source_.Original().size() < text_.size()) {
        reporter_.Report(Rule::kNul, source_.Original().size());
    }
    const char* const begin = source_.Copy();
    if (const char* const place =
            SVGLoom::xml::FindTooDeep(begin, begin + source_.Original().size())) {
        reporter_.Report(Rule::kNesting, source_.OffsetOf(place),
                         std::to_string(SVGLoom::xml::kMaxDepth));
        return true;
    }
    return false;
}

void Checker::CheckRoot(const XMLNode& root)
{
    const std::string_view name = root.GetName();
    if (name != "svg") {
        reporter_.Report(Rule::kRoot, OffsetOf(name.data(), 1) - 1, "\"" + Shown(name) + "\"");
        return;
    }
    if (const std::unique_ptr<XMLNode> second = root.GetNextSibling()) {
        reporter_.Report(Rule::kSecondRoot, OffsetOf(second->GetName(), 1) - 1);
    }
    if (const std::optional<Scope> scope = Enter(root, {}, /*isRoot=*/true)) {
        CheckChildren(root, *scope);
    }
}

void Checker::CheckChildren(const XMLNode& node, const Scope& scope)
{
    for (std::unique_ptr<XMLNode> child = node.GetFirstChild(); child != nullptr;
         child = child->GetNextSibling()) {
        // All that an element needs of the stack is given back before its children come.
        if (const std::optional<Scope> inner = Enter(*child, scope, /*isRoot=*/false)) {
            CheckChildren(*child, *inner);
        }
    }
}

Element Checker::Read(const XMLNode& node, const Scope& scope)
{
    const std::string_view name = node.GetName();
    Element element{node, name,        OffsetOf(name.data(), 1) - 1, AllAttributes(node),
                    {},   scope.matrix};
    element.style.inherited = scope.style;
    return element;
}

[[gnu::noinline]] std::optional<Scope> Checker::Enter(const XMLNode& node, const Scope& scope,
                                                      bool isRoot)
{
    Element element = Read(node, scope);
    const std::string_view name = element.name;
    const bool isShape = SVGLoom::IsShape(name);
    if (!isRoot && (!SVGLoom::ElementParser::Knows(name) || name == "image")) {
        CheckUnread(element);
        return std::nullopt;
    }
    CheckNames(element);
    if (isRoot) {
        CheckViewBox(element);
    }
    const bool isDrawn = isShape || name == "g" || name == "use";
    CheckStyles(element, isRoot ? Block::kRoot : isDrawn ? Block::kApplied : Block::kNotDrawn);
    CheckLengths(element);
    if (isRoot) {
        if (element.Known().Has(AttributeName::kTransform)) {
            reporter_.Report(Rule::kTransformRoot,
                             Value(element, AttributeName::kTransform).OffsetAt(0));
        }
        return CheckGroup(element, scope, References::kNone, /*isSymbol=*/false);
    }
    if (isShape) {
        CheckTransform(element);
        CheckShape(element, scope);
    } else if (name == "g") {
        CheckTransform(element);
        return CheckGroup(element, scope, scope.node, /*isSymbol=*/false);
    } else if (name == "defs") {
        return CheckGroup(element, scope, References::kNone, /*isSymbol=*/false);
    } else if (name == "symbol") {
        CheckTransform(element);
        CheckSymbol(element);
        return CheckGroup(element, scope, References::kNone, /*isSymbol=*/true);
    } else if (name == "use") {
        CheckTransform(element);
        CheckUse(element, scope);
    } else if (name == "linearGradient" || name == "radialGradient") {
        CheckGradient(element);
    } else if (name == "clipPath") {
        CheckClip(element);
    } else if (name == "style") {
        CheckStyleElement(element);
    }
    return std::nullopt;
}

void Checker::CheckViewBox(const Element& root)
{
    for (const NamedValue& each : root.attributes.All()) {
        constexpr std::string_view kPrefix = "xmlns:";
        if (each.value == kNamespace && each.name.starts_with(kPrefix)) {
            prefixes_[each.name.substr(kPrefix.size())] = true;
        }
    }
    const Attributes& known = root.Known();
    const std::string_view text = known.Text(AttributeName::kViewBox);
    const std::size_t offset = known.Has(AttributeName::kViewBox)
                                   ? Value(root, AttributeName::kViewBox).OffsetAt(0)
                                   : root.offset;
    std::vector<float> numbers;
    const bool isRead =
        known.Has(AttributeName::kViewBox) && SVGStringParser::ParseNumberList(text, numbers);
    if (known.Has(AttributeName::kViewBox) && numbers.size() != 4) {
        reporter_.Report(Rule::kViewBoxInvalid, offset, Shown(text));
    }
    if (isRead && numbers.size() == 4) {
        viewBox_ = {numbers[0], numbers[1], numbers[2], numbers[3]};
    } else if (!isRead) {
        const SVGLoom::Rect before = viewBox_;
        const SVGLoom::LengthReader lengths(before);
        lengths.Read(known, AttributeName::kX, viewBox_.x);
        lengths.Read(known, AttributeName::kY, viewBox_.y);
        bool isSized = true;
        for (const AttributeName name : {AttributeName::kWidth, AttributeName::kHeight}) {
            float& side = name == AttributeName::kWidth ? viewBox_.width : viewBox_.height;
            isSized = lengths.Read(known, name, side) &&
                      known.Text(name).find('%') == std::string_view::npos && isSized;
        }
        if (!isSized) {
            reporter_.Report(Rule::kViewBoxMissing, root.offset, SizeText(viewBox_));
        }
    }
    if (isRead && numbers.size() == 4) {
        CheckSizeRatio(root);
    }
    if (viewBox_.width == 0 && viewBox_.height == 0) {
        reporter_.Report(Rule::kViewBoxEmpty, offset, SizeText(viewBox_));
    } else if (viewBox_.width <= 0 || viewBox_.height <= 0) {
        reporter_.Report(Rule::kNegativeSize, offset, "viewBox", SizeText(viewBox_));
    }
    const std::string_view ratio = known.Text(AttributeName::kPreserveAspectRatio);
    const std::vector<std::string_view> words = SVGStringParser::SplitWords(ratio);
    if (!words.empty() && (words[0] != "xMinYMin" || (words.size() > 1 && words[1] == "slice"))) {
        reporter_.Report(Rule::kPreserveAspectRatio,
                         Value(root, AttributeName::kPreserveAspectRatio).OffsetAt(0),
                         Shown(ratio));
    }
}

void Checker::CheckSizeRatio(const Element& root)
{
    constexpr float kSeen = 0.01f;
    float width = 0;
    float height = 0;
    const SVGLoom::LengthReader lengths(viewBox_);
    if (!lengths.Read(root.Known(), AttributeName::kWidth, width) ||
        !lengths.Read(root.Known(), AttributeName::kHeight, height)) {
        return;
    }
    const float a = width * viewBox_.height;
    const float b = height * viewBox_.width;
    if (std::abs(a - b) > kSeen * std::max(std::abs(a), std::abs(b))) {
        reporter_.Report(Rule::kSizeRatio, Value(root, AttributeName::kWidth).OffsetAt(0));
    }
}

void Checker::CheckNames(const Element& element)
{
    Attributes seen;
    for (const NamedValue& each : element.attributes.All()) {
        const std::size_t offset = OffsetOf(each.name.data(), element.offset);
        const AttributeName known = SVGLoom::FindAttribute(each.name);
        if (known == AttributeName::kUnknown) {
            if (each.name.find(':') != std::string_view::npos) {
                continue;
            }
            const UnreadName unread = LookUpAttribute(each.name, each.value);
            if (unread.loss == Loss::kEffect) {
                reporter_.Report(Rule::kAttributeUnread, offset, Shown(each.name), unread.advice);
            } else if (unread.loss == Loss::kUnknown) {
                reporter_.Report(Rule::kAttributeUnknown, offset, Shown(each.name));
            }
            continue;
        }
        if (seen.Has(known)) {
            reporter_.Report(Rule::kAttributeTwice, offset, each.name);
        }
        seen.VisitAttribute(each.name, each.value);
        const std::string_view entity = UntranslatedEntity(each.value);
        if (!entity.empty()) {
            reporter_.Report(Rule::kEntity, Value(element, each.value).OffsetOf(entity.data()),
                             Shown(entity));
        }
    }
}

void Checker::CheckStyles(Element& element, Block kind)
{
    const Attributes& known = element.Known();
    const auto skips = [kind](AttributeName property) {
        // What is never drawn by itself is hidden without harm.
        return kind == Block::kNotDrawn &&
               (property == AttributeName::kDisplay || property == AttributeName::kVisibility);
    };
    known.ForEachProperty([&](AttributeName property, std::string_view text) {
        if (!skips(property)) {
            const SourceValue value = Value(element, text);
            CheckProperty(property, text, value, reporter_);
            styles_.Apply(property, text, value, element.style);
        }
    });
    StyleTexts declared{};
    if (known.Has(AttributeName::kStyle)) {
        const SourceValue value = Value(element, AttributeName::kStyle);
        if (CheckStyleAttribute(value, kind, reporter_)) {
            SVGLoom::ParseDeclarations(value.Text())
                .ForEach([&](AttributeName property, std::string_view text) {
                    declared[static_cast<std::size_t>(property)] = text;
                    if (!skips(property)) {
                        styles_.Apply(property, text, value, element.style);
                    }
                });
        }
    }
    if (known.Has(AttributeName::kClass)) {
        CheckClassRules(element, declared);
    }
}

void Checker::CheckClassRules(Element& element, const StyleTexts& declared)
{
    struct Winner {
        std::string_view text;
        std::size_t order = 0;
    };
    std::array<Winner, SVGLoom::kPropertyCount> winners;
    const SourceValue value = Value(element, AttributeName::kClass);
    for (const std::string_view name : SVGStringParser::SplitWords(value.Text())) {
        classes_.used[name] = true;
        const FixedPlace place(value.OffsetOf(name.data()));
        const std::size_t* const order = classes_.order.Find(name);
        for (const SVGLoom::PropertyText& each : sheet_.FindClass(name)) {
            const auto tell = [&](Rule rule) {
                reporter_.Report(rule, place.OffsetOf(nullptr), SVGLoom::TextOf(each.property),
                                 Shown(name));
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
            styles_.Apply(each.property, each.text, place, element.style);
        }
    }
}

void Checker::CheckLengths(const Element& element)
{
    for (const LengthRow& row : kLengths) {
        if (row.element != element.name || !element.Known().Has(row.name)) {
            continue;
        }
        const SourceValue value = Value(element, row.name);
        float length = 0;
        constexpr float kAnyReference = 100;
        if (CheckLength(row.name, value.Text(), kAnyReference, value, reporter_, length) &&
            row.isSize && length < 0) {
            reporter_.Report(Rule::kNegativeSize, value.OffsetAt(0), SVGLoom::TextOf(row.name),
                             Shown(value.Text()));
        }
    }
}

void Checker::CheckTransform(Element& element)
{
    if (!element.Known().Has(AttributeName::kTransform)) {
        return;
    }
    CheckedTransform transform;
    CheckTransformText(AttributeName::kTransform, element.Known().Text(AttributeName::kTransform),
                       element.offset, transform);
    const kivui::scrivel::Matrix& own = transform.Engine();
    const kivui::scrivel::Matrix& outer = element.matrix;
    SVGLoom::ScrivelSVGTransform whole(outer.a, outer.b, outer.c, outer.d, outer.e, outer.f);
    whole.Concat(own.a, own.b, own.c, own.d, own.e, own.f);
    element.matrix = whole.Matrix();
}

void Checker::CheckTransformText(AttributeName name, std::string_view text, std::size_t offset,
                                 CheckedTransform& transform)
{
    const SourceValue value(source_, text, offset);
    const char* current = text.data();
    const char* const end = current + text.size();
    if (!SVGStringParser::ParseTransform(current, end, transform)) {
        const std::string rest = Shown({current, static_cast<std::size_t>(end - current)});
        reporter_.Report(Rule::kTransformInvalid, value.OffsetOf(current), SVGLoom::TextOf(name),
                         rest);
        transform.SetMatrix(1, 0, 0, 1, 0, 0);
    } else if (transform.Differs()) {
        reporter_.Report(Rule::kTransformOrder, value.OffsetAt(0),
                         Assigned(SVGLoom::TextOf(name), text), transform.Meant());
    }
}

/// An element that the engine does not look into, but whose styles it resolves.
void Checker::CheckUnread(const Element& element)
{
    const std::size_t colon = element.name.find(':');
    if (colon == std::string_view::npos) {
        const UnreadName unread = LookUpElement(element.name);
        if (unread.loss == Loss::kUnknown) {
            reporter_.Report(Rule::kElementUnknown, element.offset, Shown(element.name));
        } else if (unread.loss != Loss::kNothing &&
                   (unread.loss != Loss::kDefinition || IsReferred(element.Id()))) {
            reporter_.Report(
                unread.loss == Loss::kElement ? Rule::kElementUnsupported : Rule::kElementIgnored,
                element.offset, element.name, unread.advice);
        }
    } else {
        const std::string_view local = element.name.substr(colon + 1);
        if (prefixes_.Find(element.name.substr(0, colon)) != nullptr && IsElementOfSVG(local)) {
            reporter_.Report(Rule::kElementPrefix, element.offset, Shown(element.name), local);
        }
    }
    const QuietWhile quiet(reporter_);
    for (const AttributeName name : {AttributeName::kClipPath, AttributeName::kStyle}) {
        if (!element.Known().Has(name)) {
            continue;
        }
        const SourceValue value = Value(element, name);
        if (name == AttributeName::kStyle) {
            CheckStyleAttribute(value, Block::kNotDrawn, reporter_);
        } else {
            CheckProperty(name, value.Text(), value, reporter_);
        }
    }
}

/// Whether an url() of the file leads to the id.
bool Checker::IsReferred(std::string_view id)
{
    constexpr std::string_view kBegin = "url(#";
    constexpr std::size_t kLongest = 256;  // so that the time stays linear
    if (!referred_.has_value()) {
        referred_.emplace();
        const std::string_view text = source_.Original();
        for (std::size_t at = text.find(kBegin); at != std::string_view::npos;
             at = text.find(kBegin, at)) {
            at += kBegin.size();
            const std::string_view rest = text.substr(at, kLongest);
            (*referred_)[rest.substr(0, rest.find_first_of(")\"'<>"))] = true;
        }
    }
    return !id.empty() && referred_->Find(id) != nullptr;
}

void Checker::CheckId(const Element& element, std::string_view effect)
{
    if (!element.Id().empty() && !ids_.Add(element.Id()).second) {
        reporter_.Report(Rule::kIdDuplicate, Value(element, AttributeName::kId).OffsetAt(0),
                         Shown(element.Id()), effect);
    }
}

void Checker::CheckShape(const Element& element, const Scope& scope)
{
    CheckId(element, "the first one counts");
    const std::shared_ptr<CheckedPath> path = CheckOutline(element);
    if (path == nullptr) {
        return;
    }
    CheckOpacity(element, scope, *path);
    const ElementStyle& style = element.style;
    const bool fillsGradient =
        style.inherited.hasFill && style.inherited.fill == PaintKind::kGradient;
    if (fillsGradient) {
        gradients_.TellUse(style.inherited.fillGradient, viewBox_);
        if (style.inherited.fillOpacity < 1 || style.IsTranslucent()) {
            reporter_.Report(Rule::kGradientOpacity, element.offset);
        }
    }
    if (style.inherited.hasStroke && style.inherited.stroke == PaintKind::kGradient) {
        reporter_.Report(Rule::kGradientStroke, element.offset);
    }
    if (element.Id().empty()) {
        references_.AddShape(scope.node, style.Taken(), fillsGradient);
        return;
    }
    References::Entry entry;
    entry.parent = scope.node;
    entry.offset = element.offset;
    entry.texts = scope.style.texts;
    entry.taken = style.Taken();
    entry.fillsGradient = fillsGradient;
    references_.Add(entry, element.Id());
}

/// Where opacities count one by one.
void Checker::CheckOpacity(const Element& element, const Scope& scope, const CheckedPath& path)
{
    const InheritedStyle& style = element.style.inherited;
    if (style.hasFill && style.hasStroke && element.style.IsTranslucent()) {
        reporter_.Report(Rule::kOpacityOverlap, element.offset, "fill and stroke");
    }
    TranslucentGroup* const group = scope.translucent.get();
    if (group == nullptr || group->isTold || element.style.hasClip ||
        (!style.hasFill && !style.hasStroke)) {
        return;
    }
    const Box box = path.Covered().Mapped(element.matrix);
    if (std::ranges::any_of(group->boxes, [&box](const Box& each) { return each.Overlaps(box); })) {
        group->isTold = true;
        reporter_.Report(Rule::kOpacityOverlap, group->offset, "the shapes of the group");
    } else if (group->boxes.size() < TranslucentGroup::kMaxBoxes) {
        group->boxes.push_back(box);
    }
}

std::shared_ptr<CheckedPath> Checker::CheckOutline(const Element& element)
{
    if (element.name == "path") {
        return CheckPathData(element);
    }
    CheckPoints(element);
    // The renderer makes no other paths.
    const std::shared_ptr<SVGLoom::Path> built =
        SVGLoom::BuildShape(element.name, element.Known(), viewBox_, renderer_);
    const auto path = std::static_pointer_cast<CheckedPath>(built);
    // The corners are up to a twentieth of their radius away.
    constexpr float kCornerPart = 1.0f / 20;
    if (path != nullptr && IsSeen(element, kCornerPart * path->CornerRadius())) {
        reporter_.Report(Rule::kRoundedRect, element.offset);
    }
    if (path == nullptr && !(element.name.starts_with("poly") &&
                             !WithoutSpace(element.Known().Text(AttributeName::kPoints)).empty())) {
        reporter_.Report(Rule::kShapeEmpty, element.offset, element.name, WhyEmpty(element.name));
    }
    return path;
}

std::shared_ptr<CheckedPath> Checker::CheckPathData(const Element& element)
{
    const std::string_view text = element.Known().Text(AttributeName::kD);
    if (WithoutSpace(text).empty()) {
        reporter_.Report(Rule::kShapeEmpty, element.offset, element.name, WhyEmpty(element.name));
        return std::make_shared<CheckedPath>();  // the engine has an element for it
    }
    const SourceValue value = Value(element, text);
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
        reporter_.Report(Rule::kPathCommand, value.OffsetOf(unknown), Shown({unknown, 1}),
                         *unknown == '+' ? ": leave it out" : "");
    }
    // Behind an unknown command the end comes early by itself.
    const char* const stopped = notes.PlaceOf(PathNote::kStopped);
    if (stopped != nullptr && (stopped != end || unknown == nullptr)) {
        reporter_.Report(Rule::kPathStopped, value.OffsetOf(stopped),
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
            reporter_.Report(row.rule, value.OffsetOf(place));
        }
    }
    if (IsSeen(element, notes.QuadraticDistance())) {
        reporter_.Report(Rule::kPathQuadratic, value.OffsetOf(notes.PlaceOf(PathNote::kQuadratic)));
    }
    if (!path->IsFinite()) {
        reporter_.Report(Rule::kPathNotFinite, value.OffsetAt(0),
                         "write lines for arcs with a radius of 0, and leave out arcs that end "
                         "where they begin");
    }
    return path;
}

bool Checker::IsSeen(const Element& element, float distance) const
{
    constexpr float kSeen = 1e-3f;  // of the whole
    const kivui::scrivel::Matrix& matrix = element.matrix;
    const float scale = std::sqrt(std::abs(matrix.a * matrix.d - matrix.b * matrix.c));
    return distance * scale > kSeen * std::max(viewBox_.width, viewBox_.height);
}

void Checker::CheckPoints(const Element& element)
{
    if (!element.name.starts_with("poly")) {
        return;
    }
    const SourceValue value = Value(element, AttributeName::kPoints);
    std::vector<float> numbers;
    const bool isRead = SVGStringParser::ParseNumberList(value.Text(), numbers);
    if (!isRead || numbers.size() == 1) {
        reporter_.Report(Rule::kPointsInvalid, value.OffsetAt(0), Shown(value.Text()));
    } else if (numbers.size() % 2 != 0) {
        reporter_.Report(Rule::kPointsOdd, value.OffsetAt(0));
    }
}

std::optional<Scope> Checker::CheckGroup(const Element& element, const Scope& scope,
                                         References::Index parent, bool isSymbol)
{
    // An id of "defs" leads nowhere.
    const bool hasId = element.name != "defs";
    CheckId(element, "the first one counts");
    References::Entry entry;
    entry.parent = parent;
    entry.offset = element.offset;
    entry.texts = scope.style.texts;
    entry.own = isSymbol ? 0 : element.style.set;
    entry.isSymbol = isSymbol;
    Scope inner;
    inner.node = references_.Add(entry, hasId ? element.Id() : std::string_view());
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

void Checker::CheckUse(const Element& element, const Scope& scope)
{
    CheckId(element, "the first one counts");
    const std::string_view href = element.Known().Href();
    if (!href.starts_with('#')) {
        const std::size_t offset =
            element.Known().HasHref() ? Value(element, href).OffsetAt(0) : element.offset;
        reporter_.Report(Rule::kUseHref, offset, Shown(href));
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
    references_.Add(entry, element.Id());
}

void Checker::CheckSymbol(const Element& element)
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
        reporter_.Report(Rule::kSymbolStyle, element.offset, names);
    }
    if (!element.Known().Has(AttributeName::kViewBox)) {
        return;
    }
    const SourceValue value = Value(element, AttributeName::kViewBox);
    std::vector<float> numbers;
    SVGStringParser::ParseNumberList(value.Text(), numbers);
    if (numbers.size() < 4) {
        reporter_.Report(Rule::kViewBoxInvalid, value.OffsetAt(0), Shown(value.Text()));
        return;
    }
    const SVGLoom::Rect box{numbers[0], numbers[1], numbers[2], numbers[3]};
    if (box != viewBox_) {
        reporter_.Report(Rule::kSymbolViewBox, value.OffsetAt(0));
    }
    viewBox_ = box;
}

void Checker::CheckGradient(const Element& element)
{
    CheckId(element, "the first one counts");
    const Attributes& known = element.Known();
    CheckedGradient gradient;
    if (known.HasHref()) {
        const std::string_view href = known.Href();
        const std::size_t offset = Value(element, href).OffsetAt(0);
        if (href.empty()) {
            reporter_.Report(Rule::kGradientHrefEmpty, offset);
        } else {
            if (href[0] != '#') {
                reporter_.Report(Rule::kGradientHrefForm, offset, Shown(href));
            }
            if (const CheckedGradient* const base = gradients_.Find(href.substr(1))) {
                gradient = *base;
                gradient.isTold = false;
            } else {
                reporter_.Report(Rule::kGradientHrefUnknown, offset, Shown(href.substr(1)));
            }
        }
    }
    gradient.offset = element.offset;
    const std::size_t inherited = gradient.stops;
    CheckStops(element, gradient);
    if (inherited > 0 && gradient.stops > inherited) {
        reporter_.Report(Rule::kGradientStopsAdded, element.offset, Shown(known.Href().substr(1)));
    }
    gradient.type = element.name == "linearGradient" ? SVGLoom::GradientType::kLinear
                                                     : SVGLoom::GradientType::kRadial;
    const SVGLoom::LengthReader lengths(viewBox_);
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
    const SourceValue spread = Value(element, AttributeName::kSpreadMethod);
    if (spread.Text() == "reflect" || spread.Text() == "repeat") {
        gradient.spread = spread.Text();
    } else if (spread.Text() == "pad") {
        if (!gradient.spread.empty()) {
            reporter_.Report(Rule::kKeywordDefault, spread.OffsetAt(0), "spreadMethod", "pad");
        }
    } else if (known.Has(AttributeName::kSpreadMethod)) {
        reporter_.Report(Rule::kKeywordInvalid, spread.OffsetAt(0), "spreadMethod",
                         Shown(spread.Text()));
    }
    if (known.Has(AttributeName::kGradientTransform)) {
        CheckedTransform transform;
        CheckTransformText(AttributeName::kGradientTransform,
                           known.Text(AttributeName::kGradientTransform), element.offset,
                           transform);
        const kivui::scrivel::Matrix& matrix = transform.Engine();
        gradient.matrix = {matrix.a, matrix.b, matrix.c, matrix.d};
    }
    gradients_.Add(element.Id(), gradient);
}

void Checker::CheckStops(const Element& element, CheckedGradient& gradient)
{
    Scope scope;
    scope.style = element.style.inherited;
    for (std::unique_ptr<XMLNode> child = element.node.GetFirstChild(); child != nullptr;
         child = child->GetNextSibling()) {
        if (std::string_view(child->GetName()) != "stop") {
            continue;
        }
        Element stop = Read(*child, scope);
        CheckNames(stop);
        CheckStyles(stop, Block::kNotDrawn);
        float offset = gradient.stops > 0 ? gradient.lastOffset : 0;
        if (stop.Known().Has(AttributeName::kOffset)) {
            const SourceValue value = Value(stop, AttributeName::kOffset);
            CheckNumber("offset", value.Text(), value, reporter_);
            SVGStringParser::ParseNumber(value.Text(), offset);
        }
        offset = std::clamp(std::max(offset, gradient.lastOffset), 0.0f, 1.0f);
        gradient.firstOffset = gradient.stops == 0 ? offset : gradient.firstOffset;
        gradient.lastOffset = offset;
        ++gradient.stops;
    }
}

void Checker::CheckClip(const Element& element)
{
    if (!element.Known().Has(AttributeName::kId)) {
        return;
    }
    CheckId(element, "of clip paths the last one counts");
    const auto tellClipped = [this](const Element& clipped) {
        if ((clipped.style.set & BitOf(AttributeName::kClipPath)) != 0) {
            reporter_.Report(Rule::kClipPathClipped, clipped.offset);
        }
    };
    tellClipped(element);
    const std::string_view units = element.attributes.Find("clipPathUnits");
    if (!units.empty() && units != "userSpaceOnUse") {
        reporter_.Report(Rule::kClipPathUnits, OffsetOf(units.data(), element.offset));
    }
    if (element.Known().Has(AttributeName::kTransform)) {
        reporter_.Report(Rule::kAttributeUnread,
                         Value(element, AttributeName::kTransform).OffsetAt(0), "transform",
                         "put it on the shape in the clip path");
    }
    Scope scope;
    scope.style = element.style.inherited;
    bool hasContent = false;
    for (std::unique_ptr<XMLNode> child = element.node.GetFirstChild(); child != nullptr;
         child = child->GetNextSibling()) {
        Element shape = Read(*child, scope);
        if (!hasContent && SVGLoom::IsShape(shape.name)) {
            CheckNames(shape);
            CheckLengths(shape);
            hasContent = CheckOutline(shape) != nullptr;
            if (hasContent) {
                CheckStyles(shape, Block::kNotDrawn);
                CheckTransform(shape);
                tellClipped(shape);
            }
        } else if (SVGLoom::ElementParser::Knows(shape.name) ||
                   LookUpElement(shape.name).loss == Loss::kElement) {
            reporter_.Report(Rule::kClipPathChild, shape.offset, shape.name);
        }
    }
    clipPaths_[element.Id()] = hasContent;
}

std::size_t Checker::EndOfTag(const Element& element) const
{
    std::size_t offset = element.offset;
    if (!element.attributes.All().empty()) {
        const std::string_view last = element.attributes.All().back().value;
        offset = Value(element, last).OffsetAt(last.size());
    }
    const std::string_view text = source_.Original();
    return std::min(text.find('>', std::min(offset, text.size())), text.size() - 1) + 1;
}

void Checker::CheckStyleElement(const Element& element)
{
    const std::string_view media = element.attributes.Find("media");
    if (!media.empty() && media != "all" && media != "screen") {
        reporter_.Report(Rule::kStyleMedia, OffsetOf(media.data(), element.offset), Shown(media));
    }
    const std::string_view text = element.node.GetValue();
    const SourceValue value = Value(element, text);
    const std::size_t end =
        source_.Holds(text.data()) ? value.OffsetAt(text.size()) : EndOfTag(element);
    // Behind the one piece that is read, the element ends.
    std::string_view behind = source_.Original().substr(end);
    constexpr std::string_view kSectionEnd = "]]>";
    if (behind.starts_with(kSectionEnd)) {
        behind.remove_prefix(kSectionEnd.size());
        behind.remove_prefix(std::min(behind.find_first_not_of(" \t\r\n"), behind.size()));
    }
    if (!text.empty() ? !behind.starts_with("</") : behind.starts_with("<!")) {
        reporter_.Report(Rule::kStyleSplit, end);
    }
    if (!CheckStyleSheet(value, classes_, reporter_)) {
        return;
    }
    sheet_.Add(text);
}

}  // namespace

std::vector<ArtworkFinding> CheckArtwork(std::string_view text)
{
    return Checker(text).Run();
}

}  // namespace svgloom
