// Switches that the environment holds.

#pragma once

#include <optional>
#include <string>

namespace kivcore {

/// The value of an environment variable, UTF-8; none where it is not set (on Windows also where it
/// is empty). What the process set itself counts, by whatever C library.
std::optional<std::string> EnvironmentText(const char* variable);

}  // namespace kivcore
