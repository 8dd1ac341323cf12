// The second index over a dictionary's keys: an open-addressing table from a key's full hash to
// whatever stands for the entry. It makes finding and replacing independent of the bucket chains.

#pragma once

#include <algorithm>
#include <array>
#include <bit>
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

/// How full an index becomes before it grows, by how much it grows, and how full it is with as
/// many entries as were announced.
struct Roomy {
    static constexpr std::size_t kFillPercent = 60;
    static constexpr std::size_t kGrowthPercent = 200;
    static constexpr std::size_t kReservedFillPercent = 40;
};

/// Payload is small and trivially copied; `kNone` is a value that is never stored.
template <typename Payload, Payload kNone, typename Density = Roomy>
class FlatIndex {
public:
    class Slot {
    public:
        Payload Get() const { return std::bit_cast<Payload>(words_); }
        void Set(Payload payload) { words_ = std::bit_cast<Words>(payload); }

    private:
        friend class FlatIndex;
        // As words, so that a pointer takes no padding in front. The size of the pointer is meant.
        // NOLINTNEXTLINE(bugprone-sizeof-expression)
        using Words = std::array<std::uint32_t, sizeof(Payload) / sizeof(std::uint32_t)>;

        bool IsUsed() const { return Get() != kNone; }

        std::uint32_t hash_ = 0;
        Words words_ = std::bit_cast<Words>(kNone);
    };

    /// @param matches  called with a payload of the same hash, tells whether it is the one
    /// @return null if there is none; the slot is valid until the next insertion
    template <typename Matches>
    Slot* Find(std::uint32_t hash, Matches&& matches)
    {
        return const_cast<Slot*>(std::as_const(*this).Find(hash, matches));
    }

    template <typename Matches>
    const Slot* Find(std::uint32_t hash, Matches&& matches) const
    {
        if (slots_.empty())
            return nullptr;
        for (std::size_t at = Home(slots_, hash); slots_[at].IsUsed(); at = Next(slots_, at)) {
            if (slots_[at].hash_ == hash && matches(slots_[at].Get()))
                return &slots_[at];
        }
        return nullptr;
    }

    /// Makes room for the next entries of many that come one by one: the next `more` calls of
    /// Insert() do not allocate.
    void ReserveNext(std::size_t more)
    {
        std::size_t wanted = slots_.size();
        while ((count_ + more) * 100 > wanted * Density::kFillPercent)
            wanted = wanted == 0 ? kFirstSlots : wanted * Density::kGrowthPercent / 100;
        if (wanted != slots_.size())
            Resize(wanted);
    }

    /// Makes room for `more` entries at once.
    void Reserve(std::size_t more)
    {
        const std::size_t wanted = (count_ + more) * 100 / Density::kReservedFillPercent;
        if (wanted > slots_.size())
            Resize(std::max(wanted, kFirstSlots));
    }

    /// Adds an entry that Find() did not find.
    void Insert(std::uint32_t hash, Payload payload)
    {
        ReserveNext(1);
        InsertReserved(hash, payload);
    }

    /// The same where room has been made for it.
    void InsertReserved(std::uint32_t hash, Payload payload) noexcept
    {
        Slot& slot = slots_[FreeSlot(slots_, hash)];
        slot.hash_ = hash;
        slot.Set(payload);
        ++count_;
    }

    /// Fetches the place of a hash that will be asked for soon. There must be room already.
    void Prefetch(std::uint32_t hash) const { __builtin_prefetch(&slots_[Home(slots_, hash)], 1); }

    void Clear()
    {
        slots_ = std::vector<Slot>();
        count_ = 0;
    }

    std::size_t Count() const { return count_; }
    std::size_t ReservedBytes() const { return slots_.capacity() * sizeof(Slot); }

    SearchCost Cost() const
    {
        SearchCost cost;
        for (std::size_t at = 0; at < slots_.size(); ++at) {
            if (!slots_[at].IsUsed())
                continue;
            const std::size_t home = Home(slots_, slots_[at].hash_);
            const std::size_t length = (at < home ? at + slots_.size() : at) - home + 1;
            cost.longest = std::max(cost.longest, length);
            cost.total += length;
        }
        return cost;
    }

private:
    static constexpr std::size_t kFirstSlots = 16;

    // Spreads the hashes over any number of slots, so that the table need not double.
    static std::size_t Home(const std::vector<Slot>& slots, std::uint32_t hash)
    {
        return static_cast<std::size_t>((static_cast<std::uint64_t>(hash) * slots.size()) >> 32);
    }

    static std::size_t Next(const std::vector<Slot>& slots, std::size_t at)
    {
        return at + 1 == slots.size() ? 0 : at + 1;
    }

    static std::size_t FreeSlot(const std::vector<Slot>& slots, std::uint32_t hash)
    {
        std::size_t at = Home(slots, hash);
        while (slots[at].IsUsed())
            at = Next(slots, at);
        return at;
    }

    void Resize(std::size_t slotCount)
    {
        std::vector<Slot> grown(slotCount);
        for (const Slot& slot : slots_) {
            if (slot.IsUsed())
                grown[FreeSlot(grown, slot.hash_)] = slot;
        }
        slots_ = std::move(grown);
    }

    std::vector<Slot> slots_;
    std::size_t count_ = 0;
};

}  // namespace morvish_private
