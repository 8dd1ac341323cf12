#include "framework/kivxmp/src/MultiPictureIndex.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <string_view>

namespace kivxmp::photo {
namespace {

using namespace std::string_literals;

constexpr std::uint64_t kBase = 1000;

/// The index as text: where its fields lie and lead, or "-".
std::string Read(const std::string& bytes)
{
    // A block of exactly the index's size: a sanitizer sees any step behind it.
    const std::unique_ptr<char[]> block(new char[bytes.size()]);
    bytes.copy(block.get(), bytes.size());
    const auto index = MultiPictureIndex::Read({block.get(), bytes.size()}, kBase);
    if (!index) {
        return "-";
    }
    std::ostringstream text;
    for (std::size_t i = 0; i < index->Fields().size(); ++i) {
        EXPECT_EQ(index->Fields()[i].bytes, 4u);
        text << (i == 0 ? "" : " ") << index->Fields()[i].offset << ">" << index->Targets()[i];
    }
    return text.str();
}

const std::string kHeader = "MM\0*\0\0\0\x08"s;
const std::string kList = "\xB0\x02\0\x07\0\0\0\x20\0\0\0\x1A"s;  // 32 bytes at 26
const std::string kNoNext = "\0\0\0\0"s;
// Lengths 500 and 40; the second lies 600 behind the index's beginning.
const std::string kPictures = "aaaa\0\0\x01\xF4\0\0\0\0dddd"s +
                              "aaaa\0\0\0\x28\0\0\x02\x58"
                              "dddd"s;

struct IndexCase {
    const char* name;
    std::string bytes;
    const char* want;
};

TEST(MultiPictureIndex, Read)
{
    const std::string good = kHeader + "\0\x01"s + kList + kNoNext + kPictures;
    const IndexCase rows[] = {
        {"two pictures", good, "1030>500 1050>1600"},
        {"the other byte order",
         "II*\0\x08\0\0\0\x01\0\x02\xB0\x07\0\x10\0\0\0\x1A\0\0\0"s + kNoNext +
             "aaaa\x28\0\0\0\x58\x02\0\0dddd"s,
         "1034>1600"},
        {"the directory behind its list",
         "MM\0*\0\0\0\x28"s + kPictures + "\0\x01\xB0\x02\0\x07\0\0\0\x20\0\0\0\x08"s + kNoNext,
         "1012>500 1032>1600"},
        {"bytes behind it", good + "more", "1030>500 1050>1600"},
        {"nothing", "", "-"},
        {"another byte order", "XX" + good.substr(2), "-"},
        {"another version", "MM\0+"s + good.substr(4), "-"},
        {"a directory behind the end", "MM\0*\x7F\0\0\x08"s + good.substr(8), "-"},
        {"a directory that wraps around", "MM\0*\xFF\xFF\xFF\xFF"s + good.substr(8), "-"},
        {"more entries than there is room for", kHeader + "\xFF\xFF" + kList + kNoNext + kPictures,
         "-"},
        {"no list", kHeader + "\0\x01\xB0\x01"s + kList.substr(2) + kNoNext + kPictures, "-"},
        {"two lists", kHeader + "\0\x02"s + kList + kList + kNoNext + kPictures + kPictures, "-"},
        {"a list of another type",
         kHeader + "\0\x01\xB0\x02\0\x04"s + kList.substr(4) + kNoNext + kPictures, "-"},
        {"a list of half a picture",
         kHeader + "\0\x01\xB0\x02\0\x07\0\0\0\x18\0\0\0\x1A"s + kNoNext + kPictures, "-"},
        {"a list of none",
         kHeader + "\0\x01\xB0\x02\0\x07\0\0\0\0\0\0\0\x1A"s + kNoNext + kPictures, "-"},
        {"a list behind the end",
         kHeader + "\0\x01\xB0\x02\0\x07\0\0\0\x20\0\0\0\x1B"s + kNoNext + kPictures, "-"},
        // Correcting it would change the directory itself.
        {"a list over the directory",
         kHeader + "\0\x01\xB0\x02\0\x07\0\0\0\x20\0\0\0\x0A"s + kNoNext + kPictures, "-"},
        {"a list over the header",
         kHeader + "\0\x01\xB0\x02\0\x07\0\0\0\x20\0\0\0\x04"s + kNoNext + kPictures, "-"},
    };
    for (const IndexCase& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(Read(row.bytes), row.want);
    }
    for (std::size_t bytes = 0; bytes < good.size(); ++bytes) {
        EXPECT_EQ(Read(good.substr(0, bytes)), "-") << bytes;
    }
}

struct ChangeCase {
    const char* name;
    ByteRange replaced;
    std::size_t freshBytes;
    const char* want;  // the fields, or "-"
};

TEST(MultiPictureIndex, Corrected)
{
    const auto index =
        MultiPictureIndex::Read(kHeader + "\0\x01"s + kList + kNoNext + kPictures, kBase);
    ASSERT_TRUE(index);
    // The first picture ends at 500, in front of the index: not what a camera writes, but it tells
    // the fields apart. The second begins at 1600.
    const ChangeCase rows[] = {
        {"behind both", {2000, 10}, 90, "500 600"},
        {"between index and picture", {1100, 10}, 90, "500 680"},
        {"shorter", {1100, 90}, 10, "500 520"},
        {"the same length", {1100, 90}, 90, "500 600"},
        {"right before the picture", {1590, 10}, 0, "500 590"},
        {"inserted at the picture's beginning", {1600, 0}, 7, "500 607"},
        {"inserted at the first one's end", {500, 0}, 7, "500 600"},
        {"in front of the index", {600, 10}, 90, "500 600"},
        {"in front of everything", {2, 0}, 100, "600 600"},
        {"over the picture's beginning", {1590, 11}, 50, "-"},
        {"over the first one's end", {490, 20}, 50, "-"},
        {"over the index", {990, 20}, 50, "-"},
    };
    for (const ChangeCase& row : rows) {
        SCOPED_TRACE(row.name);
        const auto values = index->Corrected({{row.replaced, std::string(row.freshBytes, 'x')}});
        std::ostringstream text;
        for (const std::string& value : values.value_or(std::vector<std::string>{})) {
            std::uint32_t number = 0;
            for (const char byte : value) {
                number = number << 8 | static_cast<unsigned char>(byte);
            }
            text << (text.str().empty() ? "" : " ") << number;
        }
        EXPECT_EQ(values ? text.str() : "-", row.want);
    }
}

}  // namespace
}  // namespace kivxmp::photo
