// Counts every block of the C library in a program that HeapCount.cpp is linked to: the usable
// sizes of all that are there. For one thread.

#pragma once

#include <cstdint>

namespace bench {

extern std::int64_t bytesInUse;
/// The most that there were at any time. A measurement begins with setting it to `bytesInUse`.
extern std::int64_t mostBytesInUse;

}  // namespace bench
