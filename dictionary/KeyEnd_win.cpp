#include "dictionary/KeyEnd.h"

#include <cstring>

namespace morvish_private {

const char* FindKeyEnd(const char* key)
{
    const char* const equals = std::strchr(key, '=');
    return equals != nullptr ? equals : key + std::strlen(key);
}

}  // namespace morvish_private
