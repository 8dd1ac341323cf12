#include "dictionary/HashItem.h"

#include "dictionary/DictionaryEntry.h"
#include "dictionary/tests/TestSupport.h"

#include <sstream>

#include <gtest/gtest.h>

namespace morvish_private {
namespace {

using namespace std::string_literals;

std::string Written(const HashItem& item, bool raw, ByteOrder order)
{
    std::ostringstream out;
    item.Write(out, raw, order);
    return out.str();
}

TEST(ByteRunKey, BorrowsOrCopies)
{
    std::string bytes = "/Key";
    const ByteRunKey borrowed(bytes, ByteRunKey::Bytes::kBorrow);
    const ByteRunKey copied(bytes, ByteRunKey::Bytes::kCopy);
    const ByteRunKey copyOfBorrowed(borrowed);
    EXPECT_FALSE(borrowed.OwnsBytes());
    EXPECT_TRUE(copied.OwnsBytes());
    EXPECT_TRUE(copyOfBorrowed.OwnsBytes());
    bytes[1] = 'X';
    EXPECT_EQ(borrowed.View(), "/Xey");
    EXPECT_EQ(copied.View(), "/Key");
    EXPECT_EQ(copyOfBorrowed.View(), "/Key");
}

TEST(ByteRunKey, EqualIsSameLengthAndBytes)
{
    const auto key = [](const std::string& bytes) {
        return ByteRunKey(ByteRunKey(bytes, ByteRunKey::Bytes::kCopy));
    };
    EXPECT_TRUE(key("/A").Equals(key("/A")));
    EXPECT_TRUE(key("").Equals(key("")));
    EXPECT_FALSE(key("/A").Equals(key("/a")));
    EXPECT_FALSE(key("/A").Equals(key("/A\0"s)));
    EXPECT_FALSE(key("a\0b"s).Equals(key("a\0c"s)));
}

TEST(ByteRunKey, Write)
{
    const ByteRunKey key("a\xE9", ByteRunKey::Bytes::kBorrow);
    EXPECT_EQ(Written(key, true, ByteOrder::kLittle), "a\xE9");
    // Widened without sign, and little-endian whatever is asked.
    const std::string text = "\"\0a\0\xE9\0=\0"s;
    EXPECT_EQ(Written(key, false, ByteOrder::kLittle), text);
    EXPECT_EQ(Written(key, false, ByteOrder::kBig), text);
    std::ostringstream out;
    key.WriteText(out, ByteOrder::kLittle);
    key.WriteRaw(out, ByteOrder::kLittle);
    EXPECT_EQ(out.str(), text + "a\xE9");
}

TEST(DictionaryEntry, HoldsProcessedValueAndOwnKey)
{
    TextArena arena;
    ValueProcessor processor;
    std::string key = "/Key";
    const DictionaryEntry* const entry =
        DictionaryEntry::Create(arena, key, u"a\\n#{copy}", processor);
    key = "gone";
    EXPECT_EQ(entry->View(), "/Key");
    EXPECT_EQ(entry->Value().View(), u"a\n\u00A9");
    EXPECT_EQ(entry->Value().units[3], 0);
    EXPECT_EQ(Written(*entry, false, ByteOrder::kLittle), "\"\0/\0K\0e\0y\0=\0a\0\n\0\xA9\0"s);
    EXPECT_EQ(Written(*entry, false, ByteOrder::kBig), "\"\0/\0K\0e\0y\0=\0\0a\0\n\0\xA9"s);
    EXPECT_EQ(Written(*entry, true, ByteOrder::kLittle), "/Keya\0\n\0\xA9\0"s);
}

}  // namespace
}  // namespace morvish_private
