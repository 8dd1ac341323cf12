#include "dictionary/KeyEnd.h"

#include <cstring>

namespace morvish_private {

// One pass, where the standard's functions need two: a sixth of a look-up.
const char* FindKeyEnd(const char* key)
{
    return strchrnul(key, '=');
}

}  // namespace morvish_private
