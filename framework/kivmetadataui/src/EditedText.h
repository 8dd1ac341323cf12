// What typed or pasted text becomes in a field, and where an item that comes back belongs.

#pragma once

#include "framework/kivmetadataui/src/Field.h"

#include <kivcore/UString.h>

namespace kivmetadataui {

enum class Lines { kOne, kMany };

/// `text` without control characters; line ends become U+000A, or spaces in one line.
kivcore::UString CleanText(kivcore::UStringView text, Lines lines);

/// CleanText(typed), or `original` where only line ends tell the two apart: controls hand line ends
/// back in their own way, and that is no edit.
kivcore::UString EditedText(const kivcore::UString& original, kivcore::UStringView typed,
                            Lines lines);

/// Puts `item` where its origin places it among the others: what was removed and typed again is
/// back in its place. Without an origin it goes to the end.
void InsertByOrigin(FieldItems& items, FieldItem item);

}  // namespace kivmetadataui
