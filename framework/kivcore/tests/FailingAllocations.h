// Lets every single allocation of some work fail. Replaces the global operator new, so one source
// file of a program includes it.

#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>

namespace kivcore::testing_support {

inline std::ptrdiff_t liveBlocks = 0;
inline std::size_t allocationsToGo = 0;  // 0: none fails
inline bool hasFailed = false;

inline void* Allocate(std::size_t size) noexcept
{
    if (allocationsToGo > 0 && --allocationsToGo == 0) {
        hasFailed = true;
        return nullptr;
    }
    void* const block = std::malloc(size != 0 ? size : 1);
    liveBlocks += block != nullptr ? 1 : 0;
    return block;
}

inline void* AllocateOrThrow(std::size_t size)
{
    void* const block = Allocate(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

inline void Free(void* block) noexcept
{
    liveBlocks -= block != nullptr ? 1 : 0;
    std::free(block);
}

/// Runs `work` with its n-th allocation failing, for n from 1 until it makes fewer.
///
/// @return how many failed
template <class Work>
std::size_t WithEachAllocationFailing(const Work& work)
{
    for (std::size_t n = 1;; ++n) {
        allocationsToGo = n;
        hasFailed = false;
        work();
        allocationsToGo = 0;
        if (!hasFailed) {
            return n - 1;
        }
    }
}

}  // namespace kivcore::testing_support

// The operators may not be inline. NOLINTBEGIN(misc-definitions-in-headers)
void* operator new(std::size_t size)
{
    return kivcore::testing_support::AllocateOrThrow(size);
}

void* operator new[](std::size_t size)
{
    return kivcore::testing_support::AllocateOrThrow(size);
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return kivcore::testing_support::Allocate(size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    return kivcore::testing_support::Allocate(size);
}

void operator delete(void* block) noexcept
{
    kivcore::testing_support::Free(block);
}

void operator delete[](void* block) noexcept
{
    kivcore::testing_support::Free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    kivcore::testing_support::Free(block);
}

void operator delete[](void* block, std::size_t) noexcept
{
    kivcore::testing_support::Free(block);
}
// NOLINTEND(misc-definitions-in-headers)
