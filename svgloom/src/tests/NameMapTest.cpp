#include "svgloom/src/NameMap.h"

#include <gtest/gtest.h>

#include <string>

namespace SVGLoom {
namespace {

TEST(NameMap, AnEmptyOneFindsNothing)
{
    const NameMap<int> map;
    EXPECT_TRUE(map.empty());
    EXPECT_EQ(map.Find("a"), nullptr);
    EXPECT_EQ(map.Find(""), nullptr);
    EXPECT_EQ(map.begin(), map.end());
}

TEST(NameMap, TheFirstOfANameStays)
{
    NameMap<int> map;
    const auto [first, isNew] = map.Add("a");
    EXPECT_TRUE(isNew);
    EXPECT_EQ(first, 0);
    first = 7;
    const auto [second, isNewAgain] = map.Add("a");
    EXPECT_FALSE(isNewAgain);
    EXPECT_EQ(second, 7);
    map[""] = 8;
    EXPECT_EQ(map.size(), 2u);
    EXPECT_EQ(*map.Find("a"), 7);
    EXPECT_EQ(*map.Find(""), 8);
    EXPECT_EQ(map.Find("b"), nullptr);
}

TEST(NameMap, ManyNamesInTheirOrder)
{
    constexpr int kCount = 10000;
    NameMap<int> map;
    for (int i = 0; i < kCount; ++i) {
        map["n" + std::to_string(i)] = i;
    }
    ASSERT_EQ(map.size(), std::size_t{kCount});
    int next = 0;
    for (const auto& [name, value] : map) {
        ASSERT_EQ(name, "n" + std::to_string(next));
        ASSERT_EQ(value, next);
        ++next;
    }
    for (int i = 0; i < kCount; ++i) {
        const int* const found = map.Find("n" + std::to_string(i));
        ASSERT_NE(found, nullptr) << i;
        ASSERT_EQ(*found, i);
        ASSERT_EQ(map.Find("m" + std::to_string(i)), nullptr) << i;
    }
}

TEST(NameViewMap, LooksAtNamesThatStandElsewhere)
{
    const std::string text = "alpha beta";
    NameViewMap<int> map;
    map[std::string_view(text).substr(0, 5)] = 1;
    map[std::string_view(text).substr(6)] = 2;
    EXPECT_EQ(*map.Find("alpha"), 1);
    EXPECT_EQ(*map.Find("beta"), 2);
    EXPECT_EQ(map.begin()->name.data(), text.data());
}

}  // namespace
}  // namespace SVGLoom
