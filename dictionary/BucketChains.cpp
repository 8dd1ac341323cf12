#include "dictionary/BucketChains.h"

namespace morvish_private {

void BucketChains::Push(HashItem* item)
{
    HashItem*& head = heads_[item->Hash(kBucketCount)];
    item->previous = nullptr;
    item->next = head;
    if (head != nullptr)
        head->previous = item;
    head = item;
}

void BucketChains::NoteFound(const HashItem& item)
{
    lastBucket_ = item.Hash(kBucketCount);
    beforeLast_ = item.previous;
}

void BucketChains::Remove()
{
    HashItem*& link = beforeLast_ != nullptr ? beforeLast_->next : heads_[lastBucket_];
    HashItem* const item = link;
    link = item->next;
    if (link != nullptr)
        link->previous = beforeLast_;
    delete item;
}

void BucketChains::Clear()
{
    for (HashItem*& head : heads_) {
        while (head != nullptr) {
            HashItem* const item = head;
            head = item->next;
            delete item;
        }
    }
}

}  // namespace morvish_private
