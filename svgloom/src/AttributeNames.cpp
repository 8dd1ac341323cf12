// Names are found in a table that has one slot for each of them: a multiplier that sends no two to
// the same slot is looked for at compile time.

#include "svgloom/src/AttributeNames.h"

#include <array>
#include <iterator>

namespace SVGLoom {

namespace {

// In the order of the enumeration.
constexpr std::string_view kNames[] = {
    "opacity",
    "clip-path",
    "display",
    "stop-opacity",
    "stop-color",
    "fill",
    "fill-opacity",
    "fill-rule",
    "color",
    "visibility",
    "clip-rule",
    "stroke",
    "stroke-width",
    "stroke-linecap",
    "stroke-linejoin",
    "stroke-miterlimit",
    "stroke-dashoffset",
    "stroke-dasharray",
    "stroke-opacity",
    "class",
    "cx",
    "cy",
    "d",
    "fx",
    "fy",
    "gradientTransform",
    "height",
    "href",
    "id",
    "offset",
    "points",
    "preserveAspectRatio",
    "r",
    "rx",
    "ry",
    "spreadMethod",
    "style",
    "transform",
    "viewBox",
    "width",
    "x",
    "x1",
    "x2",
    "xlink:href",
    "y",
    "y1",
    "y2",
};
static_assert(std::size(kNames) == kAttributeCount);
static_assert(kNames[kPropertyCount - 1] == "stroke-opacity" && kNames[kPropertyCount] == "class");

constexpr unsigned kSlotBits = 8;
using Slots = std::array<std::uint8_t, 1u << kSlotBits>;
constexpr std::uint8_t kFree = static_cast<std::uint8_t>(AttributeName::kUnknown);

/// Requires a name that is not empty. Different for all names of the table.
constexpr std::uint32_t KeyOf(std::string_view name)
{
    const auto byte = [name](std::size_t at) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(name[at]));
    };
    return byte(0) | byte(name.size() / 2) << 8 | byte(name.size() - 1) << 16 |
           static_cast<std::uint32_t>(name.size()) << 24;
}

constexpr std::size_t SlotOf(std::uint32_t key, std::uint32_t multiplier)
{
    return (key * multiplier) >> (32 - kSlotBits);
}

/// False if two names share a slot.
constexpr bool FillSlots(std::uint32_t multiplier, Slots& slots)
{
    for (std::uint8_t& slot : slots) {
        slot = kFree;
    }
    for (std::size_t i = 0; i < kAttributeCount; ++i) {
        std::uint8_t& slot = slots[SlotOf(KeyOf(kNames[i]), multiplier)];
        if (slot != kFree) {
            return false;
        }
        slot = static_cast<std::uint8_t>(i);
    }
    return true;
}

struct Table {
    std::uint32_t multiplier = 0;
    Slots slots{};
};

constexpr Table MakeTable()
{
    Table table;
    std::uint32_t multiplier = 0x9E3779B1U;
    while (!FillSlots(multiplier, table.slots)) {
        multiplier = multiplier * 1664525U + 1013904223U;
        multiplier |= 1U;
    }
    table.multiplier = multiplier;
    return table;
}

constexpr Table kTable = MakeTable();

}  // namespace

AttributeName FindAttribute(std::string_view name)
{
    if (name.empty()) {
        return AttributeName::kUnknown;
    }
    const std::uint8_t found = kTable.slots[SlotOf(KeyOf(name), kTable.multiplier)];
    return found != kFree && kNames[found] == name ? static_cast<AttributeName>(found)
                                                   : AttributeName::kUnknown;
}

std::string_view TextOf(AttributeName name)
{
    return name != AttributeName::kUnknown ? kNames[static_cast<std::size_t>(name)]
                                           : std::string_view();
}

}  // namespace SVGLoom
