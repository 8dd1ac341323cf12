#include <utility>

#include "framework/kivmetadataui/src/DateText.h"
#include "framework/kivmetadataui/src/EditedText.h"
#include "framework/kivmetadataui/src/Fields.h"
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

DateField::DateField(FieldDescription description)
    : Field(FieldKind::kDate, Short(std::move(description)))
{
}

UString DateField::Text() const
{
    return DisplayText();
}

void DateField::SetText(UStringView text)
{
    UString value = CleanText(text, Lines::kOne);
    FieldItems items;
    if (!Trimmed(value).empty()) {
        items.push_back({{}, std::move(value)});
    }
    Edit(std::move(items), EditKind::kTyping);
}

UString DateField::Check(const FieldItems& items) const
{
    kivxmp::Date date;
    UString error;
    if (items.empty() || ReadDate(items.front().text, date, error)) {
        return {};
    }
    return error;
}

FieldItems DateField::Tidy(FieldItems items) const
{
    kivxmp::Date date;
    UString error;
    if (!items.empty() && items != OriginalItems() && ReadDate(items.front().text, date, error)) {
        items.front().text = ShowDate(date);
    }
    return items;
}

}  // namespace kivmetadataui
