#include "framework/kivmetadataui/src/EditedText.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace kivmetadataui {

using kivcore::UString;
using kivcore::UStringView;

UString CleanText(UStringView text, Lines lines)
{
    UString result;
    result.reserve(text.size());
    const char16_t lineEnd = lines == Lines::kMany ? u'\n' : u' ';
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        const bool isCrLf = unit == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n';
        if (isCrLf) {
            continue;
        }
        if (unit == u'\n' || unit == u'\r' || unit == 0x2028 || unit == 0x2029) {
            result.push_back(lineEnd);
        } else if (unit == u'\t') {
            result.push_back(lines == Lines::kMany ? unit : u' ');
        } else if (unit >= u' ' && unit != 0x7F && unit != 0xFFFE && unit != 0xFFFF) {
            result.push_back(unit);
        }
    }
    return result;
}

UString EditedText(const UString& original, UStringView typed, Lines lines)
{
    UString text = CleanText(typed, lines);
    return text == CleanText(original, lines) ? original : text;
}

void InsertByOrigin(FieldItems& items, FieldItem item)
{
    auto place = items.end();
    if (item.origin != 0) {
        place = std::find_if(items.begin(), items.end(), [&item](const FieldItem& other) {
            return other.origin == 0 || other.origin > item.origin;
        });
    }
    items.insert(place, std::move(item));
}

}  // namespace kivmetadataui
