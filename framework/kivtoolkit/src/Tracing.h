// What the toolkit and this module have to say goes to the trace, channel "kivmetadataui".

#pragma once

#include <string_view>

namespace kivtoolkit {

/// Traces `text` (UTF-8) where the channel is on. Never throws.
void Trace(std::string_view text) noexcept;

}  // namespace kivtoolkit
