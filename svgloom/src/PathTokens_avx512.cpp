// Tokens of path data found 64 bytes at a time: what stands in a block of text is picked from one
// register, for up to 16 numbers together.

#include "svgloom/src/PathTokens.h"

#if defined(__x86_64__)

#include <array>
#include <cstddef>
#include <cstdint>

#include "svgloom/src/PathBits.h"

namespace SVGLoom {

#define KIV_VECTORS gnu::target("avx512f,avx512bw,avx512vbmi,avx512vbmi2,bmi,bmi2,lzcnt,popcnt")

namespace {

using namespace path_bits;

/// Up to 64 bytes; behind these spaces. Nothing behind them is looked at.
[[KIV_VECTORS, gnu::always_inline]] inline __m512i BytesOf(const char* text, std::size_t left)
{
    const __m512i spaces = _mm512_set1_epi8(' ');
    const Bits all = ~Bits{0};
    return left >= sizeof spaces
               ? _mm512_loadu_si512(text)
               : _mm512_mask_loadu_epi8(spaces, _bzhi_u64(all, static_cast<unsigned>(left)), text);
}

[[KIV_VECTORS, gnu::always_inline]] inline Bits Find(__m512i bytes, char c)
{
    return _mm512_cmpeq_epi8_mask(bytes, _mm512_set1_epi8(c));
}

[[KIV_VECTORS, gnu::always_inline]] inline Classes Classify(__m512i bytes)
{
    Classes classes;
    const __m512i values = _mm512_sub_epi8(bytes, _mm512_set1_epi8('0'));
    classes.digits = _mm512_cmple_epu8_mask(values, _mm512_set1_epi8(9));
    classes.points = Find(bytes, '.');
    classes.minuses = Find(bytes, '-');
    classes.spaces = Find(bytes, ' ');
    classes.commas = Find(bytes, ',');
    classes.hasExponent = Find(_mm512_or_si512(bytes, _mm512_set1_epi8('a' - 'A')), 'e') != 0;
    // Other white space is rare.
    if (_mm512_cmplt_epu8_mask(bytes, _mm512_set1_epi8(' ')) != 0) [[unlikely]] {
        classes.spaces |= Find(bytes, '\n') | Find(bytes, '\t') | Find(bytes, '\r');
    }
    return classes;
}

template <class T>
struct alignas(64) Table {
    T rows[64 / sizeof(T)];
};

constexpr std::size_t kNumbers = 16;  // so many are read together

template <class Make>
constexpr auto MakeTable(const Make& make)
{
    Table<decltype(make(std::size_t{0}))> table = {};
    for (std::size_t i = 0; i < std::size(table.rows); ++i) {
        table.rows[i] = make(i);
    }
    return table;
}

constexpr auto kPlaces = MakeTable([](std::size_t i) { return static_cast<std::int8_t>(i); });
/// Each of the first 16 bytes four times.
constexpr auto kFourTimes =
    MakeTable([](std::size_t i) { return static_cast<std::int8_t>(i / 4); });
/// From the end of a number's whole digits to its last four of these, and to the decimals.
constexpr auto kToWholes =
    MakeTable([](std::size_t i) { return static_cast<std::int8_t>(static_cast<int>(i % 4) - 4); });
constexpr auto kToDecimals =
    MakeTable([](std::size_t i) { return static_cast<std::int8_t>(i % 4 + 1); });
/// The values of decimals, as the number reader divides them.
constexpr auto kTenths = MakeTable([](std::size_t i) { return static_cast<float>(i) / 10; });
constexpr auto kHundredths = MakeTable([](std::size_t i) { return static_cast<float>(i) / 100; });
constexpr auto kThousandths = MakeTable([](std::size_t i) { return static_cast<float>(i) / 1000; });

template <class T>
[[KIV_VECTORS, gnu::always_inline]] inline __m512i VectorOf(const Table<T>& table)
{
    return _mm512_load_si512(table.rows);
}

/// The places of the ones among `bits`, a byte for each.
[[KIV_VECTORS, gnu::always_inline]] inline __m512i PlacesOf(Bits bits)
{
    return _mm512_maskz_compress_epi8(bits, VectorOf(kPlaces));
}

/// For each of 16 numbers the float that stands for its decimal in a table.
[[KIV_VECTORS, gnu::always_inline]] inline __m512 ValuesOf(__m512i decimals,
                                                           const Table<float>& table)
{
    return _mm512_permutexvar_ps(decimals, _mm512_load_ps(table.rows));
}

/// Writes 32 places from bytes.
[[KIV_VECTORS, gnu::always_inline]] inline void Store(__m256i bytes, std::size_t at,
                                                      PathTokens::Place* places)
{
    _mm512_storeu_si512(places, _mm512_add_epi16(_mm512_cvtepu8_epi16(bytes),
                                                 _mm512_set1_epi16(static_cast<short>(at))));
}

/// Writes places and values of a block's numbers, and up to 32 in all.
[[KIV_VECTORS, gnu::always_inline]] inline void StoreNumbers(__m512i bytes, const Block& found,
                                                             std::size_t at,
                                                             PathTokens::Place* places,
                                                             float* values)
{
    const __m512i begins = PlacesOf(found.begins);
    const __m512i wholes = PlacesOf(found.wholes);
    const __m512i ends = PlacesOf(found.ends);
    Bits minuses = _pext_u64(found.minuses, found.begins);
    // Each has a digit, and something before that or behind it: there are no more than these.
    Store(_mm512_castsi512_si256(begins), at, places);
    // A minus, which is less than a zero, becomes a zero.
    const __m512i digits = _mm512_subs_epu8(bytes, _mm512_set1_epi8('0'));
    const std::size_t count = CountOf(found.begins);
    for (std::size_t i = 0; i < count; i += kNumbers) {
        const __m512i four =
            _mm512_add_epi8(VectorOf(kFourTimes), _mm512_set1_epi8(static_cast<char>(i)));
        const __m512i begin = _mm512_permutexvar_epi8(four, begins);
        const __m512i whole = _mm512_permutexvar_epi8(four, wholes);
        const __m512i end = _mm512_permutexvar_epi8(four, ends);
        const __m512i fromWholes = _mm512_add_epi8(whole, VectorOf(kToWholes));
        const __m512i fromDecimals = _mm512_add_epi8(whole, VectorOf(kToDecimals));
        const __m512i wholeDigits = _mm512_maskz_permutexvar_epi8(
            _mm512_cmpge_epi8_mask(fromWholes, begin), fromWholes, digits);
        const __m512i decimals = _mm512_maskz_permutexvar_epi8(
            _mm512_cmplt_epi8_mask(fromDecimals, end), fromDecimals, digits);
        const __m512i pairs = _mm512_maddubs_epi16(wholeDigits, _mm512_set1_epi16(1 << 8 | 10));
        __m512 numbers =
            _mm512_cvtepi32_ps(_mm512_madd_epi16(pairs, _mm512_set1_epi32(1 << 16 | 100)));
        numbers = _mm512_add_ps(numbers, ValuesOf(decimals, kTenths));
        numbers = _mm512_add_ps(numbers, ValuesOf(_mm512_srli_epi32(decimals, 8), kHundredths));
        numbers = _mm512_add_ps(numbers, ValuesOf(_mm512_srli_epi32(decimals, 16), kThousandths));
        const __m512i asBits = _mm512_castps_si512(numbers);
        _mm512_storeu_si512(values + i,
                            _mm512_mask_or_epi32(asBits, static_cast<__mmask16>(minuses), asBits,
                                                 _mm512_set1_epi32(static_cast<int>(0x80000000))));
        minuses >>= kNumbers;
    }
}

/// Writes the places of `bits`, up to 64 in all.
[[KIV_VECTORS, gnu::always_inline]] inline void StorePlaces(Bits bits, std::size_t at,
                                                            PathTokens::Place* places)
{
    const __m512i bytes = PlacesOf(bits);
    constexpr std::size_t kHalf = sizeof bytes / 2;
    Store(_mm512_castsi512_si256(bytes), at, places);
    if (CountOf(bits) > kHalf) [[unlikely]] {
        Store(_mm512_maskz_extracti64x4_epi64(0xFF, bytes, 1), at, places + kHalf);
    }
}

}  // namespace

[[KIV_VECTORS]] void PathTokens::FindBy64(const char* text, const char* end)
{
    Progress progress(*this, text, end);
    Block found;
    do {
        const std::size_t at = progress.At();
        const __m512i bytes = BytesOf(text + at, progress.Left());
        if (!progress.Split(Classify(bytes), found)) [[unlikely]] {
            break;
        }
        StoreNumbers(bytes, found, at, progress.Numbers(), progress.Values());
        StorePlaces(found.commands, at, progress.Commands());
    } while (progress.Advance(found));
    progress.Finish();
}

}  // namespace SVGLoom

#endif
