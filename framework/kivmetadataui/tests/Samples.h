// Definitions and packets that the tests of the model share.

#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "framework/kivmetadataui/src/Field.h"

#include <kivcore/UString.h>
#include <kivmetadata/Definitions.h>
#include <kivxmp/XMPMeta.h>

namespace kivmetadataui::samples {

inline constexpr char kDc[] = "http://purl.org/dc/elements/1.1/";
inline constexpr char kXmp[] = "http://ns.adobe.com/xap/1.0/";
inline constexpr char kPhotoshop[] = "http://ns.adobe.com/photoshop/1.0/";
inline constexpr char kExif[] = "http://ns.adobe.com/exif/1.0/";
inline constexpr char kIptc[] = "http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/";

using Property = std::shared_ptr<kivmetadata::PropertyDefinition>;

/// A definition whose label is its name.
Property MakeProperty(std::string name, kivmetadata::ValueType type);

/// The schemas that the sample views need.
std::vector<std::shared_ptr<const kivmetadata::SchemaDefinition>> Schemas();

/// A view of "prefix:name" items; a name "-" begins a new group.
std::shared_ptr<kivmetadata::ViewDefinition> MakeView(std::string name,
                                                      const std::vector<std::string>& items);

/// A packet around `properties`, RDF in elements, in one rdf:Description with the prefixes above.
std::string Packet(std::string_view properties);
std::unique_ptr<__XMPMeta__> Parse(std::string_view properties);

/// A JPEG photo, which ends where its image would begin; without a packet for an empty one.
std::string Jpeg(std::string_view packet);

/// What a field is described by in tests that need no definition.
FieldDescription Describe(std::string path);

/// Puts `text` into a field of any kind that takes typed text, as its widget does.
void TypeInto(Field& field, const kivcore::UString& text);

/// UTF-8 of a text, for readable failures.
std::string Utf8(const kivcore::UString& text);
/// The items as "a|de=b|c".
std::string Print(const FieldItems& items);

}  // namespace kivmetadataui::samples
