// An entry as a line of a text dictionary.

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace pemtext {

/// Appends a character's UTF-8 form.
void AppendUtf8(std::uint32_t character, std::string& out);

/// A value so written that both value passes give `value` again, in UTF-8.
std::string EscapedValue(std::u16string_view value);

/// The line "$$$key=value" in quotes and with a line end, in UTF-8. Any key and any value can be
/// written: it reads back to exactly them.
std::string TextLine(std::string_view key, std::u16string_view value);

/// A value in UTF-8 that is written as a dictionary has it already, escapes and all. What would end
/// the line or the value is escaped.
std::string RawValue(std::u16string_view rawValue);

/// TextLine() of such a value.
std::string RawTextLine(std::string_view key, std::u16string_view rawValue);

}  // namespace pemtext
