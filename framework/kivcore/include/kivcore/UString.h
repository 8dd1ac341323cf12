// The framework's text type: UTF-16 units in blocks that are recycled instead of freed.

#pragma once

#include <cstddef>
#include <functional>
#include <limits>
#include <new>
#include <string>
#include <string_view>

#include <kivcore/Export.h>

namespace kivcore {

/// Returns a block of at least `bytes` bytes, aligned for any object, from the recycled ones where
/// one fits. Throws std::bad_alloc. May be called from any thread.
KIVCORE_API void* RecyclingAllocate(std::size_t bytes);

/// Gives a block of RecyclingAllocate back; `bytes` is the size that was asked for.
KIVCORE_API void RecyclingFree(void* block, std::size_t bytes) noexcept;

/// Frees all blocks that wait to be used again. The last config::Terminate calls it.
KIVCORE_API void ReleaseRecycledBlocks() noexcept;

/// Bytes that wait to be used again; never more than a fixed limit.
KIVCORE_API std::size_t RecycledBytes() noexcept;

/// A standard allocator over RecyclingAllocate.
template <class T>
class RecyclingAllocator {
public:
    using value_type = T;

    RecyclingAllocator() noexcept = default;
    template <class U>
    RecyclingAllocator(const RecyclingAllocator<U>&) noexcept
    {
    }

    T* allocate(std::size_t count)
    {
        if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) {
            throw std::bad_array_new_length();
        }
        return static_cast<T*>(RecyclingAllocate(count * sizeof(T)));
    }
    void deallocate(T* block, std::size_t count) noexcept
    {
        RecyclingFree(block, count * sizeof(T));
    }

    template <class U>
    bool operator==(const RecyclingAllocator<U>&) const noexcept
    {
        return true;
    }
};

using UString =
    std::basic_string<char16_t, std::char_traits<char16_t>, RecyclingAllocator<char16_t>>;
using UStringView = std::u16string_view;

}  // namespace kivcore

template <>
struct std::hash<kivcore::UString> {
    std::size_t operator()(const kivcore::UString& text) const noexcept
    {
        return std::hash<std::u16string_view>()(text);
    }
};
