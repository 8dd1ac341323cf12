// The names that occur in one packet, each kept once, so that nodes hold a pointer and equal names
// compare by it. An object shares its pool with its clones; names stay until the last one is gone.

#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "framework/kivxmp/src/FlatTable.h"

namespace kivxmp {

struct NameKey;

/// A name as the packet wrote it.
struct QName {
    const NameKey* key = nullptr;
    const std::string* prefix = nullptr;  // belongs to the pool, each prefix once
};

/// A name without its prefix. Two names of one pool are equal if their addresses are.
struct NameKey {
    const std::string* uri = nullptr;  // belongs to the pool, each URI once
    std::string local;
    std::size_t number = 0;  // of the key in its pool
    QName first;             // with the first prefix it was written with; mostly the only one
};

/// The terms of RDF that reading and writing treat by themselves.
struct RdfTerms {
    const std::string* rdfUri;
    const std::string* xmlUri;
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
    /// Makes room for about so many names.
    explicit NamePool(std::size_t count);
    NamePool(const NamePool&) = delete;
    NamePool& operator=(const NamePool&) = delete;

    const RdfTerms& Terms() const noexcept { return terms_; }

    /// A URI or prefix that the pool keeps.
    const std::string* EnsureText(std::string_view text);
    /// Null if no node was ever named so.
    const NameKey* FindKey(std::string_view uri, std::string_view local) const noexcept;
    // `uri` and `prefix` are of EnsureText.
    const NameKey* EnsureKey(const std::string* uri, std::string_view local);
    const QName* Ensure(const std::string* prefix, const NameKey* key);
    const QName* Ensure(std::string_view prefix, const NameKey* key)
    {
        return Ensure(EnsureText(prefix), key);
    }
    const QName* Ensure(std::string_view prefix, std::string_view uri, std::string_view local);

    /// Notes that the packet declares `prefix`; the first declaration of a prefix counts.
    void NoteDeclaration(std::string_view prefix, std::string_view uri);
    /// URI of a prefix that the packet declares; empty where it does not.
    std::string DeclaredUri(std::string_view prefix) const;

private:
    struct LessQName {
        bool operator()(const QName& left, const QName& right) const noexcept
        {
            return std::less<>()(left.key, right.key) ||
                   (left.key == right.key && std::less<>()(left.prefix, right.prefix));
        }
    };

    std::uint64_t HashOfKey(const std::string* uri, std::string_view local) const noexcept;
    const NameKey* FindKey(std::uint64_t hash, const std::string* uri,
                           std::string_view local) const noexcept;

    static constexpr std::size_t kBlockKeys = 64;

    std::uint64_t seed_ = NewHashSeed();
    std::map<std::string, std::string, std::less<>> declarations_;
    // Addresses of what they hold stay.
    std::map<std::string, bool, std::less<>> texts_;
    std::vector<std::unique_ptr<NameKey[]>> keys_;  // in blocks of kBlockKeys
    std::size_t keyCount_ = 0;
    FlatTable<NameKey*> keyTable_;
    std::map<QName, bool, LessQName> others_;  // names with further prefixes
    RdfTerms terms_;
};

}  // namespace kivxmp
