#include "svgloom/src/ClassSet.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace SVGLoom {
namespace {

std::vector<std::string> NamesOf(const ClassSet& set)
{
    return {set.begin(), set.end()};
}

TEST(ClassSet, SortedAndEachOnce)
{
    EXPECT_EQ(NamesOf(ClassSet{"b", "a", "b", "a-longer-one", "B"}),
              (std::vector<std::string>{"B", "a", "a-longer-one", "b"}));
    EXPECT_EQ(NamesOf(ClassSet{"a"}), std::vector<std::string>{"a"});
    EXPECT_EQ(NamesOf(ClassSet{"", "a"}), (std::vector<std::string>{"", "a"}));
    EXPECT_FALSE(ClassSet{""}.empty());
}

TEST(ClassSet, Empty)
{
    EXPECT_TRUE(ClassSet().empty());
    EXPECT_TRUE(NamesOf(ClassSet()).empty());
    EXPECT_TRUE(ClassSet(std::span<std::string_view>()).empty());
}

TEST(ClassSet, KeepsCopiesOfTheNames)
{
    std::string text = "one two";
    std::string_view names[] = {std::string_view(text).substr(4),
                                std::string_view(text).substr(0, 3)};
    ClassSet set{std::span<std::string_view>(names)};
    text = "xxx xxx";
    const ClassSet moved = std::move(set);
    EXPECT_EQ(NamesOf(moved), (std::vector<std::string>{"one", "two"}));
}

}  // namespace
}  // namespace SVGLoom
