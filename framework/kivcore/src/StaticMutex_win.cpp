#include "framework/kivcore/src/StaticMutex.h"

#include <type_traits>

#include <windows.h>

namespace kivcore {

namespace {

// The system's lock is one pointer, null while nobody has it.
static_assert(sizeof(SRWLOCK) == sizeof(StaticMutex));
static_assert(alignof(SRWLOCK) == alignof(void*));
static_assert(std::is_trivially_destructible_v<StaticMutex>);

SRWLOCK* LockIn(void** state)
{
    return reinterpret_cast<SRWLOCK*>(state);
}

}  // namespace

void StaticMutex::lock() noexcept
{
    AcquireSRWLockExclusive(LockIn(&state_));
}

void StaticMutex::unlock() noexcept
{
    ReleaseSRWLockExclusive(LockIn(&state_));
}

}  // namespace kivcore
