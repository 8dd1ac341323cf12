// A hash table in one block, for names. Its hash depends on a seed that a packet's author cannot
// know, so that no packet can make all its names meet in one place.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace kivxmp {

/// A number that differs from process to process and from call to call.
std::uint64_t NewHashSeed() noexcept;

std::uint64_t HashOf(std::string_view text, std::uint64_t seed) noexcept;

template <class Entry>
class FlatTable {
public:
    /// The entry of that hash for which `isWanted` holds; null where there is none. Valid until the
    /// next Insert.
    template <class Predicate>
    const Entry* Find(std::uint64_t hash, const Predicate& isWanted) const noexcept
    {
        if (cells_.empty()) {
            return nullptr;
        }
        hash |= kUsed;
        for (std::size_t at = Begin(hash); cells_[at].hash != 0; at = (at + 1) & Mask()) {
            const Cell& cell = cells_[at];
            if (cell.hash == hash && isWanted(cell.entry)) {
                return &cell.entry;
            }
        }
        return nullptr;
    }
    template <class Predicate>
    Entry* Find(std::uint64_t hash, const Predicate& isWanted) noexcept
    {
        return const_cast<Entry*>(std::as_const(*this).Find(hash, isWanted));
    }

    /// Makes room for about so many entries.
    void Reserve(std::size_t count)
    {
        std::size_t cells = 64;
        while (cells < count + count / 2) {
            cells *= 2;
        }
        if (cells > cells_.size()) {
            Resize(cells);
        }
    }

    /// Requires that the entry is not there yet.
    Entry& Insert(std::uint64_t hash, Entry entry)
    {
        if (4 * (count_ + 1) > 3 * cells_.size()) {
            Reserve(2 * count_);
        }
        ++count_;
        return Place(hash | kUsed, std::move(entry));
    }

private:
    struct Cell {
        std::uint64_t hash = 0;  // 0 while the cell is free
        Entry entry{};
    };
    static constexpr std::uint64_t kUsed = 1;

    std::size_t Mask() const noexcept { return cells_.size() - 1; }
    std::size_t Begin(std::uint64_t hash) const noexcept { return (hash >> 1) & Mask(); }

    void Resize(std::size_t cells)
    {
        std::vector<Cell> old(cells);
        old.swap(cells_);
        for (Cell& cell : old) {
            if (cell.hash != 0) {
                Place(cell.hash, std::move(cell.entry));
            }
        }
    }

    Entry& Place(std::uint64_t hash, Entry entry)
    {
        std::size_t at = Begin(hash);
        while (cells_[at].hash != 0) {
            at = (at + 1) & Mask();
        }
        cells_[at] = {hash, std::move(entry)};
        return cells_[at].entry;
    }

    std::vector<Cell> cells_;  // their number is a power of two
    std::size_t count_ = 0;
};

}  // namespace kivxmp
