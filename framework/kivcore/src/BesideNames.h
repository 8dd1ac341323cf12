// Names of what a replacement has beside the file that it replaces: ".kivsave-" + 16 hex digits of
// the file's name + "-" + a number below 100, which tells the writers of one file apart. What
// stands behind that is the platform's.

#pragma once

#include <cstddef>

#include <kivcore/UString.h>

namespace kivcore::filesupport {

inline constexpr UStringView kBesidePrefix = u".kivsave-";
inline constexpr std::size_t kMaxBesideNumbers = 100;

/// The path beside `target` of that number.
UString BesidePath(const UString& target, std::size_t number);

/// Units of `name` that such a name takes from its beginning; 0 for any other name.
std::size_t BesideNameLength(UStringView name);

/// True if `besideName` was made from the name of `target`.
bool IsBesideNameOf(UStringView besideName, UStringView target);

}  // namespace kivcore::filesupport
