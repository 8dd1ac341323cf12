#include "framework/kivcore/src/ReparsePoint_win.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace kivcore::filesupport {
namespace {

void Put16(std::vector<unsigned char>& data, std::size_t value)
{
    data.push_back(static_cast<unsigned char>(value & 0xFFU));
    data.push_back(static_cast<unsigned char>(value >> 8U));
}

void PutText(std::vector<unsigned char>& data, const UString& text)
{
    for (const char16_t unit : text) {
        Put16(data, unit);
    }
}

/// A link's data, as the system writes it: the name for display stands in front.
std::vector<unsigned char> Link(const UString& shown, const UString& target, bool isRelative)
{
    std::vector<unsigned char> data = {0x0C, 0x00, 0x00, 0xA0};  // the tag of a symbolic link
    Put16(data, 12 + 2 * (shown.size() + target.size()));
    Put16(data, 0);
    Put16(data, 2 * shown.size());
    Put16(data, 2 * target.size());
    Put16(data, 0);
    Put16(data, 2 * shown.size());
    data.insert(data.end(), {static_cast<unsigned char>(isRelative ? 1 : 0), 0, 0, 0});
    PutText(data, shown);
    PutText(data, target);
    return data;
}

struct LinkCase {
    UString target;
    bool isRelative;
    UString want;
};

const LinkCase kLinkCases[] = {
    {u"..\\photos\\p.jpg", true, u"..\\photos\\p.jpg"},
    {u"\\photos\\p.jpg", true, u"\\photos\\p.jpg"},
    {u"\\??\\C:\\photos\\p.jpg", false, u"C:\\photos\\p.jpg"},
    {u"\\??\\UNC\\server\\share\\p.jpg", false, u"\\\\server\\share\\p.jpg"},
    {u"\\??\\C:\\\u5199\u771f\\\u00e9.jpg", false, u"C:\\\u5199\u771f\\\u00e9.jpg"},
};

TEST(ReparsePoint, Links)
{
    for (const LinkCase& row : kLinkCases) {
        const std::vector<unsigned char> data = Link(u"shown", row.target, row.isRelative);
        const std::optional<LinkTarget> read = ReadLinkTarget(data.data(), data.size());
        ASSERT_TRUE(read.has_value());
        EXPECT_EQ(read->path, row.want);
        EXPECT_EQ(read->isRelative, row.isRelative);
    }
}

TEST(ReparsePoint, CutAtEveryLength)
{
    const std::vector<unsigned char> whole = Link(u"shown", u"..\\p.jpg", true);
    for (std::size_t bytes = 0; bytes < whole.size(); ++bytes) {
        const std::vector<unsigned char> cut(whole.begin(),
                                             whole.begin() + static_cast<std::ptrdiff_t>(bytes));
        EXPECT_FALSE(ReadLinkTarget(cut.data(), cut.size()).has_value()) << bytes;
    }
}

TEST(ReparsePoint, WhatIsNoLink)
{
    std::vector<unsigned char> data = Link(u"shown", u"..\\p.jpg", true);
    EXPECT_TRUE(ReadLinkTarget(data.data(), data.size()).has_value());
    data[0] = 0x03;  // a mounted folder's tag
    EXPECT_FALSE(ReadLinkTarget(data.data(), data.size()).has_value());
    data = Link(u"", u"", true);
    EXPECT_FALSE(ReadLinkTarget(data.data(), data.size()).has_value());
    data = Link(u"shown", u"..\\p.jpg", true);
    data[10] = 3;  // half a unit
    EXPECT_FALSE(ReadLinkTarget(data.data(), data.size()).has_value());
    data = Link(u"shown", u"..\\p.jpg", true);
    data[8] = data[9] = 0xFF;  // far behind the end
    EXPECT_FALSE(ReadLinkTarget(data.data(), data.size()).has_value());
}

}  // namespace
}  // namespace kivcore::filesupport
