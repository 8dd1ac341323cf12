// Reads a view: which properties it shows, in which groups.

#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "framework/kivmetadata/src/Translations.h"

#include <kivmetadata/Definitions.h>

namespace kivmetadata {

/// The owner of built-in views, which no custom view may take.
inline constexpr std::string_view kBuiltInOwner = "com.orvan.xmp";

/// A view of `owner`. Throws kivcore::xml::ParseError.
std::shared_ptr<const ViewDefinition> ReadView(std::string_view text, const std::string& sourceName,
                                               const std::string& owner, const TextSource& texts);

}  // namespace kivmetadata
