#include <kivcore/ImmutableString.h>

#include <string>

#include <gtest/gtest.h>

namespace kivcore {
namespace {

TEST(ImmutableString, CopiesShareOneText)
{
    std::string source = "$$$/A/B=Hello";
    const ImmutableString text(source);
    source = "changed";
    ImmutableString copy;
    copy = text;
    EXPECT_EQ(copy.View(), "$$$/A/B=Hello");
    EXPECT_EQ(copy.View().data(), text.View().data());
}

TEST(ImmutableString, ComparesByContent)
{
    EXPECT_EQ(ImmutableString("a"), ImmutableString("a"));
    EXPECT_FALSE(ImmutableString("a") == ImmutableString("b"));
    EXPECT_EQ(ImmutableString(), ImmutableString(""));
    EXPECT_TRUE(ImmutableString().View().empty());
}

}  // namespace
}  // namespace kivcore
