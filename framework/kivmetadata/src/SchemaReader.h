// Reads a schema: the properties of one namespace.

#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "framework/kivmetadata/src/Translations.h"

#include <kivmetadata/Definitions.h>

namespace kivmetadata {

/// Throws kivcore::xml::ParseError.
std::shared_ptr<const SchemaDefinition> ReadSchema(std::string_view text,
                                                   const std::string& sourceName,
                                                   const TextSource& texts);

}  // namespace kivmetadata
