// The encodings a packet may be written in, and the way to UTF-8 and back.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kivxmp {

/// kLatin1 and kAscii occur only where an XML declaration names them.
enum class Encoding { kUtf8, kUtf16Le, kUtf16Be, kUtf32Le, kUtf32Be, kLatin1, kAscii };

/// By byte-order mark, by the zero bytes of the first characters, or by the XML declaration.
Encoding DetectEncoding(std::string_view bytes) noexcept;

/// Bytes of one space.
std::size_t UnitBytes(Encoding encoding) noexcept;

/// The highest character that can be written without a reference.
std::uint32_t MaxCharacter(Encoding encoding) noexcept;

/// A byte-order mark is a character like others. Throws XMP_Error (kKivXmpBadEncoding) for what is
/// not well-formed. `encoding` must not be kUtf8.
std::string DecodeToUtf8(std::string_view bytes, Encoding encoding);

/// The way back; `text` must be well-formed UTF-8. Throws XMP_Error (kKivXmpBadEncoding) for a
/// character above MaxCharacter.
std::string EncodeFromUtf8(std::string_view text, Encoding encoding);

/// Bytes that EncodeFromUtf8 would give.
std::size_t EncodedBytes(std::string_view text, Encoding encoding) noexcept;

/// Reads one character of well-formed UTF-8 and moves `current` behind it; a broken one gives its
/// first byte. Requires current < end.
std::uint32_t NextCharacter(const char*& current, const char* end) noexcept;

void AppendUtf8(std::string& text, std::uint32_t character);

/// True if `text` is well-formed UTF-8 and holds only what XML 1.0 calls characters.
bool IsXmlText(std::string_view text) noexcept;

}  // namespace kivxmp
