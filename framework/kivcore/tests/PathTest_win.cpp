#include "framework/kivcore/src/Path.h"

#include <cstring>

#include <windows.h>

#include <gtest/gtest.h>

#include <kivcore/Dir.h>

#include "framework/kivcore/src/Path_win.h"

namespace kivcore::filesupport {
namespace {

/// `begin`, filled up with "x" to `units`.
UString Filled(UString begin, std::size_t units)
{
    begin.append(units - begin.size(), u'x');
    return begin;
}

struct BorderCase {
    const char* what;
    UString path;
    UString want;
};

const BorderCase kBorderCases[] = {
    {"short", u"C:\\a/b\\..\\c", u"C:\\a/b\\..\\c"},
    {"relative", u"a", u"a"},
    {"empty", u"", u""},
    // Folders are refused from 248 units on, files from 260 on.
    {"247", Filled(u"C:\\", 247), Filled(u"C:\\", 247)},
    {"248", Filled(u"C:\\", 248), u"\\\\?\\" + Filled(u"C:\\", 248)},
    {"261", Filled(u"C:\\", 261), u"\\\\?\\" + Filled(u"C:\\", 261)},
    {"5000", Filled(u"C:\\", 5000), u"\\\\?\\" + Filled(u"C:\\", 5000)},
    // Behind the prefix nothing is understood any more, so it is settled before.
    {"separators", u"C:/a/./b/../" + Filled(u"", 300), u"\\\\?\\C:\\a\\" + Filled(u"", 300)},
    {"share", Filled(u"\\\\server\\share\\", 300),
     u"\\\\?\\UNC\\" + Filled(u"\\\\server\\share\\", 300).substr(2)},
    {"share with slashes", Filled(u"//server/share/", 300),
     u"\\\\?\\UNC\\" + Filled(u"\\\\server\\share\\", 300).substr(2)},
    {"verbatim", Filled(u"\\\\?\\C:\\", 300), Filled(u"\\\\?\\C:\\", 300)},
    {"verbatim share", Filled(u"\\\\?\\UNC\\server\\share\\", 300),
     Filled(u"\\\\?\\UNC\\server\\share\\", 300)},
    {"device", Filled(u"\\\\.\\pipe\\", 300), Filled(u"\\\\.\\pipe\\", 300)},
    // Names need not be well-formed.
    {"surrogates",
     {u'C', u':', u'\\', 0xD800, 0xDC00, 0xDC00, 0xD800},
     {u'C', u':', u'\\', 0xD800, 0xDC00, 0xDC00, 0xD800}},
    {"long with surrogates", Filled({u'C', u':', u'\\', 0xDC00, 0xD800}, 300),
     u"\\\\?\\" + Filled({u'C', u':', u'\\', 0xDC00, 0xD800}, 300)},
    // A NUL would cut it.
    {"NUL", {u'C', u':', u'\\', u'a', 0, u'b'}, u""},
};

TEST(PathBorder, LongPathsGoInTheVerbatimForm)
{
    for (const BorderCase& row : kBorderCases) {
        EXPECT_EQ(FromNative(NativePath(row.path)), row.want) << row.what;
    }
}

TEST(PathBorder, ALongRelativePathGoesAbsolute)
{
    const UString native = FromNative(NativePath(Filled(u"sub\\", 300)));
    EXPECT_TRUE(native.starts_with(u"\\\\?\\"));
    EXPECT_TRUE(native.ends_with(u"\\" + Filled(u"sub\\", 300)));
}

struct RootCase {
    UStringView path;
    std::size_t root;
};

constexpr RootCase kRootCases[] = {
    {u"C:\\", 3},
    {u"c:/a", 3},
    {u"C:\\a\\b", 3},
    {u"\\\\server\\share", 14},
    {u"\\\\server\\share\\", 15},
    {u"//server/share/a", 15},
    {u"\\\\?\\C:\\a", 7},
    {u"\\\\?\\UNC\\server\\share\\a", 21},
    {u"\\\\?\\Volume{1}\\a", 14},
    {u"\\\\.\\pipe\\a", 9},
    // Not whole: something of them is the working folder's.
    {u"", 0},
    {u"a", 0},
    {u"\\a", 0},
    {u"C:", 0},
    {u"C:a", 0},
    {u"1:\\a", 0},
};

TEST(Path, Roots)
{
    for (const RootCase& row : kRootCases) {
        EXPECT_EQ(RootLength(row.path), row.root) << PathToUTF8(UString(row.path));
    }
}

struct PartsCase {
    UStringView path;
    UStringView folder;
    UStringView name;
};

constexpr PartsCase kPartsCases[] = {
    {u"C:\\a\\b.jpg", u"C:\\a", u"b.jpg"},
    {u"C:/a/b.jpg", u"C:/a", u"b.jpg"},
    {u"C:\\b.jpg", u"C:\\", u"b.jpg"},
    {u"\\\\server\\share\\b.jpg", u"\\\\server\\share\\", u"b.jpg"},
    {u"\\\\?\\C:\\b.jpg", u"\\\\?\\C:\\", u"b.jpg"},
};

TEST(Path, FolderAndName)
{
    for (const PartsCase& row : kPartsCases) {
        EXPECT_EQ(FolderPart(row.path), row.folder);
        EXPECT_EQ(NamePart(row.path), row.name);
    }
}

TEST(Path, Joined)
{
    EXPECT_EQ(JoinPath(u"C:\\a\\b", u"../c/./d"), u"C:\\a\\c\\d");
    EXPECT_EQ(JoinPath(u"C:\\a", u"..\\..\\..\\b"), u"C:\\b");
    EXPECT_EQ(JoinPath(u"\\\\server\\share\\a", u"../../b"), u"\\\\server\\share\\b");
}

UString WorkingFolder()
{
    wchar_t buffer[MAX_PATH];
    GetCurrentDirectoryW(MAX_PATH, buffer);
    UString folder = FromNative(buffer);
    if (!folder.ends_with(u'\\')) {
        folder += u'\\';
    }
    return folder;
}

TEST(Path, WhatIsMissingComesFromTheWorkingFolder)
{
    const UString current = WorkingFolder();
    const UString drive = current.substr(0, 2);
    EXPECT_EQ(AbsolutePath(u"a"), current + u"a");
    EXPECT_EQ(AbsolutePath(u"a/"), current + u"a");
    EXPECT_EQ(AbsolutePath(u"\\a"), drive + u"\\a");
    EXPECT_EQ(AbsolutePath(u"/a"), drive + u"\\a");
    EXPECT_EQ(AbsolutePath(drive + u"a"), current + u"a");
    // What is there stays as it is: the system would drop these dots.
    EXPECT_EQ(AbsolutePath(u"a."), current + u"a.");
    EXPECT_EQ(AbsolutePath(u"C:\\a./b"), u"C:\\a./b");
    EXPECT_EQ(AbsolutePath(u"C:\\"), u"C:\\");
    EXPECT_EQ(AbsolutePath(u"C:\\a\\\\"), u"C:\\a");
    EXPECT_EQ(AbsolutePath(u"\\\\server\\share\\a\\"), u"\\\\server\\share\\a");
    EXPECT_EQ(AbsolutePath(u""), u"");
}

TEST(Path, VariablesOfAnyLength)
{
    EXPECT_EQ(PathFromEnvironment("KIV_TEST_PATH"), u"");
    for (const std::size_t units : {1U, 511U, 512U, 513U, 30000U}) {
        const std::wstring value(units, L'\u3042');
        ASSERT_TRUE(SetEnvironmentVariableW(L"KIV_TEST_PATH", value.c_str()));
        EXPECT_EQ(PathFromEnvironment("KIV_TEST_PATH"), FromNative(value));
    }
    ASSERT_TRUE(SetEnvironmentVariableW(L"KIV_TEST_PATH", nullptr));
}

TEST(Path, ProgramAndModules)
{
    EXPECT_EQ(NamePart(ProgramPath()), u"kivcore_files_win_tests.exe");
    // A virtual table stands in the module of its class.
    const FileError error(FileError::Kind::kOther, "");
    const void* table = nullptr;
    std::memcpy(&table, static_cast<const void*>(&error), sizeof table);
    EXPECT_EQ(NamePart(ModulePath(table)), u"kivcore.dll");
    EXPECT_EQ(FolderPart(ModulePath(table)), FolderPart(ProgramPath()));
    EXPECT_EQ(ModulePath(&error), u"");
}

}  // namespace
}  // namespace kivcore::filesupport
