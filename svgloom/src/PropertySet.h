// One property set of an element: the texts of the properties that it holds. The texts are not
// owned.

#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "svgloom/src/AttributeNames.h"

namespace SVGLoom {

class PropertySet {
public:
    bool empty() const { return present_ == 0; }
    std::size_t size() const { return static_cast<std::size_t>(std::popcount(present_)); }
    bool Has(AttributeName property) const { return (present_ & BitOf(property)) != 0; }

    /// Requires a property. The first text of each counts.
    void AddFirst(AttributeName property, std::string_view text)
    {
        if (!Has(property)) {
            present_ |= BitOf(property);
            texts_[static_cast<std::size_t>(property)] = text;
        }
    }

    /// Calls use(property, text) in the order of the enumeration.
    template <class Use>
    void ForEach(const Use& use) const
    {
        for (std::uint32_t left = present_; left != 0; left &= left - 1) {
            const auto index = static_cast<std::size_t>(std::countr_zero(left));
            use(static_cast<AttributeName>(index), texts_[index]);
        }
    }

private:
    static std::uint32_t BitOf(AttributeName property)
    {
        return std::uint32_t{1} << static_cast<unsigned>(property);
    }

    std::uint32_t present_ = 0;
    std::array<std::string_view, kPropertyCount> texts_;
};

}  // namespace SVGLoom
