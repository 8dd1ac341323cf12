#include "dictionary/DictionaryReader.h"

#include "dictionary/InputStreams.h"
#include "dictionary/tests/TestSupport.h"

#include <new>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <typeinfo>
#include <vector>

#include <gtest/gtest.h>

namespace morvish_private {
namespace {

using dictionary_test::BigEndian;
using dictionary_test::ExactBlock;
using dictionary_test::LittleEndian;
using namespace std::string_literals;

using Lines = std::vector<std::u16string>;

Lines ReadLines(DictionaryReader& reader)
{
    Lines lines;
    while (const char16_t* const line = reader.ReadLine()) {
        lines.emplace_back(line);
        EXPECT_EQ(reader.Line(), lines.back());  // no NUL within, one behind
    }
    // Exhausted is exhausted.
    EXPECT_EQ(reader.ReadLine(), nullptr);
    EXPECT_EQ(reader.ReadLine(), nullptr);
    return lines;
}

Lines FromMemory(std::string_view bytes)
{
    const ExactBlock block(bytes);
    const auto reader = CreateReader(block.Start(), block.End());
    return reader ? ReadLines(*reader) : Lines{u"no reader"};
}

Lines FromStream(std::istream& stream)
{
    const auto reader = CreateReader(stream);
    return ReadLines(*reader);
}

// A block, a stream of ours and a foreign stream must read alike.
Lines FromEverywhere(const std::string& bytes)
{
    const Lines lines = FromMemory(bytes);
    const ExactBlock block(bytes);
    morvish::basic_irstream<char> own(block.Start(), block.Size());
    std::istringstream foreign(bytes);
    EXPECT_EQ(FromStream(own), lines);
    EXPECT_EQ(FromStream(foreign), lines);
    return lines;
}

TEST(DictionaryReader, ChoosesByTheFirstTwoBytes)
{
    struct {
        std::string bytes;
        const std::type_info& want;
        std::streamoff position;  // of the stream, after the choice
    } const rows[] = {
        {"\xFF\xFE", typeid(UnicodeReader), 2},  {"\xFE\xFF", typeid(ByteSwapUnicodeReader), 2},
        {"\xFE\xFEx", typeid(UTF8Reader), 0},    {"\xFF\xFFx", typeid(UTF8Reader), 0},
        {"\xEF\xBB\xBF", typeid(UTF8Reader), 0}, {"ab", typeid(UTF8Reader), 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.bytes));
        const auto reader = CreateReader(row.bytes.data(), row.bytes.data() + row.bytes.size());
        ASSERT_TRUE(reader);
        const DictionaryReader& chosen = *reader;
        EXPECT_EQ(typeid(chosen), row.want);
        EXPECT_EQ(reader->ReadsUtf16(), row.want != typeid(UTF8Reader));

        std::istringstream stream(row.bytes);
        const auto streamReader = CreateReader(stream);
        const DictionaryReader& chosenForStream = *streamReader;
        EXPECT_EQ(typeid(chosenForStream), row.want);
        EXPECT_EQ(stream.tellg(), row.position);
    }
}

TEST(DictionaryReader, TooShortForMemory)
{
    EXPECT_EQ(FromMemory(""), Lines{u"no reader"});
    EXPECT_EQ(FromMemory("a"), Lines{u"no reader"});
    EXPECT_EQ(FromMemory("\xFF"), Lines{u"no reader"});
}

TEST(DictionaryReader, ShortStreams)
{
    std::istringstream none("");
    EXPECT_EQ(FromStream(none), Lines{});
    std::istringstream one("a");
    EXPECT_EQ(FromStream(one), Lines{u"a"});
    std::istringstream broken("\xFF");
    EXPECT_EQ(FromStream(broken), Lines{});
}

struct LineCase {
    std::u16string text;
    Lines want;
};

const LineCase kUtf16Cases[] = {
    {u"", {}},
    {u"a", {u"a"}},
    {u"a\nb", {u"a", u"b"}},
    {u"a\nb\n", {u"a", u"b"}},
    {u"a\rb\u2028c\u2029d", {u"a", u"b", u"c", u"d"}},
    // CR LF ends two lines.
    {u"a\r\nb\r\n", {u"a", u"", u"b", u""}},
    {u"\n\n", {u"", u""}},
    {u"\u20AC\U0001F600", {u"\u20AC\U0001F600"}},
    // A lone surrogate and a second byte-order mark are units like any other.
    {{0xD800, u'\n', 0xFEFF}, {{0xD800}, {0xFEFF}}},
    {{0xFFFE}, {{0xFFFE}}},
    // A NUL ends the line and the source.
    {u"a\0b\nc"s, {u"a"}},
    {u"a\n\0b\nc"s, {u"a"}},
    {u"\0a"s, {}},
};

TEST(DictionaryReader, Utf16Lines)
{
    for (const LineCase& row : kUtf16Cases) {
        SCOPED_TRACE(testing::PrintToString(row.text));
        EXPECT_EQ(FromEverywhere(LittleEndian(u"\uFEFF" + row.text)), row.want);
        EXPECT_EQ(FromEverywhere(BigEndian(u"\uFEFF" + row.text)), row.want);
    }
}

TEST(DictionaryReader, OddLastByte)
{
    EXPECT_EQ(FromEverywhere(LittleEndian(u"\uFEFFab") + "c"), Lines{u"ab"});
    EXPECT_EQ(FromEverywhere(BigEndian(u"\uFEFFab\n") + "c"), Lines{u"ab"});
    EXPECT_EQ(FromEverywhere(LittleEndian(u"\uFEFF") + "c"), Lines{});
}

TEST(DictionaryReader, LongLines)
{
    // Around the first capacity, and far above it.
    for (const std::size_t length : {255u, 256u, 257u, 383u, 384u, 385u, 100000u}) {
        SCOPED_TRACE(length);
        const std::u16string line(length, u'x');
        EXPECT_EQ(FromEverywhere(LittleEndian(u"\uFEFF" + line + u"\ny")), (Lines{line, u"y"}));
    }
}

struct Utf8LineCase {
    std::string bytes;
    Lines want;
};

const Utf8LineCase kUtf8Cases[] = {
    {"ab", {u"ab"}},
    {"a\nb", {u"a", u"b"}},
    {"a\nb\n", {u"a", u"b"}},
    {"\n\n", {u"", u""}},
    // One CR goes with the line end; one elsewhere stays.
    {"a\r\nb\r\r\nc\rd", {u"a", u"b\r", u"c\rd"}},
    {"a\r", {u"a"}},
    // Only LF ends a line of UTF-8.
    {"a\xE2\x80\xA8"
     "b",
     {u"a\u2028b"}},
    {"\xEF\xBB\xBF"
     "a\n\xEF\xBB\xBF",
     {u"\uFEFFa", u"\uFEFF"}},
    {"\xF0\x9F\x98\x80", {u"\U0001F600"}},
    // A NUL cuts its line, not the source; what is behind it need not be UTF-8.
    {"a\0b\nc"s, {u"a", u"c"}},
    {"a\0\xFF\nc"s, {u"a", u"c"}},
    {"\0\nc"s, {u"", u"c"}},
    // Broken UTF-8 ends the source: overlong, surrogate, cut, lone, too high.
    {"a\n\xC0\xAF\nc", {u"a"}},
    {"a\n\xED\xA0\x80\nc", {u"a"}},
    {"a\n\xE2\x82\nc", {u"a"}},
    {"a\nb\x80\nc", {u"a"}},
    {"a\n\xF4\x90\x80\x80\nc", {u"a"}},
    {"a\n\xFF\nc", {u"a"}},
    {"a\nb\xC3", {u"a"}},
};

TEST(DictionaryReader, Utf8Lines)
{
    for (const Utf8LineCase& row : kUtf8Cases) {
        SCOPED_TRACE(testing::PrintToString(row.bytes));
        EXPECT_EQ(FromEverywhere(row.bytes), row.want);
    }
}

TEST(DictionaryReader, FailedStreamGivesNoLines)
{
    std::istringstream stream("ab\ncd");
    const auto reader = CreateReader(stream);
    ASSERT_NE(reader->ReadLine(), nullptr);
    stream.setstate(std::ios_base::badbit);
    EXPECT_EQ(reader->ReadLine(), nullptr);

    std::istringstream wide(
        "\xFF\xFE"
        "a\0\n\0b\0"s);
    const auto wideReader = CreateReader(wide);
    ASSERT_NE(wideReader->ReadLine(), nullptr);
    wide.setstate(std::ios_base::badbit);
    EXPECT_EQ(wideReader->ReadLine(), nullptr);
}

// Gives "ab", a line end and "cd", then throws.
class ThrowingBuffer : public std::streambuf {
public:
    explicit ThrowingBuffer(bool lackOfMemory) : lackOfMemory_(lackOfMemory)
    {
        setg(text_, text_, text_ + sizeof text_ - 1);
    }

private:
    int_type underflow() override
    {
        if (lackOfMemory_)
            throw std::bad_alloc();
        throw std::runtime_error("no more");
    }
    pos_type seekpos(pos_type position, std::ios_base::openmode) override
    {
        setg(text_, text_ + std::streamoff(position), egptr());
        return position;
    }

