#include "dictionary/InputStreams.h"

#include "dictionary/Utf8.h"
#include "dictionary/tests/TestSupport.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

namespace morvish {
namespace {

using dictionary_test::ExactBlock;

class InputStreams : public testing::Test {
protected:
    void SetUp() override
    {
        folder_ = std::filesystem::path(testing::TempDir()) /
                  ("kiv_input_streams_" +
                   std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
        std::filesystem::create_directories(folder_);
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    std::u16string Write(const char* name, std::string_view bytes) const
    {
        const std::filesystem::path path = folder_ / name;
        std::ofstream(path, std::ios::binary)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return morvish_private::ConvertUtf8Lossy(path.string());
    }

    std::filesystem::path folder_;
};

std::string ReadAll(std::istream& stream)
{
    return {std::istreambuf_iterator<char>(stream), {}};
}

// Larger than the stream's block, so that every offset is also met away from the block's start.
std::string LargeSample()
{
    std::string bytes;
    for (int i = 0; i < 20000; ++i)
        bytes += std::to_string(i) + '\n';
    return bytes;
}

TEST_F(InputStreams, FileIsReadWhole)
{
    const std::string sample = LargeSample();
    basic_ifstream<char> file(Write("sample", sample));
    ASSERT_TRUE(file.is_open());
    EXPECT_EQ(ReadAll(file), sample);
    file.clear();
    file.close();
    EXPECT_TRUE(file.good());
    EXPECT_FALSE(file.is_open());
}

TEST_F(InputStreams, FileNameMayHoldAnyText)
{
    basic_ifstream<char> file(Write("\xE6\x97\xA5\xF0\x9F\x98\x80.dict", "x"));
    EXPECT_EQ(file.get(), 'x');
}

TEST_F(InputStreams, WhatIsNoFileDoesNotOpen)
{
    const std::u16string folder = morvish_private::ConvertUtf8Lossy(folder_.string());
    const std::u16string paths[] = {
        folder + u"/missing",
        folder,
        u"",
        folder + u"/" + std::u16string(1, 0xD800),
        Write("file", "x") + std::u16string(u"\0tail", 5),
    };
    for (const std::u16string& path : paths) {
        SCOPED_TRACE(testing::PrintToString(path));
        basic_ifstream<char> file(path);
        EXPECT_FALSE(file.is_open());
        EXPECT_TRUE(file.fail());
        file.close();
        EXPECT_TRUE(file.fail());
        EXPECT_EQ(file.get(), std::char_traits<char>::eof());
    }
}

TEST_F(InputStreams, CloseMarksTheStreamWhenNothingIsOpen)
{
    basic_ifstream<char> file(Write("file", "x"));
    file.close();
    EXPECT_TRUE(file.good());
    file.close();
    EXPECT_TRUE(file.fail());
}

void SeekAbout(std::istream& stream, const std::string& sample)
{
    const auto size = static_cast<std::streamoff>(sample.size());
    // Forwards and backwards, within a block and far away.
    for (const std::streamoff offset :
         {std::streamoff{5}, size - 1, std::streamoff{0}, std::streamoff{40000}, std::streamoff{39},
          std::streamoff{32768}, std::streamoff{32767}}) {
        SCOPED_TRACE(offset);
        stream.seekg(offset);
        ASSERT_EQ(stream.tellg(), offset);
        EXPECT_EQ(stream.get(), sample[static_cast<std::size_t>(offset)]);
    }
    stream.seekg(10).seekg(5, std::ios_base::cur);
    EXPECT_EQ(stream.get(), sample[15]);
    stream.seekg(-3, std::ios_base::end);
    EXPECT_EQ(ReadAll(stream), sample.substr(sample.size() - 3));

    stream.clear();
    EXPECT_TRUE(stream.seekg(-1).fail());
    stream.clear();
    EXPECT_TRUE(stream.seekg(-1, std::ios_base::beg).fail());
    stream.clear();
    EXPECT_TRUE(stream.seekg(INT64_MAX, std::ios_base::end).fail());
    stream.clear();
    stream.seekg(0);
    EXPECT_EQ(ReadAll(stream), sample);
}

TEST_F(InputStreams, FileSeeks)
{
    const std::string sample = LargeSample();
    basic_ifstream<char> file(Write("sample", sample));
    SeekAbout(file, sample);
}

TEST_F(InputStreams, BlockSeeks)
{
    const std::string sample = LargeSample();
    const ExactBlock block(sample);
    basic_irstream<char> stream(block.Start(), block.Size());
    SeekAbout(stream, sample);
    stream.clear();
    EXPECT_TRUE(stream.seekg(static_cast<std::streamoff>(sample.size()) + 1).fail());
}

TEST_F(InputStreams, OthersMayWriteMeanwhile)
{
    const std::u16string path = Write("sample", "old");
    basic_ifstream<char> file(path);
    ASSERT_TRUE(file.is_open());
    Write("sample", "new text");
    EXPECT_EQ(ReadAll(file), "new text");
}

}  // namespace
}  // namespace morvish
