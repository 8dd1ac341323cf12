// What kivhost prints without opening a window: the metadata tree and the custom items.

#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

#include <kivxmp/kivxmp.h>

namespace kivhost {

/// UTF-16 units up to a zero, as the records of definitions have them, in UTF-8. A lone surrogate
/// becomes U+FFFD.
std::string ToUtf8(const std::uint16_t* units);

/// `text` (UTF-8) as a JSON string, quotes included.
std::string JsonString(std::string_view text);

/// One JSON object a node: path, form, value (null for lists and structures), and the source of its
/// property: "packet", and behind the packet's properties "exif", "iim", "sidecar" and "embedded"
/// for the derived ones, with a detail. `file`, unless it is empty, stands in front.
void DumpTree(const __XMPMeta__& meta, std::string_view file, std::ostream& out);

/// One JSON object a record of GetGlobalKIVMetadataVector.
void ListDefinitions(std::ostream& out);

}  // namespace kivhost
