// What an XMP object is made of: the packet as it was read, and its properties, each with what
// became of it and where it came from.

#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "framework/kivxmp/src/NamePool.h"
#include "framework/kivxmp/src/NodeAccess.h"
#include "framework/kivxmp/src/Packet.h"

#include <kivxmp/XMPMeta.h>

namespace kivxmp {

/// One property and its place in the packet.
struct Slot {
    enum class Place : unsigned char {
        kNew,        ///< not in the packet
        kElement,    ///< an element of a description; `span` is all of it
        kAttribute,  ///< of a description; `span` begins with the white space in front of it
        kTopLevel,   ///< an element of rdf:RDF that is no description of ours
        kFixed,      ///< comes out of an entity and cannot be changed
    };
    const Node* original = nullptr;  // in ObjectState::originals; null for a new one
    std::shared_ptr<Node> changed;   // what took its place; not changed while shared
    Span span;
    std::size_t description = kNowhere;  // index in Packet::descriptions
    Place place = Place::kNew;
    bool isRemoved = false;
    bool hasTwins = false;  // the packet holds more properties of this name

    /// Null if it was removed.
    const Node* Current() const noexcept
    {
        return isRemoved ? nullptr : changed != nullptr ? changed.get() : original;
    }
    bool IsChanged() const noexcept
    {
        const Node* const current = Current();
        if (current == original) {
            return false;
        }
        return current == nullptr || original == nullptr || !(*current == *original);
    }
};

class ObjectState {
public:
    std::shared_ptr<const Packet> packet;
    std::shared_ptr<NamePool> names;
    std::shared_ptr<const std::vector<Node>> originals;  // the properties as they were read
    std::vector<Slot> slots;
    std::size_t nodeCount = 0;
    std::shared_ptr<Origin> origin;
    /// The packet that ReplacePacket put aside for this one; null unless it was called.
    std::shared_ptr<const Packet> replaced;

    /// Number of the first slot of that name; kNowhere where there is none.
    std::size_t SlotOf(const NameKey* key) const noexcept
    {
        return key != nullptr && key->number < slotOfName_.size() ? slotOfName_[key->number]
                                                                  : kNowhere;
    }
    void SetSlotOf(const NameKey* key, std::size_t number);
    /// Null where there is none, or where it was removed.
    const Node* FindProperty(const NameKey* key) const noexcept;
    const Node* Find(const Path& path) const noexcept;
    PrefixLookup Prefixes() const;

private:
    std::vector<std::size_t> slotOfName_;  // by the number of the name
};

/// Where on the way from a node one step leads; null where nothing is.
const Node* FindStep(const Node& node, const PathStep& step, const NamePool& names) noexcept;

/// Reads a packet. Throws XMP_Error.
std::unique_ptr<ObjectState> ReadPacket(std::string_view bytes);
/// The object that has nothing.
std::unique_ptr<ObjectState> NewPacket();

std::string WritePacket(const ObjectState& object, const SerializeOptions& options);

}  // namespace kivxmp
