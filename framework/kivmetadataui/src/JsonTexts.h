// A JSON array of texts, as scripts write the value of a list.

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kivmetadataui {

/// Reads `["a", "b"]`. Texts are UTF-8; "\u" escapes may be pairs of surrogates, half a pair
/// becomes U+FFFD.
///
/// @param texts  written on success only
/// @return false if `json` is anything else
bool ReadJsonTexts(std::string_view json, std::vector<std::string>& texts);

}  // namespace kivmetadataui
