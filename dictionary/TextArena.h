// Memory for the many small records of a dictionary: cut from large blocks, never given back one by
// one. A block lives as long as the arena or any string that shares it.

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace morvish_private {

class TextArena {
public:
    TextArena() = default;
    TextArena(const TextArena&) = delete;
    TextArena& operator=(const TextArena&) = delete;

    struct Run {
        std::byte* start;                    // aligned as asked for
        const std::shared_ptr<void>* block;  // keeps `start` alive; valid until the next call
    };

    /// @param alignment  a power of two, at most that of pointers and 64-bit numbers
    Run Allocate(std::size_t sizeBytes, std::size_t alignment = alignof(std::uint64_t));

    /// Lets go of all blocks.
    void Clear();

    /// What the blocks take together.
    std::size_t ReservedBytes() const { return reservedBytes_; }

private:
    std::vector<std::shared_ptr<void>> blocks_;
    std::size_t current_ = 0;  // the index of the block that runs are cut from
    std::byte* free_ = nullptr;
    std::size_t freeBytes_ = 0;
    std::size_t offset_ = 0;  // of free_ in its block, whose start is aligned for everything
    std::size_t reservedBytes_ = 0;
};

}  // namespace morvish_private
