// Maps from names to values. The entries stand in a row in the order in which they came, and a
// table of their hashes leads to them: names that are asked for in that order, as artwork does, are
// found without jumping around in memory.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "svgloom/src/NameHash.h"

namespace SVGLoom {

/// `Name` is std::string, or std::string_view where the names stand elsewhere as long as the map.
/// Whatever is added may move the values of all others.
template <class Name, class Value>
class BasicNameMap {
public:
    struct Entry {
        Name name;
        Value value;
    };

    std::size_t size() const { return entries_.size(); }
    bool empty() const { return entries_.empty(); }
    /// In the order in which they came.
    const Entry* begin() const { return entries_.data(); }
    const Entry* end() const { return entries_.data() + entries_.size(); }

    /// Null if the name is not there.
    const Value* Find(std::string_view name) const
    {
        if (slots_.empty()) {
            return nullptr;
        }
        const Slot& slot = slots_[SlotFor(name, HashOf(name))];
        return slot.place != 0 ? &entries_[slot.place - 1].value : nullptr;
    }

    /// The value of a name, a new one if it is not there yet; tells whether it is new.
    std::pair<Value&, bool> Add(std::string_view name)
    {
        // At most half of the slots are taken.
        if (2 * (entries_.size() + 1) > slots_.size()) {
            Grow();
        }
        const std::uint32_t hash = HashOf(name);
        Slot& slot = slots_[SlotFor(name, hash)];
        const bool isNew = slot.place == 0;
        if (isNew) {
            entries_.push_back({Name(name), Value()});
            slot = {hash, static_cast<std::uint32_t>(entries_.size())};
        }
        return {entries_[slot.place - 1].value, isNew};
    }
    Value& operator[](std::string_view name) { return Add(name).first; }

private:
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t place = 0;  // of the entry, from 1; 0: free
    };
    static constexpr std::size_t kFirstSlots = 4;

    static std::uint32_t HashOf(std::string_view name)
    {
        return static_cast<std::uint32_t>(NameHash()(name));
    }

    /// The slot of the name, or the free one that it would get.
    std::size_t SlotFor(std::string_view name, std::uint32_t hash) const
    {
        const std::size_t mask = slots_.size() - 1;
        std::size_t at = hash & mask;
        while (slots_[at].place != 0 &&
               (slots_[at].hash != hash || entries_[slots_[at].place - 1].name != name)) {
            at = (at + 1) & mask;
        }
        return at;
    }

    void Grow()
    {
        std::vector<Slot> larger(slots_.empty() ? kFirstSlots : 2 * slots_.size());
        const std::size_t mask = larger.size() - 1;
        for (const Slot& slot : slots_) {
            if (slot.place != 0) {
                std::size_t at = slot.hash & mask;
                while (larger[at].place != 0) {
                    at = (at + 1) & mask;
                }
                larger[at] = slot;
            }
        }
        slots_ = std::move(larger);
    }

    std::vector<Entry> entries_;
    std::vector<Slot> slots_;  // a power of two of them
};

template <class Value>
using NameMap = BasicNameMap<std::string, Value>;
template <class Value>
using NameViewMap = BasicNameMap<std::string_view, Value>;

}  // namespace SVGLoom
