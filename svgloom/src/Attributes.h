// The attributes of one element that the engine reads, taken in one pass. The texts are those of
// the XML document.

#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "svgloom/src/AttributeNames.h"
#include "svgloom/src/XMLDocument.h"

namespace SVGLoom {

class Attributes final : public xml::AttributeVisitor {
public:
    Attributes() {}  // the texts are set where their bits are
    explicit Attributes(const xml::XMLNode& node) { node.VisitAttributes(*this); }

    /// The first of equal names counts.
    void VisitAttribute(std::string_view name, std::string_view value) override
    {
        const AttributeName known = FindAttribute(name);
        if (known != AttributeName::kUnknown && !Has(known)) {
            present_ |= BitOf(known);
            texts_[static_cast<std::size_t>(known)] = {value.data(), value.size()};
        }
    }

    bool Has(AttributeName name) const { return (present_ & BitOf(name)) != 0; }
    /// Empty for an attribute that is not there.
    std::string_view Text(AttributeName name) const
    {
        return Has(name) ? texts_[static_cast<std::size_t>(name)].View() : std::string_view();
    }

    bool HasHref() const { return Has(AttributeName::kHref) || Has(AttributeName::kXlinkHref); }
    /// A plain "href" goes before "xlink:href".
    std::string_view Href() const
    {
        return Text(Has(AttributeName::kHref) ? AttributeName::kHref : AttributeName::kXlinkHref);
    }

    /// Calls use(property, text) for the properties among the attributes, in the order of the
    /// enumeration.
    template <class Use>
    void ForEachProperty(const Use& use) const
    {
        constexpr std::uint64_t kProperties = (std::uint64_t{1} << kPropertyCount) - 1;
        for (std::uint64_t left = present_ & kProperties; left != 0; left &= left - 1) {
            const auto index = static_cast<std::size_t>(std::countr_zero(left));
            use(static_cast<AttributeName>(index), texts_[index].View());
        }
    }

private:
    static_assert(kAttributeCount <= 64);
    static std::uint64_t BitOf(AttributeName name)
    {
        return std::uint64_t{1} << static_cast<unsigned>(name);
    }

    struct Piece {
        const char* data;
        std::size_t size;

        std::string_view View() const { return {data, size}; }
    };

    std::uint64_t present_ = 0;
    std::array<Piece, kAttributeCount> texts_;
};

}  // namespace SVGLoom
