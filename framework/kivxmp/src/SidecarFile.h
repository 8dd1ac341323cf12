// Sidecars: files that hold nothing but a packet, beside a photo whose format we do not write.

#pragma once

#include "framework/kivxmp/src/PhotoFormat.h"

#include <kivcore/UString.h>

#include <cstdint>
#include <memory>

namespace kivxmp::photo {

/// The whole file as one packet; none where it is empty or missing (`sizeBytes` 0).
std::unique_ptr<PhotoFormat> MakeSidecarFormat(std::uint64_t sizeBytes);

/// True if the name ends in ".xmp", in any case.
bool IsSidecarName(kivcore::UStringView path);

/// NAME.EXT.xmp for the photo NAME.EXT.
kivcore::UString FullSidecarName(kivcore::UStringView photoPath);
/// NAME.xmp for the photo NAME.EXT; NAME.EXT.xmp's equal where the photo has no extension.
kivcore::UString ShortSidecarName(kivcore::UStringView photoPath);

/// The extension of the last component, without the dot, ASCII letters in lower case; empty where
/// there is none.
kivcore::UString LowerExtension(kivcore::UStringView path);

}  // namespace kivxmp::photo
