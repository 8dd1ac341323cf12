// Tokens of path data found 16 bytes at a time, with what processors have had for some ten years;
// older ones read step by step.

#include "svgloom/src/PathTokens.h"

#if defined(__x86_64__)

#include <array>
#include <bit>
#include <cstring>

#include "svgloom/src/PathBits.h"

namespace SVGLoom {

#define KIV_VECTORS gnu::target("avx,bmi,bmi2,lzcnt,popcnt")

namespace {

using namespace path_bits;

constexpr std::size_t kVectors = 4;
using Vectors = __m128i[kVectors];

[[KIV_VECTORS, gnu::always_inline]] inline __m128i VectorAt(const char* text)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
}

[[KIV_VECTORS, gnu::always_inline]] inline Bits BitsOf(const Vectors& found)
{
    const auto bits = [&found](std::size_t i) __attribute__((always_inline))
    {
        return static_cast<std::uint32_t>(_mm_movemask_epi8(found[i]));
    };
    return (bits(0) | bits(1) << 16) | Bits{bits(2) | bits(3) << 16} << 32;
}

[[KIV_VECTORS, gnu::always_inline]] inline Bits Find(const Vectors& block, char c)
{
    const __m128i all = _mm_set1_epi8(c);
    const Vectors found = {_mm_cmpeq_epi8(block[0], all), _mm_cmpeq_epi8(block[1], all),
                           _mm_cmpeq_epi8(block[2], all), _mm_cmpeq_epi8(block[3], all)};
    return BitsOf(found);
}

[[KIV_VECTORS, gnu::always_inline]] inline Classes Classify(const char* text)
{
    Vectors block;
    Vectors digits;
    __m128i exponents = _mm_setzero_si128();
    __m128i least = _mm_set1_epi8(' ');
#pragma GCC unroll 4
    for (std::size_t i = 0; i < kVectors; ++i) {
        block[i] = VectorAt(text + i * sizeof block[i]);
        const __m128i values = _mm_sub_epi8(block[i], _mm_set1_epi8('0'));
        digits[i] = _mm_cmpeq_epi8(_mm_min_epu8(values, _mm_set1_epi8(9)), values);
        const __m128i lower = _mm_or_si128(block[i], _mm_set1_epi8('a' - 'A'));
        exponents = _mm_or_si128(exponents, _mm_cmpeq_epi8(lower, _mm_set1_epi8('e')));
        least = _mm_min_epu8(least, block[i]);
    }
    Classes classes = {};
    classes.digits = BitsOf(digits);
    classes.points = Find(block, '.');
    classes.minuses = Find(block, '-');
    classes.spaces = Find(block, ' ');
    classes.commas = Find(block, ',');
    classes.hasExponent = _mm_movemask_epi8(exponents) != 0;
    // Other white space is rare.
    constexpr int kAll = 0xFFFF;
    if (_mm_movemask_epi8(_mm_cmpeq_epi8(least, _mm_set1_epi8(' '))) != kAll) [[unlikely]] {
        for (const char space : {'\n', '\t', '\r'}) {
            classes.spaces |= Find(block, space);
        }
    }
    return classes;
}

[[KIV_VECTORS, gnu::always_inline]] inline std::size_t TakeFirst(Bits& bits)
{
    const auto first = static_cast<std::size_t>(_tzcnt_u64(bits));
    bits = _blsr_u64(bits);
    return first;
}

/// For each count of bytes before and behind the end of a number's whole digits: how the number's
/// bytes are put into order. The whole digits come as four bytes, then each of three decimals as
/// one byte of four; what is not there becomes zero.
struct Orders {
    static constexpr std::size_t kMost = 8;
    static constexpr std::size_t kBytes = 16;

