#include "framework/kivxmp/src/NamePool.h"

#include <kivxmp/XMPNode.h>

namespace kivxmp {

NamePool::NamePool()
{
    const auto rdf = [this](std::string_view local) { return EnsureKey(kRdfUri, local); };
    terms_ = {rdf("RDF"),       rdf("Description"), rdf("Bag"),
              rdf("Seq"),       rdf("Alt"),         rdf("li"),
              rdf("value"),     rdf("type"),        rdf("about"),
              rdf("ID"),        rdf("nodeID"),      rdf("resource"),
              rdf("parseType"), rdf("datatype"),    EnsureKey(kXmlUri, "lang")};
}

const NameKey* NamePool::FindKey(std::string_view uri, std::string_view local) const
{
    const auto found = keyIndex_.find({local, uri});
    return found == keyIndex_.end() ? nullptr : found->second;
}

const NameKey* NamePool::EnsureKey(std::string_view uri, std::string_view local)
{
    if (const NameKey* known = FindKey(uri, local)) {
        return known;
    }
    const NameKey& key = keys_.emplace_back(NameKey{std::string(uri), std::string(local)});
    // Local names differ early, URIs late.
    keyIndex_.emplace(std::pair<std::string_view, std::string_view>(key.local, key.uri), &key);
    return &key;
}

const QName* NamePool::Ensure(std::string_view prefix, const NameKey* key)
{
    const auto found = nameIndex_.find({key, prefix});
    if (found != nameIndex_.end()) {
        return found->second;
    }
    const QName& name = names_.emplace_back(QName{key, std::string(prefix)});
    nameIndex_.emplace(std::pair<const NameKey*, std::string_view>(key, name.prefix), &name);
    return &name;
}

const QName* NamePool::Ensure(std::string_view prefix, std::string_view uri, std::string_view local)
{
    return Ensure(prefix, EnsureKey(uri, local));
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
