#include "svgloom/src/ColorConversion.h"

#include <gtest/gtest.h>
#include <kivcore/Trace.h>

#include <new>
#include <string>
#include <vector>

namespace SVGLoom {
namespace {

class ColorConversion : public testing::Test {
protected:
    void SetUp() override
    {
        kivcore::debug::SetAssertHandler([this](const char* file, int line, const char* text) {
            failures_.push_back(std::string(file) + ":" + std::to_string(line) + " " + text);
        });
    }
    void TearDown() override { kivcore::debug::SetAssertHandler(nullptr); }

    std::vector<std::string> failures_;
};

TEST_F(ColorConversion, WhatSucceedsAssertsNothing)
{
    int number = 0;
    EXPECT_TRUE(ConvertOrAssert([&number] { number = std::stoi("ff", nullptr, 16); }));
    EXPECT_EQ(number, 255);
    EXPECT_TRUE(failures_.empty());
}

TEST_F(ColorConversion, AnInvalidArgumentBecomesAnAssertion)
{
    EXPECT_FALSE(ConvertOrAssert([] { (void)std::stoi("", nullptr, 16); }));
    EXPECT_EQ(failures_,
              std::vector<std::string>{
                  "svgloom/src/SVGStringParser:947 SVGLoom::SVGStringParser::ParseColor: false: "
                  "stoi() error: invalid argument"});
}

TEST_F(ColorConversion, AnOutOfRangeErrorBecomesAnAssertion)
{
    EXPECT_FALSE(ConvertOrAssert([] { (void)std::stoi("fffffffff", nullptr, 16); }));
    EXPECT_EQ(failures_,
              std::vector<std::string>{
                  "svgloom/src/SVGStringParser:951 SVGLoom::SVGStringParser::ParseColor: false: "
                  "stoi() error: out of range"});
}

TEST_F(ColorConversion, OtherExceptionsPass)
{
    EXPECT_THROW(ConvertOrAssert([] { throw std::bad_alloc(); }), std::bad_alloc);
    EXPECT_THROW(ConvertOrAssert([] { throw std::logic_error("other"); }), std::logic_error);
    EXPECT_TRUE(failures_.empty());
}

TEST_F(ColorConversion, WithoutAHandlerWorkGoesOn)
{
    kivcore::debug::SetAssertHandler(nullptr);
    EXPECT_FALSE(ConvertOrAssert([] { throw std::out_of_range("far"); }));
}

}  // namespace
}  // namespace SVGLoom
