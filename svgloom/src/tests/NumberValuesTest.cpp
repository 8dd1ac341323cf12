#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "svgloom/src/Characters.h"
#include "svgloom/src/NumberReader.h"
#include "svgloom/src/SVGStringParser.h"
#include "svgloom/src/tests/TestSupport.h"

namespace SVGLoom {
namespace {

using testing_support::ExactText;
using testing_support::Text;

struct ValueCase {
    std::string_view input;
    std::string_view want;
};

TEST(ParseNumber, Cases)
{
    constexpr ValueCase kCases[] = {
        {"0.5", "0.5"},
        {" \t\r\n0.5 \t\r\n", "0.5"},
        {"-2e1", "-20"},
        // Anything left over makes it invalid.
        {"50%", "none"},
        {"1 2", "none"},
        {"1,", "none"},
        {"1px", "none"},
        {"", "none"},
        {" ", "none"},
        {"abc", "none"},
        // Form feed and vertical tab are no white space.
        {"\f1", "none"},
        {"1\v", "none"},
    };
    for (const ValueCase& row : kCases) {
        SCOPED_TRACE(row.input);
        float value = 77;
        const bool read = SVGStringParser::ParseNumber(ExactText(row.input).View(), value);
        EXPECT_EQ(read ? Text(value) : "none", row.want);
        EXPECT_EQ(value == 77, !read);
    }
}

TEST(ParseLength, Cases)
{
    constexpr ValueCase kCases[] = {
        // Each unit.
        {"3", "3"},
        {"3px", "3"},
        {"3pt", "4"},
        {"3pc", "48"},
        {"2in", "192"},
        {"2.54cm", "96"},
        {"25.4mm", "96"},
        {"50%", "100"},
        {" -1.5px ", "-1.5"},
        {"1e1px", "10"},
        // Percentages of the reference, which is 200 here.
        {"0%", "0"},
        {"-10%", "-20"},
        {"150%", "300"},
        // Times the reference first: a hundredth would be rounded.
        {"15%", "30"},
        // No units.
        {"3PX", "none"},
        {"3Px", "none"},
        {"3p", "none"},
        {"3q", "none"},
        {"3pxx", "none"},
        {"3px2", "none"},
        {"3%%", "none"},
        {"3px%", "none"},
        // A unit follows its number at once.
        {"3 px", "none"},
        {"3 %", "none"},
        // The number reader takes the "e" for an exponent.
        {"1em", "none"},
        {"2ex", "none"},
        {"3rem", "none"},
        {"px", "none"},
        {"%", "none"},
        {"", "none"},
        {" ", "none"},
        {"none", "none"},
        {"1 2", "none"},
    };
    for (const ValueCase& row : kCases) {
        SCOPED_TRACE(row.input);
        float value = 77;
        const bool read = SVGStringParser::ParseLength(ExactText(row.input).View(), 200, value);
        EXPECT_EQ(read ? Text(value) : "none", row.want);
        EXPECT_EQ(value == 77, !read);
    }
}

std::string Joined(const std::vector<float>& values)
{
    std::string text;
    for (const float value : values) {
        text += (text.empty() ? "" : " ") + Text(value);
    }
    return text;
}

// Values have a reader of their own for what is usual.
TEST(ParseNumber, AsTheNumberReader)
{
    constexpr std::string_view kCharacters = "079.-+eE ";
    constexpr std::size_t kLongest = 5;
    std::string text;
    const auto expectSame = [&text] {
        const ExactText exact(text);
        const char* current = exact.View().data();
        const char* const end = current + text.size();
        SkipSpace(current, end);
        float want = 77;
        const bool isNumber =
            number_reader::ReadNumberBySteps(current, end, want) && !SkipSpace(current, end);
        float have = 77;
        ASSERT_EQ(SVGStringParser::ParseNumber(exact.View(), have), isNumber) << text;
        if (isNumber) {
            ASSERT_EQ(std::signbit(have), std::signbit(want)) << text;
            ASSERT_EQ(have, want) << text;
        }
    };
    const auto withAll = [&](const auto& self, std::size_t length) -> void {
        expectSame();
        for (std::size_t i = 0; length > 0 && i < kCharacters.size(); ++i) {
            text.push_back(kCharacters[i]);
            self(self, length - 1);
            text.pop_back();
        }
    };
    withAll(withAll, kLongest);
    for (const std::string_view longer :
         {"9999", "99999", "16777217", "0.9999", "0.99999", "9999.9999", "-1234.5678", "12345.1",
          "1.23456e2", "-.5", ".0001"}) {
        text = longer;
        expectSame();
    }
}

TEST(ParseNumberList, Cases)
{
    constexpr ValueCase kCases[] = {
        {"", ""},
        {" \t\r\n", ""},
        {"1", "1"},
        {"1 2", "1 2"},
        {"1,2", "1 2"},
        {" 1 , 2\n3 ", "1 2 3"},
        // Numbers may touch each other.
        {"1-2+3", "1 -2 3"},
        {"1.5.5", "1.5 0.5"},
        {"0 0 24 24", "0 0 24 24"},
        // At most one comma, and only between two.
        {"1,,2", "none"},
        {"1 , , 2", "none"},
        {",1", "none"},
        {"1,", "none"},
        {"1 , ", "none"},
        {",", "none"},
        {"1;2", "none"},
        {"1 2 x", "none"},
        {"1px 2", "none"},
        {"1 2.", "none"},
    };
    for (const ValueCase& row : kCases) {
        SCOPED_TRACE(row.input);
        std::vector<float> values{77};
        const bool read = SVGStringParser::ParseNumberList(ExactText(row.input).View(), values);
        EXPECT_EQ(read ? Joined(values) : "none", row.want);
        EXPECT_TRUE(read || values.empty());

        // The same numbers, as far as there is room.
        float few[2] = {77, 77};
        std::size_t count = 77;
        EXPECT_EQ(SVGStringParser::ParseNumberList(ExactText(row.input).View(), few, count), read);
        EXPECT_EQ(count, values.size());
        for (std::size_t i = 0; i < std::min(values.size(), std::size(few)); ++i) {
            EXPECT_EQ(few[i], values[i]);
        }
    }
}

TEST(ParseLengthList, Cases)
{
    constexpr ValueCase kCases[] = {
        {"", ""},
        {"5, 10, 15", "5 10 15"},
        {"5px 50% , 1in", "5 100 96"},
        {"5px10px", "5 10"},
        {"5%5", "10 5"},
        {"5 ,", "none"},
        {"5em", "none"},
        {"5 xx", "none"},
        {"5xx", "none"},
        {"none", "none"},
    };
    for (const ValueCase& row : kCases) {
        SCOPED_TRACE(row.input);
        std::vector<float> values{77};
        const bool read =
            SVGStringParser::ParseLengthList(ExactText(row.input).View(), 200, values);
        EXPECT_EQ(read ? Joined(values) : "none", row.want);
        EXPECT_TRUE(read || values.empty());
    }
}

TEST(SplitWords, Cases)
{
    using Words = std::vector<std::string_view>;
    EXPECT_EQ(SVGStringParser::SplitWords(""), Words());
    EXPECT_EQ(SVGStringParser::SplitWords(" \t"), Words());
    EXPECT_EQ(SVGStringParser::SplitWords("none"), Words{"none"});
    EXPECT_EQ(SVGStringParser::SplitWords(" xMidYMid\t\r\nmeet "), (Words{"xMidYMid", "meet"}));
    EXPECT_EQ(SVGStringParser::SplitWords("a b c"), (Words{"a", "b", "c"}));
    EXPECT_EQ(SVGStringParser::SplitWords("a,b\fc"), Words{"a,b\fc"});
}

}  // namespace
}  // namespace SVGLoom
