// Where the path of a lookup's key ends.

#pragma once

namespace morvish_private {

/// The first '=' of a text that ends in NUL, else its NUL.
const char* FindKeyEnd(const char* key);

}  // namespace morvish_private
