// Which property of a packet each tag of Exif and IIM data stands for: one table, by the guidelines
// of the Metadata Working Group, the XMP Specification, CIPA DC-010 and IPTC's Photo Metadata
// Standard. docs/photos.md shows it.

#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "framework/kivxmp/src/TagValue.h"

namespace kivxmp::photo {

enum class MappedForm : unsigned char {
    kText,
    kLanguage,  ///< alternatives by language, of which the text is the default
    kBag,
    kSeq,
    kFields  ///< a structure
};

struct MappedProperty {
    std::string_view prefix;  ///< a well-known one
    std::string_view name;
    MappedForm form = MappedForm::kText;
    std::vector<std::string> texts;                           ///< one, or the items
    std::vector<std::pair<std::string, std::string>> fields;  ///< of kFields, by local name
    std::string_view tag;                                     ///< that it comes from
    bool isIim = false;
};

/// What the tags tell, each property once, Exif before IIM. Values that tell nothing (blank texts,
/// zeros for dates, denominators of zero) are left out. Names of the result outlive the tags.
std::vector<MappedProperty> MapTags(const TagList& exif, const TagList& iim);

/// The table behind it: the rows for one property in the order in which they count.
struct MappingRow {
    std::string_view tag;
    std::string_view prefix;
    std::string_view name;
};
std::vector<MappingRow> MappingRows();

/// True for tags that MapTags looks at.
bool IsMappedTag(std::string_view name);

}  // namespace kivxmp::photo
