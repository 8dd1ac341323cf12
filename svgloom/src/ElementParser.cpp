#include "svgloom/src/ElementParser.h"

#include <kivcore/NeverDestroyed.h>
#include <kivcore/Trace.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "svgloom/src/ImageElement.h"
#include "svgloom/src/SVGStringParser.h"

namespace SVGLoom {

namespace {

constinit kivcore::debug::TraceSite limitSite("SVGLoom.Parse", 6);

constexpr std::string_view kRootName = "svg";

/// Moves `node` over its children, calls use() at each until it returns false, and moves it back.
template <class Use>
void ForEachChild(xml::XMLNode& node, const Use& use)
{
    if (!node.MoveToFirstChild()) {
        return;
    }
    while (use() && node.MoveToNextSibling()) {
    }
    node.MoveToParent();
}

}  // namespace

// By name, from the first behind the shapes.
constexpr ElementParser::ActionRow ElementParser::kActions[] = {
    {ElementName::kG, &ElementParser::ParseGroup},
    {ElementName::kUse, &ElementParser::ParseUse},
    {ElementName::kDefs, &ElementParser::ParseDefs},
    {ElementName::kLinearGradient, &ElementParser::ParseGradient},
    {ElementName::kRadialGradient, &ElementParser::ParseGradient},
    {ElementName::kClipPath, &ElementParser::ParseClipPath},
    {ElementName::kSymbol, &ElementParser::ParseSymbol},
    {ElementName::kImage, &ElementParser::ParseImage},
    {ElementName::kStyle, &ElementParser::ParseStyle},
    {ElementName::kStop, &ElementParser::ParseNothing},
};

constexpr bool ElementParser::AreActionsInOrder()
{
    for (std::size_t i = 0; i < std::size(kActions); ++i) {
        if (static_cast<std::size_t>(kActions[i].name) != kShapeCount + i) {
            return false;
        }
    }
    return true;
}

bool ElementParser::Knows(std::string_view name)
{
    const ElementName known = FindElement(name);
    return known != ElementName::kUnknown && known != ElementName::kStop;
}

void ElementParser::ParseRoot(xml::XMLNode& root)
{
    static_assert(AreActionsInOrder());
    if (root.Name() == kRootName) {
        ParseElement(root, {{}, {}, &document_.root_, nullptr}, /*isRoot=*/true);
    }
}

void ElementParser::ReadViewBox(const Attributes& attributes)
{
    float numbers[4];
    std::size_t count = 0;
    if (attributes.Has(AttributeName::kViewBox) &&
        SVGStringParser::ParseNumberList(attributes.Text(AttributeName::kViewBox), numbers,
                                         count)) {
        // Any other count changes nothing, and the size of the element does not count then.
        if (count == 4) {
            document_.viewBox_ = {numbers[0], numbers[1], numbers[2], numbers[3]};
        }
        return;
    }
    const Rect before = document_.viewBox_;
    const LengthReader lengths(before);
    lengths.Read(attributes, AttributeName::kX, document_.viewBox_.x);
    lengths.Read(attributes, AttributeName::kY, document_.viewBox_.y);
    lengths.Read(attributes, AttributeName::kWidth, document_.viewBox_.width);
    lengths.Read(attributes, AttributeName::kHeight, document_.viewBox_.height);
}

void ElementParser::ParseElement(xml::XMLNode& node, const Scope& scope, bool isRoot)
{
    // All that an element needs of the stack is given back before its children come.
    const Inner inner = EnterElement(node, scope, isRoot);
    if (!inner.has_value()) {
        return;
    }
    ForEachChild(node, [this, &node, &inner] {
        ParseElement(node, *inner, /*isRoot=*/false);
        return true;
    });
}

[[gnu::noinline]] ElementParser::Inner ElementParser::EnterElement(xml::XMLNode& node,
                                                                   const Scope& scope, bool isRoot)
{
    Parsed element(node, scope);
    if (isRoot) {
        ReadViewBox(element.attributes);
    }
    ResolveStylesOf(element, isRoot);
    if (isRoot) {
        return ParseGroup(element);
    }
    if (element.name == ElementName::kUnknown) {
        return std::nullopt;
    }
    if (!IsShape(element.name)) {
        const auto index = static_cast<std::size_t>(element.name) - kShapeCount;
        return (this->*kActions[index].act)(element);
    }
    if (std::unique_ptr<Path> path = BuildShape(element.name, element.attributes,
                                                document_.viewBox_, *document_.renderer_)) {
        document_.Add(*scope.group,
                      std::make_shared<SVGDocumentImpl::Graphic>(
                          element.graphic, std::move(element.classes), std::move(element.fill),
                          std::move(element.stroke), std::move(path)),
                      element.Id());
        return std::nullopt;
    }
    return std::nullopt;
}

void ElementParser::ResolveStylesOf(Parsed& element, bool isRoot)
{
    element.classes = ResolveStyles(element.attributes, sheet_, Sources(),
                                    {element.graphic, element.fill, element.stroke});
    if (!isRoot && element.attributes.Has(AttributeName::kTransform)) {
        element.graphic.transform =
            ParseTransform(element.attributes.Text(AttributeName::kTransform));
    }
}

std::shared_ptr<Transform> ElementParser::ParseTransform(std::string_view text) const
{
    std::shared_ptr<Transform> transform =
        Created(document_.renderer_->CreateTransform(1, 0, 0, 1, 0, 0));
    const char* current = text.data();
    if (!SVGStringParser::ParseTransform(current, current + text.size(), *transform)) {
        transform.reset();
    }
    return transform;
}

ElementParser::Inner ElementParser::ParseGroup(Parsed& element)
{
    auto group = std::make_shared<Group>(element.graphic, std::move(element.classes));
    Group* const receiver = group.get();
    document_.Add(*element.outer.group, std::move(group), element.Id());
    return Scope{std::move(element.fill), std::move(element.stroke), receiver, nullptr};
}

ElementParser::Inner ElementParser::ParseDefs(Parsed& element)
{
    // Goes when its children have been parsed; those with an id stay.
    auto group = std::make_shared<Group>(element.graphic, std::move(element.classes));
    Group* const receiver = group.get();
    return Scope{std::move(element.fill), std::move(element.stroke), receiver, std::move(group)};
}

ElementParser::Inner ElementParser::ParseSymbol(Parsed& element)
{
    if (element.attributes.Has(AttributeName::kViewBox)) {
        float numbers[4];
        std::size_t count = 0;
        SVGStringParser::ParseNumberList(element.attributes.Text(AttributeName::kViewBox), numbers,
                                         count);
        if (count == 4) {
            element.graphic.transform =
                Created(document_.renderer_->CreateTransform(1, 0, 0, 1, -numbers[0], -numbers[1]));
        }
        // The document's own viewBox is replaced, on purpose: with it the scale of the whole
        // drawing changes.
        if (count >= 4) {
            document_.viewBox_ = {numbers[0], numbers[1], numbers[2], numbers[3]};
        }
    }
    // A symbol's group receives itself, not its surroundings: only an id leads to it. The document
    // undoes that when it goes.
    auto group = std::make_shared<Group>(element.graphic, std::move(element.classes));
    document_.symbols_.push_back(nullptr);
    document_.Add(*group, group, element.Id());
    document_.symbols_.back() = group.get();
    // The children's styles are those around the symbol, not its own.
    return Scope{element.outer.fill, element.outer.stroke, group.get(), nullptr};
}

ElementParser::Inner ElementParser::ParseUse(Parsed& element)
{
    const std::string_view href = element.attributes.Href();
    if (!href.starts_with('#')) {
        return std::nullopt;
    }
    const float x = Lengths().Get(element.attributes, AttributeName::kX, 0);
    const float y = Lengths().Get(element.attributes, AttributeName::kY, 0);
    if (!IsTiny(x) || !IsTiny(y)) {
        if (element.graphic.transform == nullptr) {
            element.graphic.transform =
                Created(document_.renderer_->CreateTransform(1, 0, 0, 1, 0, 0));
        }
        element.graphic.transform->Concat(1, 0, 0, 1, x, y);
    }
    document_.Add(*element.outer.group,
                  std::make_shared<SVGDocumentImpl::Reference>(
                      element.graphic, std::move(element.classes), std::move(element.fill),
                      std::move(element.stroke), std::string(href.substr(1))),
                  element.Id());
    return std::nullopt;
}

ElementParser::Inner ElementParser::ParseImage(Parsed& element)
{
    std::optional<PlacedImage> image =
        BuildImage(element.attributes, document_.viewBox_, *document_.renderer_);
    if (image.has_value()) {
        document_.Add(*element.outer.group,
                      std::make_shared<SVGDocumentImpl::Image>(
                          element.graphic, std::move(element.classes), std::move(image->data),
                          image->clipArea, image->fillArea),
                      element.Id());
    }
    return std::nullopt;
}

ElementParser::Inner ElementParser::ParseStyle(Parsed& element)
{
    sheet_.Add(element.node.GetValue());
    return std::nullopt;
}

ElementParser::Inner ElementParser::ParseClipPath(Parsed& element)
{
    if (!element.attributes.Has(AttributeName::kId)) {
        return std::nullopt;
    }
    const Scope scope{std::move(element.fill), std::move(element.stroke), nullptr, nullptr};
    auto clip = std::make_shared<ClippingPath>();
    ForEachChild(element.node, [this, &element, &scope, &clip] {
        Parsed shape(element.node, scope);
        clip->path =
            BuildShape(shape.name, shape.attributes, document_.viewBox_, *document_.renderer_);
        if (clip->path == nullptr) {
            return true;
        }
        ResolveStylesOf(shape, /*isRoot=*/false);
        clip->hasClipContent = true;
        clip->clipRule = shape.fill->clipRule;
        clip->transform = std::move(shape.graphic.transform);
        return false;
    });
    clipPaths_[element.Id()] = std::move(clip);
    return std::nullopt;
}

ElementParser::Inner ElementParser::ParseGradient(Parsed& element)
{
    GradientDefinition definition;
    Gradient& gradient = definition.gradient;
    if (element.attributes.HasHref()) {
        const std::string_view href = element.attributes.Href();
        if (href.empty()) {
            throw std::out_of_range("invalid string position");
        }
        // Only what stands before is known. The first character is dropped, "#" or not.
        if (const GradientDefinition* const found = gradients_.Find(href.substr(1))) {
            definition = *found;
        }
    }
    AddStops(element, gradient);

    struct CoordinateRow {
        AttributeName name;
        float Gradient::*place;
    };
    static constexpr CoordinateRow kLinear[] = {{AttributeName::kX1, &Gradient::x1},
                                                {AttributeName::kY1, &Gradient::y1},
                                                {AttributeName::kX2, &Gradient::x2},
                                                {AttributeName::kY2, &Gradient::y2}};
    static constexpr CoordinateRow kRadial[] = {{AttributeName::kCx, &Gradient::cx},
                                                {AttributeName::kCy, &Gradient::cy},
                                                {AttributeName::kFx, &Gradient::fx},
                                                {AttributeName::kFy, &Gradient::fy},
                                                {AttributeName::kR, &Gradient::r}};
    const auto readCoordinates = [this, &element, &gradient](const auto& rows) {
        for (const CoordinateRow& row : rows) {
            Lengths().Read(element.attributes, row.name, gradient.*row.place);
        }
    };
    if (element.name == ElementName::kLinearGradient) {
        gradient.type = GradientType::kLinear;
        readCoordinates(kLinear);
    } else {
        gradient.type = GradientType::kRadial;
        readCoordinates(kRadial);
    }

    // "pad" sets nothing, on purpose: what was inherited stays.
    const std::string_view spread = element.attributes.Text(AttributeName::kSpreadMethod);
    if (spread == "reflect") {
        definition.spreadMethod = SpreadMethod::kReflect;
    } else if (spread == "repeat") {
        definition.spreadMethod = SpreadMethod::kRepeat;
    }
    if (element.attributes.Has(AttributeName::kGradientTransform)) {
        gradient.transform =
            ParseTransform(element.attributes.Text(AttributeName::kGradientTransform));
    }
    const auto [stored, isNew] = gradients_.Add(element.Id());
    if (isNew) {
        stored = std::move(definition);
    }
    return std::nullopt;
}

/// Appends the stops of a gradient element to those that it has taken over.
void ElementParser::AddStops(const Parsed& element, Gradient& gradient)
{
    const Scope scope{element.fill, element.stroke, nullptr, nullptr};
    bool isFirst = true;
    ForEachChild(element.node, [&] {
        if (FindElement(element.node.Name()) != ElementName::kStop) {
            return true;
        }
        if (std::exchange(isFirst, false)) {
            inheritedStops_ += gradient.stops.size();
            if (inheritedStops_ > kMaxInheritedStops) {
                limitSite.Report("too many inherited stops: gradients take over no more");
                gradient.stops.Clear();
            }
        }
        Parsed stop(element.node, scope);
        ResolveStylesOf(stop, /*isRoot=*/false);
        const float previous = gradient.stops.empty() ? 0 : gradient.stops.Last().offset;
        float offset = previous;
        SVGStringParser::ParseNumber(stop.attributes.Text(AttributeName::kOffset), offset);
        offset = std::max(offset, previous);
        offset = std::max(std::min(offset, 1.0f), 0.0f);
        // No variable has a colour yet.
        static kivcore::NeverDestroyed<ColorMap> noColors;
        Color color = ResolveColor(stop.graphic.stopColor,
                                   ResolveColor(stop.fill->color, *noColors), *noColors);
        color.alpha *= stop.graphic.stopOpacity;
        gradient.stops.Append({offset, color});
        return true;
    });
}

}  // namespace SVGLoom
