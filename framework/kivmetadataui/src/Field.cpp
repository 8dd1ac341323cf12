#include "framework/kivmetadataui/src/Field.h"

#include <utility>

#include "framework/kivmetadataui/src/Texts.h"

namespace kivmetadataui {

using kivcore::UString;

namespace {

// Old steps fall off: a field of some thousand edits is not worth the memory.
constexpr std::size_t kMostUndoSteps = 200;

void Push(std::vector<FieldItems>& steps, FieldItems items)
{
    if (steps.size() == kMostUndoSteps) {
        steps.erase(steps.begin());
    }
    steps.push_back(std::move(items));
}

}  // namespace

Field::Field(FieldKind kind, FieldDescription description)
    : kind_(kind), description_(std::move(description))
{
}

Field::~Field() = default;

bool Field::IsEmpty() const noexcept
{
    for (const FieldItem& item : items_) {
        if (!item.text.empty()) {
            return false;
        }
    }
    return true;
}

UString Field::DisplayText() const
{
    return items_.empty() ? UString() : items_.front().text;
}

void Field::Revert()
{
    if (IsReadOnly() || items_ == original_) {
        return;
    }
    Edit(original_, EditKind::kWhole);
    items_ = original_;  // with the origins as they were read
}

void Field::Undo()
{
    if (IsReadOnly() || undo_.empty()) {
        return;
    }
    redo_.push_back(std::exchange(items_, std::move(undo_.back())));
    undo_.pop_back();
    isTyping_ = false;
    SetError(/*isLenient=*/false);
    Notify();
}

void Field::Redo()
{
    if (IsReadOnly() || redo_.empty()) {
        return;
    }
    undo_.push_back(std::exchange(items_, std::move(redo_.back())));
    redo_.pop_back();
    isTyping_ = false;
    SetError(/*isLenient=*/false);
    Notify();
}

void Field::EndEdit()
{
    if (!isTyping_) {
        return;
    }
    isTyping_ = false;
    const UString errorBefore = error_;
    SetError(/*isLenient=*/false);
    FieldItems tidy = HasError() ? items_ : Tidy(items_);
    if (tidy != items_ || error_ != errorBefore) {
        items_ = std::move(tidy);
        Notify();
    }
}

UString Field::AccessibleState() const
{
    UString state;
    const auto add = [&state](const UString& part) {
        if (part.empty()) {
            return;
        }
        if (!state.empty()) {
            state += u", ";
        }
        state += part;
    };
    if (IsChanged()) {
        add(DialogText("$$$/Kiv/Dialog/State/Changed=changed"));
    }
    if (IsDerived()) {
        add(source_.detail);
    }
    if (IsReadOnly()) {
        add(DialogText("$$$/Kiv/Dialog/State/ReadOnly=read-only"));
    }
    if (HasError()) {
        add(error_);
    } else {
        add(explanation_.empty() ? description_.hint : explanation_);
    }
    return state;
}

void Field::Load(FieldItems items)
{
    original_ = items;
    items_ = std::move(items);
    undo_.clear();
    redo_.clear();
    isTyping_ = false;
    error_.clear();
    Loaded();
}

void Field::Lock(UString explanation)
{
    description_.isReadOnly = true;
    explanation_ = std::move(explanation);
}

void Field::SetSource(FieldSource source)
{
    source_ = std::move(source);
}

bool Field::SetLast(bool isLast)
{
    isLast_ = isLast;
    const UString errorBefore = error_;
    SetError(/*isLenient=*/isTyping_);
    return error_ != errorBefore;
}

void Field::Edit(FieldItems items, EditKind kind)
{
    if (IsReadOnly() || items == items_) {
        return;
    }
    if (kind == EditKind::kWhole || !isTyping_) {
        Push(undo_, items_);
    }
    redo_.clear();
    isTyping_ = kind == EditKind::kTyping;
    items_ = std::move(items);
    SetError(/*isLenient=*/isTyping_);
    Notify();
}

UString Field::Check(const FieldItems&) const
{
    return {};
}

UString Field::CurrentError() const
{
    if (!IsChanged()) {
        return {};
    }
    // Taking it out of the packet would change nothing, and it would be back at the next look.
    if ((source_.isWhole || isLast_) && IsEmpty()) {
        return DialogText(
            "$$$/Kiv/Dialog/Source/Stays=This value comes from elsewhere. It can be replaced, but "
            "not removed.");
    }
    return Check(items_);
}

void Field::SetError(bool isLenient)
{
    UString error = CurrentError();
    // While typing, an error may go or become another one, but none appears.
    if (!isLenient || error.empty() || HasError()) {
        error_ = std::move(error);
    }
}

void Field::Notify()
{
    if (observer_ != nullptr) {
        observer_->FieldChanged(*this);
    }
}

}  // namespace kivmetadataui
