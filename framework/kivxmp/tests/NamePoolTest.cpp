#include "framework/kivxmp/src/NamePool.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace kivxmp {
namespace {

TEST(NamePool, KeepsEachNameOnce)
{
    NamePool pool(0);
    const QName* const name = pool.Ensure("p", "http://u/", "a");
    EXPECT_EQ(*name->prefix, "p");
    EXPECT_EQ(*name->key->uri, "http://u/");
    EXPECT_EQ(name->key->local, "a");
    EXPECT_EQ(pool.Ensure("p", "http://u/", "a"), name);
    const QName* const other = pool.Ensure("q", "http://u/", "a");
    EXPECT_NE(other, name);
    EXPECT_EQ(other->key, name->key);
    EXPECT_EQ(pool.Ensure("q", "http://u/", "a"), other);
    EXPECT_NE(pool.Ensure("p", "http://v/", "a")->key, name->key);
    EXPECT_EQ(pool.FindKey("http://u/", "a"), name->key);
    EXPECT_EQ(pool.FindKey("http://u/", "b"), nullptr);
    EXPECT_EQ(pool.FindKey("http://w/", "a"), nullptr);
}

TEST(NamePool, ManyNames)
{
    NamePool pool(10);
    std::set<const NameKey*> keys;
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 5000; ++i) {
            keys.insert(
                pool.Ensure("p", "http://u/" + std::to_string(i % 7), std::to_string(i))->key);
        }
    }
    EXPECT_EQ(keys.size(), 5000u);
    EXPECT_EQ(pool.FindKey("http://u/3", "4994")->local, "4994");
}

TEST(NamePool, FirstDeclarationCounts)
{
    NamePool pool(0);
    pool.NoteDeclaration("p", "http://u/");
    pool.NoteDeclaration("p", "http://v/");
    EXPECT_EQ(pool.DeclaredUri("p"), "http://u/");
    EXPECT_EQ(pool.DeclaredUri("q"), "");
}

TEST(FlatTable, HashesDependOnTextAndSeed)
{
    EXPECT_EQ(HashOf("subject", 1), HashOf("subject", 1));
    EXPECT_NE(HashOf("subject", 1), HashOf("subject", 2));
    EXPECT_NE(NewHashSeed(), NewHashSeed());
    std::set<std::uint64_t> hashes;
    std::string text;
    for (int length = 0; length < 40; ++length) {
        hashes.insert(HashOf(text, 7));
        text += '\0';
    }
    EXPECT_EQ(hashes.size(), 40u);
}

TEST(FlatTable, FindsWhatSharesAPlace)
{
    FlatTable<int> table;
    EXPECT_EQ(table.Find(5, [](int) { return true; }), nullptr);
    for (int i = 0; i < 200; ++i) {
        table.Insert(i < 100 ? 5 : 0, i);
    }
    for (int i = 0; i < 200; ++i) {
        const int* const found = table.Find(i < 100 ? 5 : 0, [i](int one) { return one == i; });
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(*found, i);
    }
    EXPECT_EQ(table.Find(5, [](int one) { return one == 150; }), nullptr);
}

}  // namespace
}  // namespace kivxmp
