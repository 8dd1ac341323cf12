#include "framework/kivmetadataui/src/NumberValue.h"

#include <cmath>
#include <limits>

#include "framework/kivmetadataui/src/Texts.h"

#include <gtest/gtest.h>

namespace kivmetadataui {
namespace {

constexpr NumberKind kInteger = NumberKind::kInteger;
constexpr NumberKind kReal = NumberKind::kReal;
constexpr NumberKind kRational = NumberKind::kRational;

struct ReadCase {
    NumberKind kind;
    const char* typed;
    const char* want;  // "-" for none
};

constexpr ReadCase kReadCases[] = {
    {kInteger, "3", "3"},
    {kInteger, " 3 ", "3"},
    {kInteger, "+3", "3"},
    {kInteger, "-3", "-3"},
    {kInteger,
     "\xE2\x88\x92"
     "3",
     "-3"},
    {kInteger, "007", "7"},
    {kInteger, "3.5", "-"},
    {kInteger, "three", "-"},
    {kInteger, "", "-"},
    {kInteger, "-", "-"},
    {kInteger, "99999999999999999999", "-"},
    {kReal, "3", "3"},
    {kReal, "3,50", "3.50"},
    {kReal, ".5", "0.5"},
    {kReal, "3.", "3"},
    {kReal, "1e3", "-"},
    {kReal, "1.2.3", "-"},
    {kReal, ".", "-"},
    {kRational, "1/250", "1/250"},
    {kRational, "28/10", "28/10"},
    {kRational, "2,8", "14/5"},
    {kRational, "-0.5", "-1/2"},
    {kRational, "0", "0/1"},
    {kRational, "35", "35/1"},
    {kRational, "1/0", "-"},
    {kRational, "1/", "-"},
    {kRational, "/2", "-"},
    {kRational, "1/2/3", "-"},
    {kRational, "0.1234567890123456789", "-"},
};

TEST(NumberValue, Reads)
{
    for (const ReadCase& row : kReadCases) {
        SCOPED_TRACE(row.typed);
        EXPECT_EQ(ReadNumber(Widen(row.typed), row.kind).value_or("-"), row.want);
    }
}

struct ShowCase {
    NumberKind kind;
    const char* value;
    const char* want;
};

constexpr ShowCase kShowCases[] = {
    {kInteger, "007", "007"},
    {kReal, "3.50", "3.50"},
    {kRational, "28/10", "2.8"},
    {kRational, "35/1", "35"},
    {kRational, "-5/2", "-2.5"},
    {kRational, "0/10", "0"},
    // A short time says more as a fraction, and a third has no end.
    {kRational, "1/250", "1/250"},
    {kRational, "4/3", "4/3"},
    {kRational, "0/0", "0/0"},
    {kRational, "1/-2", "1/-2"},
    {kRational, "9223372036854775807/1", "9223372036854775807/1"},
    {kRational, "f/2.8", "f/2.8"},
};

TEST(NumberValue, Shows)
{
    for (const ShowCase& row : kShowCases) {
        SCOPED_TRACE(row.value);
        EXPECT_EQ(Narrow(ShowNumber(row.value, row.kind)), row.want);
    }
}

struct CheckCase {
    NumberLimits limits;
    const char* typed;
    const char* want;
};

constexpr CheckCase kCheckCases[] = {
    {{kInteger, 0, 0}, "123456", ""},
    {{kInteger, 1, 8}, "1", ""},
    {{kInteger, 1, 8}, "8", ""},
    {{kInteger, 1, 8}, "9", "The value must lie between 1 and 8."},
    {{kInteger, 1, 8}, "0", "The value must lie between 1 and 8."},
    {{kReal, -90, 90}, "90.001", "The value must lie between -90 and 90."},
    {{kReal, 0, 0.5}, "0,5", ""},
    {{kReal, 0, 0.5}, "0,6", "The value must lie between 0 and 0.5."},
    {{kRational, 0, 1}, "3/2", "The value must lie between 0 and 1."},
    {{kRational, 0, 1}, "1/2", ""},
    {{kInteger, 0, 0}, "3.5", "This is not a whole number. Write digits only, like 3."},
    {{kReal, 0, 0}, "x", "This is not a number. Write it like 3 or 2.8."},
    {{kRational, 0, 0}, "x", "This is not a number. Write it like 2.8 or 1/250."},
};

TEST(NumberValue, SaysWhatIsWrong)
{
    for (const CheckCase& row : kCheckCases) {
        SCOPED_TRACE(row.typed);
        EXPECT_EQ(Narrow(CheckNumber(Widen(row.typed), row.limits)), row.want);
    }
}

TEST(NumberValue, ShortDecimals)
{
    EXPECT_EQ(ShortDecimal(2.8000001, 4), "2.8");
    EXPECT_EQ(ShortDecimal(100, 2), "100");
    EXPECT_EQ(ShortDecimal(-0.001, 2), "0");
    EXPECT_EQ(ShortDecimal(1e300, 0).size(), 301U);
    EXPECT_EQ(ShortDecimal(std::numeric_limits<double>::infinity(), 2), "");
    EXPECT_EQ(ShortDecimal(std::nan(""), 2), "");
}

}  // namespace
}  // namespace kivmetadataui
