#include "svgloom/src/ClassSet.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace SVGLoom {

ClassSet::ClassSet(std::span<std::string_view> names)
{
    if (names.empty()) {
        return;
    }
    std::sort(names.begin(), names.end());
    const auto last = std::unique(names.begin(), names.end());
    std::uint32_t size = 0;
    for (auto name = names.begin(); name != last; ++name) {
        size += static_cast<std::uint32_t>(name->size() + 1);
    }
    block_.reset(new char[sizeof size + size]);
    std::memcpy(block_.get(), &size, sizeof size);
    char* at = block_.get() + sizeof size;
    for (auto name = names.begin(); name != last; ++name) {
        at = std::copy(name->begin(), name->end(), at);
        *at++ = '\0';
    }
}

ClassSet::ClassSet(std::initializer_list<std::string_view> names)
{
    std::vector<std::string_view> sorted(names);
    *this = ClassSet(std::span<std::string_view>(sorted));
}

std::uint32_t ClassSet::Size() const
{
    std::uint32_t size = 0;
    std::memcpy(&size, block_.get(), sizeof size);
    return size;
}

}  // namespace SVGLoom
