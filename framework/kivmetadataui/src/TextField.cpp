#include <algorithm>
#include <utility>

#include "framework/kivmetadataui/src/EditedText.h"
#include "framework/kivmetadataui/src/Fields.h"
#include "framework/kivmetadataui/src/Texts.h"

namespace kivmetadataui {

using kivcore::UString;
using kivcore::UStringView;

TextField::TextField(FieldKind kind, FieldDescription description)
    : Field(kind, std::move(description))
{
}

UString TextField::Text() const
{
    return DisplayText();
}

void TextField::SetText(UStringView text)
{
    const UString original = OriginalItems().empty() ? UString() : OriginalItems().front().text;
    UString value = EditedText(original, text, IsMultiline() ? Lines::kMany : Lines::kOne);
    FieldItems items;
    if (!value.empty()) {
        items.push_back({{}, std::move(value), 1});
    }
    Edit(std::move(items), EditKind::kTyping);
}

UString TextField::Check(const FieldItems& items) const
{
    if (Kind() != FieldKind::kUri || items.empty()) {
        return {};
    }
    const UStringView text = Trimmed(items.front().text);
    const bool hasGap = std::any_of(text.begin(), text.end(),
                                    [](char16_t unit) { return unit <= u' ' || unit == 0x00A0; });
    if (hasGap) {
        return DialogText(
            "$$$/Kiv/Dialog/Uri/Space=A web address has no spaces. Write %20 for one.");
    }
    return {};
}

FieldItems TextField::Tidy(FieldItems items) const
{
    if (Kind() == FieldKind::kUri && !items.empty() && items != OriginalItems()) {
        items.front().text = UString(Trimmed(items.front().text));
    }
    return items;
}

DisplayField::DisplayField(FieldDescription description)
    : Field(FieldKind::kDisplay, std::move(description))
{
    SetReadOnly();
}

}  // namespace kivmetadataui
