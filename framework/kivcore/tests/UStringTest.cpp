#include <kivcore/UString.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <thread>
#include <unordered_set>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace kivcore {
namespace {

constexpr std::size_t kLimitBytes = 1024 * 1024;

// Under AddressSanitizer nothing waits, so that the use of a freed text is found.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kRecycles = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool kRecycles = false;
#else
constexpr bool kRecycles = true;
#endif
#else
constexpr bool kRecycles = true;
#endif

class RecyclingAllocatorTest : public testing::Test {
protected:
    void SetUp() override { ReleaseRecycledBlocks(); }
    void TearDown() override { ReleaseRecycledBlocks(); }
};

struct ClassCase {
    std::size_t bytes;
    std::size_t waitingBytes;  // after one block of `bytes` was given back
};

constexpr ClassCase kClassCases[] = {
    {0, 32},
    {1, 32},
    {32, 32},
    {33, 64},
    {64, 64},
    {65, 128},
    {1000, 1024},
    {8193, 16384},
    {16384, 16384},
    // Large blocks are rare; they go back to the system.
    {16385, 0},
    {kLimitBytes, 0},
};

TEST_F(RecyclingAllocatorTest, BlocksWaitInSizeClasses)
{
    for (const ClassCase& row : kClassCases) {
        SCOPED_TRACE(row.bytes);
        void* const block = RecyclingAllocate(row.bytes);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t), 0U);
        std::memset(block, 0xA5, row.bytes);
        EXPECT_EQ(RecycledBytes(), 0U);
        RecyclingFree(block, row.bytes);
        EXPECT_EQ(RecycledBytes(), kRecycles ? row.waitingBytes : 0U);
        ReleaseRecycledBlocks();
        EXPECT_EQ(RecycledBytes(), 0U);
    }
}

TEST_F(RecyclingAllocatorTest, ABlockComesBackForAnyRequestOfItsClass)
{
    void* const first = RecyclingAllocate(40);
    RecyclingFree(first, 40);
    void* const second = RecyclingAllocate(64);
    if (kRecycles) {
        EXPECT_EQ(second, first);
    }
    EXPECT_EQ(RecycledBytes(), 0U);
    RecyclingFree(second, 64);
}

TEST_F(RecyclingAllocatorTest, WaitingBlocksStayWithinTheLimit)
{
    std::vector<void*> blocks;
    for (int count = 0; count < 200; ++count) {
        blocks.push_back(RecyclingAllocate(16384));
    }
    for (void* const block : blocks) {
        RecyclingFree(block, 16384);
        EXPECT_LE(RecycledBytes(), kLimitBytes);
    }
    EXPECT_EQ(RecycledBytes(), kRecycles ? kLimitBytes : 0U);
}

TEST_F(RecyclingAllocatorTest, GivingNothingBackIsSilent)
{
    RecyclingFree(nullptr, 10);
    EXPECT_EQ(RecycledBytes(), 0U);
}

TEST_F(RecyclingAllocatorTest, ACountThatOverflowsIsRefused)
{
    RecyclingAllocator<char16_t> allocator;
    EXPECT_THROW(static_cast<void>(allocator.allocate(SIZE_MAX)), std::bad_array_new_length);
}

// Each thread marks its blocks and finds its mark again: no block is handed out twice.
TEST_F(RecyclingAllocatorTest, ThreadsShareThePool)
{
    std::atomic<int> strangers{0};
    const auto work = [&strangers](unsigned char mark) {
        for (std::size_t round = 0; round < 2000; ++round) {
            const std::size_t bytes = 1 + round % 300;
            auto* const block = static_cast<unsigned char*>(RecyclingAllocate(bytes));
            std::memset(block, mark, bytes);
            for (std::size_t index = 0; index < bytes; ++index) {
                strangers += block[index] != mark ? 1 : 0;
            }
            RecyclingFree(block, bytes);
        }
    };
    std::vector<std::thread> threads;
    for (unsigned char mark = 1; mark <= 4; ++mark) {
        threads.emplace_back(work, mark);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(strangers, 0);
}

TEST(UString, IsAnOrdinaryText)
{
    UString text(1000, u'a');
    text += u"end";
    EXPECT_EQ(text.size(), 1003U);
    EXPECT_TRUE(UStringView(text).ends_with(u"aend"));
    const UString moved = std::move(text);
    EXPECT_EQ(moved.size(), 1003U);
}

TEST(UString, EqualTextsHashEqual)
{
    const std::unordered_set<UString> texts{UString(u"dc:title"), UString(u"dc:subject")};
    EXPECT_TRUE(texts.contains(UString(u"dc:title")));
    EXPECT_FALSE(texts.contains(UString(u"dc:Title")));
}

}  // namespace
}  // namespace kivcore
