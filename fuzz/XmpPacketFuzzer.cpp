// Reads the input as a packet, walks it, and changes it at every place in turn. Unchanged it must
// give its own bytes; changed it must read back as the same tree.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <kivxmp/XMPAccess.h>
#include <kivxmp/XMPMeta.h>

namespace {

using kivxmp::Node;
using kivxmp::NodeForm;

void Require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

/// Raw nodes may have got declarations of what they need.
bool IsSame(const Node& left, const Node& right)
{
    const auto areSame = [](const std::vector<Node>& some, const std::vector<Node>& others) {
        bool same = some.size() == others.size();
        for (std::size_t i = 0; same && i < some.size(); ++i) {
            same = IsSame(some[i], others[i]);
        }
        return same;
    };
    return left.Form() == right.Form() && left.LocalName() == right.LocalName() &&
           left.NamespaceUri() == right.NamespaceUri() &&
           (left.Form() == NodeForm::kRaw || left.Value() == right.Value()) &&
           areSame(left.Children(), right.Children()) &&
           areSame(left.Qualifiers(), right.Qualifiers());
}

void RequireSame(const __XMPMeta__& left, const __XMPMeta__& right)
{
    Require(left.PropertyCount() == right.PropertyCount());
    for (const Node* const node : left.Properties()) {
        const Node* const own = left.FindProperty(node->NamespaceUri(), node->LocalName());
        const Node* const other = right.FindProperty(node->NamespaceUri(), node->LocalName());
        Require((own == nullptr) == (other == nullptr));
        Require(own == nullptr || IsSame(*own, *other));
    }
}

void CheckEdit(const __XMPMeta__& meta, const std::function<void(__XMPMeta__&)>& edit)
{
    const std::unique_ptr<__XMPMeta__> changed = meta.Clone();
    std::string packet;
    try {
        edit(*changed);
        packet = changed->Serialize();
    } catch (const XMP_Error&) {
        return;
    }
    const std::unique_ptr<__XMPMeta__> again = __XMPMeta__::Parse(packet);
    RequireSame(*changed, *again);
    Require(again->Serialize() == packet);
    // Put back, it must read as before.
    for (const Node* const node : meta.Properties()) {
        try {
            kivxmp::PathStep step;
            step.uri = node->NamespaceUri();
            step.local = node->LocalName();
            if (meta.FindProperty(step.uri, step.local) == node) {
                again->SetCopy({step}, *node);
            }
        } catch (const XMP_Error&) {
        }
    }
    try {
        packet = again->Serialize();
    } catch (const XMP_Error&) {
        return;
    }
    RequireSame(*again, *__XMPMeta__::Parse(packet));
}

constexpr std::size_t kMaxPlaces = 12;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    std::unique_ptr<__XMPMeta__> meta;
    try {
        meta = __XMPMeta__::Parse(bytes);
    } catch (const XMP_Error&) {
        return 0;
    }
    Require(meta->Serialize() == bytes);
    std::vector<std::string> paths;
    meta->Walk([&](const __XMPMeta__::Visit& visit) {
        if (paths.size() < kMaxPlaces) {
            paths.push_back(visit.path);
        }
        return true;
    });
    for (const Node* const node : meta->Properties()) {
        kivxmp::ToJson(*meta, node);
        kivxmp::LanguagesOf(node);
        kivxmp::DateOf(node);
    }
    Require(kivxmp::Compare(*meta, *meta->Clone()).empty());

    const std::vector<std::string> items = {"a", "b"};
    for (const std::string& path : paths) {
        CheckEdit(*meta, [&](__XMPMeta__& one) { one.SetText(path, "t<\r\n\xC3\xBC"); });
        CheckEdit(*meta, [&](__XMPMeta__& one) { one.SetText(path + "/?dc:q", "q"); });
        CheckEdit(*meta, [&](__XMPMeta__& one) { one.SetText(path + "[@x-default]", "d"); });
        CheckEdit(*meta, [&](__XMPMeta__& one) { one.SetText(path + "/dc:f/dc:g", "f"); });
        CheckEdit(*meta, [&](__XMPMeta__& one) { one.SetList(path, NodeForm::kSeq, items); });
        CheckEdit(*meta, [&](__XMPMeta__& one) { one.InsertItem(path, 1, NodeForm::kUri, "u"); });
        CheckEdit(*meta, [&](__XMPMeta__& one) { one.Remove(path); });
    }
    CheckEdit(*meta, [&](__XMPMeta__& one) {
        one.SetText("dc:format", "f");
        one.SetText("{http://new/}n[@de]", "n");
        for (const std::string& path : paths) {
            one.Remove(path);
        }
    });
    return 0;
}
