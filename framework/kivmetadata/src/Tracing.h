// The channel of this library.

#pragma once

#include <string_view>

namespace kivmetadata {

/// Tells on the trace channel "kivmetadata" what could not be read, and why.
void TraceProblem(std::string_view text) noexcept;

}  // namespace kivmetadata
