#include "framework/kivcore/src/EnvironmentText.h"

#include <windows.h>

#include <kivcore/StringConversion.h>

#include "framework/kivcore/src/Path.h"

namespace kivcore {

std::optional<std::string> EnvironmentText(const char* variable)
{
    // The C library keeps a copy of its own, from the time when it was loaded.
    const UString value = filesupport::PathFromEnvironment(variable);
    if (value.empty()) {
        return std::nullopt;
    }
    return string::UTF16to8(value);
}

}  // namespace kivcore
