#include "svgloom/renderer/SharedVector.h"

#include <gtest/gtest.h>

#include <vector>

namespace SVGLoom {
namespace {

std::vector<int> Entries(const SharedVector<int>& list)
{
    return {list.begin(), list.end()};
}

TEST(SharedVector, AnEmptyListHoldsNoBlock)
{
    const SharedVector<int> list;
    EXPECT_TRUE(list.empty());
    EXPECT_EQ(list.size(), 0u);
    EXPECT_EQ(list.data(), nullptr);
    EXPECT_EQ(list.begin(), list.end());
    EXPECT_TRUE(list.SharesBlockWith(SharedVector<int>(std::vector<int>())));
}

TEST(SharedVector, AppendedInOrder)
{
    SharedVector<int> list;
    list.Append(3);
    list.Append(1);
    EXPECT_EQ(Entries(list), (std::vector<int>{3, 1}));
    EXPECT_EQ(list[0], 3);
    EXPECT_EQ(list.Last(), 1);
}

TEST(SharedVector, CopiesShareUntilOneIsChanged)
{
    SharedVector<int> list(std::vector<int>{1, 2});
    SharedVector<int> copy = list;
    EXPECT_TRUE(copy.SharesBlockWith(list));
    copy.Append(3);
    EXPECT_FALSE(copy.SharesBlockWith(list));
    EXPECT_EQ(Entries(list), (std::vector<int>{1, 2}));
    EXPECT_EQ(Entries(copy), (std::vector<int>{1, 2, 3}));
    list.Clear();
    EXPECT_TRUE(list.empty());
    EXPECT_EQ(copy.size(), 3u);
}

TEST(SharedVector, AnOwnEntryIsAppended)
{
    SharedVector<int> list(std::vector<int>{7});
    const SharedVector<int> other = list;
    for (int i = 0; i < 10; ++i) {
        list.Append(list[0]);
    }
    EXPECT_EQ(list.size(), 11u);
    EXPECT_EQ(list.Last(), 7);
    EXPECT_EQ(other.size(), 1u);
}

TEST(SharedVector, Equality)
{
    const SharedVector<int> empty;
    const SharedVector<int> one(std::vector<int>{1});
    EXPECT_EQ(empty, SharedVector<int>());
    EXPECT_EQ(one, SharedVector<int>(std::vector<int>{1}));
    EXPECT_NE(one, SharedVector<int>(std::vector<int>{2}));
    EXPECT_NE(one, empty);
    EXPECT_NE(empty, one);
}

}  // namespace
}  // namespace SVGLoom
