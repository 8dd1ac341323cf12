// What the converter hooks ask about a text before the system converts it.

#pragma once

#include <string_view>

namespace morvish_private {

/// Whether `text` ends inside a character of two bytes of that code page. The system's converter
/// makes something of such a lone first byte here and there, even when told to be strict.
bool IsCutInCharacter(unsigned codePage, std::string_view text);

}  // namespace morvish_private
