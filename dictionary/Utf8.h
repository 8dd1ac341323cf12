// Conversion between UTF-8 and UTF-16 by the letter of the Unicode standard: overlong forms,
// encoded surrogates, values above U+10FFFF and cut sequences are ill-formed. The standard
// library's converter lets some of them pass, and differs between platforms.

#pragma once

#include <string>
#include <string_view>

namespace morvish_private {

/// Replaces `text` by the UTF-16 form of `bytes`.
/// @return false if `bytes` is not well-formed; `text` is then unspecified.
bool ConvertUtf8(std::string_view bytes, std::u16string& text);

/// The same for any bytes: each maximal ill-formed part becomes one U+FFFD.
std::u16string ConvertUtf8Lossy(std::string_view bytes);

/// Puts the UTF-8 form of U+FFFD in the place of each maximal ill-formed part.
/// @return false, leaving `repaired` alone, if `bytes` is well-formed already
bool RepairUtf8(std::string_view bytes, std::string& repaired);

/// Replaces `bytes` by the UTF-8 form of `text`.
/// @return false if `text` holds a lone surrogate; `bytes` is then unspecified.
bool ConvertUtf16(std::u16string_view text, std::string& bytes);

}  // namespace morvish_private
