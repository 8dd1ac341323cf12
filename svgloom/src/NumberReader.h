// The number reader behind every number of the artwork. It works in 32-bit floats digit by digit
// and is specified by its steps, not by the nearest value: "0.7" is 7 / 10, and every further digit
// of a fraction is divided by its own power of ten and added. So it gives the same bits on every
// platform and in every locale.

#pragma once

#include <cmath>
#include <cstdint>

#include "svgloom/src/Characters.h"

namespace SVGLoom {

namespace number_reader {

/// digit / 10^k for the k-th digit of a fraction, k from 1, with the divisor and the quotient
/// rounded to floats. Behind the last power that a float can hold, digits add nothing.
struct FractionTable {
    static constexpr int kPowers = 38;

    constexpr FractionTable()
    {
        float divisor = 1;
        for (int k = 0; k < kPowers; ++k) {
            divisor *= 10;
            for (int digit = 0; digit < 10; ++digit) {
                rows[k][digit] = static_cast<float>(digit) / divisor;
            }
        }
    }
    float rows[kPowers + 1][10] = {};
};

inline constexpr FractionTable kFractions;

/// Digits behind the seventh: from here on the value is rounded with each digit.
float ReadMoreDigits(const char*& current, const char* end, float value);

/// Reads what follows "e" or "E" and multiplies. False if no exponent stands there.
bool ApplyExponent(const char*& current, const char* end, float& value);

}  // namespace number_reader

/// Reads [sign] digits [. digits] [e [sign] digits], without white space around it. A point needs a
/// digit behind it. An "e" behind the digits always starts an exponent, so "1em" is no number; that
/// is on purpose: lengths in em and ex are to fail.
///
/// @param current one past the number on success, where reading stopped on failure
/// @param value   written on success only, and finite
inline bool ReadNumber(const char*& current, const char* end, float& value)
{
    using namespace number_reader;

    const char* at = current;
    bool negative = false;
    if (at != end && (*at == '-' || *at == '+')) {
        negative = *at == '-';
        ++at;
    }
    // Up to seven digits are exact in a float, so whole numbers do for them.
    const char* const firstDigit = at;
    std::uint32_t whole = 0;
    while (at != end && IsDigit(*at) && at - firstDigit < 7) {
        whole = whole * 10 + static_cast<std::uint32_t>(*at - '0');
        ++at;
    }
    float result = static_cast<float>(static_cast<std::int32_t>(whole));
    if (at != end && IsDigit(*at)) {
        result = ReadMoreDigits(at, end, result);
    }
    if (at != end && *at == '.') {
        ++at;
        const char* const firstFraction = at;
        const float(*row)[10] = kFractions.rows;
        while (at != end && IsDigit(*at)) {
            result += (*row)[*at - '0'];
            row += row != &kFractions.rows[FractionTable::kPowers] ? 1 : 0;
            ++at;
        }
        if (at == firstFraction) {
            current = at;
            return false;
        }
    } else if (at == firstDigit) {
        current = at;
        return false;
    }
    if (at != end && (*at == 'e' || *at == 'E')) {
        ++at;
        if (!ApplyExponent(at, end, result)) {
            current = at;
            return false;
        }
    }
    current = at;
    if (!std::isfinite(result)) {
        return false;
    }
    value = negative ? -result : result;
    return true;
}

}  // namespace SVGLoom
