// Traces on the channel "kivui", level 0.

#pragma once

#include <string_view>

namespace kivui {

/// Tells that `what` did not happen, and why. Builds the text only while the channel is on.
void TraceFailure(std::string_view what, std::string_view reason) noexcept;

}  // namespace kivui
