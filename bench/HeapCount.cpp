#include "bench/HeapCount.h"

#include <malloc.h>

#include <algorithm>
#include <cstddef>

namespace bench {

std::int64_t bytesInUse = 0;
std::int64_t mostBytesInUse = 0;

}  // namespace bench

namespace {

void* Count(void* block)
{
    bench::bytesInUse += static_cast<std::int64_t>(malloc_usable_size(block));
    bench::mostBytesInUse = std::max(bench::mostBytesInUse, bench::bytesInUse);
    return block;
}

void Forget(void* block)
{
    bench::bytesInUse -= static_cast<std::int64_t>(malloc_usable_size(block));
}

}  // namespace

// The C library lets a program put its own functions before its own, and keeps these names for the
// originals.
extern "C" {
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void __libc_free(void* block);
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

void* malloc(std::size_t size)
{
    return Count(__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size)
{
    return Count(__libc_calloc(count, size));
}

void* realloc(void* block, std::size_t size)
{
    const std::size_t before = malloc_usable_size(block);
    void* const moved = __libc_realloc(block, size);
    if (moved != nullptr || size == 0) {
        bench::bytesInUse -= static_cast<std::int64_t>(before);
    }
    return Count(moved);
}

void free(void* block)
{
    Forget(block);
    __libc_free(block);
}
}
