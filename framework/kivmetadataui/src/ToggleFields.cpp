#include <utility>

#include "framework/kivmetadataui/src/Fields.h"
#include "framework/kivmetadataui/src/Texts.h"

namespace kivmetadataui {

using kivcore::UString;

namespace {

FieldDescription Short(FieldDescription description)
{
    description.width = FieldWidth::kShort;
    return description;
}

}  // namespace

RatingField::RatingField(FieldDescription description)
    : Field(FieldKind::kRating, Short(std::move(description)))
{
}

std::optional<int> RatingField::Stars() const
{
    if (Items().empty()) {
        return std::nullopt;
    }
    const UString& text = Items().front().text;
    if (text == u"-1") {
        return kRejected;
    }
    if (text.size() == 1 && text.front() >= u'0' && text.front() <= u'0' + kMostStars) {
        return text.front() - u'0';
    }
    return std::nullopt;
}

void RatingField::SetStars(std::optional<int> stars)
{
    if (stars && (*stars < kRejected || *stars > kMostStars)) {
        return;
    }
    FieldItems items;
    if (stars) {
        items.push_back({{}, Widen(std::to_string(*stars))});
    }
    Edit(std::move(items), EditKind::kWhole);
}

UString RatingField::DisplayText() const
{
    const std::optional<int> stars = Stars();
    if (!stars) {
        return Field::DisplayText();
    }
    if (*stars == kRejected) {
        return DialogText("$$$/Kiv/Dialog/Rating/Rejected=Rejected");
    }
    if (*stars == 0) {
        return DialogText("$$$/Kiv/Dialog/Rating/None=No stars");
    }
    if (*stars == 1) {
        return DialogText("$$$/Kiv/Dialog/Rating/One=1 star");
    }
    return DialogText("$$$/Kiv/Dialog/Rating/Many=^0 stars",
                      {NumberText(static_cast<std::size_t>(*stars))});
}

YesNoField::YesNoField(FieldDescription description)
    : Field(FieldKind::kYesNo, Short(std::move(description)))
{
}

std::optional<bool> YesNoField::Value() const
{
    if (Items().empty()) {
        return std::nullopt;
    }
    // Packets of many writers have small letters.
    const std::string text = Narrow(Items().front().text);
    if (EqualsIgnoringCase(text, "True")) {
        return true;
    }
    if (EqualsIgnoringCase(text, "False")) {
        return false;
    }
    return std::nullopt;
}

void YesNoField::SetValue(std::optional<bool> value)
{
    if (value == Value()) {
        return;  // "true" stays as it was written
    }
    FieldItems items;
    if (value) {
        items.push_back({{}, *value ? u"True" : u"False"});
        // Back to what was read is no change, whatever letters it was written in.
        if (!OriginalItems().empty() &&
            EqualsIgnoringCase(Narrow(OriginalItems().front().text), *value ? "True" : "False")) {
            items = OriginalItems();
        }
    }
    Edit(std::move(items), EditKind::kWhole);
}

UString YesNoField::DisplayText() const
{
    const std::optional<bool> value = Value();
    if (!value) {
        return Field::DisplayText();
    }
    return *value ? DialogText("$$$/Kiv/Dialog/YesNo/Yes=Yes")
                  : DialogText("$$$/Kiv/Dialog/YesNo/No=No");
}

}  // namespace kivmetadataui
