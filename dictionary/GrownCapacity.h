// How the engine's buffers grow.

#pragma once

#include <cstddef>

namespace morvish_private {

/// `capacity` times 1.5, truncated, as often as it takes to reach `needed`.
inline std::size_t GrownCapacity(std::size_t capacity, std::size_t needed)
{
    while (capacity < needed) {
        const auto grown = static_cast<std::size_t>(static_cast<double>(capacity) * 1.5);
        capacity = grown > capacity ? grown : capacity + 1;
    }
    return capacity;
}

}  // namespace morvish_private
