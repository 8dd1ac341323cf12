#include "svgloom/src/Declarations.h"

namespace SVGLoom {

std::string_view TrimStyleText(std::string_view text)
{
    constexpr std::string_view kSpace = " \t\n\r\f\v";
    const std::size_t first = text.find_first_not_of(kSpace);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

PropertySet ParseDeclarations(std::string_view block)
{
    PropertySet set;
    ForEachDeclaration(block, [&set](std::string_view name, std::string_view value) {
        const AttributeName property = FindAttribute(name);
        if (IsProperty(property)) {
            set.AddFirst(property, value);
        }
    });
    return set;
}

}  // namespace SVGLoom
