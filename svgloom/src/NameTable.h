// Fixed names in a table that has one slot for each of them: a multiplier that sends no two to the
// same slot is looked for at compile time, so a name is compared with at most one other.

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace SVGLoom {

/// Of `count` names, each different from all others in its length, first, middle or last byte.
template <std::size_t count>
class NameTable {
public:
    /// `names` has to stand as long as this object.
    constexpr explicit NameTable(const std::string_view (&names)[count]) : names_(names)
    {
        static_assert(count < kFree);
        while (!FillSlots()) {
            multiplier_ = (multiplier_ * 1664525U + 1013904223U) | 1U;
        }
    }

    /// Its place among the names; `count` for any other.
    std::size_t Find(std::string_view name) const
    {
        if (name.empty()) {
            return count;
        }
        const std::uint32_t key = KeyOf(name);
        const std::uint8_t found = slots_[SlotOf(key)];
        return found != kFree && keys_[found] == key && IsSame(names_[found], name) ? found : count;
    }

private:
    static constexpr unsigned kSlotBits = 8;
    static constexpr std::uint8_t kFree = 0xFF;

    /// Requires a name that is not empty.
    static constexpr std::uint32_t KeyOf(std::string_view name)
    {
        const auto byte = [name](std::size_t at) {
            return static_cast<std::uint32_t>(static_cast<unsigned char>(name[at]));
        };
        return byte(0) | byte(name.size() / 2) << 8 | byte(name.size() - 1) << 16 |
               static_cast<std::uint32_t>(name.size()) << 24;
    }

    constexpr std::size_t SlotOf(std::uint32_t key) const
    {
        return (key * multiplier_) >> (32 - kSlotBits);
    }

    /// False if two names share a slot.
    constexpr bool FillSlots()
    {
        slots_.fill(kFree);
        for (std::size_t i = 0; i < count; ++i) {
            keys_[i] = KeyOf(names_[i]);
            std::uint8_t& slot = slots_[SlotOf(keys_[i])];
            if (slot != kFree) {
                return false;
            }
            slot = static_cast<std::uint8_t>(i);
        }
        return true;
    }

    /// For names of one key: up to three bytes are the key, and others are short enough to be
    /// compared here, from both ends.
    static bool IsSame(std::string_view known, std::string_view name)
    {
        const std::size_t size = known.size();
        if (name.size() != size) {
            return false;  // by a multiple of 256
        }
        if (size <= 3) {
            return true;
        }
        const char* const a = known.data();
        const char* const b = name.data();
        if (size <= 8) {
            return IsSameWord<std::uint32_t>(a, b) &&
                   IsSameWord<std::uint32_t>(a + size - 4, b + size - 4);
        }
        if (size <= 16) {
            return IsSameWord<std::uint64_t>(a, b) &&
                   IsSameWord<std::uint64_t>(a + size - 8, b + size - 8);
        }
        return std::memcmp(a, b, size) == 0;
    }
    template <class Word>
    static bool IsSameWord(const char* a, const char* b)
    {
        Word first;
        Word second;
        std::memcpy(&first, a, sizeof first);
        std::memcpy(&second, b, sizeof second);
        return first == second;
    }

    const std::string_view (&names_)[count];
    std::uint32_t multiplier_ = 0x9E3779B1U;
    std::array<std::uint32_t, count> keys_{};
    std::array<std::uint8_t, std::size_t{1} << kSlotBits> slots_{};
};

}  // namespace SVGLoom
