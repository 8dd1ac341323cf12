// The changes of lists.

#include <algorithm>
#include <deque>
#include <unordered_map>
#include <utility>

#include "framework/kivxmp/src/TreeEditor.h"

namespace kivxmp {
namespace {

std::string LowerCase(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return lower;
}

/// The texts among a list's items, by some key, to be used once each in their order.
class ReusableItems {
public:
    template <class KeyOf>
    ReusableItems(std::vector<Node>& items, const KeyOf& keyOf)
    {
        for (Node& item : items) {
            if (item.IsText()) {
                byKey_[std::string(keyOf(item))].push_back(&item);
            }
        }
    }

    /// Null if none is left.
    Node* Take(const std::string& key)
    {
        const auto found = byKey_.find(key);
        if (found == byKey_.end() || found->second.empty()) {
            return nullptr;
        }
        Node* const item = found->second.front();
        found->second.pop_front();
        return item;
    }

private:
    std::unordered_map<std::string, std::deque<Node*>> byKey_;
};

}  // namespace

const Node& TreeEditor::CheckList() const
{
    CheckSlot();
    const Node* const list = object_.Find(path_);
    if (list == nullptr) {
        Fail(kKivXmpNotFound, "there is no list");
    }
    if (!list->IsArray()) {
        Fail(kKivXmpWrongForm, "this is no list");
    }
    return *list;
}

void TreeEditor::SetList(NodeForm form, std::span<const std::string> items)
{
    if (!IsArrayForm(form)) {
        Fail(kKivXmpBadArgument, "this is no form of a list");
    }
    CheckIsNoLanguage();
    std::for_each(items.begin(), items.end(), [this](const std::string& item) { CheckText(item); });
    CheckWay(/*inside=*/2);
    CheckNodeCount(items.size());
    Node& node = Reach(path_.size());
    const std::size_t before = CountNodes(node);
    std::vector<Node> old = std::move(NodeAccess::Children(node));
    ReusableItems reusable(old, [](const Node& item) { return item.Value(); });
    std::vector<Node> now;
    now.reserve(items.size());
    const bool wasArray = node.IsArray();
    const std::size_t countBefore = object_.nodeCount;
    for (const std::string& item : items) {
        if (Node* const known = wasArray ? reusable.Take(item) : nullptr) {
            now.push_back(std::move(*known));
        } else {
            now.push_back(MakeText(object_.names->Ensure("rdf", terms_.li), item));
        }
    }
    object_.nodeCount = countBefore;  // Finish counts the whole
    NodeAccess::ClearContent(node);
    NodeAccess::SetForm(node, form);
    NodeAccess::Children(node) = std::move(now);
    Finish(node, before);
}

void TreeEditor::SetLanguages(std::span<const LanguageText> items)
{
    CheckIsNoLanguage();
    for (const LanguageText& item : items) {
        CheckText(item.text);
        CheckText(item.language);
    }
    CheckWay(/*inside=*/2);
    CheckNodeCount(2 * items.size());
    Node& node = Reach(path_.size());
    const std::size_t before = CountNodes(node);
    std::vector<Node> old = std::move(NodeAccess::Children(node));
    ReusableItems reusable(old, [](const Node& item) { return LowerCase(item.Language()); });
    std::vector<Node> now;
    now.reserve(items.size());
    const bool wasArray = node.IsArray();
    const std::size_t countBefore = object_.nodeCount;
    for (const LanguageText& item : items) {
        Node* const known = wasArray ? reusable.Take(LowerCase(item.language)) : nullptr;
        now.push_back(known != nullptr ? std::move(*known) : MakeItem({}));
        SetLanguage(now.back(), item.language);
        NodeAccess::Value(now.back()) = item.text;
    }
    object_.nodeCount = countBefore;
    NodeAccess::ClearContent(node);
    NodeAccess::SetForm(node, NodeForm::kAlt);
    NodeAccess::Children(node) = std::move(now);
    Finish(node, before);
}

void TreeEditor::InsertItem(std::size_t index, NodeForm form, std::string_view value)
{
    if (form == NodeForm::kRaw) {
        Fail(kKivXmpBadArgument, "raw RDF cannot be made");
    }
    const bool isText = form == NodeForm::kSimple || form == NodeForm::kUri;
    CheckText(isText ? value : std::string_view());
    const Node& list = CheckList();
    if (index == 0 || index > list.Children().size() + 1) {
        Fail(kKivXmpNotFound, "the list has " + std::to_string(list.Children().size()) + " items");
    }
    CheckWay(/*inside=*/3);  // the list's element, the item's, and that of a list as item
    CheckNodeCount(1);
    Node item =
        MakeText(object_.names->Ensure("rdf", terms_.li), isText ? value : std::string_view());
    NodeAccess::SetForm(item, form);
    std::vector<Node>& items = NodeAccess::Children(Reach(path_.size()));
    items.insert(items.begin() + static_cast<std::ptrdiff_t>(index - 1), std::move(item));
}

void TreeEditor::MoveItem(std::size_t from, std::size_t to)
{
    const std::size_t count = CheckList().Children().size();
    if (from == 0 || from > count || to == 0 || to > count) {
        Fail(kKivXmpNotFound, "the list has " + std::to_string(count) + " items");
    }
    std::vector<Node>& items = NodeAccess::Children(Reach(path_.size()));
    const auto at = [&items](std::size_t number) {
        return items.begin() + static_cast<std::ptrdiff_t>(number - 1);
    };
    if (from < to) {
        std::rotate(at(from), at(from + 1), at(to + 1));
    } else {
        std::rotate(at(to), at(from), at(from + 1));
    }
}

}  // namespace kivxmp
