// The numbers of long path data. Where each ends is hard to foresee for a processor, so the text is
// classified 64 bytes at a time, a bit for each byte, and a number is found by additions that carry
// through the bits of its digits: without a branch for each of them. Short texts are not worth it.

#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "svgloom/src/Characters.h"

namespace SVGLoom {

class NumberWindow {
public:
    /// One bit: that of a byte of the window; 0 for the byte behind it.
    using Place = std::uint64_t;

    struct Outcome {
        Place next;  // where reading stopped
        bool isRead;
    };

    /// Nothing outside of [text, end) is read.
    NumberWindow(const char* text, const char* end) : text_(text), end_(end) { Fill(text); }
    NumberWindow(const NumberWindow&) = delete;
    NumberWindow& operator=(const NumberWindow&) = delete;

    static constexpr Place First() { return 1; }
    static constexpr Place Behind(Place at) { return at << 1; }
    const char* PointerTo(Place at) const { return first_ + std::countr_zero(at); }

    // What follows may move the window: places that it does not return mean nothing then.

    /// False at the end of the text; `c` is the byte at `at` otherwise.
    bool Look(Place& at, char& c)
    {
        if (at == 0) {
            at = Fill(PointerTo(at));
        }
        if (at == endPlace_) {
            return false;
        }
        c = ByteAt(at);
        return true;
    }
    /// The same at the first byte from `at` on that is no white space.
    bool LookBehindSpace(Place& at, char& c)
    {
        bool isThere = Look(at, c);
        while (isThere && IsSpace(c)) {
            at = Behind(at);
            isThere = Look(at, c);
        }
        return isThere;
    }
    /// A separator, then "0" or "1". Where there is none, reading stops behind the separator.
    bool ReadFlag(Place& at, bool& flag)
    {
        const Place start = at + (at & separators_);
        if (start == 0 || start == endPlace_ || !IsFlag(ByteAt(start))) {
            return ReadFlagSlowly(at, flag);
        }
        flag = ByteAt(start) == '1';
        at = Behind(start);
        return true;
    }
    /// So many times a separator and a number, as SkipSeparator and ReadNumber. For 1, 2, 3, 4 and
    /// 6 numbers; called, not inlined.
    template <std::size_t count>
    Outcome Read(Place at, float (&numbers)[count]);

private:
    static constexpr std::size_t kBytes = 64;
    static constexpr std::size_t kBlock = 16;  // that are classified at once
    static constexpr std::size_t kWord = 4;    // that are read at once, up to the end of digits

    static bool IsFlag(char c) { return c == '0' || c == '1'; }
    /// Requires a place in the text.
    char ByteAt(Place at) const { return bytes_[std::countr_zero(at)]; }

    Place Fill(const char* pointer);
    void Classify(const char* block, std::size_t at);
    Place PlaceOf(const char* pointer);
    bool ReadFlagSlowly(Place& at, bool& flag);
    Outcome ReadOne(Place at, float& number);
    Outcome ReadAnew(Place at, float& number);
    Outcome ReadSlowly(Place at, float& number);

    const char* const text_;
    const char* const end_;
    const char* first_ = nullptr;  // where the window begins
    const char* bytes_ = nullptr;  // the same bytes
    Place endPlace_ = 0;           // of the end of the text; 0 too where it is not in the window
    Place digits_ = 0;
    Place points_ = 0;
    Place separators_ = 0;  // spaces and commas
    Place minuses_ = 0;
    Place exponents_ = 0;  // "e" and "E"
    char short_[kBlock];   // a text that is shorter than a block, and zeros behind it
};

}  // namespace SVGLoom
