// The second index over a dictionary's keys: an open-addressing table from a key's full hash to
// whatever stands for the entry. It makes finding and replacing independent of the bucket chains.

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace morvish_private {

/// How far searches go: the number of slots looked at to find an entry that is there.
struct SearchCost {
    std::size_t longest = 0;
    std::size_t total = 0;  // over all entries
};

/// Payload is small and trivially copied; `kNone` is a value that is never stored.
template <typename Payload, Payload kNone>
class FlatIndex {
public:
    /// @param matches  called with a payload of the same hash, tells whether it is the one
    /// @return null if there is none; the address is valid until the next insertion
    template <typename Matches>
    Payload* Find(std::uint32_t hash, Matches&& matches)
    {
        return const_cast<Payload*>(std::as_const(*this).Find(hash, matches));
    }

    template <typename Matches>
    const Payload* Find(std::uint32_t hash, Matches&& matches) const
    {
        if (slots_.empty())
            return nullptr;
        const std::size_t mask = slots_.size() - 1;
        for (std::size_t at = hash & mask; slots_[at].payload != kNone; at = (at + 1) & mask) {
            if (slots_[at].hash == hash && matches(slots_[at].payload))
                return &slots_[at].payload;
        }
        return nullptr;
    }

    /// Makes room for one more entry, so that the next Insert() does not allocate.
    void ReserveOne()
    {
        if (count_ + 1 > slots_.size() / 4 * 3)
            Grow();
    }

    /// Adds an entry that Find() did not find.
    void Insert(std::uint32_t hash, Payload payload)
    {
        ReserveOne();
        slots_[FreeSlot(slots_, hash)] = {hash, payload};
        ++count_;
    }

    void Clear()
    {
        slots_ = {};
        count_ = 0;
    }

    std::size_t Count() const { return count_; }
    std::size_t ReservedBytes() const { return slots_.capacity() * sizeof(Slot); }

    SearchCost Cost() const
    {
        SearchCost cost;
        for (std::size_t at = 0; at < slots_.size(); ++at) {
            if (slots_[at].payload == kNone)
                continue;
            const std::size_t length = ((at - slots_[at].hash) & (slots_.size() - 1)) + 1;
            cost.longest = std::max(cost.longest, length);
            cost.total += length;
        }
        return cost;
    }

private:
    struct Slot {
        std::uint32_t hash = 0;
        Payload payload = kNone;
    };

    static constexpr std::size_t kFirstSlots = 16;  // the slot count is a power of two

    static std::size_t FreeSlot(const std::vector<Slot>& slots, std::uint32_t hash)
    {
        const std::size_t mask = slots.size() - 1;
        std::size_t at = hash & mask;
        while (slots[at].payload != kNone)
            at = (at + 1) & mask;
        return at;
    }

    void Grow()
    {
        std::vector<Slot> grown(slots_.empty() ? kFirstSlots : slots_.size() * 2);
        for (const Slot& slot : slots_) {
            if (slot.payload != kNone)
                grown[FreeSlot(grown, slot.hash)] = slot;
        }
        slots_ = std::move(grown);
    }

    std::vector<Slot> slots_;
    std::size_t count_ = 0;
};

}  // namespace morvish_private
