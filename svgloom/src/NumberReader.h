// The number reader behind every number of the artwork. It works in 32-bit floats digit by digit
// and is specified by its steps, not by the nearest value: "0.7" is 7 / 10, and every further digit
// of a fraction is divided by its own power of ten and added. So it gives the same bits on every
// platform and in every locale.

#pragma once

#include <cstddef>

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

/// A sign, four digits, a point, four digits and one byte behind them.
inline constexpr std::ptrdiff_t kQuickBytes = 1 + 4 + 1 + 4 + 1;

constexpr unsigned ValueOf(char c)
{
    return static_cast<unsigned>(c) - static_cast<unsigned>('0');
}

/// The reader step by step, for all numbers.
bool ReadNumberBySteps(const char*& current, const char* end, float& value);

/// Reads up to four digits, which are exact in a float; `next` is the value of what follows them.
inline unsigned ReadFourDigits(const char*& at, unsigned& next)
{
    unsigned value = 0;
    next = ValueOf(*at);
    if (next < 10) {
        value = next;
        next = ValueOf(*++at);
        if (next < 10) {
            value = value * 10 + next;
            next = ValueOf(*++at);
            if (next < 10) {
                value = value * 10 + next;
                next = ValueOf(*++at);
                if (next < 10) {
                    value = value * 10 + next;
                    next = ValueOf(*++at);
                }
            }
        }
    }
    return value;
}

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

    // Most numbers are short. Whatever is unusual is left to the steps.
    if (end - current < kQuickBytes) {
        return ReadNumberBySteps(current, end, value);
    }
    const char* at = current;
    const bool negative = *at == '-';
    at += negative ? 1 : 0;
    const char* const firstDigit = at;
    unsigned next = 0;
    const unsigned whole = ReadFourDigits(at, next);
    float result = static_cast<float>(static_cast<int>(whole));
    if (next == ValueOf('.')) {
        next = ValueOf(*++at);
        if (next >= 10) {
            return ReadNumberBySteps(current, end, value);
        }
        result += kFractions.rows[0][next];
        next = ValueOf(*++at);
        if (next < 10) {
            result += kFractions.rows[1][next];
            next = ValueOf(*++at);
            if (next < 10) {
                result += kFractions.rows[2][next];
                next = ValueOf(*++at);
                if (next < 10) {
                    result += kFractions.rows[3][next];
                    next = ValueOf(*++at);
                }
            }
        }
    } else if (at == firstDigit) {
        return ReadNumberBySteps(current, end, value);
    }
    if (next < 10 || next == ValueOf('e') || next == ValueOf('E')) {
        return ReadNumberBySteps(current, end, value);
    }
    current = at;
    value = negative ? -result : result;
    return true;
}

}  // namespace SVGLoom
