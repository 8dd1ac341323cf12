#include "framework/kivmetadataui/src/DialogModel.h"

#include <algorithm>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "framework/kivmetadataui/src/ModelBuilder.h"
#include "framework/kivmetadataui/src/Texts.h"

#include <kivxmp/Derived.h>
#include <kivxmp/XMPError.h>
#include <kivxmp/XMPNode.h>

namespace kivmetadataui {

using kivcore::UString;
using kivcore::UStringView;

namespace {

template <class Predicate>
Field* FindInView(const DialogView& view, Predicate predicate)
{
    for (const FieldGroup& group : view.groups) {
        for (const FieldPlacement& placement : group.fields) {
            if (predicate(*placement.field)) {
                return placement.field;
            }
        }
    }
    return nullptr;
}

bool IsSameStep(const kivxmp::PathStep& left, const kivxmp::PathStep& right)
{
    return left.kind == right.kind && left.uri == right.uri && left.local == right.local &&
           left.index == right.index && left.language == right.language;
}

bool HoldsWords(const UString& folded, const std::vector<UString>& words)
{
    return std::all_of(words.begin(), words.end(), [&folded](const UString& word) {
        return folded.find(word) != UString::npos;
    });
}

UString Searchable(std::initializer_list<UStringView> parts)
{
    UString text;
    for (const UStringView part : parts) {
        text += part;
        text += u'\n';
    }
    return FoldCase(text);
}

}  // namespace

bool DialogView::HasChanges() const noexcept
{
    return FindInView(*this, [](const Field& field) { return field.IsChanged(); }) != nullptr;
}

bool DialogView::HasErrors() const noexcept
{
    return FindInView(*this, [](const Field& field) { return field.HasError(); }) != nullptr;
}

DialogModel::DialogModel(const __XMPMeta__& meta, const kivmetadata::ViewDefinitions& views,
                         const kivmetadata::SchemaDefinitions& schemas, DialogOptions options)
    : options_(std::move(options)), note_(NoteOf(meta))
{
    ModelBuilder builder(meta, schemas);
    for (const std::shared_ptr<const kivmetadata::ViewDefinition>& view : views) {
        if (!(options_.isPlain && view->isCamera)) {
            builder.AddView(*view);
        }
    }
    if (!options_.isPlain) {
        builder.AddAllProperties();
    }
    namespaces_ = builder.Namespaces();
    bindings_ = builder.TakeBindings();
    views_ = builder.TakeViews();
    for (const PropertyBinding& binding : bindings_) {
        Field& field = *binding.field;
        if (options_.isReadOnly ||
            (options_.isPathReadOnly && options_.isPathReadOnly(field.Path()))) {
            field.SetReadOnly();
        }
        field.SetObserver(this);
    }
    FindDerivedStructures(meta);
    currentView_ = RememberedView();
}

DialogModel::~DialogModel() = default;

UString DialogModel::WindowTitle() const
{
    const UString title =
        options_.title.empty() ? DialogText("$$$/Kiv/Dialog/Title=Metadata") : options_.title;
    return ChangeCount() == 0 ? title : DialogText("$$$/Kiv/Dialog/ChangedTitle=• ^0", {title});
}

UString DialogModel::ConfirmLabel() const
{
    return options_.confirmLabel.empty() ? DialogText("$$$/Kiv/Dialog/Button/Ok=OK")
                                         : options_.confirmLabel;
}

UString DialogModel::CancelLabel() const
{
    return DialogText("$$$/Kiv/Dialog/Button/Cancel=Cancel");
}

void DialogModel::SetCurrentView(std::size_t index)
{
    if (index >= views_.size() || index == currentView_) {
        return;
    }
    currentView_ = index;
    RememberView();
    NotifyModel();
}

std::vector<SearchHit> DialogModel::Search(UStringView text) const
{
    std::vector<SearchHit> hits;
    const std::vector<UString> words = Words(FoldCase(text));
    if (words.empty()) {
        return hits;
    }
    for (std::size_t i = 0; i < views_.size(); ++i) {
        for (const FieldGroup& group : views_[i].groups) {
            for (const FieldPlacement& placement : group.fields) {
                const Field& field = *placement.field;
                if (HoldsWords(Searchable({field.Label(), Widen(field.Path()), field.SearchText()}),
                               words)) {
                    hits.push_back({i, placement.field, 0});
                }
            }
        }
        for (std::size_t row = 0; row < views_[i].rows.size(); ++row) {
            const PropertyRow& property = views_[i].rows[row];
            if (HoldsWords(Searchable({Widen(property.path), property.value}), words)) {
                hits.push_back({i, nullptr, row});
            }
        }
    }
    return hits;
}

Field* DialogModel::FirstFocus() const
{
    if (currentView_ >= views_.size()) {
        return nullptr;
    }
    return FindInView(views_[currentView_],
                      [](const Field& field) { return field.IsEmpty() && !field.IsReadOnly(); });
}

UString DialogModel::SummaryText() const
{
    const std::size_t changes = ChangeCount();
    const std::size_t errors = ErrorCount();
    UString text;
    if (changes == 1) {
        text = DialogText("$$$/Kiv/Dialog/Summary/OneChange=1 change");
    } else if (changes > 1) {
        text = DialogText("$$$/Kiv/Dialog/Summary/Changes=^0 changes", {NumberText(changes)});
    }
    if (errors == 0) {
        return text;
    }
    const UString errorText =
        errors == 1 ? DialogText("$$$/Kiv/Dialog/Summary/OneError=1 error")
                    : DialogText("$$$/Kiv/Dialog/Summary/Errors=^0 errors", {NumberText(errors)});
    return text.empty() ? errorText
                        : DialogText("$$$/Kiv/Dialog/Summary/Both=^0, ^1", {text, errorText});
}

std::size_t DialogModel::ChangeCount() const noexcept
{
    return static_cast<std::size_t>(
        std::count_if(bindings_.begin(), bindings_.end(),
                      [](const PropertyBinding& binding) { return binding.field->IsChanged(); }));
}

std::size_t DialogModel::ErrorCount() const noexcept
{
    return static_cast<std::size_t>(
        std::count_if(bindings_.begin(), bindings_.end(),
                      [](const PropertyBinding& binding) { return binding.field->HasError(); }));
}

void DialogModel::EndEdits()
{
    for (const PropertyBinding& binding : bindings_) {
        binding.field->EndEdit();
    }
}

std::optional<SearchHit> DialogModel::FirstError() const
{
    for (std::size_t i = 0; i < views_.size(); ++i) {
        const std::size_t index = (currentView_ + i) % views_.size();
        Field* const field =
            FindInView(views_[index], [](const Field& each) { return each.HasError(); });
        if (field != nullptr) {
            return SearchHit{index, field, 0};
        }
    }
    return std::nullopt;
}

void DialogModel::SetMessage(UString message)
{
    message_ = std::move(message);
    NotifyModel();
}

Field* DialogModel::FindField(std::string_view path) const
{
    const auto lookup = [this](std::string_view prefix) {
        const auto at = namespaces_.find(prefix);
        return at == namespaces_.end() ? std::string() : at->second;
    };
    try {
        return FindField(kivxmp::ParsePath(path, lookup));
    } catch (const XMP_Error&) {
        return nullptr;  // what is no path leads to no field
    }
}

Field* DialogModel::FindField(const kivxmp::Path& path) const
{
    for (const PropertyBinding& binding : bindings_) {
        if (std::equal(path.begin(), path.end(), binding.path.begin(), binding.path.end(),
                       IsSameStep)) {
            return binding.field.get();
        }
    }
    return nullptr;
}

std::optional<std::size_t> DialogModel::ViewOf(const Field& field) const
{
    for (std::size_t i = 0; i < views_.size(); ++i) {
        const std::size_t index = i == 0 ? currentView_ : (i <= currentView_ ? i - 1 : i);
        if (FindInView(views_[index], [&field](const Field& each) { return &each == &field; }) !=
            nullptr) {
            return index;
        }
    }
    return std::nullopt;
}

std::optional<std::size_t> DialogModel::FindView(std::string_view name) const
{
    using Matches = bool (*)(const DialogView& view, std::string_view name);
    constexpr Matches kWays[] = {
        [](const DialogView& view, std::string_view wanted) { return view.name == wanted; },
        [](const DialogView& view, std::string_view wanted) {
            return std::string_view(view.name).substr(view.name.find('/') + 1) == wanted;
        },
        [](const DialogView& view, std::string_view wanted) {
            return Narrow(view.label) == wanted;
        },
    };
    for (const Matches matches : kWays) {
        for (std::size_t i = 0; i < views_.size(); ++i) {
            if (matches(views_[i], name)) {
                return i;
            }
        }
    }
    return std::nullopt;
}

void DialogModel::Apply(__XMPMeta__& target) const
{
    // A derived structure comes into the target whole with the first field that is set in it, so
    // what goes out of it goes last.
    for (const bool isRemoval : {false, true}) {
        for (const PropertyBinding& binding : bindings_) {
            if (binding.field->Items().empty() == isRemoval) {
                WriteField(binding, target);
            }
        }
    }
}

void DialogModel::FindDerivedStructures(const __XMPMeta__& meta)
{
    std::map<std::pair<std::string, std::string>, std::vector<Field*>> structures;
    for (const PropertyBinding& binding : bindings_) {
        if (binding.path.size() > 1) {
            const kivxmp::PathStep& property = binding.path.front();
            structures[{property.uri, property.local}].push_back(binding.field.get());
        }
    }
    for (auto& [name, parts] : structures) {
        kivxmp::PathStep step;
        std::tie(step.uri, step.local) = name;
        const kivxmp::Node* const node = kivxmp::FindWithDerived(meta, {step});
        const auto derived = std::count_if(parts.begin(), parts.end(),
                                           [](const Field* part) { return part->IsDerived(); });
        // A part that no field shows stays, and with it the structure.
        if (derived != 0 && node->Children().size() == static_cast<std::size_t>(derived)) {
            derivedStructures_.push_back(std::move(parts));
        }
    }
}

// Without parts a structure would not be written, and its source would go on telling all of it.
void DialogModel::CheckParts(const std::vector<Field*>& parts, const Field& changed)
{
    const bool areEmpty =
        std::all_of(parts.begin(), parts.end(), [](const Field* part) { return part->IsEmpty(); });
    for (Field* const part : parts) {
        const bool isNews = part->SetLast(areEmpty && part == &changed);
        if (isNews && part != &changed && observer_ != nullptr) {
            observer_->FieldChanged(*part);
        }
    }
}

void DialogModel::FieldChanged(Field& field)
{
    message_.clear();  // it was about what has changed since
    for (const std::vector<Field*>& parts : derivedStructures_) {
        if (std::find(parts.begin(), parts.end(), &field) != parts.end()) {
            CheckParts(parts, field);
        }
    }
    if (observer_ != nullptr) {
        observer_->FieldChanged(field);
        observer_->ModelChanged();
    }
}

void DialogModel::NotifyModel()
{
    if (observer_ != nullptr) {
        observer_->ModelChanged();
    }
}

}  // namespace kivmetadataui
