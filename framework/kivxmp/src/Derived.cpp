#include <kivxmp/Derived.h>

#include "framework/kivxmp/src/PhotoOrigin.h"

#include <kivxmp/XMPError.h>

namespace kivxmp {

namespace {

DerivedSet* SetOf(const __XMPMeta__& meta)
{
    auto* const origin = dynamic_cast<PhotoOrigin*>(meta.GetOrigin().get());
    return origin != nullptr ? &origin->derived : nullptr;
}

DerivedSet::Property PropertyAt(const __XMPMeta__& meta, const Path& path)
{
    DerivedSet* const set = SetOf(meta);
    if (set == nullptr || path.empty() || path.front().kind != PathStep::Kind::kField ||
        meta.FindProperty(path.front().uri, path.front().local) != nullptr) {
        return {};
    }
    return set->Find(path.front().uri, path.front().local);
}

}  // namespace

const Node* FindDerived(const __XMPMeta__& meta, const Path& path)
{
    const DerivedSet::Property property = PropertyAt(meta, path);
    return property.node != nullptr ? property.object->Find(path) : nullptr;
}

const Node* FindDerived(const __XMPMeta__& meta, std::string_view path)
{
    return FindDerived(meta, meta.ParsePath(path));
}

const Node* FindWithDerived(const __XMPMeta__& meta, const Path& path)
{
    const Node* const node = meta.Find(path);
    return node != nullptr ? node : FindDerived(meta, path);
}

const Node* FindWithDerived(const __XMPMeta__& meta, std::string_view path)
{
    return FindWithDerived(meta, meta.ParsePath(path));
}

const DerivedSource* FindDerivedSource(const __XMPMeta__& meta, const Path& path)
{
    return PropertyAt(meta, path).source;
}

const DerivedSource* FindDerivedSource(const __XMPMeta__& meta, std::string_view path)
{
    return FindDerivedSource(meta, meta.ParsePath(path));
}

std::vector<DerivedSource> DerivedPackets(const __XMPMeta__& meta)
{
    const DerivedSet* const set = SetOf(meta);
    return set == nullptr ? std::vector<DerivedSource>() : set->PacketSources();
}

std::unique_ptr<const __XMPMeta__> DerivedProperties(const __XMPMeta__& meta)
{
    std::unique_ptr<__XMPMeta__> derived = __XMPMeta__::Create();
    DerivedSet* const set = SetOf(meta);
    if (set == nullptr) {
        return derived;
    }
    for (const DerivedSet::Property& property : set->All()) {
        const Node& node = *property.node;
        if (meta.FindProperty(node.NamespaceUri(), node.LocalName()) != nullptr) {
            continue;
        }
        PathStep step;
        step.uri = node.NamespaceUri();
        step.local = node.LocalName();
        step.prefix = node.Prefix();
        try {
            derived->SetCopy(Path{step}, node);
        } catch (const XMP_Error&) {
            // It has parts that mean nothing outside of their packet, or is too deep or too large
            // for this one.
        }
    }
    return derived;
}

}  // namespace kivxmp
