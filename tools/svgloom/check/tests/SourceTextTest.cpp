#include "tools/svgloom/check/SourceText.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace svgloom {
namespace {

struct PlaceCase {
    std::string_view text;
    std::size_t offset;
    std::size_t line;
    std::size_t column;
};

TEST(LinePlaces, Cases)
{
    constexpr PlaceCase kCases[] = {
        {"", 0, 1, 1},
        {"ab", 0, 1, 1},
        {"ab", 2, 1, 3},
        {"ab", 9, 1, 3},
        {"a\nb", 1, 1, 2},
        {"a\nb", 2, 2, 1},
        // CR LF is one line end, CR alone too.
        {"a\r\nb", 1, 1, 2},
        {"a\r\nb", 3, 2, 1},
        {"a\rb", 2, 2, 1},
        {"\r\r\n\n", 4, 4, 1},
        // Characters.
        {"\u00e4\u20ac\U0001F600x", 9, 1, 4},
        {"\xEF\xBB\xBFx", 0, 1, 1},
        {"\xEF\xBB\xBFx", 3, 1, 1},
        {"\xEF\xBB\xBFx", 4, 1, 2},
        // Not well-formed: what begins no character is part of the one before.
        {"\x80\x80x", 2, 1, 1},
    };
    for (const PlaceCase& row : kCases) {
        SCOPED_TRACE(row.text);
        LinePlaces places(row.text);
        const LinePlaces::Place place = places.Advance(row.offset);
        EXPECT_EQ(place.line, row.line);
        EXPECT_EQ(place.column, row.column);
    }
}

TEST(LinePlaces, GoesOn)
{
    LinePlaces places("ab\ncd");
    EXPECT_EQ(places.Advance(1).column, 2U);
    EXPECT_EQ(places.Advance(1).column, 2U);
    EXPECT_EQ(places.Advance(4).line, 2U);
    EXPECT_EQ(places.Advance(4).column, 2U);
}

TEST(SourceText, EndsAtTheFirstNul)
{
    const SourceText source(std::string_view("ab\0c", 4));
    EXPECT_EQ(source.Original(), "ab");
}

TEST(SourceText, HoldsItsCopyOnly)
{
    SourceText source("abc");
    const std::string other = "abc";
    EXPECT_TRUE(source.Holds(source.Copy()));
    EXPECT_TRUE(source.Holds(source.Copy() + 3));
    EXPECT_FALSE(source.Holds(source.Copy() + 4));
    EXPECT_FALSE(source.Holds(other.data()));
    EXPECT_FALSE(source.Holds(nullptr));
}

/// Puts `value` to the start of the copy of `text`, as the XML library does, and asks for a place.
std::size_t OffsetIn(std::string_view text, std::string_view value, std::size_t index)
{
    SourceText source(text);
    value.copy(source.Copy(), value.size());
    return SourceValue(source, {source.Copy(), value.size()}, 0).OffsetAt(index);
}

TEST(SourceValue, ReferencesAreLonger)
{
    EXPECT_EQ(OffsetIn("abc", "abc", 2), 2U);
    EXPECT_EQ(OffsetIn("a&amp;b&lt;c", "a&b<c", 1), 1U);
    EXPECT_EQ(OffsetIn("a&amp;b&lt;c", "a&b<c", 2), 6U);
    EXPECT_EQ(OffsetIn("a&amp;b&lt;c", "a&b<c", 4), 11U);
    EXPECT_EQ(OffsetIn("a&amp;b&lt;c", "a&b<c", 5), 12U);
    // One character of three bytes.
    EXPECT_EQ(OffsetIn("&#x20AC;b", "\u20acb", 3), 8U);
    // No references.
    EXPECT_EQ(OffsetIn("&x;&b", "&x;&b", 4), 4U);
}

TEST(SourceValue, GoesBack)
{
    SourceText source("&amp;&amp;");
    const SourceValue value(source, {source.Copy(), 2}, 0);
    EXPECT_EQ(value.OffsetAt(2), 10U);
    EXPECT_EQ(value.OffsetAt(1), 5U);
    EXPECT_EQ(value.OffsetAt(0), 0U);
}

TEST(SourceValue, OfAnotherText)
{
    const SourceText source("abc");
    const std::string_view other = "other";
    EXPECT_EQ(SourceValue(source, other, 7).OffsetOf(other.data()), 7U);
}

}  // namespace
}  // namespace svgloom
