#include "svgloom/src/NumberReader.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

#include "svgloom/src/tests/TestSupport.h"

namespace SVGLoom {
namespace {

using testing_support::ExactText;
using testing_support::Text;

/// "value [left over]" or "none [left over]".
std::string Read(std::string_view input)
{
    const ExactText text(input);
    const char* current = text.begin();
    float value = 77;
    const bool read = ReadNumber(current, text.end(), value);
    if (!read) {
        EXPECT_EQ(value, 77);
    }
    return (read ? Text(value) : "none") + " [" + std::string(current, text.end()) + "]";
}

struct NumberCase {
    std::string_view input;
    std::string_view want;
};

constexpr NumberCase kNumberCases[] = {
    {"0", "0 []"},
    {"7", "7 []"},
    {"12", "12 []"},
    {"-12", "-12 []"},
    {"+12", "12 []"},
    {"-0", "-0 []"},
    {"00012", "12 []"},
    {"1.5", "1.5 []"},
    {".5", "0.5 []"},
    {"-.5", "-0.5 []"},
    {"1.50", "1.5 []"},
    {"1e5", "1e+05 []"},
    {"1E5", "1e+05 []"},
    {"1e+5", "1e+05 []"},
    {"1e-1", "0.1 []"},
    {"+.5e-1", "0.05 []"},
    {"1e0", "1 []"},
    {"1e-0", "1 []"},
    {"2e00000000000000000001", "20 []"},
    // It ends where no more of it stands.
    {"1 2", "1 [ 2]"},
    {"1,2", "1 [,2]"},
    {"1-2", "1 [-2]"},
    {"1+2", "1 [+2]"},
    {"1.5.5", "1.5 [.5]"},
    {"1px", "1 [px]"},
    {"5%", "5 [%]"},
    {"1e5e5", "1e+05 [e5]"},
    {"1e5.5", "1e+05 [.5]"},
    {"0x10", "0 [x10]"},
    // No numbers.
    {"", "none []"},
    {"-", "none []"},
    {"+", "none []"},
    {".", "none []"},
    {"-.", "none []"},
    {"--1", "none [-1]"},
    {"+-1", "none [-1]"},
    {" 1", "none [ 1]"},
    {"a", "none [a]"},
    {"nan", "none [nan]"},
    {"inf", "none [inf]"},
    // A point needs a digit behind it.
    {"1.", "none []"},
    {"1. ", "none [ ]"},
    {"1.e5", "none [e5]"},
    {".e5", "none [e5]"},
    // An "e" always starts an exponent, so lengths in em and ex fail.
    {"1e", "none []"},
    {"1e+", "none []"},
    {"1em", "none [m]"},
    {"2ex", "none [x]"},
    {"1e 5", "none [ 5]"},
    {"1e-", "none []"},
    // Without digits there is nothing for an exponent to follow.
    {"e5", "none [e5]"},
    {"-e5", "none [e5]"},
    // Beyond a float.
    {"1e38", "1e+38 []"},
    {"3.4e38", "3.4e+38 []"},
    {"3.5e38", "none []"},
    {"1e39", "none []"},
    {"-1e39", "none []"},
    {"1e99999999999999999999999999999999999999999999", "none []"},
    {"340282346638528859811704183484516925440", "3.4028235e+38 []"},
    {"1000000000000000000000000000000000000000", "none []"},
    // The power is rounded to a float before it multiplies, so these fail too.
    {"0e50", "none []"},
    {"0.0001e40", "none []"},
    // Below a float.
    {"1e-45", "1e-45 []"},
    {"1e-46", "0 []"},
    {"-1e-46", "-0 []"},
    {"10e-46", "0 []"},
    {"1e-99999999999999999999999999999999999999999999", "0 []"},
};

TEST(ReadNumber, Cases)
{
    for (const NumberCase& row : kNumberCases) {
        SCOPED_TRACE(row.input);
        EXPECT_EQ(Read(row.input), row.want);
    }
}

// Whole digits are rounded one by one above 2^24, digits of a fraction are divided and added one by
// one: the result is not always the nearest float, on purpose.
TEST(ReadNumber, RoundsDigitByDigit)
{
    constexpr NumberCase kCases[] = {
        {"16777216", "16777216 []"},
        {"16777217", "16777216 []"},
        {"16777219", "16777220 []"},
        // 1.1 is 1 + 0.1 in floats.
        {"1.1", "1.1 []"},
        {"0.123456789", "0.12345679 []"},
        {"33.333333", "33.333332 []"},
    };
    for (const NumberCase& row : kCases) {
        SCOPED_TRACE(row.input);
        EXPECT_EQ(Read(row.input), row.want);
    }
}

// The steps as they are defined, without any table or whole numbers.
bool ReadBySteps(std::string_view text, float& result)
{
    std::size_t at = 0;
    float sign = 1;
    if (at < text.size() && (text[at] == '-' || text[at] == '+')) {
        sign = text[at++] == '-' ? -1.0f : 1.0f;
    }
    float value = 0;
    for (; at < text.size() && IsDigit(text[at]); ++at) {
        value = value * 10;
        value = value + static_cast<float>(text[at] - '0');
    }
    if (at < text.size() && text[at] == '.') {
        float divisor = 10;
        for (++at; at < text.size() && IsDigit(text[at]); ++at) {
            const float part = static_cast<float>(text[at] - '0') / divisor;
            value = value + part;
            divisor = divisor * 10;
        }
    }
    if (at < text.size()) {
        float exponentSign = 1;
        ++at;
        if (text[at] == '-') {
            exponentSign = -1;
            ++at;
        }
        float exponent = 0;
        for (; at < text.size(); ++at) {
            exponent = exponent * 10 + static_cast<float>(text[at] - '0');
        }
        if (exponent != 0) {
            value *=
                static_cast<float>(std::pow(10.0, static_cast<double>(exponentSign * exponent)));
        }
    }
    result = sign * value;
    return std::isfinite(result);
}

TEST(ReadNumber, AgreesWithTheStepsBitForBit)
{
    std::mt19937 random(1);
    const auto below = [&random](unsigned limit) {
        return static_cast<unsigned>(random() % limit);
    };
    for (int round = 0; round < 200000; ++round) {
        std::string text = below(3) == 0 ? "-" : "";
        for (unsigned digits = below(12) + 1; digits > 0; --digits) {
            text += static_cast<char>('0' + below(10));
        }
        if (below(4) != 0) {
            text += '.';
            for (unsigned digits = below(below(50) == 0 ? 60 : 9) + 1; digits > 0; --digits) {
                text += static_cast<char>('0' + below(10));
            }
        }
        if (below(8) == 0) {
            text += "e" + std::string(below(2) == 0 ? "-" : "") + std::to_string(below(48));
        }
        float want = 0;
        const bool wantRead = ReadBySteps(text, want);
        const ExactText exact(text);
        const char* current = exact.begin();
        float value = 0;
        ASSERT_EQ(ReadNumber(current, exact.end(), value), wantRead) << text;
        ASSERT_EQ(current, exact.end()) << text;
        if (wantRead) {
            ASSERT_EQ(std::bit_cast<std::uint32_t>(value), std::bit_cast<std::uint32_t>(want))
                << text;
        }
    }
}

TEST(ReadNumber, EveryPowerOfTenIsTheNearestFloat)
{
    for (int exponent = -50; exponent <= 38; ++exponent) {
        const std::string power = "1e" + std::to_string(exponent);
        const ExactText text(power);
        const char* current = text.begin();
        float value = 0;
        ASSERT_TRUE(ReadNumber(current, text.end(), value)) << power;
        EXPECT_EQ(value, static_cast<float>(std::strtod(power.c_str(), nullptr))) << power;
    }
}

TEST(ReadNumber, CutAtEveryLength)
{
    constexpr std::string_view kText = "-123.456e-12";
    for (std::size_t length = 0; length <= kText.size(); ++length) {
        const ExactText text(kText.substr(0, length));
        const char* current = text.begin();
        float value = 0;
        const bool wantRead = length > 1 && length != 5 && length != 9 && length != 10;
        EXPECT_EQ(ReadNumber(current, text.end(), value), wantRead) << length;
        EXPECT_EQ(current, text.end()) << length;
    }
}

}  // namespace
}  // namespace SVGLoom
