#include <kivxmp/XMPMeta.h>

#include <algorithm>
#include <map>
#include <unordered_map>
#include <utility>

#include "framework/kivxmp/src/DerivedEdit.h"
#include "framework/kivxmp/src/ObjectState.h"
#include "framework/kivxmp/src/TreeEditor.h"

namespace kivxmp {
namespace {

/// Goes through a tree and keeps the path to where it is.
class Walker {
public:
    using Visitor = std::function<bool(const __XMPMeta__::Visit&)>;

    Walker(const ObjectState& object, const Visitor& visitor)
        : prefixes_(object.Prefixes()), visitor_(visitor)
    {
    }

    bool WalkProperty(const Node& node)
    {
        path_ = NameOf(node);
        return WalkNode(node, 0, /*isQualifier=*/false);
    }

private:
    bool WalkNode(const Node& node, int depth, bool isQualifier)
    {
        if (!visitor_({path_, node, depth, isQualifier})) {
            return false;
        }
        const std::size_t length = path_.size();
        for (const Node& qualifier : node.Qualifiers()) {
            path_ += "/?" + NameOf(qualifier);
            if (!WalkNode(qualifier, depth + 1, /*isQualifier=*/true)) {
                return false;
            }
            path_.resize(length);
        }
        return node.IsArray() ? WalkItems(node, depth) : WalkFields(node, depth);
    }

    bool WalkFields(const Node& node, int depth)
    {
        const std::size_t length = path_.size();
        for (const Node& field : node.Children()) {
            path_ += "/" + NameOf(field);
            if (!WalkNode(field, depth + 1, /*isQualifier=*/false)) {
                return false;
            }
            path_.resize(length);
        }
        return true;
    }

    bool WalkItems(const Node& node, int depth)
    {
        std::map<std::string, int, std::less<>> languages;
        if (node.Form() == NodeForm::kAlt) {
            for (const Node& item : node.Children()) {
                ++languages[LowerCase(item.Language())];
            }
        }
        const std::size_t length = path_.size();
        std::size_t number = 0;
        for (const Node& item : node.Children()) {
            ++number;
            const std::string_view language = item.Language();
            const bool isNamed = !languages.empty() && !language.empty() &&
                                 language.find(']') == std::string_view::npos &&
                                 languages[LowerCase(language)] == 1;
            path_ +=
                isNamed ? "[@" + std::string(language) + "]" : "[" + std::to_string(number) + "]";
            if (!WalkNode(item, depth + 1, /*isQualifier=*/false)) {
                return false;
            }
            path_.resize(length);
        }
        return true;
    }

    static std::string LowerCase(std::string_view text)
    {
        std::string lower(text);
        std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) {
            return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        });
        return lower;
    }

    const std::string& NameOf(const Node& node)
    {
        const auto [found, isNew] = names_.try_emplace(NodeAccess::Name(node));
        if (isNew) {
            PathStep step;
            step.uri = node.NamespaceUri();
            step.local = node.LocalName();
            step.prefix = node.Prefix();
            found->second = PrintStep(step, /*isFirst=*/true, prefixes_);
        }
        return found->second;
    }

    PrefixLookup prefixes_;
    const Visitor& visitor_;
    std::string path_;
    std::unordered_map<const QName*, std::string> names_;
};

}  // namespace

Origin::~Origin() = default;

const Node* Origin::FindDerived(std::string_view, std::string_view)
{
    return nullptr;
}

}  // namespace kivxmp

using kivxmp::DerivedEdit;
using kivxmp::LanguageText;
using kivxmp::Node;
using kivxmp::NodeForm;
using kivxmp::Path;
using kivxmp::TreeEditor;

__XMPMeta__::__XMPMeta__(std::unique_ptr<kivxmp::ObjectState> state) noexcept
    : state_(std::move(state))
{
}

__XMPMeta__::~__XMPMeta__() = default;

std::unique_ptr<__XMPMeta__> __XMPMeta__::Create()
{
    return std::unique_ptr<__XMPMeta__>(new __XMPMeta__(kivxmp::NewPacket()));
}

std::unique_ptr<__XMPMeta__> __XMPMeta__::Parse(std::string_view bytes)
{
    return std::unique_ptr<__XMPMeta__>(new __XMPMeta__(kivxmp::ReadPacket(bytes)));
}

std::unique_ptr<__XMPMeta__> __XMPMeta__::Clone() const
{
    return std::unique_ptr<__XMPMeta__>(
        new __XMPMeta__(std::make_unique<kivxmp::ObjectState>(*state_)));
}

void __XMPMeta__::Swap(__XMPMeta__& other) noexcept
{
    state_.swap(other.state_);
}

void __XMPMeta__::ReplacePacket(const __XMPMeta__& other)
{
    if (&other == this) {
        return;
    }
    auto state = std::make_unique<kivxmp::ObjectState>(*other.state_);
    state->origin = state_->origin;
    state->replaced = state_->replaced != nullptr ? state_->replaced : state_->packet;
    state_ = std::move(state);
}

std::string __XMPMeta__::Serialize(const kivxmp::SerializeOptions& options) const
{
    return kivxmp::WritePacket(*state_, options);
}

