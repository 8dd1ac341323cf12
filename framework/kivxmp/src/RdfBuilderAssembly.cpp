// Structures that are read to their end: doubled fields, values with qualifiers; and the properties
// that come out of it all.

#include <algorithm>
#include <array>
#include <iterator>
#include <unordered_set>
#include <utility>

#include "framework/kivxmp/src/RdfBuilder.h"

namespace kivxmp {
namespace {

/// Finds names that come a second time.
class NamesSeen {
public:
    /// False if `key` was added before.
    bool Add(const NameKey* key)
    {
        const auto end = few_.begin() + static_cast<std::ptrdiff_t>(count_);
        if (count_ < few_.size()) {
            if (std::find(few_.begin(), end, key) != end) {
                return false;
            }
            few_[count_++] = key;
            return true;
        }
        if (many_.empty()) {
            many_.insert(few_.begin(), end);
        }
        return many_.insert(key).second;
    }

private:
    std::array<const NameKey*, 8> few_;
    std::size_t count_ = 0;
    std::unordered_set<const NameKey*> many_;
};

}  // namespace

bool RdfBuilder::Assemble(Node& node, const Frame& frame)
{
    if (node.Form() != NodeForm::kStruct) {
        return true;
    }
    if (node.Children().empty()) {
        return true;
    }
    std::vector<Node>& fields = NodeAccess::Children(node);
    NamesSeen seen;
    bool hasValue = false;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const NameKey* const key = NodeAccess::Key(fields[i]);
        if (seen.Add(key)) {
            if (key == terms_.value) {
                hasValue = true;
            }
            continue;
        }
        if (frame.spans[i].begin == frame.spans[i].end) {
            return false;  // twice as an attribute: not even XML with namespaces
        }
        // Only the first of a name is the field; what later ones hold is shown and kept as it is.
        NodeAccess::MakeRaw(fields[i], SourceOf(frame.spans[i], frame.innerScope));
    }
    return !hasValue || TakeValue(node);
}

/// A structure with rdf:value is that value; its other fields are qualifiers.
bool RdfBuilder::TakeValue(Node& node)
{
    std::vector<Node> fields = std::move(NodeAccess::Children(node));
    const auto place = std::find_if(fields.begin(), fields.end(), [this](const Node& field) {
        return NodeAccess::Key(field) == terms_.value;
    });
    if (place->Form() == NodeForm::kRaw) {
        return false;
    }
    std::vector<Node> qualifiers = std::move(NodeAccess::EnsureQualifiers(node));
    Node value = std::move(*place);
    fields.erase(place);
    const QName* const name = NodeAccess::Name(node);
    for (const Node& own : value.Qualifiers()) {
        qualifiers.push_back(own);
    }
    qualifiers.insert(qualifiers.end(), std::make_move_iterator(fields.begin()),
                      std::make_move_iterator(fields.end()));
    NodeAccess::EnsureQualifiers(value).clear();
    NamesSeen seen;
    for (Node& qualifier : qualifiers) {
        if (qualifier.Form() != NodeForm::kRaw && !seen.Add(NodeAccess::Key(qualifier))) {
            return false;
        }
        NodeAccess::AddQualifier(value, std::move(qualifier), terms_);
    }
    NodeAccess::SetName(value, name);
    node = std::move(value);
    return true;
}

void RdfBuilder::AddSlot(Node node, Slot::Place place, Span span, std::size_t description,
                         Span bytes, const Scope* scope)
{
    const NameKey* const key = NodeAccess::Key(node);
    Slot slot;
    // What stands beside the descriptions is no property, whatever its name.
    if (description != kNowhere) {
        const std::size_t first = object_.SlotOf(key);
        if (first != kNowhere) {
            object_.slots[first].hasTwins = true;
            NodeAccess::MakeRaw(node, SourceOf(bytes, scope));
        } else {
            object_.SetSlotOf(key, object_.slots.size());
        }
    }
    originals_->push_back(std::move(node));
    slot.place = place;
    slot.span = span;
    slot.description = description;
    object_.slots.push_back(std::move(slot));
}

void RdfBuilder::Finish()
{
    for (std::size_t i = 0; i < originals_->size(); ++i) {
        object_.slots[i].original = &(*originals_)[i];
    }
    object_.originals = originals_;
}

}  // namespace kivxmp
