// The 1021 bucket chains of a text dictionary, newest entry first. They own their nodes and give
// the order of export.

#pragma once

#include "dictionary/HashItem.h"
#include "dictionary/KeyHash.h"

#include <array>
#include <cstdint>

namespace morvish_private {

class BucketChains {
public:
    BucketChains() = default;
    BucketChains(const BucketChains&) = delete;
    BucketChains& operator=(const BucketChains&) = delete;
    ~BucketChains() { Clear(); }

    /// Takes ownership of `item` and puts it at the head of its bucket.
    void Push(HashItem* item);

    /// Remembers where `item` stands, for Remove().
    void NoteFound(const HashItem& item);

    /// Unlinks and deletes the item that NoteFound() was told last, in a time that does not depend
    /// on the length of its chain.
    void Remove();

    /// Deletes all items.
    void Clear();

    /// Lets go of all items without touching them, for items whose memory goes in one piece.
    void Forget() { heads_ = {}; }

    /// The newest item of a bucket, null if it is empty.
    const HashItem* Head(std::uint32_t bucket) const { return heads_[bucket]; }

private:
    std::array<HashItem*, kBucketCount> heads_{};
    std::uint32_t lastBucket_ = 0;
    HashItem* beforeLast_ = nullptr;  // null if the item found last is the head
};

}  // namespace morvish_private