bool __XMPMeta__::IsChanged() const
{
    if (state_->replaced != nullptr && state_->replaced->bytes != state_->packet->bytes) {
        return true;
    }
    return std::any_of(state_->slots.begin(), state_->slots.end(),
                       [](const kivxmp::Slot& slot) { return slot.IsChanged(); });
}

std::string_view __XMPMeta__::SourceBytes() const noexcept
{
    return state_->packet->bytes;
}

std::vector<const Node*> __XMPMeta__::Properties() const
{
    std::vector<const Node*> properties;
    properties.reserve(state_->slots.size());
    for (const kivxmp::Slot& slot : state_->slots) {
        if (slot.Current() != nullptr) {
            properties.push_back(slot.Current());
        }
    }
    return properties;
}

std::size_t __XMPMeta__::PropertyCount() const noexcept
{
    return static_cast<std::size_t>(
        std::count_if(state_->slots.begin(), state_->slots.end(),
                      [](const kivxmp::Slot& slot) { return slot.Current() != nullptr; }));
}

const Node* __XMPMeta__::FindProperty(std::string_view uri, std::string_view local) const noexcept
{
    return state_->FindProperty(state_->names->FindKey(uri, local));
}

const Node* __XMPMeta__::Find(std::string_view path) const
{
    return Find(ParsePath(path));
}

const Node* __XMPMeta__::Find(const Path& path) const noexcept
{
    return state_->Find(path);
}

Path __XMPMeta__::ParsePath(std::string_view text) const
{
    return kivxmp::ParsePath(text, state_->Prefixes());
}

std::string __XMPMeta__::PrintPath(const Path& path) const
{
    return kivxmp::PrintPath(path, state_->Prefixes());
}

void __XMPMeta__::Walk(const std::function<bool(const Visit& visit)>& visitor) const
{
    kivxmp::Walker walker(*state_, visitor);
    for (const kivxmp::Slot& slot : state_->slots) {
        if (slot.Current() != nullptr && !walker.WalkProperty(*slot.Current())) {
            return;
        }
    }
}

void __XMPMeta__::SetText(std::string_view path, std::string_view text)
{
    SetText(ParsePath(path), text);
}

void __XMPMeta__::SetText(const Path& path, std::string_view text)
{
    DerivedEdit(*state_, path).Run([&] {
        TreeEditor(*state_, path).SetText(NodeForm::kSimple, text);
    });
}

void __XMPMeta__::SetUri(std::string_view path, std::string_view uri)
{
    SetUri(ParsePath(path), uri);
}

void __XMPMeta__::SetUri(const Path& path, std::string_view uri)
{
    DerivedEdit(*state_, path).Run([&] { TreeEditor(*state_, path).SetText(NodeForm::kUri, uri); });
}

void __XMPMeta__::SetList(std::string_view path, NodeForm form, std::span<const std::string> items)
{
    SetList(ParsePath(path), form, items);
}

void __XMPMeta__::SetList(const Path& path, NodeForm form, std::span<const std::string> items)
{
    DerivedEdit(*state_, path).Run([&] { TreeEditor(*state_, path).SetList(form, items); });
}

void __XMPMeta__::SetLanguages(std::string_view path, std::span<const LanguageText> items)
{
    SetLanguages(ParsePath(path), items);
}

void __XMPMeta__::SetLanguages(const Path& path, std::span<const LanguageText> items)
{
    DerivedEdit(*state_, path).Run([&] { TreeEditor(*state_, path).SetLanguages(items); });
}

void __XMPMeta__::Ensure(std::string_view path, NodeForm form)
{
    Ensure(ParsePath(path), form);
}

void __XMPMeta__::Ensure(const Path& path, NodeForm form)
{
    DerivedEdit(*state_, path).Run([&] { TreeEditor(*state_, path).Ensure(form); });
}

void __XMPMeta__::SetCopy(std::string_view path, const Node& node)
{
    SetCopy(ParsePath(path), node);
}

void __XMPMeta__::SetCopy(const Path& path, const Node& node)
{
    DerivedEdit(*state_, path).Run([&] { TreeEditor(*state_, path).SetCopy(node); });
}

void __XMPMeta__::InsertItem(std::string_view path, std::size_t index, NodeForm form,
                             std::string_view value)
{
    const Path parsed = ParsePath(path);
    DerivedEdit(*state_, parsed).Run([&] {
        TreeEditor(*state_, parsed).InsertItem(index, form, value);
    });
}

void __XMPMeta__::MoveItem(std::string_view path, std::size_t from, std::size_t to)
{
    const Path parsed = ParsePath(path);
    DerivedEdit(*state_, parsed).Run([&] { TreeEditor(*state_, parsed).MoveItem(from, to); });
}

bool __XMPMeta__::Remove(std::string_view path)
{
    return Remove(ParsePath(path));
}

bool __XMPMeta__::Remove(const Path& path)
{
    return DerivedEdit(*state_, path).Remove();
}

const std::shared_ptr<kivxmp::Origin>& __XMPMeta__::GetOrigin() const noexcept
{
    return state_->origin;
}

void __XMPMeta__::SetOrigin(std::shared_ptr<kivxmp::Origin> origin) noexcept
{
    state_->origin = std::move(origin);
}
