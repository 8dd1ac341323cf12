// Finds the private toolkit module beside this library and opens it, once for the process.

#pragma once

#include "framework/kivmetadataui/src/ToolkitModule.h"

namespace kivmetadataui {

/// The module; it lives as long as the process. Throws std::runtime_error with the reason where it
/// cannot be opened or is of another version; a later call tries again.
ToolkitModule& OpenToolkitModule();

}  // namespace kivmetadataui
