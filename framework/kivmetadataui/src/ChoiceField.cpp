#include <utility>

#include "framework/kivmetadataui/src/EditedText.h"
#include "framework/kivmetadataui/src/Fields.h"
#include "framework/kivmetadataui/src/Texts.h"

namespace kivmetadataui {

using kivcore::UString;
using kivcore::UStringView;

ChoiceField::ChoiceField(FieldDescription description, std::vector<FieldChoice> choices,
                         bool isClosed)
    : Field(FieldKind::kChoice, std::move(description)),
      choices_(std::move(choices)),
      isClosed_(isClosed)
{
}

std::optional<std::size_t> ChoiceField::Selected() const
{
    if (Items().empty()) {
        return std::nullopt;
    }
    const std::string value = Narrow(Items().front().text);
    for (std::size_t i = 0; i < choices_.size(); ++i) {
        if (choices_[i].value == value) {
            return i;
        }
    }
    return std::nullopt;
}

void ChoiceField::Select(std::optional<std::size_t> index)
{
    FieldItems items;
    if (index && *index < choices_.size()) {
        items.push_back({{}, Widen(choices_[*index].value)});
    }
    Edit(std::move(items), EditKind::kWhole);
}

void ChoiceField::SetText(UStringView text)
{
    FieldItems items;
    UString clean = CleanText(text, Lines::kOne);
    if (!clean.empty()) {
        const std::optional<std::size_t> index = FindChoice(clean);
        items.push_back({{}, index ? Widen(choices_[*index].value) : std::move(clean)});
    }
    Edit(std::move(items), EditKind::kTyping);
}

UString ChoiceField::DisplayText() const
{
    const std::optional<std::size_t> selected = Selected();
    return selected ? choices_[*selected].label : Field::DisplayText();
}

UString ChoiceField::Check(const FieldItems& items) const
{
    if (!isClosed_ || items.empty() || FindChoice(items.front().text)) {
        return {};
    }
    return DialogText("$$$/Kiv/Dialog/Choice/Unknown=“^0” is not one of the choices.",
                      {items.front().text});
}

std::optional<std::size_t> ChoiceField::FindChoice(UStringView text) const
{
    // A label beats a value: it is what the user reads.
    for (std::size_t i = 0; i < choices_.size(); ++i) {
        if (choices_[i].label == text) {
            return i;
        }
    }
    const std::string value = Narrow(text);
    for (std::size_t i = 0; i < choices_.size(); ++i) {
        if (choices_[i].value == value) {
            return i;
        }
    }
    return std::nullopt;
}

}  // namespace kivmetadataui
