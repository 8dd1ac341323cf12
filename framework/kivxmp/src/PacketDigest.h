// The digest by which a main packet names its extended part.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kivxmp::photo {

inline constexpr std::size_t kDigestCharacters = 32;

/// MD5 (RFC 1321) of `bytes` in hexadecimal digits, letters in upper case.
std::string PacketDigest(std::string_view bytes);

}  // namespace kivxmp::photo
