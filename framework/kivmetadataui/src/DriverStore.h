// What lies between a host's script and the dialog: the script that waits, and the changes of the
// last dialog. Both live as long as the process.

#pragma once

#include <optional>
#include <vector>

#include <kivmetadataui/DialogDriver.h>

namespace kivmetadataui {

/// The registered script, if there is one; it is used up.
std::optional<DialogDriver> TakeRegisteredDriver();

void SetLastChanges(std::vector<DialogChange> changes) noexcept;

}  // namespace kivmetadataui
