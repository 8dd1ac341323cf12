#include "framework/kivxmp/src/PhotoPackets.h"

#include <algorithm>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "framework/kivxmp/src/PacketDigest.h"

#include <kivxmp/XMPAccess.h>

namespace kivxmp {

using photo::ByteSource;
using photo::PacketParts;
using photo::PhotoError;
using photo::PhotoFormat;

namespace {

constexpr std::string_view kNoteUri = "http://ns.adobe.com/xmp/note/";
constexpr std::string_view kExtendedName = "HasExtendedXMP";

Path PropertyPath(std::string_view uri, std::string_view local, std::string_view prefix)
{
    PathStep step;
    step.uri = uri;
    step.local = local;
    step.prefix = prefix;
    return {step};
}

Path PathOf(const Node& property)
{
    return PropertyPath(property.NamespaceUri(), property.LocalName(), property.Prefix());
}

Path ExtendedNamePath()
{
    return PropertyPath(kNoteUri, kExtendedName, "xmpNote");
}

std::string NameOf(const Node& property)
{
    return property.NamespaceUri() + "}" + property.LocalName();
}

/// Gives `meta` the properties that only `other` has. False if one of them cannot be copied.
bool AddMissing(__XMPMeta__& meta, const __XMPMeta__& other)
{
    std::unordered_set<std::string> added;
    for (const Node* const property : other.Properties()) {
        if (added.contains(NameOf(*property))) {
            return false;  // held twice: the second would replace the first
        }
        if (meta.FindProperty(property->NamespaceUri(), property->LocalName()) != nullptr) {
            continue;
        }
        try {
            meta.SetCopy(PathOf(*property), *property);
        } catch (const XMP_Error&) {
            return false;
        }
        added.insert(NameOf(*property));
    }
    return true;
}

/// As if `meta` had been read like this.
std::unique_ptr<__XMPMeta__> Settled(const __XMPMeta__& meta)
{
    return __XMPMeta__::Parse(meta.Serialize({.paddingBytes = 0}));
}

std::optional<std::string> NameOfExtended(const __XMPMeta__& meta)
{
    return TextOf(meta.FindProperty(kNoteUri, kExtendedName));
}

/// Adds the extended part that the packet names.
void JoinExtended(PhotoObject& object, ByteSource& source, PhotoFormat& format)
{
    if (!format.TakesExtended()) {
        return;
    }
    const std::optional<std::string> digest = NameOfExtended(*object.meta);
    if (!digest) {
        return;
    }
    const auto refuse = [&object](const std::string& reason) {
        if (!object.refusal) {
            object.refusal.emplace(PhotoError::Kind::kRefused, reason);
        }
    };
    const std::optional<std::string> text = format.TakeExtended(*digest, source);
    if (!text) {
        refuse("a part of its metadata, which an extended segment held, is missing");
        return;
    }
    if (photo::PacketDigest(*text) != *digest) {
        refuse("the extended part of its metadata is not the one that was written");
    }
    try {
        const std::unique_ptr<__XMPMeta__> extended = __XMPMeta__::Parse(*text);
        const std::unique_ptr<__XMPMeta__> whole = object.meta->Clone();
        whole->Remove(ExtendedNamePath());
        if (!AddMissing(*whole, *extended)) {
            refuse("the parts of its metadata cannot be put together");
        }
        object.meta = Settled(*whole);
    } catch (const XMP_Error& error) {
        refuse("the extended part of its metadata cannot be read: " + std::string(error.Text()));
    }
}

PhotoObject ReadOne(std::size_t number, ByteSource& source, PhotoFormat& format)
{
    if (format.Packets()[number].bytes > photo::kPacketBytesLimit) {
        throw XMP_Error(kKivXmpTooBig, "it is larger than any metadata packet");
    }
    PhotoObject object;
    const std::string text = format.ReadPacket(number, source);
    object.meta = text.empty() ? __XMPMeta__::Create() : __XMPMeta__::Parse(text);
    JoinExtended(object, source, format);
    return object;
}

/// Bytes that a property takes when it is written, roughly.
std::size_t RoughBytes(const Node& node)
{
    constexpr std::size_t kTags = 16;
    std::size_t bytes =
        kTags + 2 * (node.Prefix().size() + node.LocalName().size()) + node.Value().size();
    for (const std::vector<Node>* const parts : {&node.Children(), &node.Qualifiers()}) {
        for (const Node& part : *parts) {
            bytes += RoughBytes(part);
        }
    }
    return bytes;
}

struct Candidate {
    std::size_t roughBytes;
    const Node* property;
};

/// What can be moved, the largest first.
std::vector<Candidate> Candidates(const __XMPMeta__& meta)
{
    std::unordered_set<std::string> seen;
    std::unordered_set<std::string> twins;
    for (const Node* const property : meta.Properties()) {
        if (!seen.insert(NameOf(*property)).second) {
            twins.insert(NameOf(*property));
        }
    }
    std::vector<Candidate> candidates;
    for (const Node* const property : meta.Properties()) {
        if (!twins.contains(NameOf(*property))) {
            candidates.push_back({RoughBytes(*property), property});
        }
    }
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& left, const Candidate& right) {
                         return left.roughBytes > right.roughBytes;
                     });
    return candidates;
}

