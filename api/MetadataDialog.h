// The metadata dialog over a host's XMP object.

#pragma once

#include "include/kivmetadataapi.h"

namespace kivmetadataapi {

/// Shows the dialog and returns whether the user confirmed. Throws kivmetadataapi_error where there
/// is no object or the framework is not up, and what the framework throws.
bool RunMetadataDialog(__XMPMeta__* meta, const MetadataDialogRequest& request);

}  // namespace kivmetadataapi
