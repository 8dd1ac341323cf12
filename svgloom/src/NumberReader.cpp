#include "svgloom/src/NumberReader.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace SVGLoom::number_reader {

namespace {

// The power that an exponent stands for is rounded to a float before it multiplies: "0.0001e40"
// fails, because 1e40 is infinite, and so does "0e50".
float PowerOfTen(float exponent)
{
    if (exponent > std::numeric_limits<float>::max_exponent10) {
        return std::numeric_limits<float>::infinity();
    }
    // Double precision, rounded once, is the nearest float on every platform.
    return static_cast<float>(std::pow(10.0, static_cast<double>(exponent)));
}

/// Above 2^24 the value is rounded with each digit.
float ReadDigits(const char*& current, const char* end)
{
    float value = 0;
    for (; current != end && IsDigit(*current); ++current) {
        value = value * 10 + static_cast<float>(*current - '0');
    }
    return value;
}

float AddFraction(const char*& current, const char* end, float value)
{
    for (int k = 0; current != end && IsDigit(*current); ++current) {
        value += kFractions.rows[k][*current - '0'];
        k = std::min(k + 1, FractionTable::kPowers);
    }
    return value;
}

/// What follows "e" or "E"; false if no exponent stands there.
bool ApplyExponent(const char*& current, const char* end, float& value)
{
    float sign = 1;
    if (current != end && (*current == '-' || *current == '+')) {
        sign = *current == '-' ? -1.0f : 1.0f;
        ++current;
    }
    if (current == end || !IsDigit(*current)) {
        return false;
    }
    const float exponent = ReadDigits(current, end);
    if (exponent != 0) {
        value *= PowerOfTen(sign * exponent);
    }
    return true;
}

}  // namespace

bool ReadNumberBySteps(const char*& current, const char* end, float& value)
{
    const bool hasSign = current != end && (*current == '-' || *current == '+');
    const bool negative = hasSign && *current == '-';
    current += hasSign ? 1 : 0;

    const char* const firstDigit = current;
    float result = ReadDigits(current, end);
    if (current != end && *current == '.') {
        ++current;
        const char* const firstFraction = current;
        result = AddFraction(current, end, result);
        if (current == firstFraction) {
            return false;
        }
    } else if (current == firstDigit) {
        return false;
    }
    if (current != end && (*current == 'e' || *current == 'E')) {
        ++current;
        if (!ApplyExponent(current, end, result)) {
            return false;
        }
    }
    if (!std::isfinite(result)) {
        return false;
    }
    value = negative ? -result : result;
    return true;
}

}  // namespace SVGLoom::number_reader
