// What plain colours have made of styles, while one document is parsed: siblings with the same
// colour share one style, and the colour is read once.

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>

#include "svgloom/src/Styles.h"

namespace SVGLoom {

/// For the texts of one property.
template <class Style>
class PaintMemo {
public:
    /// True for a text whose meaning depends on nothing else: a "#" and hexadecimal digits.
    static bool Takes(std::string_view text)
    {
        return !text.empty() && text.front() == '#' && text.size() <= sizeof(std::uint64_t);
    }

    /// The style that `text` made of `style` before; null if it is not known. Requires Takes(text),
    /// as Remember does.
    const SharedStyle<Style>* Find(const SharedStyle<Style>& style, std::string_view text) const
    {
        if (entries_ == nullptr) {
            return nullptr;
        }
        const std::uint64_t key = KeyOf(text);
        const std::optional<Entry>& entry = (*entries_)[SlotOf(key)];
        return entry.has_value() && entry->key == key && entry->before.IsSharedWith(style)
                   ? &entry->after
                   : nullptr;
    }

    void Remember(const SharedStyle<Style>& before, std::string_view text,
                  const SharedStyle<Style>& after)
    {
        const std::uint64_t key = KeyOf(text);
        if (entries_ == nullptr) {
            entries_ = std::make_unique<Entries>();
        }
        (*entries_)[SlotOf(key)].emplace(Entry{key, before, after});
    }

private:
    struct Entry {
        std::uint64_t key;
        SharedStyle<Style> before;  // held, so that no other style takes its place
        SharedStyle<Style> after;
    };
    static constexpr unsigned kSlotBits = 3;
    using Entries = std::array<std::optional<Entry>, std::size_t{1} << kSlotBits>;

    static std::uint64_t KeyOf(std::string_view text)
    {
        std::uint64_t key = 0;
        std::memcpy(&key, text.data(), text.size());
        return key;
    }
    static std::size_t SlotOf(std::uint64_t key)
    {
        return static_cast<std::size_t>((key * 0x9E3779B97F4A7C15U) >> (64 - kSlotBits));
    }

    std::unique_ptr<Entries> entries_;  // made for the first: many icons have no such colour
};

struct PaintMemos {
    PaintMemo<DocumentFillStyle> fill;
    PaintMemo<DocumentStrokeStyle> stroke;
};

}  // namespace SVGLoom
