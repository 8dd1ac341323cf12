#include <algorithm>
#include <utility>

#include "framework/kivmetadataui/src/EditedText.h"
#include "framework/kivmetadataui/src/Fields.h"
#include "framework/kivmetadataui/src/LanguageNames.h"
#include "framework/kivmetadataui/src/Texts.h"

namespace kivmetadataui {

using kivcore::UString;
using kivcore::UStringView;

namespace {

// A packet may hold a language twice. The first one is shown and edited, the others stay.
FieldItems::const_iterator FindTag(const FieldItems& items, std::string_view tag)
{
    return std::find_if(items.begin(), items.end(), [tag](const FieldItem& item) {
        return EqualsIgnoringCase(item.language, tag);
    });
}

bool Holds(const std::vector<LanguageName>& names, std::string_view tag)
{
    return std::any_of(names.begin(), names.end(), [tag](const LanguageName& name) {
        return EqualsIgnoringCase(name.tag, tag);
    });
}

}  // namespace

LanguageField::LanguageField(FieldDescription description, bool isMultiline)
    : Field(FieldKind::kLanguageAlternative, std::move(description)),
      current_(kDefaultLanguage),
      isMultiline_(isMultiline)
{
}

std::vector<LanguageName> LanguageField::Languages() const
{
    std::vector<LanguageName> names;
    const auto add = [&names](const std::string& tag) {
        if (!Holds(names, tag)) {
            names.push_back({tag, LanguageLabel(tag)});
        }
    };
    add(std::string(kDefaultLanguage));
    for (const FieldItem& item : Items()) {
        add(item.language);
    }
    for (const std::string& tag : added_) {
        add(tag);
    }
    return names;
}

std::vector<LanguageName> LanguageField::AddableLanguages() const
{
    const std::vector<LanguageName> present = Languages();
    std::vector<LanguageName> names;
    for (const std::string& tag : CommonLanguages()) {
        if (!Holds(present, tag)) {
            names.push_back({tag, LanguageLabel(tag)});
        }
    }
    return names;
}

std::size_t LanguageField::OtherLanguageCount() const
{
    std::vector<LanguageName> others;
    for (const FieldItem& item : Items()) {
        if (!item.text.empty() && !EqualsIgnoringCase(item.language, current_) &&
            !Holds(others, item.language)) {
            others.push_back({item.language, {}});
        }
    }
    return others.size();
}

LanguageName LanguageField::CurrentLanguageName() const
{
    return {current_, LanguageLabel(current_)};
}

void LanguageField::SetCurrentLanguage(const std::string& tag)
{
    for (const LanguageName& name : Languages()) {
        if (EqualsIgnoringCase(name.tag, tag)) {
            EndEdit();
            current_ = name.tag;
            Notify();
            return;
        }
    }
}

UString LanguageField::TextOf(const std::string& tag) const
{
    const auto item = FindTag(Items(), tag);
    return item == Items().end() ? UString() : item->text;
}

void LanguageField::SetTextOf(const std::string& tag, UStringView text)
{
    if (!IsLanguageTag(tag)) {
        return;
    }
    const auto was = FindTag(OriginalItems(), tag);
    const bool isFromPacket = was != OriginalItems().end();
    UString value = EditedText(isFromPacket ? was->text : UString(), text,
                               isMultiline_ ? Lines::kMany : Lines::kOne);

    FieldItems items = Items();
    const auto found = items.begin() + (FindTag(items, tag) - items.cbegin());
    // An item that was empty in the packet stays as it was.
    const bool isKept = !value.empty() || (isFromPacket && was->text.empty());
    if (found != items.end()) {
        if (isKept) {
            found->text = std::move(value);
        } else {
            items.erase(found);
            // The language itself stays in sight until it is removed.
            if (!EqualsIgnoringCase(tag, kDefaultLanguage) &&
                std::find(added_.begin(), added_.end(), tag) == added_.end()) {
                added_.push_back(tag);
            }
        }
    } else if (isKept) {
        if (isFromPacket) {
            InsertByOrigin(items, {was->language, std::move(value), was->origin});
        } else if (EqualsIgnoringCase(tag, kDefaultLanguage)) {
            // Readers that know nothing of languages take the first item.
            items.insert(items.begin(), {std::string(kDefaultLanguage), std::move(value)});
        } else {
            items.push_back({TidyLanguageTag(tag), std::move(value)});
        }
    }
    Edit(std::move(items), EditKind::kTyping);
}

bool LanguageField::AddLanguage(const std::string& tag)
{
    if (!IsLanguageTag(tag) || IsReadOnly()) {
        return false;
    }
    if (!Holds(Languages(), tag)) {
        added_.push_back(TidyLanguageTag(tag));
    }
    SetCurrentLanguage(tag);
    return true;
}

void LanguageField::RemoveLanguage(const std::string& tag)
{
    if (IsReadOnly()) {
        return;
    }
    const auto isTag = [&tag](std::string_view other) { return EqualsIgnoringCase(other, tag); };
    FieldItems items = Items();
    std::erase_if(items, [&isTag](const FieldItem& item) { return isTag(item.language); });
    std::erase_if(added_, isTag);
    if (isTag(current_)) {
        current_ = kDefaultLanguage;
    }
    Edit(std::move(items), EditKind::kWhole);
    Notify();
}

void LanguageField::Loaded()
{
    const bool hasDefault = FindTag(Items(), kDefaultLanguage) != Items().end();
    current_ =
        hasDefault || Items().empty() ? std::string(kDefaultLanguage) : Items().front().language;
    added_.clear();
}

UString LanguageField::DisplayText() const
{
    const auto item = FindTag(Items(), current_);
    if (item != Items().end()) {
        return item->text;
    }
    return Field::DisplayText();
}

UString LanguageField::SearchText() const
{
    UString text;
    for (const FieldItem& item : Items()) {
        text += item.text;
        text += u'\n';
    }
    return text;
}

}  // namespace kivmetadataui
