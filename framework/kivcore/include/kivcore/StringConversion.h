// Conversions between 8-bit and UTF-16 text. Broken input has a defined result: each maximal
// ill-formed part (Unicode Standard, section 3.9, "U+FFFD Substitution of Maximal Subparts")
// becomes one U+FFFD.

#pragma once

#include <string>
#include <string_view>

#include <kivcore/Export.h>
#include <kivcore/UString.h>

namespace kivcore::string {

/// Widens byte for byte: each byte becomes the unit of the same number, U+0000 to U+00FF.
KIVCORE_API UString AsciiToUTF16(std::string_view text);

/// UTF-8 to UTF-16; ill-formed parts become U+FFFD.
KIVCORE_API UString UTF8to16(std::string_view text);

/// UTF-16 to UTF-8; a lone surrogate becomes U+FFFD.
KIVCORE_API std::string UTF16to8(UStringView text);

/// True if `text` is well-formed UTF-8.
KIVCORE_API bool IsWellFormedUTF8(std::string_view text) noexcept;

}  // namespace kivcore::string
