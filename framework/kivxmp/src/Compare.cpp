// Nodes as JSON, and the differences between two objects.

#include <algorithm>
#include <iterator>
#include <map>
#include <string_view>
#include <utility>

#include <kivxmp/XMPAccess.h>

namespace kivxmp {
namespace {

/// By local name, then by namespace: unequal names mostly differ in the first.
using NameView = std::pair<std::string_view, std::string_view>;

NameView NameOf(const Node& node)
{
    return {node.LocalName(), node.NamespaceUri()};
}

std::string LowerCase(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return lower;
}

/// Items by language in lower case; false if one has none, or another one's, or one that cannot
/// stand in a path.
bool IndexLanguages(const Node& node, std::map<std::string, const Node*>& index)
{
    const std::vector<Node>& items = node.Children();
    return node.Form() == NodeForm::kAlt &&
           std::all_of(items.begin(), items.end(), [&index](const Node& item) {
               const std::string_view language = item.Language();
               return !language.empty() && language.find(']') == std::string_view::npos &&
                      index.emplace(LowerCase(language), &item).second;
           });
}

PathStep StepTo(const Node& node)
{
    PathStep step;
    step.uri = node.NamespaceUri();
    step.local = node.LocalName();
    step.prefix = node.Prefix();
    return step;
}

PathStep StepTo(std::string_view language)
{
    PathStep step;
    step.kind = PathStep::Kind::kLanguage;
    step.language = language;
    return step;
}

void AppendJson(std::string& json, const __XMPMeta__& meta, const Node& node)
{
    const auto parts = [&](char opening, char closing, const auto& nameOf) {
        json += opening;
        for (const Node& part : node.Children()) {
            if (&part != &node.Children().front()) {
                json += ",";
            }
            json += nameOf(part);
            AppendJson(json, meta, part);
        }
        json += closing;
    };
    switch (node.Form()) {
        case NodeForm::kSimple:
        case NodeForm::kUri:
        case NodeForm::kRaw:
            json += JsonString(node.Value());
            return;
        case NodeForm::kStruct:
            parts('{', '}', [&meta](const Node& field) {
                return JsonString(meta.PrintPath({StepTo(field)})) + ":";
            });
            return;
        case NodeForm::kAlt: {
            std::map<std::string, const Node*> index;
            if (!node.Children().empty() && IndexLanguages(node, index)) {
                parts('{', '}', [](const Node& item) { return JsonString(item.Language()) + ":"; });
                return;
            }
            break;
        }
        case NodeForm::kBag:
        case NodeForm::kSeq:
            break;
    }
    parts('[', ']', [](const Node&) { return std::string(); });
}

class Comparison {
public:
    Comparison(const __XMPMeta__& before, const __XMPMeta__& after) : before_(before), after_(after)
    {
    }

    std::vector<Change> Run()
    {
        for (const Node* const node : before_.Properties()) {
            if (before_.FindProperty(node->NamespaceUri(), node->LocalName()) == node) {
                CompareNamed(node, after_.FindProperty(node->NamespaceUri(), node->LocalName()));
            }
        }
        for (const Node* const node : after_.Properties()) {
            if (after_.FindProperty(node->NamespaceUri(), node->LocalName()) == node &&
                before_.FindProperty(node->NamespaceUri(), node->LocalName()) == nullptr) {
                CompareNamed(nullptr, node);
            }
        }
        return std::move(changes_);
    }

private:
    void CompareNamed(const Node* before, const Node* after)
    {
        path_.push_back(StepTo(before != nullptr ? *before : *after));
        CompareNodes(before, after);
        path_.pop_back();
    }

    void CompareNodes(const Node* before, const Node* after)
    {
        if (before != nullptr && after != nullptr && *before == *after) {
            return;
        }
        if (!CompareFields(before, after) && !CompareLanguages(before, after)) {
            const __XMPMeta__& meta = before != nullptr ? before_ : after_;
            changes_.push_back(
                {meta.PrintPath(path_), ToJson(before_, before), ToJson(after_, after)});
        }
    }

    static bool IsFollowed(const Node* node)
    {
        return node == nullptr || (node->Form() == NodeForm::kStruct && !node->Children().empty());
    }

