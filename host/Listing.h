// What kivhost prints without opening a window: the metadata tree and the custom items.

#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include <kivxmp/kivxmp.h>

namespace kivhost {

/// `text` (UTF-8) as a JSON string, quotes included.
std::string JsonString(std::string_view text);

/// One JSON object a node: path, form and value (null for lists and structures).
void DumpTree(const __XMPMeta__& meta, std::ostream& out);

/// One JSON object a record of GetGlobalKIVMetadataVector.
void ListDefinitions(std::ostream& out);

}  // namespace kivhost
