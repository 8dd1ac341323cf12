// The custom metadata items of the framework's views, flattened into records that C can read.

#pragma once

#include <cstddef>
#include <string>

#include <kivcore/UString.h>

#include "include/kivmetadataapi.h"

namespace kivmetadataapi {

/// Owns the texts that one record points into.
struct MetadataCustomViewItemStrings {
    std::string viewText;
    std::string itemText;
    std::string itemKeyText;
    kivcore::UString label;
    bool propertyFlag = false;
};

/// Fills the list from the framework's definitions; does nothing if it is not empty. Throws what
/// the framework throws; the records made until then stay.
void LoadCustomDefinitions();

/// Empties the list and frees the texts.
void ClearCustomDefinitions() noexcept;

/// The records in a row, null if there are none.
const KIVMetadataRecord* CustomDefinitionRecords() noexcept;
std::size_t CustomDefinitionCount() noexcept;

}  // namespace kivmetadataapi
