#include "dictionary/TextArena.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <utility>

namespace morvish_private {

namespace {

// A block is a small part of what is there already, so that what the last one leaves unused is too.
constexpr std::size_t kSmallestBlockBytes = 4 * 1024;
constexpr std::size_t kLargestBlockBytes = 64 * 1024;
constexpr std::size_t kGrowthDivisor = 32;

// A run gets a block of its own where sharing one would waste more than the bookkeeping of a block
// (some 64 bytes): a shared block ends with half a run unused, on average.
bool StandsAlone(std::size_t runBytes, std::size_t blockBytes)
{
    return runBytes > blockBytes || runBytes * runBytes > 2 * 64 * blockBytes;
}

using Word = std::uint64_t;

static_assert(alignof(Word) >= alignof(void*));

}  // namespace

std::byte* TextArena::Allocate(std::size_t sizeBytes, std::size_t alignment)
{
    const std::size_t gap = (alignment - offset_ % alignment) % alignment;
    if (gap <= freeBytes_ && sizeBytes <= freeBytes_ - gap) {
        std::byte* const start = free_ + gap;
        free_ = start + sizeBytes;
        freeBytes_ -= gap + sizeBytes;
        offset_ += gap + sizeBytes;
        return start;
    }
    if (sizeBytes > SIZE_MAX - sizeof(Word))
        throw std::bad_alloc();

    const std::size_t wantedBytes = (sizeBytes + sizeof(Word) - 1) / sizeof(Word) * sizeof(Word);
    const std::size_t nextBytes =
        std::clamp(reservedBytes_ / kGrowthDivisor / sizeof(Word) * sizeof(Word),
                   kSmallestBlockBytes, kLargestBlockBytes);
    const bool alone = StandsAlone(wantedBytes, nextBytes);
    const std::size_t blockBytes = alone ? wantedBytes : nextBytes;
    auto words = std::make_unique_for_overwrite<Word[]>(blockBytes / sizeof(Word));
    auto* const start = reinterpret_cast<std::byte*>(words.get());
    blocks_.emplace_back(std::move(words));
    reservedBytes_ += blockBytes;
    if (!alone) {
        free_ = start + sizeBytes;
        freeBytes_ = blockBytes - sizeBytes;
        offset_ = sizeBytes;
    }
    return start;
}

}  // namespace morvish_private
