// Texts of Exif and IIM data as texts of a packet. Their writers used every encoding there is, and
// seldom said which.

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "framework/kivxmp/src/ByteNumbers.h"

namespace kivxmp::photo {

/// All of these give UTF-8 that XML can hold, with LF at the ends of lines and no white space or
/// zeros around it. What ends in a zero ends there.

/// UTF-8 if it is well-formed UTF-8, else Windows-1252.
std::string TextOf(std::string_view bytes);

/// UTF-16; a byte-order mark beats `order`.
std::string TextOfUtf16(std::string_view bytes, ByteOrder order);

/// Exif's texts that name their encoding in eight bytes before them. Empty for JIS X 0208, unless
/// it is ASCII alone.
std::string TextOfComment(std::string_view bytes, ByteOrder order);

/// The encoding that IIM data announce (dataset 1:90, an ISO 2022 escape sequence).
enum class IimEncoding { kUnknown, kUtf8, kLatin1 };
IimEncoding IimEncodingOf(std::string_view announcement);

/// kUnknown, and kUtf8 that is none: as TextOf.
std::string TextOfIim(std::string_view bytes, IimEncoding encoding);

/// The parts of a list in one text, trimmed, without empty ones. `;` separates, except between
/// double quotes; a quote in a quoted part is doubled.
std::vector<std::string> SplitList(std::string_view text);

}  // namespace kivxmp::photo
