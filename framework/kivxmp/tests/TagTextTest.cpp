#include "framework/kivxmp/src/TagText.h"

#include <gmock/gmock.h>

#include <string>
#include <string_view>
#include <vector>

namespace kivxmp::photo {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;
using ::testing::ElementsAreArray;

struct TextCase {
    std::string_view bytes;
    const char* want;
};

TEST(TagText, Texts)
{
    constexpr TextCase kRows[] = {
        {"Harbour"sv, "Harbour"},
        {"Hafen \xC3\xA4"sv, "Hafen \xC3\xA4"},
        {"\xEF\xBB\xBFmarked"sv, "marked"},
        // No UTF-8: Windows-1252, of which Latin-1 is nearly all.
        {"Caf\xE9"sv, "Caf\xC3\xA9"},
        {"\x80 5 \x93x\x94"sv, "\xE2\x82\xAC 5 \xE2\x80\x9Cx\xE2\x80\x9D"},
        {"\xFC\x81\x9D"sv, "\xC3\xBC"},
        // Cut within a character.
        {"Caf\xC3"sv, "Caf\xC3\x83"},
        // Filled up.
        {"Kivo   "sv, "Kivo"},
        {"Kivo\0\0\0"sv, "Kivo"},
        {"Kivo\0garbage\xFF"sv, "Kivo"},
        {"  \t Kivo"sv, "Kivo"},
        {"          "sv, ""},
        {"\0\0\0"sv, ""},
        {""sv, ""},
        // Lines.
        {"one\r\ntwo\rthree\nfour"sv, "one\ntwo\nthree\nfour"},
        {"one\r\n\r\ntwo\r"sv, "one\n\ntwo"},
        // What XML cannot hold, and what nobody writes.
        {"a\x01\x0B"
         "b\x7F"
         "c\xC2\x85"
         "d"sv,
         "abcd"},
        {"a\xEF\xBF\xBE"
         "b\xEF\xBF\xBF"
         "c\xEF\xBF\xBD"sv,
         "abc\xEF\xBF\xBD"},
        {"\xC2\xA0 \xE2\x82\xAC"sv, "\xC2\xA0 \xE2\x82\xAC"},
    };
    for (const TextCase& row : kRows) {
        SCOPED_TRACE(row.want);
        EXPECT_EQ(TextOf(row.bytes), row.want);
    }
}

TEST(TagText, Utf16)
{
    EXPECT_EQ(TextOfUtf16("H\0\xE4\0\0\0"sv, ByteOrder::kLittle), "H\xC3\xA4");
    EXPECT_EQ(TextOfUtf16("\0H\0\xE4"sv, ByteOrder::kBig), "H\xC3\xA4");
    // A mark beats what the order of the file says.
    EXPECT_EQ(TextOfUtf16("\xFE\xFF\0H"sv, ByteOrder::kLittle), "H");
    EXPECT_EQ(TextOfUtf16("\xFF\xFEH\0"sv, ByteOrder::kBig), "H");
    // A pair, a lone half, an odd byte, nothing behind the zero.
    EXPECT_EQ(TextOfUtf16("\x3D\xD8\x00\xDE"sv, ByteOrder::kLittle), "\xF0\x9F\x98\x80");
    EXPECT_EQ(TextOfUtf16("\x3D\xD8x\0"sv, ByteOrder::kLittle), "\xEF\xBF\xBDx");
    EXPECT_EQ(TextOfUtf16("x\0y"sv, ByteOrder::kLittle), "x");
    EXPECT_EQ(TextOfUtf16("x\0\0\0y\0"sv, ByteOrder::kLittle), "x");
    EXPECT_EQ(TextOfUtf16(" \0 \0"sv, ByteOrder::kLittle), "");
    EXPECT_EQ(TextOfUtf16("", ByteOrder::kLittle), "");
}

TEST(TagText, Comments)
{
    struct Row {
        std::string_view bytes;
        ByteOrder order;
        const char* want;
    };
    constexpr Row kRows[] = {
        {"ASCII\0\0\0Hello"sv, ByteOrder::kBig, "Hello"},
        {"ASCII\0\0\0Caf\xE9"sv, ByteOrder::kBig, "Caf\xC3\xA9"},
        {"UNICODE\0H\0i\0"sv, ByteOrder::kLittle, "Hi"},
        {"UNICODE\0\0H\0i"sv, ByteOrder::kBig, "Hi"},
        {"UNICODE\0\xFF\xFEH\0"sv, ByteOrder::kBig, "H"},
        {"\0\0\0\0\0\0\0\0any"sv, ByteOrder::kBig, "any"},
        // JIS X 0208 takes tables that we do not have; much of what is marked so is plain text.
        {"JIS\0\0\0\0\0plain\0"sv, ByteOrder::kBig, "plain"},
        {"JIS\0\0\0\0\0\x1B$B%+\x1B(B"sv, ByteOrder::kBig, ""},
        // Cameras leave the name and blanks, or nothing.
        {"ASCII\0\0\0            "sv, ByteOrder::kBig, ""},
        {"ASCII\0\0\0"sv, ByteOrder::kBig, ""},
        {"ASCII"sv, ByteOrder::kBig, ""},
        {"NoCharsetName"sv, ByteOrder::kBig, ""},
        {""sv, ByteOrder::kBig, ""},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(std::string(row.bytes));
        EXPECT_EQ(TextOfComment(row.bytes, row.order), row.want);
    }
}

TEST(TagText, IimEncodings)
{
    struct Row {
        std::string_view announcement;
        std::string_view bytes;
        const char* want;
    };
    constexpr Row kRows[] = {
        {"\x1B%G"sv, "\xC3\xA4"sv, "\xC3\xA4"},
        {"\x1B%/G"sv, "\xC3\xA4"sv, "\xC3\xA4"},
        {"\x1B%/I"sv, "\xC3\xA4"sv, "\xC3\xA4"},
        // Latin-1 is taken at its word, also where it could be UTF-8.
        {"\x1B.A"sv, "\xC3\xA4"sv, "\xC3\x83\xC2\xA4"},
        {"\x1B-A"sv, "\xE9"sv, "\xC3\xA9"},
        {"\x1B/A"sv, "\xE9\x80"sv, "\xC3\xA9"},
        // UTF-8 that is none.
        {"\x1B%G"sv, "\xE9t\xE9"sv, "\xC3\xA9t\xC3\xA9"},
        // Nothing announced, or what we have no table for.
        {""sv, "\xC3\xA4"sv, "\xC3\xA4"},
        {""sv, "\xE4\x80"sv, "\xC3\xA4\xE2\x82\xAC"},
        {"\x1B.F"sv, "Plain"sv, "Plain"},
        {"\x1B%G\0"sv, "\xC3\xA4"sv, "\xC3\xA4"},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.want);
        EXPECT_EQ(TextOfIim(row.bytes, IimEncodingOf(row.announcement)), row.want);
    }
}

TEST(TagText, Lists)
{
    struct Row {
        const char* text;
        std::vector<std::string> want;
    };
    const Row rows[] = {
        {"Jo", {"Jo"}},
        {"Jo; Kim", {"Jo", "Kim"}},
        {"Jo;Kim ;  Lee;", {"Jo", "Kim", "Lee"}},
        {"Jo;;Kim", {"Jo", "Kim"}},
        {R"("Doe; Jo"; Kim)", {"Doe; Jo", "Kim"}},
        {R"("say ""hi"""; Kim)", {R"(say "hi")", "Kim"}},
        {R"(Jo "the eye" Doe)", {R"(Jo "the eye" Doe)"}},
        // Never closed.
        {R"("Jo; Kim)", {R"("Jo)", "Kim"}},
        {" ; ; ", {}},
        {"\"\"", {}},
        {"", {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_THAT(SplitList(row.text), ElementsAreArray(row.want));
    }
}

}  // namespace
}  // namespace kivxmp::photo
