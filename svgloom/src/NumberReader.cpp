#include "svgloom/src/NumberReader.h"

#include <bit>
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

}  // namespace

float ReadMoreDigits(const char*& current, const char* end, float value)
{
    while (current != end && IsDigit(*current)) {
        value = value * 10 + static_cast<float>(*current - '0');
        ++current;
    }
    return value;
}

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
    const float exponent = ReadMoreDigits(current, end, 0);
    if (exponent != 0) {
        value *= PowerOfTen(sign * exponent);
    }
    return true;
}

}  // namespace SVGLoom::number_reader
