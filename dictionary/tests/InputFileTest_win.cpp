// What this system does with files of its own way: sharing, devices, long names.

#include "dictionary/InputFile.h"

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace morvish_private {
namespace {

class InputFileOnWindows : public testing::Test {
protected:
    void SetUp() override
    {
        folder_ = std::filesystem::path(testing::TempDir()) /
                  ("kiv_input_file_" +
                   std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
        std::filesystem::create_directories(folder_);
        std::ofstream(Path(), std::ios::binary) << "abc";
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    std::filesystem::path Path() const { return folder_ / L"a.dict"; }
    std::u16string Name() const { return Path().u16string(); }

    // Opens the file as another program would. Null if the system refuses.
    static HANDLE OpenElsewhere(const std::filesystem::path& path, DWORD access, DWORD share)
    {
        return CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
    }

    std::filesystem::path folder_;
};

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

TEST_F(InputFileOnWindows, OthersMayReadWriteAndDeleteMeanwhile)
{
    InputFile file;
    ASSERT_TRUE(file.Open(Name()));
    for (const DWORD access : {GENERIC_READ, DWORD{GENERIC_WRITE}, DWORD{DELETE}}) {
        SCOPED_TRACE(access);
        const HANDLE other = OpenElsewhere(Path(), access, kShareAll);
        ASSERT_NE(other, INVALID_HANDLE_VALUE) << GetLastError();
        CloseHandle(other);
    }
    EXPECT_TRUE(MoveFileExW(Path().c_str(), (folder_ / L"b.dict").c_str(), 0)) << GetLastError();
    char bytes[4] = {};
    EXPECT_EQ(file.Read(bytes, sizeof bytes), 3u);
    EXPECT_STREQ(bytes, "abc");
}

TEST_F(InputFileOnWindows, OpensWhatAnotherProgramIsWriting)
{
    const HANDLE other = OpenElsewhere(Path(), GENERIC_WRITE, kShareAll);
    ASSERT_NE(other, INVALID_HANDLE_VALUE);
    InputFile file;
    EXPECT_TRUE(file.Open(Name()));
    CloseHandle(other);
}

TEST_F(InputFileOnWindows, WhatAnotherProgramHoldsForItselfDoesNotOpen)
{
    const HANDLE other = OpenElsewhere(Path(), GENERIC_READ, 0);
    ASSERT_NE(other, INVALID_HANDLE_VALUE);
    InputFile file;
    EXPECT_FALSE(file.Open(Name()));
    CloseHandle(other);
    EXPECT_TRUE(file.Open(Name()));
}

TEST_F(InputFileOnWindows, DevicesAndPipesDoNotOpen)
{
    InputFile file;
    for (const char16_t* const name : {u"NUL", u"\\\\.\\NUL", u"CON"}) {
        EXPECT_FALSE(file.Open(name)) << testing::PrintToString(name);
    }
    const wchar_t* const kPipe = L"\\\\.\\pipe\\kiv_input_file_test";
    const HANDLE pipe =
        CreateNamedPipeW(kPipe, PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE, 1, 16, 16, 0, nullptr);
    ASSERT_NE(pipe, INVALID_HANDLE_VALUE) << GetLastError();
    EXPECT_FALSE(file.Open(u"\\\\.\\pipe\\kiv_input_file_test"));
    CloseHandle(pipe);
}

// The names behind which the library functions find long paths neither to make nor to remove.
std::wstring Verbatim(const std::filesystem::path& path)
{
    return L"\\\\?\\" + std::filesystem::absolute(path).wstring();
}

TEST_F(InputFileOnWindows, LongPathsOpen)
{
    std::vector<std::wstring> folders;
    std::filesystem::path folder = folder_;
    for (int depth = 0; depth < 8; ++depth) {
        folder /= L"a folder whose name has forty-one letters";
        folders.push_back(Verbatim(folder));
        // One that failed may have left them.
        ASSERT_TRUE(CreateDirectoryW(folders.back().c_str(), nullptr) ||
                    GetLastError() == ERROR_ALREADY_EXISTS)
            << GetLastError();
    }
    const std::filesystem::path path = folder / L"\u65E5\u00E9.dict";
    ASSERT_GT(path.wstring().size(), 300u);
    const HANDLE made =
        CreateFileW(Verbatim(path).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    ASSERT_NE(made, INVALID_HANDLE_VALUE) << GetLastError();
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(made, "long", 4, &written, nullptr));
    CloseHandle(made);

    const std::u16string name = path.u16string();
    std::u16string slashes = name;
    std::replace(slashes.begin(), slashes.end(), u'\\', u'/');
    for (const std::u16string& spelling : {name, slashes}) {
        InputFile file;
        EXPECT_TRUE(file.Open(spelling));
        EXPECT_EQ(file.Size(), 4);
    }

    EXPECT_TRUE(DeleteFileW(Verbatim(path).c_str())) << GetLastError();
    for (auto last = folders.rbegin(); last != folders.rend(); ++last) {
        EXPECT_TRUE(RemoveDirectoryW(last->c_str())) << GetLastError();
    }
}

}  // namespace
}  // namespace morvish_private
