#include "dictionary/ImageSource.h"

#include "dictionary/InputStreams.h"
#include "dictionary/tests/TestSupport.h"

#include <array>
#include <memory>
#include <sstream>
#include <string_view>

#include <gtest/gtest.h>

namespace morvish_private {
namespace {

void ReadAll(ImageSource& source)
{
    std::array<char, 4> bytes{};
    std::unique_ptr<unsigned char[]> buffer;
    EXPECT_EQ(source.LeftBytes(), 6u);
    EXPECT_TRUE(source.Read(bytes.data(), 2));
    EXPECT_EQ(std::string_view(bytes.data(), 2), "ab");
    EXPECT_TRUE(source.Read(nullptr, 0));
    // Too much takes nothing.
    EXPECT_FALSE(source.Read(bytes.data(), 5));
    EXPECT_EQ(source.View(5, buffer), nullptr);
    EXPECT_EQ(source.LeftBytes(), 4u);
    const unsigned char* const view = source.View(3, buffer);
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view[0], 'c');
    EXPECT_EQ(view[2], 'e');
    EXPECT_EQ(source.LeftBytes(), 1u);
    EXPECT_NE(source.View(0, buffer), nullptr);
    EXPECT_TRUE(source.Read(bytes.data(), 1));
    EXPECT_EQ(bytes[0], 'f');
    EXPECT_EQ(source.LeftBytes(), 0u);
    EXPECT_FALSE(source.Read(bytes.data(), 1));
}

TEST(ImageSource, Memory)
{
    const dictionary_test::ExactBlock block("abcdef");
    MemoryImageSource source(block.Start(), block.Size());
    ReadAll(source);
}

TEST(ImageSource, Streams)
{
    const dictionary_test::ExactBlock block("abcdef");
    morvish::basic_irstream<char> own(block.Start(), block.Size());
    StreamImageSource ownSource(own);
    ReadAll(ownSource);

    std::istringstream foreign("abcdef");
    StreamImageSource foreignSource(foreign);
    ReadAll(foreignSource);
}

TEST(ImageSource, StreamCountsFromWhereItStands)
{
    std::istringstream stream("12345");
    stream.seekg(3);
    EXPECT_EQ(StreamImageSource(stream).LeftBytes(), 2u);
    EXPECT_EQ(stream.get(), '4');
}

// A file that became shorter than it was when it was measured.
TEST(ImageSource, StreamThatEndsEarly)
{
    class Shrinking : public std::stringbuf {
    public:
        using std::stringbuf::stringbuf;

    protected:
        std::streamsize xsgetn(char* target, std::streamsize count) override
        {
            return std::stringbuf::xsgetn(target, count / 2);
        }
    };
    Shrinking buffer("abcdef", std::ios_base::in);
    std::istream stream(&buffer);
    StreamImageSource source(stream);
    std::unique_ptr<unsigned char[]> view;
    EXPECT_EQ(source.LeftBytes(), 6u);
    EXPECT_EQ(source.View(6, view), nullptr);
}

}  // namespace
}  // namespace morvish_private
