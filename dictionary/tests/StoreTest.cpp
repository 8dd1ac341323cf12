// The parts that the stores are built of: hashes, chains, the index, the arena, the binary store.

#include "dictionary/BucketChains.h"
#include "dictionary/FastArray.h"
#include "dictionary/FlatIndex.h"
#include "dictionary/FullHash.h"
#include "dictionary/GrownCapacity.h"
#include "dictionary/KeyHash.h"
#include "dictionary/TextArena.h"
#include "dictionary/tests/TestSupport.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <set>
#include <vector>

#include <gtest/gtest.h>

namespace morvish_private {
namespace {

using namespace std::string_literals;

struct BucketCase {
    std::string key;
    std::uint32_t want;
};

const BucketCase kBuckets[] = {
    {"", 0},
    {"a", 97},
    {"\xFF", 255},
    {"\0"s, 0},
    // (97 * 32 + 98) mod 1021 = 3202 mod 1021
    {"ab", 139},
    // (139 * 32 + 99), then 100, then 101, each mod 1021
    {"abc", 463},
    {"abcd", 622},
    {"abcde", 606},
    // From ten bytes on every second one: "acegi"
    {"abcdefghij", 808},
    {"aXcXeXgXiX", 808},
    // Nine bytes: still each of them
    {"abcdefghi", 610},
};

TEST(KeyHash, Buckets)
{
    for (const BucketCase& row : kBuckets) {
        SCOPED_TRACE(testing::PrintToString(row.key));
        const dictionary_test::ExactBlock block(row.key);
        EXPECT_EQ(BucketHash({block.Start(), block.Size()}, 1021), row.want);
    }
}

TEST(KeyHash, FullHashMindsEveryByteAndTheLength)
{
    std::set<std::uint32_t> seen;
    std::size_t keys = 0;
    for (std::size_t length = 0; length <= 40; ++length) {
        std::string key(length, 'x');
        seen.insert(FullHash(key));
        ++keys;
        for (std::size_t place = 0; place < length; ++place) {
            std::string changed = key;
            changed[place] = 'y';
            const dictionary_test::ExactBlock block(changed);
            seen.insert(FullHash({block.Start(), block.Size()}));
            ++keys;
        }
        seen.insert(FullHash(key + '\0'));
        ++keys;
        EXPECT_EQ(FullHash(key), FullHash(std::string(key)));
    }
    EXPECT_GE(seen.size() + 1, keys);  // one chance meeting in 32 bits is forgiven
}

TEST(KeyHash, FullHashMindsTheOrder)
{
    // Words and blocks of the same bytes in other orders.
    const std::string words[] = {"aaaaaaaa", "bbbbbbbb", "cccccccc", "dddddddd"};
    std::set<std::uint32_t> seen;
    int order[] = {0, 1, 2, 3};
    do {
        std::string key;
        for (const int word : order)
            key += words[word];
        seen.insert(FullHash(key));
        seen.insert(FullHash(key + "x"));
    } while (std::next_permutation(std::begin(order), std::end(order)));
    EXPECT_EQ(seen.size(), 48u);
}

TEST(KeyHash, FullHashSpreadsNumberedKeys)
{
    // Every high byte of the hash is met about as often: that is what tells slots apart.
    std::vector<int> counts(256);
    for (int i = 0; i < 256 * 100; ++i)
        ++counts[FullHash("/Application/Panel/Control" + std::to_string(i)) >> 24];
    EXPECT_GT(*std::min_element(counts.begin(), counts.end()), 40);
    EXPECT_LT(*std::max_element(counts.begin(), counts.end()), 180);
}

class CountedItem : public HashItem {
public:
    CountedItem(int& alive, std::uint32_t bucket) : alive_(alive), bucket_(bucket) { ++alive_; }
    ~CountedItem() override { --alive_; }
    void Write(std::ostream&, bool, ByteOrder) const override {}
    std::uint32_t Hash(std::uint32_t) const override { return bucket_; }
    bool Equals(const HashItem& other) const override { return this == &other; }

private:
    int& alive_;
    std::uint32_t bucket_;
};

TEST(BucketChains, NewestFirstAndOwned)
{
    int alive = 0;
    {
        BucketChains chains;
        auto* const first = new CountedItem(alive, 5);
        auto* const second = new CountedItem(alive, 5);
        auto* const third = new CountedItem(alive, 5);
        for (CountedItem* const item : {first, second, third})
            chains.Push(item);
        chains.Push(new CountedItem(alive, 1020));
        EXPECT_EQ(chains.Head(5), third);
        EXPECT_EQ(third->next, second);
        EXPECT_EQ(second->next, first);
        EXPECT_EQ(first->next, nullptr);
        EXPECT_EQ(chains.Head(6), nullptr);

        chains.NoteFound(*second);
        chains.Remove();
        EXPECT_EQ(alive, 3);
        EXPECT_EQ(chains.Head(5), third);
        EXPECT_EQ(third->next, first);
        chains.NoteFound(*third);
        chains.Remove();
        EXPECT_EQ(chains.Head(5), first);
        chains.NoteFound(*first);
        chains.Remove();
        EXPECT_EQ(chains.Head(5), nullptr);
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
}

TEST(BucketChains, RemovingDoesNotWalkTheChain)
{
    int alive = 0;
    BucketChains chains;
    auto* const oldest = new CountedItem(alive, 5);
    auto* const target = new CountedItem(alive, 5);
    auto* const before = new CountedItem(alive, 5);
    auto* const gap = new CountedItem(alive, 5);
    auto* const newest = new CountedItem(alive, 5);
    for (CountedItem* const item : {oldest, target, before, gap, newest})
        chains.Push(item);
    // Whoever comes from the head falls into the gap.
    HashItem* const next = gap->next;
    gap->next = nullptr;
    chains.NoteFound(*target);
    chains.Remove();
    gap->next = next;
    EXPECT_EQ(before->next, oldest);
    EXPECT_EQ(oldest->previous, before);
    EXPECT_EQ(alive, 4);
}

TEST(BucketChains, LongChainIsDeletedWithoutRecursion)
{
    int alive = 0;
    {
        BucketChains chains;
        for (int i = 0; i < 1000000; ++i)
            chains.Push(new CountedItem(alive, 0));
    }
    EXPECT_EQ(alive, 0);
}

using Index = FlatIndex<std::uint32_t, 0xFFFFFFFF>;

TEST(FlatIndex, FindsWhatWasInserted)
{
    Index index;
    int compared = 0;
    const auto is = [&](std::uint32_t wanted) {
        return [&compared, wanted](std::uint32_t candidate) {
            ++compared;
            return candidate == wanted;
        };
    };
    EXPECT_EQ(index.Find(1, is(1)), nullptr);
    for (std::uint32_t i = 0; i < 10000; ++i)
        index.Insert(i * 2654435761u, i);
    EXPECT_EQ(index.Count(), 10000u);
    compared = 0;
    for (std::uint32_t i = 0; i < 10000; ++i) {
        const Index::Slot* const found = index.Find(i * 2654435761u, is(i));
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(found->Get(), i);
    }
    EXPECT_EQ(compared, 10000);  // different hashes are never compared
    EXPECT_EQ(index.Find(1, is(1)), nullptr);

    index.Find(0, is(0))->Set(77);
    EXPECT_NE(index.Find(0, is(77)), nullptr);
    index.Clear();
    EXPECT_EQ(index.Count(), 0u);
    EXPECT_EQ(index.Find(0, is(77)), nullptr);
    EXPECT_EQ(index.ReservedBytes(), 0u);
}

TEST(FlatIndex, EqualHashesAreToldApartAndCounted)
{
    Index index;
    for (std::uint32_t i = 0; i < 100; ++i)
        index.Insert(0xFFFFFFFF, i);  // the last slot: searches go round
    for (std::uint32_t i = 0; i < 100; ++i)
        EXPECT_NE(index.Find(0xFFFFFFFF, [i](std::uint32_t at) { return at == i; }), nullptr);
    EXPECT_EQ(index.Find(0xFFFFFFFF, [](std::uint32_t at) { return at == 100; }), nullptr);
    EXPECT_EQ(index.Cost().longest, 100u);
    EXPECT_EQ(index.Cost().total, 5050u);
}

TEST(TextArena, RunsAreAlignedAndDoNotOverlap)
{
    TextArena arena;
    std::vector<std::pair<std::byte*, std::size_t>> runs;
    for (std::size_t i = 0; i < 3000; ++i) {
        const std::size_t size = (i * 37) % 300 + (i % 500 == 0 ? 100000 : 0);
        std::byte* const start = arena.Allocate(size);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(start) % 8, 0u);
        std::memset(start, static_cast<int>(i % 251), size);
        runs.emplace_back(start, size);
    }
    for (std::size_t i = 0; i < runs.size(); ++i) {
        for (std::size_t at = 0; at < runs[i].second; ++at)
            ASSERT_EQ(static_cast<std::size_t>(runs[i].first[at]), i % 251) << i;
    }
}

TEST(TextArena, LargeRunsDoNotEndASharedBlock)
{
    TextArena arena;
    arena.Allocate(100);
    arena.Allocate(100000);
    const std::size_t before = arena.ReservedBytes();
    arena.Allocate(100);  // from the first block
    EXPECT_EQ(arena.ReservedBytes(), before);
}

TEST(TextArena, ImpossibleSizeIsRefused)
{
    TextArena arena;
    EXPECT_THROW(arena.Allocate(SIZE_MAX), std::bad_alloc);
}

TEST(FastArray, NumbersKeysAndValues)
{
    const auto store = std::make_shared<FastArray>();
    EXPECT_EQ(store->Find("/A"), FastArray::kNoIndex);
    EXPECT_FALSE(store->Exists(0));
    store->Insert("/A", u"a");
    store->Insert("", u"empty key");
    store->Insert("/A\0"s, u"");
    const ByteRunValue& old = store->RawValue(0);
    store->Insert("/A", u"new a");
    EXPECT_EQ(store->Count(), 3u);
    EXPECT_EQ(store->Find("/A"), 0u);
    EXPECT_EQ(store->Find(""), 1u);
    EXPECT_EQ(store->Find("/A\0"s), 2u);
    EXPECT_EQ(store->Key(2), "/A\0"s);
    EXPECT_EQ(store->RawValue(0).View(), u"new a");
    EXPECT_EQ(old.View(), u"a");
    EXPECT_TRUE(store->Exists(2));
    EXPECT_FALSE(store->Exists(3));
    EXPECT_FALSE(store->Exists(FastArray::kNoIndex));
}

TEST(DictionaryString, SharesAndCompares)
{
    morvish::DictionaryString first;
    morvish::DictionaryString second;
    EXPECT_EQ(first, second);  // the one empty value
    EXPECT_EQ(first.LengthUnits(), 0u);
    EXPECT_EQ(first.Units()[0], 0);
    first.Assign(u"text", 4);
    second.Assign(u"text", 4);
    EXPECT_NE(first, second);
    EXPECT_EQ(first.View(), second.View());
    EXPECT_EQ(first.Value().lengthBytes, 8u);
    second = first;
    EXPECT_EQ(first, second);
    first.Clear();
    EXPECT_EQ(second.View(), u"text");
    EXPECT_EQ(second.Units()[4], 0);
    EXPECT_EQ(first, morvish::DictionaryString());
    second.Assign(u"", 0);
    EXPECT_NE(second, first);
    EXPECT_EQ(second.View(), u"");
}

TEST(DictionaryString, LengthThatTheRecordCannotHold)
{
    EXPECT_EQ(PlacedUnitsBytes(3), 8u);
    EXPECT_NO_THROW(PlacedUnitsBytes(0x7FFFFFFF));
    EXPECT_THROW(PlacedUnitsBytes(0x80000000), std::length_error);
}

TEST(GrownCapacity, ByHalf)
{
    EXPECT_EQ(GrownCapacity(256, 256), 256u);
    EXPECT_EQ(GrownCapacity(256, 257), 384u);
    EXPECT_EQ(GrownCapacity(257, 258), 385u);
    EXPECT_EQ(GrownCapacity(256, 1000), 1296u);
    EXPECT_EQ(GrownCapacity(0, 3), 3u);
    EXPECT_EQ(GrownCapacity(1, 4), 4u);
}

}  // namespace
}  // namespace morvish_private
