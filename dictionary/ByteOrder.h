// Numbers of 16 and 32 bits in either byte order.

#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

namespace morvish_private {

enum class ByteOrder { kLittle, kBig };

inline constexpr ByteOrder kMachineOrder =
    std::endian::native == std::endian::big ? ByteOrder::kBig : ByteOrder::kLittle;

inline std::uint16_t Load16(const unsigned char* bytes, ByteOrder order)
{
    const std::size_t high = order == ByteOrder::kLittle ? 1 : 0;
    return static_cast<std::uint16_t>((bytes[high] << 8) | bytes[1 - high]);
}

inline std::uint32_t Load32(const unsigned char* bytes, ByteOrder order)
{
    const std::uint32_t first = Load16(bytes, order);
    const std::uint32_t second = Load16(bytes + 2, order);
    return order == ByteOrder::kLittle ? second << 16 | first : first << 16 | second;
}

}  // namespace morvish_private
