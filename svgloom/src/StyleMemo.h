// What properties have made of inherited styles, while one document is parsed: siblings with the
// same colour or line width share one style, and the value is read once.

#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <string_view>
#include <utility>

#include "svgloom/src/AttributeNames.h"
#include "svgloom/src/Styles.h"

namespace SVGLoom {

/// For the properties of one kind of style.
template <class Style>
class StyleMemo {
public:
    StyleMemo() {}  // the entries are made where their bits are set
    ~StyleMemo()
    {
        for (std::uint32_t left = used_; left != 0; left &= left - 1) {
            room_.entries[std::countr_zero(left)].~Entry();
        }
    }
    StyleMemo(const StyleMemo&) = delete;
    StyleMemo& operator=(const StyleMemo&) = delete;

    /// True for a short text whose meaning depends on nothing else: no reference, variable or
    /// percentage.
    static bool Takes(std::string_view text)
    {
        return !text.empty() && text.size() <= sizeof(std::uint64_t) && !HasAny(KeyOf(text));
    }

    /// Does for `style` what read() does, which reads `text` as the value of `property` into it.
    /// Requires Takes(text).
    template <class Read>
    void Apply(AttributeName property, std::string_view text, SharedStyle<Style>& style,
               const Read& read)
    {
        const std::uint64_t key = KeyOf(text);
        const std::size_t slot = SlotOf(key, property);
        const std::uint32_t bit = std::uint32_t{1} << slot;
        Entry& entry = room_.entries[slot];
        const bool isUsed = (used_ & bit) != 0;
        if (isUsed && entry.key == key && entry.property == property &&
            entry.before.IsSharedWith(style)) {
            style = entry.after;
            return;
        }
        SharedStyle<Style> before = style;
        read();
        if (isUsed) {
            entry = Entry{key, property, std::move(before), style};
        } else {
            new (&entry) Entry{key, property, std::move(before), style};
            used_ |= bit;
        }
    }

private:
    struct Entry {
        std::uint64_t key;
        AttributeName property;
        SharedStyle<Style> before;  // held, so that no other style takes its place
        SharedStyle<Style> after;
    };
    static constexpr unsigned kSlotBits = 4;
    static constexpr std::size_t kSlots = std::size_t{1} << kSlotBits;
    /// Entries that are not made yet.
    union Room {
        Room() {}
        ~Room() {}
        Entry entries[kSlots];
    };
    static constexpr std::uint64_t kOnes = 0x0101010101010101U;

    /// The bytes of the text, as many as there are.
    static std::uint64_t KeyOf(std::string_view text)
    {
        const std::size_t size = text.size();
        if (size >= sizeof(std::uint32_t)) {
            std::uint32_t first = 0;
            std::uint32_t last = 0;
            std::memcpy(&first, text.data(), sizeof first);
            std::memcpy(&last, text.data() + size - sizeof last, sizeof last);
            return first | std::uint64_t{last} << (8 * (size - sizeof last));
        }
        const auto byte = [&text](std::size_t at) {
            return std::uint64_t{static_cast<unsigned char>(text[at])} << (8 * at);
        };
        return byte(0) | byte(size / 2) | byte(size - 1);
    }

    /// Whether one of the bytes is "(" or "%".
    static bool HasAny(std::uint64_t key)
    {
        const auto hasZero = [](std::uint64_t bytes) {
            return ((bytes - kOnes) & ~bytes & (kOnes << 7)) != 0;
        };
        return hasZero(key ^ kOnes * '(') || hasZero(key ^ kOnes * '%');
    }

    static std::size_t SlotOf(std::uint64_t key, AttributeName property)
    {
        const std::uint64_t mixed =
            (key + static_cast<std::uint64_t>(property)) * 0x9E3779B97F4A7C15U;
        return static_cast<std::size_t>(mixed >> (64 - kSlotBits));
    }

    std::uint32_t used_ = 0;  // a bit for each entry
    static_assert(kSlots <= 32);
    Room room_;
};

struct StyleMemos {
    StyleMemo<DocumentFillStyle> fill;
    StyleMemo<DocumentStrokeStyle> stroke;
};

}  // namespace SVGLoom