    constexpr Orders()
    {
        constexpr char kNothing = '\x80';
        for (std::size_t whole = 0; whole < kMost; ++whole) {
            for (std::size_t behind = 0; behind < kMost; ++behind) {
                char* const row = rows[whole * kMost + behind];
                for (std::size_t i = 0; i < kBytes; ++i) {
                    row[i] = kNothing;
                }
                for (std::size_t i = 0; i < 4 && i < whole; ++i) {
                    row[3 - i] = static_cast<char>(whole - 1 - i);
                }
                for (std::size_t i = 0; i < 3 && i + 1 < behind; ++i) {
                    row[4 + 4 * i] = static_cast<char>(whole + 1 + i);
                }
            }
        }
    }
    alignas(kBytes) char rows[kMost * kMost][kBytes] = {};
};

constexpr Orders kOrders;

/// Whole digits and three decimals as integers. Up to 16 bytes are looked at.
[[KIV_VECTORS, gnu::always_inline]] inline __m128i PartsOf(__m128i text, std::size_t whole,
                                                           std::size_t behind)
{
    const std::size_t row = (whole * Orders::kMost + behind) % (Orders::kMost * Orders::kMost);
    // A minus, which is less than a zero, becomes a zero.
    const __m128i digits =
        _mm_shuffle_epi8(_mm_subs_epu8(text, _mm_set1_epi8('0')),
                         _mm_load_si128(reinterpret_cast<const __m128i*>(kOrders.rows[row])));
    const __m128i pairs =
        _mm_maddubs_epi16(digits, _mm_setr_epi8(10, 1, 10, 1, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0));
    return _mm_madd_epi16(pairs, _mm_setr_epi16(100, 1, 1, 0, 1, 0, 1, 0));
}

/// Four numbers from their texts and parts, with the number reader's steps.
[[KIV_VECTORS, gnu::always_inline]] inline __m128 NumbersOf(const __m128i (&texts)[4],
                                                            const __m128i (&parts)[4])
{
    const __m128i first = _mm_unpacklo_epi32(parts[0], parts[1]);
    const __m128i second = _mm_unpacklo_epi32(parts[2], parts[3]);
    const __m128i third = _mm_unpackhi_epi32(parts[0], parts[1]);
    const __m128i fourth = _mm_unpackhi_epi32(parts[2], parts[3]);
    const auto row = [](__m128i integers) __attribute__((target("avx"), always_inline))
    {
        return _mm_cvtepi32_ps(integers);
    };
    __m128 numbers = row(_mm_unpacklo_epi64(first, second));
    numbers =
        _mm_add_ps(numbers, _mm_div_ps(row(_mm_unpackhi_epi64(first, second)), _mm_set1_ps(10)));
    numbers =
        _mm_add_ps(numbers, _mm_div_ps(row(_mm_unpacklo_epi64(third, fourth)), _mm_set1_ps(100)));
    numbers =
        _mm_add_ps(numbers, _mm_div_ps(row(_mm_unpackhi_epi64(third, fourth)), _mm_set1_ps(1000)));
    const __m128i begins = _mm_unpacklo_epi64(_mm_unpacklo_epi32(texts[0], texts[1]),
                                              _mm_unpacklo_epi32(texts[2], texts[3]));
    const __m128i minuses = _mm_cmpeq_epi32(_mm_slli_epi32(begins, 24), _mm_set1_epi32('-' << 24));
    return _mm_or_ps(numbers, _mm_castsi128_ps(_mm_slli_epi32(minuses, 31)));
}

/// Writes places and values of a block's numbers, and up to three more.
[[KIV_VECTORS, gnu::always_inline]] inline void StoreNumbers(const char* block, const Block& found,
                                                             std::size_t at,
                                                             PathTokens::Place* places,
                                                             float* values)
{
    Bits begins = found.begins;
    Bits wholes = found.wholes;
    Bits ends = found.ends;
    for (; begins != 0; places += 4, values += 4) {
        __m128i texts[4];
        __m128i parts[4];
#pragma GCC unroll 4
        for (std::size_t k = 0; k < 4; ++k) {
            const std::size_t begin = TakeFirst(begins);
            const std::size_t whole = TakeFirst(wholes);
            places[k] = static_cast<PathTokens::Place>(at + begin);
            texts[k] = VectorAt(block + begin);
            parts[k] = PartsOf(texts[k], whole - begin, TakeFirst(ends) - whole);
        }
        _mm_storeu_ps(values, NumbersOf(texts, parts));
    }
}

/// Writes the places of `bits`, and up to four more.
[[KIV_VECTORS, gnu::always_inline]] inline void StorePlaces(Bits bits, std::size_t at,
                                                            PathTokens::Place* places)
{
    do {
#pragma GCC unroll 4
        for (std::size_t k = 0; k < 4; ++k) {
            *places++ = static_cast<PathTokens::Place>(at + TakeFirst(bits));
        }
    } while (bits != 0);
}

}  // namespace

/// Copies the end of a text, and spaces behind it. Returns how much that is.
[[gnu::always_inline]] inline std::size_t PathTokens::CopyTail(std::size_t left)
{
    constexpr std::size_t kMost = sizeof tail_ / 2;
    const std::size_t size = std::min(left, kMost);
    if (size == kMost) {
        std::memcpy(tail_, text_ + left - kMost, kMost);
    } else {
        std::memmove(tail_, text_, size);  // a call: of memcpy, compilers make slow instructions
    }
    std::memset(tail_ + size, ' ', kMost);
    return size;
}

[[KIV_VECTORS]] void PathTokens::FindBy16(const char* text, const char* end)
{
    Progress progress(*this, text, end);
    // Where a block and what is looked at behind it would not be in the text, a copy of its end is
    // read.
    const char* source = text;
    std::size_t sourceAt = 0;
    Block found;
    do {
        const std::size_t at = progress.At();
        if (progress.Left() < sizeof tail_ / 2 && source == text) {
            const std::size_t left = at + progress.Left();
            sourceAt = left - CopyTail(left);
            source = tail_;
        }
        const char* const block = source + (at - sourceAt);
        if (!progress.Split(Classify(block), found)) [[unlikely]] {
            break;
        }
        StoreNumbers(block, found, at, progress.Numbers(), progress.Values());
        StorePlaces(found.commands, at, progress.Commands());
    } while (progress.Advance(found));
    progress.Finish();
}

}  // namespace SVGLoom

#endif