/// Fills a packet up to the bytes that its place has anyway.
void FillUp(std::string& packet, std::size_t roomBytes)
{
    if (packet.size() >= roomBytes) {
        return;
    }
    // White space may follow a packet, but only in its own encoding; zeros may follow any.
    const bool isUtf8 = packet.find('\0') == std::string::npos;
    packet.resize(roomBytes, isUtf8 ? ' ' : '\0');
}

}  // namespace

PhotoObject ReadPackets(ByteSource& source, PhotoFormat& format)
{
    PhotoObject object;
    if (format.Packets().empty()) {
        object.meta = __XMPMeta__::Create();
        return object;
    }
    object = ReadOne(0, source, format);
    const std::size_t count = format.Packets().size();
    if (count == 1) {
        return object;
    }
    const auto refuse = [&object] {
        object.refusal.emplace(PhotoError::Kind::kRefused,
                               "it holds several metadata packets, which cannot be put together");
    };
    const std::unique_ptr<__XMPMeta__> whole = object.meta->Clone();
    for (std::size_t number = 1; number < count && !object.refusal; ++number) {
        try {
            const PhotoObject other = ReadOne(number, source, format);
            if (other.refusal || !AddMissing(*whole, *other.meta)) {
                refuse();
            }
        } catch (const XMP_Error&) {
            refuse();
        } catch (const PhotoError&) {
            refuse();
        }
    }
    if (whole->IsChanged()) {
        object.meta = Settled(*whole);
    }
    return object;
}

bool NamesExtended(const __XMPMeta__& meta)
{
    return NameOfExtended(meta).has_value();
}

PacketParts SplitPacket(const __XMPMeta__& meta, const PhotoFormat& format)
{
    const std::size_t limit = format.PacketLimitBytes();
    PacketParts parts;
    parts.main = meta.Serialize({.maxBytes = limit, .shortensUnchanged = true});
    if (parts.main.size() <= limit || !format.TakesExtended()) {
        FillUp(parts.main, std::min(format.PacketRoomBytes(), limit));
        return parts;
    }
    const std::vector<Candidate> candidates = Candidates(meta);
    const std::unique_ptr<__XMPMeta__> main = meta.Clone();
    main->SetOrigin(nullptr);  // a sidecar may hold the same name of an extended part
    const std::unique_ptr<__XMPMeta__> extended = __XMPMeta__::Create();
    std::size_t next = 0;
    while (parts.main.size() > limit && next < candidates.size()) {
        const std::size_t tooMuch = parts.main.size() - limit;
        for (std::size_t moved = 0; moved < tooMuch && next < candidates.size(); ++next) {
            const Path path = PathOf(*candidates[next].property);
            try {
                extended->SetCopy(path, *candidates[next].property);
                main->Remove(path);
            } catch (const XMP_Error&) {
                extended->Remove(path);
                continue;  // what cannot be moved stays
            }
            moved += candidates[next].roughBytes;
        }
        parts.extended = extended->Serialize({.paddingBytes = 0, .wrapNew = false});
        main->SetText(ExtendedNamePath(), photo::PacketDigest(parts.extended));
        parts.main = main->Serialize({.maxBytes = limit});
    }
    return parts;
}

}  // namespace kivxmp
