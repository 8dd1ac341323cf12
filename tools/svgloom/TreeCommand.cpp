// The parsed document as JSON, for looking at it.

#include "tools/common/Files.h"
#include "tools/common/Json.h"
#include "tools/svgloom/Artwork.h"
#include "tools/svgloom/Commands.h"
#include "tools/svgloom/JsonValues.h"

#include <exception>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <variant>
#include <vector>

namespace svgloom {

namespace {

using SVGLoom::SVGDocumentImpl;
using tools::JsonNumber;

using Element = SVGDocumentImpl::Element;
using Group = SVGDocumentImpl::Group;

// Calls visit(child) for the children of a group; of another element there are none. A symbol's
// group is a child of itself, which is left out.
template <class Visit>
void ForEachChild(const Element& element, Visit&& visit)
{
    if (element.Kind() != SVGDocumentImpl::ElementKind::kGroup)
        return;
    for (const std::shared_ptr<Element>& child : static_cast<const Group&>(element).children) {
        if (child.get() != &element)
            visit(*child);
    }
}

std::string JsonPathOf(const SVGLoom::Path* path)
{
    return path != nullptr ? JsonPath(static_cast<const SVGLoom::ScrivelSVGPath&>(*path)) : "null";
}

std::string JsonMatrixOf(const std::shared_ptr<SVGLoom::Transform>& transform)
{
    return transform != nullptr
               ? JsonMatrix(static_cast<const SVGLoom::ScrivelSVGTransform&>(*transform))
               : "null";
}

std::string JsonRect(const SVGLoom::Rect& rect)
{
    const float values[] = {rect.x, rect.y, rect.width, rect.height};
    return JsonNumbers(values);
}

std::string RuleOf(SVGLoom::FillRule rule)
{
    return rule == SVGLoom::FillRule::kEvenOdd ? "\"evenodd\"" : "\"nonzero\"";
}

std::string JsonGradient(const SVGLoom::Gradient& gradient)
{
    const bool isLinear = gradient.type == SVGLoom::GradientType::kLinear;
    const float line[] = {gradient.x1, gradient.y1, gradient.x2, gradient.y2};
    const float circle[] = {gradient.cx, gradient.cy, gradient.fx, gradient.fy, gradient.r};
    std::string text = isLinear ? "{\"kind\":\"linear\",\"line\":" + JsonNumbers(line)
                                : "{\"kind\":\"radial\",\"circle\":" + JsonNumbers(circle);
    text += ",\"stops\":[";
    bool isFirst = true;
    for (const SVGLoom::ColorStop& stop : gradient.stops) {
        text +=
            (isFirst ? "[" : ",[") + JsonNumber(stop.offset) + "," + JsonColor(stop.color) + "]";
        isFirst = false;
    }
    return text + "],\"transform\":" + JsonMatrixOf(gradient.transform) + "}";
}

std::string JsonPaint(const SVGLoom::Paint& paint, const std::optional<SVGLoom::ColorValue>& value)
{
    if (const auto* gradient = std::get_if<SVGLoom::Gradient>(&paint))
        return JsonGradient(*gradient);
    return "{" + JsonColorMembers(value ? *value : std::get<SVGLoom::Color>(paint)) + "}";
}

std::string JsonFill(const SVGLoom::DocumentFillStyle& fill)
{
    if (!fill.hasFill)
        return "null";
    return "{\"paint\":" + JsonPaint(fill.paint, fill.paintValue) +
           ",\"rule\":" + RuleOf(fill.fillRule) + ",\"opacity\":" + JsonNumber(fill.fillOpacity) +
           "}";
}

std::string JsonStroke(const SVGLoom::DocumentStrokeStyle& stroke)
{
    constexpr const char* kCaps[] = {"butt", "round", "square"};
    constexpr const char* kJoins[] = {"miter", "round", "bevel"};
    if (!stroke.hasStroke)
        return "null";
    return "{\"paint\":" + JsonPaint(stroke.paint, stroke.paintValue) +
           ",\"opacity\":" + JsonNumber(stroke.strokeOpacity) +
           ",\"width\":" + JsonNumber(stroke.lineWidth) + ",\"cap\":\"" +
           kCaps[static_cast<std::size_t>(stroke.lineCap)] + "\",\"join\":\"" +
           kJoins[static_cast<std::size_t>(stroke.lineJoin)] +
           "\",\"miterLimit\":" + JsonNumber(stroke.miterLimit) +
           ",\"dash\":" + JsonNumbers({stroke.dashArray.data(), stroke.dashArray.size()}) +
           ",\"dashOffset\":" + JsonNumber(stroke.dashOffset) + "}";
}

std::string JsonClip(const std::shared_ptr<SVGLoom::ClippingPath>& clip)
{
    if (clip == nullptr)
        return "null";
    return "{\"path\":" + (clip->hasClipContent ? JsonPathOf(clip->path.get()) : "null") +
           ",\"rule\":" + RuleOf(clip->clipRule) +
           ",\"transform\":" + JsonMatrixOf(clip->transform) + "}";
}

class Tree {
public:
    explicit Tree(const SVGDocumentImpl& document) : document_(document)
    {
        for (const auto& entry : document.Ids())
            ids_.emplace(entry.value.get(), &entry.name);
    }