    char text_[6] = "ab\ncd";
    bool lackOfMemory_;
};

TEST(DictionaryReader, AnExceptionOfTheStreamEndsTheInput)
{
    ThrowingBuffer buffer(/*lackOfMemory=*/false);
    std::istream stream(&buffer);
    const auto reader = CreateReader(stream);
    ASSERT_NE(reader->ReadLine(), nullptr);
    EXPECT_EQ(reader->Line(), u"ab");
    EXPECT_EQ(reader->ReadLine(), nullptr);
    EXPECT_TRUE(stream.bad());
    EXPECT_EQ(stream.exceptions(), std::ios_base::goodbit);
    EXPECT_EQ(reader->ReadLine(), nullptr);
}

TEST(DictionaryReader, ALackOfMemoryIsTold)
{
    ThrowingBuffer buffer(/*lackOfMemory=*/true);
    std::istream stream(&buffer);
    const auto reader = CreateReader(stream);
    ASSERT_NE(reader->ReadLine(), nullptr);
    EXPECT_THROW(reader->ReadLine(), std::bad_alloc);
    EXPECT_EQ(stream.exceptions(), std::ios_base::goodbit);
}

TEST(DictionaryReader, ReadCharTellsTheEnd)
{
    const ExactBlock block("a\0\x22\x11"s);
    UnicodeReader straight(block.Start(), block.End());
    ByteSwapUnicodeReader swapped(block.Start(), block.End());
    char16_t unit = 0;
    EXPECT_FALSE(straight.ReadChar(unit));
    EXPECT_EQ(unit, u'a');
    EXPECT_FALSE(straight.ReadChar(unit));
    EXPECT_EQ(unit, 0x1122);
    EXPECT_TRUE(straight.ReadChar(unit));
    EXPECT_FALSE(swapped.ReadChar(unit));
    EXPECT_EQ(unit, 0x6100);
    EXPECT_FALSE(swapped.ReadChar(unit));
    EXPECT_EQ(unit, 0x2211);
    EXPECT_TRUE(swapped.ReadChar(unit));
}

}  // namespace
}  // namespace morvish_private
