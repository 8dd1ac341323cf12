#include "framework/kivxmp/src/DerivedEdit.h"

#include <algorithm>

#include "framework/kivxmp/src/TreeEditor.h"

#include <kivxmp/XMPError.h>

namespace kivxmp {

DerivedEdit::DerivedEdit(ObjectState& object, const Path& path) : object_(object), path_(path)
{
    if (object.origin == nullptr || path.empty() || path.front().kind != PathStep::Kind::kField) {
        return;
    }
    const Slot* const slot = OwnSlot();
    if (slot == nullptr || slot->Current() == nullptr || slot->original == nullptr) {
        derived_ = object.origin->FindDerived(path.front().uri, path.front().local);
    }
}

Slot* DerivedEdit::OwnSlot() const
{
    const std::size_t number =
        object_.SlotOf(object_.names->FindKey(path_.front().uri, path_.front().local));
    return number == kNowhere ? nullptr : &object_.slots[number];
}

void DerivedEdit::CopyIn()
{
    const Slot* const slot = derived_ != nullptr ? OwnSlot() : nullptr;
    if (derived_ == nullptr || (slot != nullptr && slot->Current() != nullptr)) {
        return;
    }
    const Path property{path_.front()};
    try {
        TreeEditor(object_, property).SetCopy(*derived_);
        isCopied_ = true;
    } catch (const XMP_Error&) {
        // What replaces the property whole does not need the copy.
        if (path_.size() > 1) {
            throw;
        }
    }
}

void DerivedEdit::TakeOut(bool onlyEqual) noexcept
{
    Slot* const slot = derived_ != nullptr ? OwnSlot() : nullptr;
    if (slot == nullptr || slot->changed == nullptr) {
        return;
    }
    // A property that the packet had, and that was removed, may come back as the derived one: that
    // is a change like any other.
    const bool isUnchanged = slot->original == nullptr && *slot->changed == *derived_;
    if (onlyEqual ? isUnchanged : isCopied_) {
        object_.nodeCount -= std::min(object_.nodeCount, CountNodes(*slot->changed));
        slot->changed.reset();
        slot->isRemoved = true;
    }
}

bool DerivedEdit::Remove()
{
    const auto isThere = [this] {
        const Slot* const slot = OwnSlot();
        return slot != nullptr && slot->Current() != nullptr;
    };
    if (derived_ == nullptr || path_.size() == 1) {
        return TreeEditor(object_, path_).Remove();
    }
    const bool wasThere = isThere();
    bool isRemoved = false;
    Run([&] { isRemoved = TreeEditor(object_, path_).Remove(); });
    return isRemoved && (wasThere || isThere());
}

}  // namespace kivxmp