    bool CompareFields(const Node* before, const Node* after)
    {
        if (!IsFollowed(before) || !IsFollowed(after)) {
            return false;
        }
        const std::size_t changesBefore = changes_.size();
        std::map<NameView, const Node*> old;
        std::map<NameView, const Node*> now;
        const auto index = [](const Node* node, std::map<NameView, const Node*>& fields) {
            for (std::size_t i = 0; node != nullptr && i < node->Children().size(); ++i) {
                fields.emplace(NameOf(node->Children()[i]), &node->Children()[i]);
            }
        };
        index(before, old);
        index(after, now);
        for (std::size_t i = 0; before != nullptr && i < before->Children().size(); ++i) {
            const Node& field = before->Children()[i];
            if (old[NameOf(field)] == &field) {
                const auto found = now.find(NameOf(field));
                CompareNamed(&field, found == now.end() ? nullptr : found->second);
            }
        }
        for (std::size_t i = 0; after != nullptr && i < after->Children().size(); ++i) {
            const Node& field = after->Children()[i];
            if (now[NameOf(field)] == &field && old.find(NameOf(field)) == old.end()) {
                CompareNamed(nullptr, &field);
            }
        }
        // Only the order of fields or the qualifiers differ: shown as the whole.
        return changes_.size() != changesBefore;
    }

    bool CompareLanguages(const Node* before, const Node* after)
    {
        std::map<std::string, const Node*> old;
        std::map<std::string, const Node*> now;
        const auto isFollowed = [](const Node* node, std::map<std::string, const Node*>& index) {
            return node == nullptr || (!node->Children().empty() && IndexLanguages(*node, index));
        };
        if (!isFollowed(before, old) || !isFollowed(after, now)) {
            return false;
        }
        const std::size_t changesBefore = changes_.size();
        for (std::size_t i = 0; before != nullptr && i < before->Children().size(); ++i) {
            const Node& item = before->Children()[i];
            const auto found = now.find(LowerCase(item.Language()));
            CompareItems(&item, found == now.end() ? nullptr : found->second);
        }
        for (std::size_t i = 0; after != nullptr && i < after->Children().size(); ++i) {
            const Node& item = after->Children()[i];
            if (old.find(LowerCase(item.Language())) == old.end()) {
                CompareItems(nullptr, &item);
            }
        }
        return changes_.size() != changesBefore;
    }

    void CompareItems(const Node* before, const Node* after)
    {
        path_.push_back(StepTo((before != nullptr ? before : after)->Language()));
        CompareNodes(before, after);
        path_.pop_back();
    }

    const __XMPMeta__& before_;
    const __XMPMeta__& after_;
    Path path_;
    std::vector<Change> changes_;
};

}  // namespace

std::string JsonString(std::string_view text)
{
    constexpr std::pair<char, char> kShort[] = {{'"', '"'},  {'\\', '\\'}, {'\b', 'b'}, {'\f', 'f'},
                                                {'\n', 'n'}, {'\r', 'r'},  {'\t', 't'}};
    constexpr std::string_view kHex = "0123456789abcdef";
    std::string json = "\"";
    for (const char c : text) {
        const auto* const row =
            std::find_if(std::begin(kShort), std::end(kShort),
                         [c](const std::pair<char, char>& one) { return one.first == c; });
        const auto byte = static_cast<unsigned char>(c);
        if (row != std::end(kShort)) {
            json += '\\';
            json += row->second;
        } else if (byte < 0x20) {
            json += "\\u00";
            json += kHex[byte >> 4];
            json += kHex[byte & 0xF];
        } else {
            json += c;
        }
    }
    return json + "\"";
}

std::string ToJson(const __XMPMeta__& meta, const Node* node)
{
    if (node == nullptr) {
        return "null";
    }
    std::string json;
    AppendJson(json, meta, *node);
    return json;
}

std::vector<Change> Compare(const __XMPMeta__& before, const __XMPMeta__& after)
{
    return Comparison(before, after).Run();
}

std::string PrintChange(const Change& change)
{
    return change.path + "\t" + change.oldJson + "\t" + change.newJson;
}

}  // namespace kivxmp
