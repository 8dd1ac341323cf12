#include "framework/kivxmp/src/NamePool.h"

#include <kivxmp/XMPNode.h>

namespace kivxmp {

NamePool::NamePool(std::size_t count)
{
    keyTable_.Reserve(count);
    const std::string* const rdfUri = EnsureText(kRdfUri);
    const std::string* const xmlUri = EnsureText(kXmlUri);
    const auto rdf = [this, rdfUri](std::string_view local) { return EnsureKey(rdfUri, local); };
    terms_ = {rdfUri,
              xmlUri,
              rdf("RDF"),
              rdf("Description"),
              rdf("Bag"),
              rdf("Seq"),
              rdf("Alt"),
              rdf("li"),
              rdf("value"),
              rdf("type"),
              rdf("about"),
              rdf("ID"),
              rdf("nodeID"),
              rdf("resource"),
              rdf("parseType"),
              rdf("datatype"),
              EnsureKey(xmlUri, "lang")};
}

const std::string* NamePool::EnsureText(std::string_view text)
{
    const auto found = texts_.find(text);
    return &(found != texts_.end() ? found : texts_.emplace(text, true).first)->first;
}

std::uint64_t NamePool::HashOfKey(const std::string* uri, std::string_view local) const noexcept
{
    return HashOf(local, seed_ ^ reinterpret_cast<std::uintptr_t>(uri));
}

const NameKey* NamePool::FindKey(std::uint64_t hash, const std::string* uri,
                                 std::string_view local) const noexcept
{
    NameKey* const* const found = keyTable_.Find(
        hash, [&](const NameKey* key) { return key->uri == uri && key->local == local; });
    return found != nullptr ? *found : nullptr;
}

const NameKey* NamePool::FindKey(std::string_view uri, std::string_view local) const noexcept
{
    const auto found = texts_.find(uri);
    return found == texts_.end() ? nullptr
                                 : FindKey(HashOfKey(&found->first, local), &found->first, local);
}

const NameKey* NamePool::EnsureKey(const std::string* uri, std::string_view local)
{
    const std::uint64_t hash = HashOfKey(uri, local);
    if (const NameKey* const known = FindKey(hash, uri, local)) {
        return known;
    }
    if (keyCount_ == kBlockKeys * keys_.size()) {
        keys_.push_back(std::make_unique<NameKey[]>(kBlockKeys));
    }
    NameKey& key = keys_.back()[keyCount_ % kBlockKeys];
    key = {uri, std::string(local), keyCount_, {&key, nullptr}};
    ++keyCount_;
    return keyTable_.Insert(hash, &key);
}

const QName* NamePool::Ensure(const std::string* prefix, const NameKey* key)
{
    if (key->first.prefix == nullptr) {
        keys_[key->number / kBlockKeys][key->number % kBlockKeys].first.prefix = prefix;
    }
    return key->first.prefix == prefix ? &key->first
                                       : &others_.emplace(QName{key, prefix}, true).first->first;
}

const QName* NamePool::Ensure(std::string_view prefix, std::string_view uri, std::string_view local)
{
    return Ensure(prefix, EnsureKey(EnsureText(uri), local));
}

void NamePool::NoteDeclaration(std::string_view prefix, std::string_view uri)
{
    if (declarations_.find(prefix) == declarations_.end()) {
        declarations_.emplace(prefix, uri);
    }
}

std::string NamePool::DeclaredUri(std::string_view prefix) const
{
    const auto found = declarations_.find(prefix);
    return found == declarations_.end() ? std::string() : found->second;
}

}  // namespace kivxmp
