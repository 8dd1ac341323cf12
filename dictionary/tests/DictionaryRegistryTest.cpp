#include "dictionary/DictionaryRegistry.h"

#include "dictionary/DictionaryHandles.h"
#include "dictionary/tests/ImageSupport.h"
#include "dictionary/tests/TestSupport.h"

#include <array>
#include <sstream>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace morvish {
namespace {

using dictionary_test::Text;

TEST(DictionaryRegistry, OneDictionaryPerIdentifier)
{
    DictionaryRegistry registry;
    Dictionary* const first = registry.GetOrCreate(1033);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->EntryCount(), 0u);
    EXPECT_EQ(registry.GetOrCreate(1033), first);
    EXPECT_NE(registry.GetOrCreate(1031), first);
    EXPECT_NE(registry.GetOrCreate(-1), registry.GetOrCreate(0));
}

TEST(DictionaryRegistry, LoadsImages)
{
    DictionaryRegistry registry;
    std::istringstream stream(dictionary_test::Image().Text());
    registry.LoadFromStream(1031, &stream);
    EXPECT_EQ(registry.Lookup(1031, "$$$/A=x").View(), u"5\u00B0");
    EXPECT_EQ(registry.GetOrCreate(1031)->LookupIndex(0).View(), u"x");
}

TEST(DictionaryRegistry, LoadsAndLooksUp)
{
    DictionaryRegistry registry;
    std::istringstream stream("$$$/A=Hallo\n");
    registry.LoadFromStream(1031, &stream);
    EXPECT_EQ(registry.Lookup(1031, "$$$/A=x").View(), u"Hallo");
    // An unknown language is an empty dictionary, which the look-up creates.
    EXPECT_EQ(registry.Lookup(1041, "$$$/A=x").View(), u"x");
    EXPECT_EQ(registry.GetOrCreate(1041)->EntryCount(), 0u);
    const ConversionContext utf8{kSelectorUtf8};
    EXPECT_EQ(registry.Lookup(1041, "$$$/A=\xC3\xA9", &utf8).View(), u"\u00E9");

    std::istringstream more("$$$/B=Welt\n");
    registry.LoadFromStream(1031, &more);
    EXPECT_EQ(registry.GetOrCreate(1031)->EntryCount(), 2u);
    registry.LoadFromStream(1031, nullptr);
    EXPECT_FALSE(registry.GetOrCreate(1031)->Valid());
}

TEST(DictionaryRegistry, FallbackByIdentifierEndsWithTheRegistry)
{
    const Dictionary own;
    {
        DictionaryRegistry registry;
        std::istringstream stream("$$$/A=fallback\n");
        registry.LoadFromStream(7, &stream);
        registry.SetFallback(7);
        EXPECT_EQ(Dictionary::Fallback(), registry.GetOrCreate(7));
        EXPECT_EQ(Text(own, "$$$/A=x"), u"fallback");
    }
    EXPECT_EQ(Dictionary::Fallback(), nullptr);
    EXPECT_EQ(Text(own, "$$$/A=x"), u"x");
}

int creations = 0;

// Fails at first, works from the third time on.
Dictionary* CreateFromTheThirdTime()
{
    return ++creations < 3 ? nullptr : new Dictionary;
}

TEST(DictionaryRegistry, FailedCreationIsTriedAgain)
{
    creations = 0;
    DictionaryRegistry registry(CreateFromTheThirdTime);
    EXPECT_EQ(registry.GetOrCreate(5), nullptr);
    EXPECT_EQ(registry.Lookup(5, "$$$/A=x").View(), u"");
    Dictionary* const created = registry.GetOrCreate(5);
    ASSERT_NE(created, nullptr);
    // The last slot of the identifier counts, behind the two empty ones.
    EXPECT_EQ(registry.GetOrCreate(5), created);
    EXPECT_EQ(creations, 3);
}

TEST(DictionaryRegistry, ThreadsGetTheSameDictionaries)
{
    constexpr int kThreads = 8;
    constexpr int kIdentifiers = 50;
    DictionaryRegistry registry;
    std::array<std::vector<Dictionary*>, kThreads> seen;
    std::vector<std::thread> threads;
    for (std::vector<Dictionary*>& mine : seen) {
        threads.emplace_back([&registry, &mine] {
            for (int round = 0; round < 20; ++round) {
                for (int id = 0; id < kIdentifiers; ++id)
                    mine.push_back(registry.GetOrCreate(id));
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (int id = 0; id < kIdentifiers; ++id) {
        Dictionary* const want = registry.GetOrCreate(id);
        for (const std::vector<Dictionary*>& mine : seen) {
            for (std::size_t i = static_cast<std::size_t>(id); i < mine.size(); i += kIdentifiers)
                ASSERT_EQ(mine[i], want);
        }
    }
}

TEST(DictionaryRegistry, OfTheProcess)
{
    EXPECT_EQ(&DictionaryRegistry::OfProcess(), &DictionaryRegistry::OfProcess());
    std::istringstream stream("$$$/A=process\n");
    DictionaryRegistry::OfProcess().LoadFromStream(-4711, &stream);
    DictionaryString* const string = LookupString(-4711, "$$$/A=x");
    EXPECT_EQ(string->View(), u"process");
    ReleaseString(string);
}

}  // namespace
}  // namespace morvish
