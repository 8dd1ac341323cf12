// Derived properties in words: where a value comes from, and what lies beside the photo.

#pragma once

#include "framework/kivmetadataui/src/Field.h"

#include <kivcore/UString.h>
#include <kivxmp/Derived.h>
#include <kivxmp/XMPMeta.h>
#include <kivxmp/XMPPath.h>

namespace kivmetadataui {

/// The words for `source`; what they are about may be whole or a part.
FieldSource SourceText(const kivxmp::DerivedSource& source);

/// Where what stands at `path` comes from; an empty one where the packet holds it, or nobody does.
FieldSource SourceAt(const __XMPMeta__& meta, const kivxmp::Path& path);

/// What the dialog says of the photo itself.
struct PhotoNote {
    kivcore::UString text;    ///< "The sidecar sea.jpg.xmp adds 3 properties"; mostly empty
    kivcore::UString detail;  ///< which packet counts, and what could not be read
};

/// About the photo that `meta` was opened from; empty for an object of no file.
PhotoNote NoteOf(const __XMPMeta__& meta);

}  // namespace kivmetadataui
