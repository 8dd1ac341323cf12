#include <utility>

#include "framework/kivmetadataui/src/EditedText.h"
#include "framework/kivmetadataui/src/Fields.h"
#include "framework/kivmetadataui/src/NumberValue.h"
#include "framework/kivmetadataui/src/Texts.h"

namespace kivmetadataui {

using kivcore::UString;
using kivcore::UStringView;

namespace {

FieldDescription Short(FieldDescription description)
{
    description.width = FieldWidth::kShort;
    return description;
}

}  // namespace

NumberField::NumberField(FieldDescription description, NumberLimits limits, UString unit)
    : Field(FieldKind::kNumber, Short(std::move(description))),
      limits_(limits),
      unit_(std::move(unit))
{
}

UString NumberField::Text() const
{
    return Field::DisplayText();
}

void NumberField::SetText(UStringView text)
{
    UString value = CleanText(text, Lines::kOne);
    FieldItems items;
    if (!Trimmed(value).empty()) {
        items.push_back({{}, std::move(value)});
    }
    Edit(std::move(items), EditKind::kTyping);
}

UString NumberField::DisplayText() const
{
    UString text = Field::DisplayText();
    if (!text.empty() && !unit_.empty()) {
        text += u' ';
        text += unit_;
    }
    return text;
}

UString NumberField::Check(const FieldItems& items) const
{
    return items.empty() ? UString() : CheckNumber(items.front().text, limits_);
}

FieldItems NumberField::Tidy(FieldItems items) const
{
    if (items.empty() || items == OriginalItems()) {
        return items;
    }
    const std::optional<std::string> value = ReadNumber(items.front().text, limits_.kind);
    // Another spelling of what was read is no change.
    if (!OriginalItems().empty() && value &&
        value == ReadNumber(OriginalItems().front().text, limits_.kind)) {
        return OriginalItems();
    }
    if (value) {
        items.front().text = ShowNumber(*value, limits_.kind);
    }
    return items;
}

}  // namespace kivmetadataui
