#include "framework/kivcore/src/EnvironmentText.h"

#include <cstdlib>

namespace kivcore {

std::optional<std::string> EnvironmentText(const char* variable)
{
    const char* const value = std::getenv(variable);
    return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

}  // namespace kivcore
