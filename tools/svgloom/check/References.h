// What the artwork's elements refer to: groups, `use` and what they lead to, as the drawing walk
// goes over them. Time and memory are linear in the elements.

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "svgloom/src/AttributeNames.h"
#include "svgloom/src/NameMap.h"
#include "tools/svgloom/check/Reporter.h"

namespace svgloom {

/// The text of each property that is inherited, empty where none was set.
using StyleTexts = std::array<std::string_view, SVGLoom::kPropertyCount>;

/// A set of properties, by their numbers.
using PropertyBits = std::uint32_t;

constexpr PropertyBits BitOf(SVGLoom::AttributeName property)
{
    return PropertyBits{1} << static_cast<unsigned>(property);
}

class References {
public:
    using Index = std::uint32_t;
    static constexpr Index kNone = UINT32_MAX;

    /// What is drawn, or can be referred to.
    struct Entry {
        Index parent = kNone;
        std::size_t offset = 0;
        std::shared_ptr<const StyleTexts> texts;  // in force around it; of a use, in it
        PropertyBits own = 0;                     // what it sets itself
        PropertyBits taken = 0;                   // what a shape takes from around it
        bool fillsGradient = false;
        bool isTranslucent = false;  // a use, under an opacity below 1
        bool isSymbol = false;
        bool hasSize = false;     // a use with a width or a height
        std::string_view target;  // of a use, without "#"
        bool isUse = false;
    };

    Index Add(const Entry& entry, std::string_view id);
    /// A shape that no id leads to is only counted.
    void AddShape(Index parent, PropertyBits taken, bool fillsGradient);

    /// Reports what only shows when everything is known.
    void Check(Reporter& reporter);

private:
    struct Node {
        Entry entry;
        Index firstChild = kNone;
        Index lastChild = kNone;
        Index nextSibling = kNone;
        Index targetNode = kNone;
        // Of what is below, the node included; what counts below `use` in a draw.
        std::uint64_t visits = 1;
        std::uint64_t visitsBelowUse = 0;
        std::uint32_t levels = 1;
        enum class State : std::uint8_t { kNew, kOpen, kDone } state = State::kNew;
        bool isCycle = false;
    };

    struct Step {
        Index node;
        Index nextChild;
    };

    void Visit(Index start, Reporter& reporter);
    void TellCycle(const std::vector<Step>& stack, Reporter& reporter);
    static void TakeOver(Node& node, const Node& child);
    void CheckStyles(const Node& use, const Node& target, Reporter& reporter) const;

    std::vector<Node> nodes_;
    SVGLoom::NameMap<Index> ids_;
};

}  // namespace svgloom
