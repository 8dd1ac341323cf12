// What finding tokens does alike, however many bytes are looked at together: a block has been
// classified to a bit for each byte, and operations on these bits tell where what stands.

#pragma once

#include <immintrin.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "svgloom/src/PathTokens.h"

namespace SVGLoom {

#define KIV_PATH_BITS gnu::target("bmi,bmi2,lzcnt,popcnt")

namespace path_bits {

/// A bit for each byte of a block, the first byte's is the lowest.
using Bits = std::uint64_t;

struct Classes {
    Bits digits;
    Bits points;
    Bits minuses;
    Bits spaces;
    Bits commas;
    bool hasExponent;  // an "e" or "E"
};

/// What of a block is taken: a bit for each number or command.
struct Block {
    Bits begins;   // of numbers
    Bits minuses;  // of the begins
    Bits wholes;   // where the digits before the point end
    Bits ends;     // one behind the last digit
    Bits commands;
    std::size_t next;  // where the next block begins
    bool hasLong;  // there may be numbers with more than three digits before or behind the point
    bool isLast;
};

/// A bit that is added to a run of ones comes out behind it, and stays where no run begins. No run
/// may have more than one bit of `starts`.
constexpr Bits Behind(Bits starts, Bits runs)
{
    return (runs + starts) & ~runs;
}

[[KIV_PATH_BITS, gnu::always_inline]] inline std::size_t CountOf(Bits bits)
{
    return static_cast<std::size_t>(_mm_popcnt_u64(bits));
}

}  // namespace path_bits

/// How far a Find has come.
class PathTokens::Progress {
public:
    using Bits = path_bits::Bits;
    using Block = path_bits::Block;
    using Classes = path_bits::Classes;

    [[KIV_PATH_BITS, gnu::always_inline]] Progress(PathTokens& tokens, const char* text,
                                                   const char* end)
        : tokens_(tokens),
          left_(static_cast<std::size_t>(end - text)),
          size_(std::min(left_, kMostBytes)),
          command_(tokens.commands_)
    {
        tokens_.text_ = text;
    }

    /// Where the block begins.
    [[gnu::always_inline]] std::size_t At() const { return at_; }
    /// Bytes from there to the end of the text, which may be behind the piece's end.
    [[gnu::always_inline]] std::size_t Left() const { return left_ - at_; }
    /// Where the block's numbers and commands go.
    [[gnu::always_inline]] Place* Numbers() const { return tokens_.numbers_ + numberCount_; }
    [[gnu::always_inline]] float* Values() const { return tokens_.values_ + numberCount_; }
    [[gnu::always_inline]] Place* Commands() const { return command_; }

    /// False if something is not as in most paths.
    [[KIV_PATH_BITS, gnu::always_inline]] bool Split(const Classes& of, Block& block) const
    {
        const Bits body = of.digits | of.points;
        const Bits runs = body & ~(body << 1);
        // A number has one point only: all others in a run begin numbers of their own.
        const Bits firstPoints = path_bits::Behind(runs, of.digits) & of.points;
        const Bits numbers = of.minuses | (runs & ~(of.minuses << 1)) | (of.points & ~firstPoints);
        const Bits tokens = numbers | ~(body | of.minuses | of.spaces | of.commas);

        const std::size_t rest = size_ - at_;
        block.isLast = rest < kBlock;
        Bits known = block.isLast ? _bzhi_u64(~Bits{0}, static_cast<unsigned>(rest)) : ~Bits{0};
        const Bits behindCommas = path_bits::Behind(of.commas << 1, of.spaces & known);
        block.next = size_;
        if (!block.isLast || size_ != left_) {
            // The last token may go on behind the block.
            block.isLast |= (tokens & known) <= 1;
            const std::size_t last =
                63 - static_cast<std::size_t>(_lzcnt_u64((tokens & known) | 1));
            block.next = at_ + last;
            known = _bzhi_u64(~Bits{0}, static_cast<unsigned>(last));
        }
        // Where the digits before the point end, and the numbers. These have to end with a digit.
        block.begins = numbers & known;
        block.minuses = block.begins & of.minuses;
        block.wholes = path_bits::Behind(block.begins + block.minuses, of.digits);
        block.ends = path_bits::Behind(block.wholes + (block.wholes & of.points), of.digits);
        block.commands = tokens & ~numbers & known;
        const Bits twice = of.digits & of.digits >> 1;
        block.hasLong = (twice & twice >> 2) != 0;
        return ((behindCommas & ~numbers & (known << 1 | 1)) | (block.ends >> 1 & ~of.digits)) ==
                   0 &&
               !of.hasExponent;
    }

    /// Goes behind a block whose numbers and commands have been written. False if the piece ends.
    [[KIV_PATH_BITS, gnu::always_inline]] bool Advance(const Block& block)
    {
        const std::size_t first = numberCount_;
        numberCount_ += path_bits::CountOf(block.begins);
        command_ += path_bits::CountOf(block.commands);
        at_ = block.next;
        if (block.hasLong) [[unlikely]] {
            const std::size_t readable =
                tokens_.ReadLongNumbers(tokens_.text_ + size_, first, numberCount_);
            if (readable != numberCount_) {
                numberCount_ = readable;
                at_ = tokens_.numbers_[readable];
                command_ =
                    std::lower_bound(tokens_.commands_ + 0, command_, tokens_.numbers_[readable]);
                return false;
            }
        }
        return !block.isLast;
    }

    /// Ends the piece where it has come to.
    [[gnu::always_inline]] void Finish() const
    {
        tokens_.end_ = static_cast<Place>(at_);
        *command_ = tokens_.end_;
        std::fill_n(tokens_.numbers_ + numberCount_, kMostNumbers, tokens_.end_);
    }

private:
    PathTokens& tokens_;
    const std::size_t left_;  // bytes of the text
    const std::size_t size_;  // bytes for which there is room
    std::size_t at_ = 0;
    std::size_t numberCount_ = 0;
    Place* command_;
};

}  // namespace SVGLoom
