#include <algorithm>
#include <utility>

#include "framework/kivmetadataui/src/EditedText.h"
#include "framework/kivmetadataui/src/Fields.h"
#include "framework/kivmetadataui/src/Texts.h"

namespace kivmetadataui {

using kivcore::UString;
using kivcore::UStringView;

namespace {

bool Contains(const FieldItems& items, UStringView text)
{
    return std::any_of(items.begin(), items.end(),
                       [text](const FieldItem& item) { return item.text == text; });
}

}  // namespace

ListField::ListField(FieldDescription description, bool isOrdered)
    : Field(FieldKind::kList, std::move(description)), isOrdered_(isOrdered)
{
}

void ListField::Add(UStringView text)
{
    FieldItems items = Items();
    while (!text.empty()) {
        const std::size_t lineEnd = std::min(text.find_first_of(u"\r\n"), text.size());
        const UString line = CleanText(Trimmed(text.substr(0, lineEnd)), Lines::kOne);
        if (!line.empty() && (isOrdered_ || !Contains(items, line))) {
            // Without order, an entry that comes back takes its old place and is no change.
            const auto was =
                std::find_if(OriginalItems().begin(), OriginalItems().end(),
                             [&line](const FieldItem& item) { return item.text == line; });
            const bool isBack = !isOrdered_ && was != OriginalItems().end();
            InsertByOrigin(items, {{}, line, isBack ? was->origin : 0});
        }
        text.remove_prefix(std::min(lineEnd + 1, text.size()));
    }
    Edit(std::move(items), EditKind::kWhole);
}

void ListField::Replace(std::size_t index, UStringView text)
{
    if (index >= Items().size()) {
        return;
    }
    const UStringView trimmed = Trimmed(text);
    if (trimmed.empty()) {
        Remove(index);
        return;
    }
    if (text == Items()[index].text) {
        return;  // an entry with spaces at its ends was looked at and left alone
    }
    FieldItems items = Items();
    items[index].text = CleanText(trimmed, Lines::kOne);
    Edit(std::move(items), EditKind::kWhole);
}

void ListField::Remove(std::size_t index)
{
    if (index >= Items().size()) {
        return;
    }
    FieldItems items = Items();
    items.erase(items.begin() + static_cast<std::ptrdiff_t>(index));
    Edit(std::move(items), EditKind::kWhole);
}

void ListField::Move(std::size_t from, std::size_t to)
{
    if (from >= Items().size() || to >= Items().size()) {
        return;
    }
    FieldItems items = Items();
    FieldItem moved = std::move(items[from]);
    items.erase(items.begin() + static_cast<std::ptrdiff_t>(from));
    items.insert(items.begin() + static_cast<std::ptrdiff_t>(to), std::move(moved));
    Edit(std::move(items), EditKind::kWhole);
}

void ListField::SetAll(const std::vector<UString>& texts)
{
    FieldItems items;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const bool isSame = i < OriginalItems().size() && OriginalItems()[i].text == texts[i];
        items.push_back({{}, texts[i], isSame ? i + 1 : 0});
    }
    Edit(std::move(items), EditKind::kWhole);
}

UString ListField::DisplayText() const
{
    UString text;
    for (const FieldItem& item : Items()) {
        if (!text.empty()) {
            text += u"; ";
        }
        text += item.text;
    }
    return text;
}

}  // namespace kivmetadataui
