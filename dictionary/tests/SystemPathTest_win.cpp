#include "dictionary/SystemPath_win.h"

#include <gtest/gtest.h>

namespace morvish_private {
namespace {

std::u16string LongTail(std::size_t lengthUnits)
{
    std::u16string tail;
    while (tail.size() < lengthUnits)
        tail += u"\\a folder of twenty c";  // 21 units
    tail.resize(lengthUnits);
    return tail;
}

std::wstring Wide(const std::u16string& text)
{
    return {text.begin(), text.end()};
}

TEST(SystemPath, ShortPathsStayAsTheyCame)
{
    for (const char16_t* const path :
         {u"C:\\a.dict", u"C:/a/../b.dict", u"a.dict", u"..\\a.dict", u"\\\\server\\share\\a.dict",
          u"\\\\?\\C:\\a.dict", u"NUL", u"C:\\\u65E5\U0001F600\\\u00E9.dict", u"C:\\a."}) {
        EXPECT_EQ(SystemPath(path), Wide(path));
    }
}

TEST(SystemPath, LongPathsAreVerbatim)
{
    const std::u16string tail = LongTail(300);
    const std::wstring wide = Wide(tail);
    EXPECT_EQ(SystemPath(u"C:" + tail), L"\\\\?\\C:" + wide);
    // Verbatim names take no slashes, dots or steps up: they are worked out before.
    EXPECT_EQ(SystemPath(u"C:/x/./../y" + tail), L"\\\\?\\C:\\y" + wide);
    EXPECT_EQ(SystemPath(u"\\\\server\\share" + tail), L"\\\\?\\UNC\\server\\share" + wide);
    EXPECT_EQ(SystemPath(u"//server/share" + tail), L"\\\\?\\UNC\\server\\share" + wide);
    EXPECT_EQ(SystemPath(u"\\\\?\\C:" + tail), L"\\\\?\\C:" + wide);
    const std::u16string veryLong = LongTail(20000);
    EXPECT_EQ(SystemPath(u"C:" + veryLong), L"\\\\?\\C:" + Wide(veryLong));
}

// The old limit of 260 counts the NUL at the end.
TEST(SystemPath, TheLimitIsThatOfTheSystem)
{
    const std::u16string fits = u"C:" + LongTail(257);
    EXPECT_EQ(SystemPath(fits), Wide(fits));
    const std::u16string doesNot = u"C:" + LongTail(258);
    EXPECT_EQ(SystemPath(doesNot), L"\\\\?\\" + Wide(doesNot));
}

// The working folder counts in what a relative path comes to.
TEST(SystemPath, RelativePathsBecomeFull)
{
    const std::wstring path = SystemPath(u"x" + LongTail(300));
    EXPECT_TRUE(path.starts_with(L"\\\\?\\")) << testing::PrintToString(path);
    EXPECT_TRUE(path.ends_with(L"\\x" + Wide(LongTail(300)))) << testing::PrintToString(path);
    EXPECT_EQ(path[5], L':') << testing::PrintToString(path);
}

TEST(SystemPath, WhatIsNoPathIsRefused)
{
    EXPECT_EQ(SystemPath(u""), L"");
    EXPECT_EQ(SystemPath(std::u16string_view(u"a\0b", 3)), L"");
    EXPECT_EQ(SystemPath(std::u16string(1, 0xD800)), L"");
    EXPECT_EQ(SystemPath(u"C:\\" + std::u16string(1, 0xDC00) + u"\\a"), L"");
}

}  // namespace
}  // namespace morvish_private