    std::string Json() const
    {
        std::string text = "{\"viewBox\":" + JsonRect(document_.ViewBox()) + ",\"root\":";
        AppendElement(document_.Root(), text);
        text += ",\"byId\":[";
        bool isFirst = true;
        for (const Element* element : ReachedOnlyById()) {
            text += isFirst ? "" : ",";
            isFirst = false;
            AppendElement(*element, text);
        }
        return text + "]}";
    }

private:
    void AppendElement(const Element& element, std::string& text) const
    {
        constexpr const char* kKinds[] = {"image", "graphic", "group", "reference"};
        text += "{\"kind\":\"";
        text += kKinds[static_cast<std::size_t>(element.Kind())];
        text += '"';
        if (const auto id = ids_.find(&element); id != ids_.end())
            text += ",\"id\":" + tools::JsonUtf8String(*id->second);
        text += ",\"opacity\":" + JsonNumber(element.style.opacity) +
                ",\"transform\":" + JsonMatrixOf(element.style.transform) +
                ",\"clip\":" + JsonClip(element.style.clippingPath) +
                ",\"display\":" + (element.display ? "true" : "false") + ",\"classes\":[";
        bool isFirst = true;
        for (const std::string_view name : element.classes) {
            text += (isFirst ? "" : ",") + tools::JsonUtf8String(name);
            isFirst = false;
        }
        text += "]";
        AppendOwnMembers(element, text);
        text += "}";
    }

    void AppendOwnMembers(const Element& element, std::string& text) const
    {
        switch (element.Kind()) {
            case SVGDocumentImpl::ElementKind::kImage: {
                const auto& image = static_cast<const SVGDocumentImpl::Image&>(element);
                text += ",\"clipArea\":" + JsonRect(image.clipArea) +
                        ",\"fillArea\":" + JsonRect(image.fillArea);
                break;
            }
            case SVGDocumentImpl::ElementKind::kGraphic: {
                const auto& graphic = static_cast<const SVGDocumentImpl::Graphic&>(element);
                text += ",\"fill\":" + JsonFill(*graphic.fill) +
                        ",\"stroke\":" + JsonStroke(*graphic.stroke) +
                        ",\"path\":" + JsonPathOf(graphic.path.get());
                break;
            }
            case SVGDocumentImpl::ElementKind::kGroup: {
                text += ",\"children\":[";
                bool isFirst = true;
                ForEachChild(element, [&](const Element& child) {
                    text += isFirst ? "" : ",";
                    isFirst = false;
                    AppendElement(child, text);
                });
                text += "]";
                break;
            }
            case SVGDocumentImpl::ElementKind::kReference: {
                const auto& reference = static_cast<const SVGDocumentImpl::Reference&>(element);
                text += ",\"target\":" + tools::JsonUtf8String(reference.targetId) +
                        ",\"fill\":" + JsonFill(*reference.fill) +
                        ",\"stroke\":" + JsonStroke(*reference.stroke);
                break;
            }
        }
    }

    // Without those that one of them holds.
    std::vector<const Element*> ReachedOnlyById() const
    {
        std::unordered_set<const Element*> held;
        const auto hold = [&](const Element& element, auto&& self) -> void {
            ForEachChild(element, [&](const Element& child) {
                if (held.insert(&child).second)
                    self(child, self);
            });
        };
        held.insert(&document_.Root());
        hold(document_.Root(), hold);
        std::vector<const Element*> found;
        for (const auto& entry : document_.Ids()) {
            if (held.count(entry.value.get()) == 0)
                found.push_back(entry.value.get());
        }
        for (const Element* element : found)
            hold(*element, hold);
        std::erase_if(found, [&](const Element* element) { return held.count(element) != 0; });
        return found;
    }

    const SVGDocumentImpl& document_;
    std::unordered_map<const Element*, const std::string*> ids_;
};

}  // namespace

int RunTree(const tools::Arguments& arguments)
{
    const std::string& file = arguments.Files()[0];
    return PrintOfArtwork(
        file, [](Artwork& artwork) { tools::Print(Tree(artwork.Document()).Json() + "\n"); });
}

}  // namespace svgloom
