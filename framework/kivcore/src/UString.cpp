// The recycling allocator: texts of the framework are short, many, and short-lived, so their blocks
// wait in one list for each size class instead of going back to the system.

#include <kivcore/UString.h>

#include <array>
#include <bit>
#include <mutex>
#include <type_traits>

#include "framework/kivcore/src/StaticMutex.h"

namespace kivcore {

namespace {

#if defined(__SANITIZE_ADDRESS__)
#define KIV_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KIV_ADDRESS_SANITIZER 1
#endif
#endif

// Under AddressSanitizer every block goes straight to the system: a recycled block would hide the
// use of a freed text.
#if defined(KIV_ADDRESS_SANITIZER)
constexpr bool kRecycle = false;
#else
constexpr bool kRecycle = true;
#endif

constexpr std::size_t kSmallestBytes = 32;
constexpr std::size_t kLargestBytes = 16 * 1024;
constexpr std::size_t kLimitBytes = 1024 * 1024;
constexpr std::size_t kClassCount = 10;
static_assert(kSmallestBytes << (kClassCount - 1) == kLargestBytes);

struct FreeBlock {
    FreeBlock* next;
};

struct Pool {
    StaticMutex mutex;
    std::array<FreeBlock*, kClassCount> free{};
    std::size_t waitingBytes = 0;
};

// Texts may be freed while static objects of others are destroyed, so the pool must outlive them.
constinit Pool pool;
static_assert(std::is_trivially_destructible_v<Pool>);

bool IsPooled(std::size_t bytes)
{
    return kRecycle && bytes <= kLargestBytes;
}

/// Size of the blocks that serve requests of `bytes`; a power of two.
std::size_t ClassBytes(std::size_t bytes)
{
    return bytes <= kSmallestBytes ? kSmallestBytes : std::bit_ceil(bytes);
}

FreeBlock*& FreeList(std::size_t classBytes)
{
    return pool.free[static_cast<std::size_t>(std::countr_zero(classBytes) -
                                              std::countr_zero(kSmallestBytes))];
}

}  // namespace

void* RecyclingAllocate(std::size_t bytes)
{
    if (!IsPooled(bytes)) {
        return ::operator new(bytes);
    }
    const std::size_t classBytes = ClassBytes(bytes);
    {
        const std::lock_guard lock(pool.mutex);
        FreeBlock*& head = FreeList(classBytes);
        if (head != nullptr) {
            FreeBlock* const block = head;
            head = block->next;
            pool.waitingBytes -= classBytes;
            return block;
        }
    }
    return ::operator new(classBytes);
}

void RecyclingFree(void* block, std::size_t bytes) noexcept
{
    if (block != nullptr && IsPooled(bytes)) {
        const std::size_t classBytes = ClassBytes(bytes);
        const std::lock_guard lock(pool.mutex);
        if (kLimitBytes - pool.waitingBytes >= classBytes) {
            FreeBlock*& head = FreeList(classBytes);
            head = ::new (block) FreeBlock{head};
            pool.waitingBytes += classBytes;
            return;
        }
    }
    ::operator delete(block);
}

void ReleaseRecycledBlocks() noexcept
{
    const std::lock_guard lock(pool.mutex);
    for (FreeBlock*& head : pool.free) {
        while (head != nullptr) {
            FreeBlock* const block = head;
            head = block->next;
            ::operator delete(block);
        }
    }
    pool.waitingBytes = 0;
}

std::size_t RecycledBytes() noexcept
{
    const std::lock_guard lock(pool.mutex);
    return pool.waitingBytes;
}

}  // namespace kivcore
