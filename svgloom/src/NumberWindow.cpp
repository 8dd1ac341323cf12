#include "svgloom/src/NumberWindow.h"

#include <algorithm>
#include <cstring>

#include "svgloom/src/NumberReader.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace SVGLoom {

namespace {

/// The values of the four digits that end at `end`; the first is in the lowest byte.
std::uint32_t DigitsBefore(const char* end)
{
    constexpr std::uint32_t kZeros = 0x30303030;
    std::uint32_t word = 0;
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(&word, end - sizeof word, sizeof word);
    } else {
        for (unsigned i = 0; i < sizeof word; ++i) {
            word = word >> 8 | static_cast<std::uint32_t>(static_cast<unsigned char>(
                                   end[static_cast<int>(i) - static_cast<int>(sizeof word)]))
                                   << 24;
        }
    }
    return word ^ kZeros;
}

/// The value of the `count` digits before `end`, at most three.
float WholeBefore(const char* end, unsigned count)
{
    // Zeros in place of what stands before them make them four; then pairs are joined, and the
    // pairs.
    const auto kept = static_cast<std::uint32_t>(~(std::uint64_t{0xFFFFFFFF} >> (8 * count)));
    const std::uint32_t digits = DigitsBefore(end) & kept;
    const std::uint32_t pairs = (digits * 10 + (digits >> 8)) & 0x00FF00FF;
    return static_cast<float>(static_cast<int>((pairs & 0xFF) * 100 + (pairs >> 16)));
}

/// Adds the `count` digits of a fraction that ends at `end`, at most three, in the order and with
/// the roundings of the number reader: a digit that is not there adds a zero.
float WithFraction(float value, const char* end, unsigned count)
{
    const auto digits =
        static_cast<std::uint32_t>(std::uint64_t{DigitsBefore(end)} >> (32 - 8 * count));
    const auto& rows = number_reader::kFractions.rows;
    value += rows[0][digits & 0xFF];
    value += rows[1][(digits >> 8) & 0xFF];
    return value + rows[2][digits >> 16];
}

float Signed(float value, bool negative)
{
    return std::bit_cast<float>(std::bit_cast<std::uint32_t>(value) |
                                static_cast<std::uint32_t>(negative) << 31);
}

constexpr unsigned kMostQuickDigits = 3;  // all bits set, so that two counts are compared at once

/// Requires that there is one.
unsigned IndexOf(NumberWindow::Place place)
{
    return static_cast<unsigned>(__builtin_ctzll(place));
}

}  // namespace

#if defined(__SSE2__)

[[gnu::always_inline]] inline void NumberWindow::Classify(const char* block, std::size_t at)
{
    __m128i bytes;
    static_assert(sizeof bytes == kBlock);
    std::memcpy(&bytes, block, sizeof bytes);
    const auto bits = [at](__m128i found) {
        return static_cast<Place>(static_cast<std::uint32_t>(_mm_movemask_epi8(found))) << at;
    };
    const auto are = [](__m128i some, char c) { return _mm_cmpeq_epi8(some, _mm_set1_epi8(c)); };
    const __m128i values = _mm_sub_epi8(bytes, _mm_set1_epi8('0'));
    digits_ |= bits(_mm_cmpeq_epi8(_mm_min_epu8(values, _mm_set1_epi8(9)), values));
    points_ |= bits(are(bytes, '.'));
    minuses_ |= bits(are(bytes, '-'));
    separators_ |= bits(_mm_or_si128(are(bytes, ' '), are(bytes, ',')));
    exponents_ |= bits(are(_mm_or_si128(bytes, _mm_set1_epi8('a' - 'A')), 'e'));
}

#else

void NumberWindow::Classify(const char* block, std::size_t at)
{
    for (std::size_t i = 0; i < kBlock; ++i) {
        const char c = block[i];
        const Place place = Place{1} << (at + i);
        digits_ |= IsDigit(c) ? place : 0;
        points_ |= c == '.' ? place : 0;
        minuses_ |= c == '-' ? place : 0;
        separators_ |= c == ' ' || c == ',' ? place : 0;
        exponents_ |= ToLower(c) == 'e' ? place : 0;
    }
}

#endif

