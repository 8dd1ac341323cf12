#include "tools/svgloom/check/CheckedArtwork.h"

namespace svgloom {

CheckedElement CheckedArtwork::Read(const SVGLoom::xml::XMLNode& node, const Scope& scope) const
{
    const std::string_view name = node.GetName();
    CheckedElement element{node, name,        OffsetOf(name.data(), 1) - 1, AllAttributes(node),
                           {},   scope.matrix};
    element.style.inherited = scope.style;
    return element;
}

void CheckedArtwork::CheckId(const CheckedElement& element, std::string_view effect)
{
    if (!element.Id().empty() && !ids.Add(element.Id()).second) {
        reporter.Report(Rule::kIdDuplicate, Value(element, SVGLoom::AttributeName::kId).OffsetAt(0),
                        Shown(element.Id()), effect);
    }
}

}  // namespace svgloom
