#include "framework/kivcore/src/Path.h"

#include <vector>

namespace kivcore::filesupport {

namespace {

std::size_t NameOffset(UStringView path) noexcept
{
    std::size_t offset = path.size();
    while (offset > 0 && !IsSeparator(path[offset - 1])) {
        --offset;
    }
    return offset;
}

}  // namespace

UString JoinPath(UStringView folder, UStringView relative)
{
    const std::size_t root = RootLength(folder);
    std::vector<UStringView> components;
    const auto add = [&components](UStringView path) {
        while (!path.empty()) {
            std::size_t length = 0;
            while (length < path.size() && !IsSeparator(path[length])) {
                ++length;
            }
            const UStringView component = path.substr(0, length);
            path.remove_prefix(length < path.size() ? length + 1 : length);
            if (component == u"..") {
                if (!components.empty()) {
                    components.pop_back();
                }
            } else if (!component.empty() && component != u".") {
                components.push_back(component);
            }
        }
    };
    add(folder.substr(root));
    add(relative);

    UString joined(folder.substr(0, root));
    for (std::size_t i = 0; i < components.size(); ++i) {
        if (i > 0) {
            joined += kSeparator;
        }
        joined += components[i];
    }
    return joined;
}

UStringView FolderPart(UStringView path) noexcept
{
    std::size_t length = NameOffset(path);
    const std::size_t root = RootLength(path);
    while (length > root && IsSeparator(path[length - 1])) {
        --length;
    }
    return path.substr(0, length);
}

UStringView NamePart(UStringView path) noexcept
{
    return path.substr(NameOffset(path));
}

}  // namespace kivcore::filesupport
