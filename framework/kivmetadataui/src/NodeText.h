// Any node of a packet as one readable text, for what is shown and not edited.

#pragma once

#include <cstddef>
#include <string_view>

#include <kivcore/UString.h>
#include <kivmetadata/Definitions.h>
#include <kivxmp/XMPNode.h>

namespace kivmetadataui {

/// Longer texts are cut and end in an ellipsis: nobody reads an embedded thumbnail.
inline constexpr std::size_t kMostShownUnits = 10'000;

/// Texts and URIs as they are, items and fields joined by "; ", fields and languages with their
/// names. `definition`, where given, has the fields' labels.
kivcore::UString NodeText(const kivxmp::Node& node,
                          const kivmetadata::PropertyDefinition* definition = nullptr);

/// The value of a camera property as photographers write it: "1/250 s", "f/2.8", "ISO 200",
/// "35 mm", "+0.33 EV", "52° 31.2′ N". Empty where the property has no such form, or its value does
/// not make sense.
kivcore::UString CameraText(std::string_view namespaceUri, std::string_view localName,
                            const kivxmp::Node& node);

}  // namespace kivmetadataui
