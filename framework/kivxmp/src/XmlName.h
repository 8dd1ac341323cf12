// Which texts may be names in XML.

#pragma once

#include <string_view>

namespace kivxmp {

/// True for a name without colon that the XML parser will take.
bool IsXmlName(std::string_view text);

}  // namespace kivxmp
