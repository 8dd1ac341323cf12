// Ties a field to its property: makes the field that a definition asks for, fills it from the
// packet, or from the photo where the packet lacks the property, and writes it back. What is there
// in a form that the definition does not expect is shown read-only, with the reason, and kept.

#pragma once

#include <memory>

#include "framework/kivmetadataui/src/Field.h"

#include <kivmetadata/Definitions.h>
#include <kivxmp/XMPMeta.h>
#include <kivxmp/XMPNode.h>
#include <kivxmp/XMPPath.h>

namespace kivmetadataui {

struct PropertyBinding {
    kivxmp::Path path;
    std::shared_ptr<const kivmetadata::PropertyDefinition> definition;
    std::unique_ptr<Field> field;  ///< never null
};

/// The binding of one property or field of a structure: of what the packet holds, else of what is
/// derived, else empty.
PropertyBinding MakeBinding(const __XMPMeta__& meta, kivxmp::Path path,
                            std::shared_ptr<const kivmetadata::PropertyDefinition> definition);

/// Writes a changed field into `target`, an object with the content that MakeBinding saw. Throws
/// XMP_Error.
void WriteField(const PropertyBinding& binding, __XMPMeta__& target);

}  // namespace kivmetadataui
