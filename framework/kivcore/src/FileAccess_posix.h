// Who may do what with a file: owner, group, permission bits, access lists and other attributes.

#pragma once

#include <string>

namespace kivcore::filesupport {

/// Gives the new file, open as `descriptor`, what the file at `original` has, as far as the system
/// allows. Where the group cannot be kept, the new group gets no more than everybody had.
void CopyAccess(const std::string& original, int descriptor);

}  // namespace kivcore::filesupport
