// Whether the engine can read the values of properties, by themselves.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "svgloom/src/AttributeNames.h"
#include "tools/svgloom/check/Reporter.h"
#include "tools/svgloom/check/SourceText.h"

namespace svgloom {

/// Reports what the engine does not read of the value of a property, as an attribute or a
/// declaration.
void CheckProperty(SVGLoom::AttributeName property, std::string_view text, const Locator& where,
                   Reporter& reporter);

/// A number, such as an offset. `name` is for the message.
void CheckNumber(std::string_view name, std::string_view text, const Locator& where,
                 Reporter& reporter);

/// A length. A percentage of the diagonal is told too.
/// @return whether it can be read, and then its value
bool CheckLength(SVGLoom::AttributeName name, std::string_view text, float reference,
                 const Locator& where, Reporter& reporter, float& value);

/// name="value", for messages.
std::string Assigned(std::string_view name, std::string_view text);

/// The id in a value that begins with "url(#"; empty in any other one.
std::string_view ReferenceIn(std::string_view text);

/// Without white space at both ends, as the value parsers skip it.
std::string_view WithoutSpace(std::string_view text);

}  // namespace svgloom
