// Names of SVG and CSS that the engine does not read, and what an artist does instead. Names that
// are in neither table are unknown.

#pragma once

#include <cstdint>
#include <string_view>

namespace svgloom {

enum class Loss : std::uint8_t {
    kNothing,     // the picture is the same without it
    kEffect,      // something else is drawn differently
    kDefinition,  // the same, where something refers to it
    kElement,     // it is never drawn
    kUnknown,
};

struct UnreadName {
    Loss loss = Loss::kUnknown;
    std::string_view advice;
};

/// An element that the engine does not visit.
UnreadName LookUpElement(std::string_view name);

/// An attribute, or a property in a style sheet, with its value: some lose nothing with their
/// default.
UnreadName LookUpAttribute(std::string_view name, std::string_view value);

/// Whether it can be drawn, and so can be written with a prefix by mistake.
bool IsElementOfSVG(std::string_view name);

}  // namespace svgloom
