// A piece of path data taken apart: where its command letters and its numbers stand, and the
// numbers' values. Where each ends is hard to foresee for a processor, so the text is classified 64
// bytes at a time, a bit for each byte, and all is found by operations on these bits and on words
// of eight bytes: without a branch for each number, let alone each digit.

#pragma once

#include <cstddef>
#include <cstdint>

namespace SVGLoom {

class PathTokens {
public:
    using Place = std::uint16_t;  // of a byte, counted from the beginning of the piece

    /// No command takes more numbers. Behind the last number of a piece there are so many that
    /// stand at its end.
    static constexpr std::size_t kMostNumbers = 7;

    /// How many bytes are looked at together. What is found is the same.
    enum class Width { k16, k64 };

    PathTokens() {}  // all is written by Find
    PathTokens(const PathTokens&) = delete;
    PathTokens& operator=(const PathTokens&) = delete;

    /// Whether this processor has what Find needs.
    static bool Supports(Width width);

    /// Takes apart what begins at `text`, which has to be the beginning of a number or command, as
    /// far as there is room. The piece ends before, even at its beginning, where something is not
    /// as in most paths: exponents, commas with no number behind them, numbers that cannot be read.
    ///
    /// The text has to stand as long as the piece is looked at.
    void Find(const char* text, const char* end, Width width);

    /// Where the piece ends, between two tokens.
    Place End() const { return end_; }

    const char* At(Place place) const { return text_ + place; }
    /// In their order; End() behind the last one. Every byte that is no part of a number, no space
    /// and no comma is a command.
    const Place* Commands() const { return commands_; }
    /// In their order; End(), several times, behind the last one. Between two neighbours, or a
    /// number and a command, there is nothing but what a number reader takes or skips.
    const Place* Numbers() const { return numbers_; }
    const float* Values() const { return values_; }

private:
    static constexpr std::size_t kBlock = 64;
    static constexpr std::size_t kMostBytes = 2048;
    static constexpr std::size_t kSpare = 16;  // so many may be written, or read, behind the last

    class Progress;

    void FindBy16(const char* text, const char* end);
    void FindBy64(const char* text, const char* end);
    std::size_t CopyTail(std::size_t left);
    std::size_t ReadLongNumbers(const char* end, std::size_t first, std::size_t count);

    Place end_;
    Place commands_[kMostBytes + kBlock + kSpare];
    Place numbers_[kMostBytes + kBlock + kSpare];
    float values_[kMostBytes + kBlock + kSpare];
    const char* text_;
    char tail_[2 * (kBlock + kSpare)];
};

}  // namespace SVGLoom
