// File names as the Windows calls take them.

#pragma once

#include <string>
#include <string_view>

namespace morvish_private {

/// The form of `path` that names the same file however long it is: the path as it came while its
/// full form fits the system's old limit of 260 units, else the full form behind `\\?\` (`\\?\UNC\`
/// for a network share). Relative paths count from the working folder. Slashes may be either.
/// @return empty if the path is empty, holds a NUL unit, is no valid UTF-16, or the system cannot
///         make a full path of it
std::wstring SystemPath(std::u16string_view path);

}  // namespace morvish_private
