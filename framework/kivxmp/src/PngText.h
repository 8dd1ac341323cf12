// Texts of PNG files: packed ones, and those that hold the Exif or IIM data of another format as a
// "raw profile", in hexadecimal digits.

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kivxmp::photo {

/// Nothing for what is not packed by zlib, or unpacks to more than `limitBytes`.
std::optional<std::string> UnpackText(std::string_view packed, std::size_t limitBytes);

/// The longest keyword of a profile that we know, and the zero behind it.
inline constexpr std::size_t kProfileKeywordBytes = 22;

/// True if a text chunk that begins like this holds Exif or IIM data.
bool IsProfileKeyword(std::string_view head);

/// The bytes that the content of such a chunk stands for; empty for what is damaged or too long.
std::string ReadProfile(std::string_view content, bool isPacked, std::size_t limitBytes);

}  // namespace kivxmp::photo
