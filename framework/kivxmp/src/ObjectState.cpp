#include "framework/kivxmp/src/ObjectState.h"

#include <algorithm>

namespace kivxmp {

const Node* ObjectState::FindProperty(const NameKey* key) const noexcept
{
    const std::size_t number = SlotOf(key);
    return number == kNowhere ? nullptr : slots[number].Current();
}

void ObjectState::SetSlotOf(const NameKey* key, std::size_t number)
{
    if (key->number >= slotOfName_.size()) {
        slotOfName_.resize(std::max(key->number + 1, 2 * slotOfName_.size()), kNowhere);
    }
    slotOfName_[key->number] = number;
}

const Node* ObjectState::Find(const Path& path) const noexcept
{
    const Node* node = nullptr;
    for (const PathStep& step : path) {
        if (node == nullptr) {
            node = step.kind == PathStep::Kind::kField
                       ? FindProperty(names->FindKey(step.uri, step.local))
                       : nullptr;
        } else {
            node = FindStep(*node, step, *names);
        }
        if (node == nullptr) {
            return nullptr;
        }
    }
    return node;
}

PrefixLookup ObjectState::Prefixes() const
{
    return [this](std::string_view prefix) { return names->DeclaredUri(prefix); };
}

const Node* FindStep(const Node& node, const PathStep& step, const NamePool& names) noexcept
{
    switch (step.kind) {
        case PathStep::Kind::kField:
            return NodeAccess::FindField(node, names.FindKey(step.uri, step.local));
        case PathStep::Kind::kQualifier:
            return NodeAccess::FindQualifier(node, names.FindKey(step.uri, step.local));
        case PathStep::Kind::kItem:
            return node.IsArray() && step.index >= 1 && step.index <= node.Children().size()
                       ? &node.Children()[step.index - 1]
                       : nullptr;
        case PathStep::Kind::kLanguage:
            return node.FindLanguage(step.language);
    }
    return nullptr;
}

}  // namespace kivxmp
