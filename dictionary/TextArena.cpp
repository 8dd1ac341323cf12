#include "dictionary/TextArena.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <utility>

namespace morvish_private {

namespace {

// A dictionary of a few texts stays small, a large one takes few blocks.
constexpr std::size_t kFirstBlockBytes = 1024;
constexpr std::size_t kLargestBlockBytes = 64 * 1024;

using Word = std::uint64_t;

static_assert(alignof(Word) >= alignof(void*));

}  // namespace

TextArena::Run TextArena::Allocate(std::size_t sizeBytes)
{
    if (sizeBytes > SIZE_MAX - sizeof(Word))
        throw std::bad_alloc();
    const std::size_t wordCount = (sizeBytes + sizeof(Word) - 1) / sizeof(Word);
    const std::size_t wantedBytes = wordCount * sizeof(Word);
    if (wantedBytes <= freeBytes_) {
        std::byte* const start = free_;
        free_ += wantedBytes;
        freeBytes_ -= wantedBytes;
        return {start, &blocks_[current_]};
    }

    // A large run gets a block of its own; the rest of the current block stays in use.
    const bool alone = wantedBytes > kLargestBlockBytes / 4;
    nextBlockBytes_ = std::max(nextBlockBytes_, kFirstBlockBytes);
    const std::size_t blockBytes = alone ? wantedBytes : std::max(nextBlockBytes_, wantedBytes);
    auto words = std::make_shared_for_overwrite<Word[]>(blockBytes / sizeof(Word));
    auto* const start = reinterpret_cast<std::byte*>(words.get());
    blocks_.emplace_back(std::move(words));
    reservedBytes_ += blockBytes;
    if (!alone) {
        current_ = blocks_.size() - 1;
        free_ = start + wantedBytes;
        freeBytes_ = blockBytes - wantedBytes;
        nextBlockBytes_ = std::min(nextBlockBytes_ * 2, kLargestBlockBytes);
    }
    return {start, &blocks_.back()};
}

void TextArena::Clear()
{
    blocks_.clear();
    current_ = 0;
    free_ = nullptr;
    freeBytes_ = 0;
    nextBlockBytes_ = 0;
    reservedBytes_ = 0;
}

}  // namespace morvish_private
