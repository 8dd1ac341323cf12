// Lets tests put a toolkit of their own in the module's place.

#pragma once

#include "framework/kivmetadataui/src/ToolkitModule.h"

#include <kivmetadataui/Export.h>

namespace kivmetadataui {

/// Dialogs use `module` instead of the one beside the library; null puts that one back. Not owned.
/// Not while a dialog is open or the toolkit is started.
KIVMETADATAUI_API void SetToolkitModule(ToolkitModule* module) noexcept;

}  // namespace kivmetadataui
