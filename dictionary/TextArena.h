// Memory for the many small records of a dictionary: cut from large blocks, never given back one by
// one.

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

    /// Bytes that stand as long as the arena.
    /// @param alignment  a power of two, at most that of pointers and 64-bit numbers
    std::byte* Allocate(std::size_t sizeBytes, std::size_t alignment = alignof(std::uint64_t));

    /// What the blocks take together.
    std::size_t ReservedBytes() const { return reservedBytes_; }

private:
    std::vector<std::unique_ptr<std::uint64_t[]>> blocks_;
    std::byte* free_ = nullptr;  // in the block that runs are cut from
    std::size_t freeBytes_ = 0;
    std::size_t offset_ = 0;  // of free_ in its block, whose start is aligned for everything
    std::size_t reservedBytes_ = 0;
};

}  // namespace morvish_private
