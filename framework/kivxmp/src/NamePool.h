// The names that occur in one packet, each kept once, so that nodes hold a pointer and equal names
// compare by it. An object shares its pool with its clones; names stay until the last one is gone.

#pragma once

#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace kivxmp {

/// A name without its prefix. Two names of one pool are equal if their addresses are.
struct NameKey {
    std::string uri;
    std::string local;
};

/// A name as the packet wrote it.
struct QName {
    const NameKey* key;
    std::string prefix;
};

/// The terms of RDF that reading and writing treat by themselves.
struct RdfTerms {
    const NameKey* rdf;
    const NameKey* description;
    const NameKey* bag;
    const NameKey* seq;
    const NameKey* alt;
    const NameKey* li;
    const NameKey* value;
    const NameKey* type;
    const NameKey* about;
    const NameKey* id;
    const NameKey* nodeId;
    const NameKey* resource;
    const NameKey* parseType;
    const NameKey* datatype;
    const NameKey* xmlLang;
};

class NamePool {
public:
    NamePool();
    NamePool(const NamePool&) = delete;
    NamePool& operator=(const NamePool&) = delete;

    const RdfTerms& Terms() const noexcept { return terms_; }

    /// Null if no node was ever named so.
    const NameKey* FindKey(std::string_view uri, std::string_view local) const;
    const NameKey* EnsureKey(std::string_view uri, std::string_view local);
    const QName* Ensure(std::string_view prefix, const NameKey* key);
    const QName* Ensure(std::string_view prefix, std::string_view uri, std::string_view local);

    /// Notes that the packet declares `prefix`; the first declaration of a prefix counts.
    void NoteDeclaration(std::string_view prefix, std::string_view uri);
    /// URI of a prefix that the packet declares; empty where it does not.
    std::string DeclaredUri(std::string_view prefix) const;

private:
    std::deque<NameKey> keys_;
    std::deque<QName> names_;
    std::map<std::pair<std::string_view, std::string_view>, const NameKey*> keyIndex_;
    std::map<std::pair<const NameKey*, std::string_view>, const QName*> nameIndex_;
    std::map<std::string, std::string, std::less<>> declarations_;
    RdfTerms terms_;
};

}  // namespace kivxmp
