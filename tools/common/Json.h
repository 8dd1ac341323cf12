// JSON in plain ASCII, as the tools print and read it, one value a line.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tools {

/// UTF-16, unit for unit: what stands outside U+0020..U+007E becomes an escape, also a lone
/// surrogate.
std::string JsonString(std::u16string_view text);

/// Bytes: each is the character of its number, U+0000 to U+00FF.
std::string JsonByteString(std::string_view bytes);

/// Text for people: UTF-8, whose broken parts show as U+FFFD.
std::string JsonUtf8String(std::string_view text);

/// As "%.9g" writes it, which reads back to the same float. A value that JSON cannot hold is one of
/// the strings "nan", "inf" and "-inf".
std::string JsonNumber(float value);

/// Reads a line that holds one JSON string and white space.
/// @return false, with a reason, if it is none
bool ParseJsonString(std::string_view line, std::u16string& text, std::string& reason);

/// Turns characters up to U+00FF into the bytes of their numbers.
/// @return false if there is another one
bool ToBytes(std::u16string_view text, std::string& bytes);

}  // namespace tools
