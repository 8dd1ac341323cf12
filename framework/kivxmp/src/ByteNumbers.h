// Whole numbers as files hold them, in either byte order.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kivxmp::photo {

enum class ByteOrder : unsigned char { kLittle, kBig };

/// True if `count` bytes stand at `at`.
inline bool HasBytes(std::string_view bytes, std::uint64_t at, std::uint64_t count)
{
    return at <= bytes.size() && bytes.size() - at >= count;
}

/// The number of `count` (at most 8) bytes at `at`, which must be there.
inline std::uint64_t GetNumber(std::string_view bytes, std::uint64_t at, std::size_t count,
                               ByteOrder order)
{
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t place = order == ByteOrder::kBig ? i : count - 1 - i;
        value =
            value << 8 | static_cast<unsigned char>(bytes[static_cast<std::size_t>(at) + place]);
    }
    return value;
}

/// The lowest `count` bytes of `value`.
inline std::string NumberBytes(std::uint64_t value, std::size_t count, ByteOrder order)
{
    std::string bytes(count, '\0');
    for (std::size_t i = 0; i < count; ++i) {
        bytes[order == ByteOrder::kBig ? count - 1 - i : i] =
            static_cast<char>(value >> (8 * i) & 0xFF);
    }
    return bytes;
}

}  // namespace kivxmp::photo