/// Moves the window, so that the byte at `pointer` is in it, and returns its place. A window that
/// does not begin with the text has a word before that byte.
NumberWindow::Place NumberWindow::Fill(const char* pointer)
{
    digits_ = points_ = separators_ = minuses_ = exponents_ = 0;
    const auto size = static_cast<std::size_t>(end_ - text_);
    if (size < kBytes) {
        first_ = bytes_ = text_;
        endPlace_ = Place{1} << size;
        if (size < kBlock) {
            bytes_ = short_;
            std::memset(short_, 0, sizeof short_);
            std::copy(text_, end_, short_);
            Classify(short_, 0);
        } else {
            // Blocks may overlap.
            for (std::size_t at = 0; at < size; at += kBlock) {
                const std::size_t from = std::min(at, size - kBlock);
                Classify(text_ + from, from);
            }
        }
    } else {
        const auto offset = static_cast<std::size_t>(pointer - text_);
        first_ = bytes_ = text_ + std::min(offset - std::min(offset, kWord), size - kBytes);
        endPlace_ = 0;
        for (std::size_t at = 0; at < kBytes; at += kBlock) {
            Classify(first_ + at, at);
        }
    }
    const auto index = static_cast<std::size_t>(pointer - first_);
    return index < kBytes ? Place{1} << index : 0;
}

NumberWindow::Place NumberWindow::PlaceOf(const char* pointer)
{
    const auto index = static_cast<std::size_t>(pointer - first_);
    return index < kBytes ? Place{1} << index : Fill(pointer);
}

[[gnu::always_inline]] inline NumberWindow::Outcome NumberWindow::ReadOne(Place at, float& number)
{
    const Place sign = at + (at & separators_);
    const Place minus = sign & minuses_;
    const Place start = sign + minus;
    // A bit added to a run of ones comes out behind it, and stays where no run begins.
    const Place behindWhole = (digits_ + start) & ~digits_;
    const Place fraction = behindWhole + (behindWhole & points_);
    const Place behind = (digits_ + fraction) & ~digits_;
    const Place last = (behind >> 1) & digits_;
    // No digit at its end, no number. Nor are words read that begin before the text may.
    constexpr Place kFirstWhole = Place{1} << kWord;
    if (last == 0 || last < start || behindWhole < kFirstWhole) [[unlikely]] {
        return behind == 0 ? ReadAnew(at, number) : ReadSlowly(at, number);
    }
    const unsigned wholeDigits = IndexOf(behindWhole) - IndexOf(start);
    const unsigned fractionDigits = IndexOf(behind) - IndexOf(fraction);
    if ((wholeDigits | fractionDigits) > kMostQuickDigits || (behind & exponents_) != 0)
        [[unlikely]] {
        return ReadSlowly(at, number);
    }
    number = Signed(WithFraction(WholeBefore(bytes_ + IndexOf(behindWhole), wholeDigits),
                                 bytes_ + IndexOf(behind), fractionDigits),
                    minus != 0);
    return {behind, true};
}

template <std::size_t count>
NumberWindow::Outcome NumberWindow::Read(Place at, float (&numbers)[count])
{
// The end of a loop is hard to foresee.
#pragma GCC unroll 6
    for (float& number : numbers) {
        const Outcome outcome = ReadOne(at, number);
        if (!outcome.isRead) {
            return outcome;
        }
        at = outcome.next;
    }
    return {at, true};
}

template NumberWindow::Outcome NumberWindow::Read(Place at, float (&numbers)[1]);
template NumberWindow::Outcome NumberWindow::Read(Place at, float (&numbers)[2]);
template NumberWindow::Outcome NumberWindow::Read(Place at, float (&numbers)[3]);
template NumberWindow::Outcome NumberWindow::Read(Place at, float (&numbers)[4]);
template NumberWindow::Outcome NumberWindow::Read(Place at, float (&numbers)[6]);

/// The window ended before the number did.
[[gnu::noinline]] NumberWindow::Outcome NumberWindow::ReadAnew(Place at, float& number)
{
    const char* const before = first_;
    at = Fill(PointerTo(at));
    // It may be the last one, or the number is too long for any.
    return first_ != before ? ReadOne(at, number) : ReadSlowly(at, number);
}

[[gnu::noinline]] NumberWindow::Outcome NumberWindow::ReadSlowly(Place at, float& number)
{
    const char* current = PointerTo(at);
    SkipSeparator(current, end_);
    const bool read = ReadNumber(current, end_, number);
    return {PlaceOf(current), read};
}

[[gnu::noinline]] bool NumberWindow::ReadFlagSlowly(Place& at, bool& flag)
{
    const char* current = PointerTo(at);
    SkipSeparator(current, end_);
    const bool read = current != end_ && IsFlag(*current);
    if (read) {
        flag = *current++ == '1';
    }
    at = PlaceOf(current);
    return read;
}

}  // namespace SVGLoom
