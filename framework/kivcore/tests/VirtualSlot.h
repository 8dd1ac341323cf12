// The place of a virtual operation in its class's table, for tests that hold a fixed order.

#pragma once

#include <cstdint>
#include <cstring>

namespace kivcore::testing_support {

/// 0 is the destructor, as in the headers' counting. The compilers that we build with (GCC and
/// Clang on x86-64) give a pointer to a virtual member as the offset in the table plus 1, and put
/// two entries there for the destructor.
template <class MemberPointer>
int VirtualSlot(MemberPointer member)
{
    std::uintptr_t value = 0;
    static_assert(sizeof member >= sizeof value);
    std::memcpy(&value, &member, sizeof value);
    return static_cast<int>((value - 1) / sizeof(void*)) - 1;
}

}  // namespace kivcore::testing_support
