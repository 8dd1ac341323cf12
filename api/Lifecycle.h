// Bringing the framework up inside the host, and taking it down again.

#pragma once

#include "include/kivmetadataapi.h"

namespace kivmetadataapi {

/// Stage A: installs the localizer (unless ours is the framework's current one) and a fresh error
/// manager, on every call. Throws what the framework throws.
void InstallLocalizerAndErrorManager();

/// Stage B: counts the call and, if it is the first, brings the framework up. Throws
/// kivmetadataapi_error where a required text is null, and what the framework throws; steps taken
/// by then stay, and the call counts.
void Initialize(const MetadataAPIInitParams& params);

/// Undoes one Initialize; the one that reaches 0 takes the framework down.
void Terminate();

/// True while everything that Initialize brings up is there.
bool IsFrameworkUp() noexcept;

}  // namespace kivmetadataapi
