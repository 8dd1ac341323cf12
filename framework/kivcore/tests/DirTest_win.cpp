// What of folders and files depends on the system: names of any units, long ones, the environment,
// and where programs and libraries lie.

#include <kivcore/Dir.h>

#include <windows.h>

#include <shlobj.h>

#include <gmock/gmock.h>

#include <kivcore/FileReplacement.h>
#include <kivcore/FileStream.h>
#include <kivcore/Resource.h>
#include <kivcore/Trace.h>

#include "framework/kivcore/tests/ChildProcess_win.h"
#include "framework/kivcore/tests/TestFolder.h"

namespace kivcore::filesupport {
namespace {

using kivcore::testing::ChildOutcome;
using kivcore::testing::RunProgram;
using kivcore::testing::TestFolder;
using kivcore::testing::TextOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct PathCase {
    std::string bytes;
    UString units;
};

const PathCase kPathCases[] = {
    {"C:\\plain", u"C:\\plain"},
    {"\xC3\xA9\xE5\x86\x99\xF0\x9F\x98\x80", u"\u00e9\u5199\U0001F600"},
    // Lone surrogates: between text, at the end, the wrong way round.
    {"a\xED\xA0\x80"
     "b",
     {u'a', 0xD800, u'b'}},
    {"\xED\xBF\xBF", {0xDFFF}},
    {"\xED\xB0\x80\xED\xA0\x80", {0xDC00, 0xD800}},
    {"\xED\xA0\x80\xF0\x9F\x98\x80", {0xD800, 0xD83D, 0xDE00}},
};

TEST(PathBorder, WhatIsNoTextSurvivesTheWay)
{
    for (const PathCase& row : kPathCases) {
        EXPECT_EQ(PathFromUTF8(row.bytes), row.units) << row.bytes;
        EXPECT_EQ(PathToUTF8(row.units), row.bytes);
    }
    for (unsigned first = 0xD700; first <= 0xE0FF; first += 7) {
        for (unsigned second = 0xD7F0; second <= 0xE00F; second += 3) {
            const UString units = {u'a', static_cast<char16_t>(first),
                                   static_cast<char16_t>(second)};
            ASSERT_EQ(PathFromUTF8(PathToUTF8(units)), units);
        }
    }
    // Bytes that no path has.
    EXPECT_EQ(PathFromUTF8("a\xFF\xED\xA0\x80\xE3\x81"), (UString{u'a', 0xFFFD, 0xD800, 0xFFFD}));
}

const UString kNames[] = {
    u"\u5199\u771f \u00e9t\u00e9.jpg", u"e\u0301.jpg",  u"\U0001F4F7.jpg", u"\u0391\u0392.jpg",
    u" leading and inner spaces.jpg",  u"no extension",
};

TEST(PathBorder, FilesOfAnyNameAreFoundAndOpened)
{
    const TestFolder folder;
    for (const UString& name : kNames) {
        const Dir dir = Dir(folder.Path("")) / (u"\u30d5\u30a9\u30eb\u30c0 " + name);
        dir.Create();
        const File file(dir, name);
        ReplaceWholeFile(file.FullPath(), [](OutputFile& out) { out.Write("content", 7); }, {});
        EXPECT_THAT(dir.FileNames(), ElementsAre(name));
        EXPECT_TRUE(file.Exists());
        EXPECT_EQ(file.ReadAll(100), "content");
        EXPECT_EQ(File(PathFromUTF8(PathToUTF8(file.FullPath()))).ReadAll(100), "content");
        file.Remove();
        EXPECT_EQ(TextOf<FileError>([&] { file.ReadAll(100); }),
                  PathToUTF8(file.FullPath()) + ": cannot be opened: no such file or folder");
    }
    EXPECT_EQ(Dir(folder.Path("")).FolderNames().size(), std::size(kNames));
}

TEST(PathBorder, AMessageIsTextWhateverTheName)
{
    const TestFolder folder;
    const File file(Dir(folder.Path("")), UString{u'a', 0xD800});
    EXPECT_EQ(TextOf<FileError>([&] { file.ReadAll(100); }),
              folder.Of("a\xEF\xBF\xBD").string() + ": cannot be opened: no such file or folder");
}

TEST(PathBorder, APathLongerThanTheSystemsOldLimit)
{
    const TestFolder folder;
    Dir dir(folder.Path(""));
    while (dir.FullPath().size() < 700) {
        dir = dir / UString(100, u'd');
    }
    dir.Create();
    EXPECT_TRUE(dir.Exists());
    const File file(dir, u"p.jpg");
    file.Create(/*truncate=*/false);
    ReplaceOptions options;
    options.expected = InputFile(file.FullPath()).Identity();
    ReplaceWholeFile(
        file.FullPath(), [](OutputFile& out) { out.Write("content", 7); }, options);
    EXPECT_EQ(file.ReadAll(100), "content");
    EXPECT_THAT(dir.FileNames(), ElementsAre(u"p.jpg"));
    EXPECT_THAT(dir.FolderNames(), IsEmpty());
    // The same through "..", which the verbatim form does not know.
    EXPECT_EQ(File(dir / u".." / UString(100, u'd'), u"p.jpg").ReadAll(100), "content");
    RecoverReplacedFile(file.FullPath());
    file.Remove();
    EXPECT_FALSE(file.Exists());
}

TEST(DirSystem, RelativePathsAndSeparators)
{
    wchar_t current[MAX_PATH];
    ASSERT_NE(GetCurrentDirectoryW(MAX_PATH, current), 0U);
    const std::filesystem::path folder(current);
    EXPECT_EQ(PathToUTF8(Dir(u"sub/").FullPath()), (folder / "sub").string());
    EXPECT_EQ(Dir(u"C:\\").FullPath(), u"C:\\");
    EXPECT_EQ((Dir(u"C:\\") / u"a").FullPath(), u"C:\\a");
    EXPECT_EQ(Dir(u"C:/a//").FullPath(), u"C:/a");
    EXPECT_EQ(File(u"C:\\a").Folder().FullPath(), u"C:\\");
    EXPECT_EQ(File(u"C:/a/b").Name(), u"b");
    EXPECT_EQ(File(u"\\\\server\\share\\a").Folder().FullPath(), u"\\\\server\\share\\");
}

// Who put something there wants to know why it has no effect.
TEST(DirSystem, AFolderThatCannotBeReadIsTraced)
{
    const TestFolder folder;
    folder.Write("file", "content");
    std::string traced;
    kivcore::debug::SetTraceLevel("kivcore", 0);
    const int sink =
        kivcore::debug::AddTraceSink([&](int, const char* channel, std::string_view line) {
            traced += std::string(channel) + ": " + std::string(line) + "\n";
        });
    for (const char* const name : {"file", "missing"}) {
        EXPECT_THAT(Dir(folder.Path(name)).FileNames(), IsEmpty());
    }
    kivcore::debug::RemoveTraceSink(sink);
    kivcore::debug::SetTraceLevel("kivcore", -1);
    EXPECT_EQ(traced, "kivcore: " + folder.Of("file").string() +
                          ": cannot be listed: a part of the path is not a folder\n");
}

TEST(InputFileSystem, NamedPipesAndDevicesAreRefusedAtOnce)
{
    EXPECT_EQ(TextOf<FileError>([] { InputFile{u"\\\\.\\NUL"}; }), "\\\\.\\NUL: is not a file");
    const wchar_t* const name = L"\\\\.\\pipe\\kivcore_files_win_tests";
    HANDLE const pipe =
        CreateNamedPipeW(name, PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE, 1, 64, 64, 0, nullptr);
    ASSERT_NE(pipe, INVALID_HANDLE_VALUE);
    EXPECT_EQ(TextOf<FileError>([] { InputFile{u"\\\\.\\pipe\\kivcore_files_win_tests"}; }),
              "\\\\.\\pipe\\kivcore_files_win_tests: is not a file");
    CloseHandle(pipe);
}

TEST(InputFileSystem, RefusalsOfTheSystem)
{
    const TestFolder folder;
    folder.Write("x", "content");
    // Another program keeps it to itself.
    HANDLE const held =
        CreateFileW(folder.Of("x").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    EXPECT_EQ(TextOf<FileError>([&] { InputFile{folder.Path("x")}; }),
              folder.Of("x").string() + ": cannot be opened: in use by another program");
    EXPECT_TRUE(File(folder.Path("x")).Exists());
    EXPECT_THAT(Dir(folder.Path("")).FileNames(), ElementsAre(u"x"));
    CloseHandle(held);
    // A name that no file can have.
    EXPECT_EQ(TextOf<FileError>([&] { InputFile{folder.Path("a?.jpg")}; }),
              folder.Of("a?.jpg").string() + ": cannot be opened: no file can have that name");
}

TEST(File, AHiddenFileIsEmptiedAndStaysHidden)
{
    const TestFolder folder;
    folder.Write("x", "content");
    const std::filesystem::path path = folder.Of("x");
    ASSERT_TRUE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_HIDDEN));
    File(folder.Path("x")).Create(/*truncate=*/true);
    EXPECT_EQ(folder.Read("x"), "");
    EXPECT_NE(GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_HIDDEN, 0U);
}

// An installation in small: a program, the libraries, and their data, in a folder that no code page
// spells.
class InstallationTest : public ::testing::Test {
protected:
    InstallationTest()
    {
        namespace fs = std::filesystem;
        fs::create_directories(folder_.Of(kBin));
        fs::create_directories(folder_.Of(kLib));
        const fs::path library = KIV_CORE_LIBRARY;
        fs::copy_file(KIV_FILE_WORKER, Program());
        fs::copy_file(library, folder_.Of(kLib) / "kivcore.dll");
        for (const fs::directory_entry& entry : fs::directory_iterator(library.parent_path())) {
            const std::string name = entry.path().filename().string();
            if (name.starts_with("lib") && name.ends_with(".dll")) {
                fs::copy_file(entry.path(), folder_.Of(kLib) / name);
            }
        }
    }

    std::filesystem::path Program() const { return folder_.Of(kBin) / "worker.exe"; }

    std::string Run(const std::vector<std::string>& arguments,
                    std::vector<std::string> environment = {})
    {
        environment.push_back("PATH=" + folder_.Of(kLib).string());
        return RunProgram(Program(), arguments, environment).text;
    }

    /// Puts a resource of type XML into a module.
    void AddResource(const std::filesystem::path& module, const wchar_t* name,
                     const std::string& content)
    {
        HANDLE const update = BeginUpdateResourceW(module.c_str(), FALSE);
        ASSERT_NE(update, nullptr);
        std::string data = content;
        ASSERT_TRUE(
            UpdateResourceW(update, L"XML", name, 0, data.data(), static_cast<DWORD>(data.size())));
        ASSERT_TRUE(EndUpdateResourceW(update, FALSE));
    }

    static constexpr char kBin[] = "b\xC3\xADn \xE3\x81\x82";
    static constexpr char kLib[] =
        "l\xC3\xAD"
        "b \xE3\x81\x84";
    TestFolder folder_;
};

TEST_F(InstallationTest, AppDirIsLookedForInOrder)
{
    // Nothing holds data: the folder that an installation would have, which is the libraries' own.
    EXPECT_EQ(std::string(KIV_LIB_TO_DATA), ".");
    EXPECT_EQ(Run({"appdir"}), folder_.Of(kLib).string());
    std::filesystem::create_directory(folder_.Of(kLib) / "Required");
    EXPECT_EQ(Run({"appdir"}), folder_.Of(kLib).string());
    std::filesystem::create_directory(folder_.Of(kBin) / "Required");
    EXPECT_EQ(Run({"appdir"}), folder_.Of(kBin).string());
    EXPECT_EQ(Run({"appdir"}, {"KIV_APP_DIR=C:\\\xE3\x81\x82\\"}), "C:\\\xE3\x81\x82");
    // Set to nothing is not set.
    EXPECT_EQ(Run({"appdir"}, {"KIV_APP_DIR="}), folder_.Of(kBin).string());
}

TEST_F(InstallationTest, ResourcesBelongToTheirModule)
{
    EXPECT_EQ(Run({"resource", "library", "THEME"}), "none");
    AddResource(Program(), L"THEME", "<program/>");
    AddResource(folder_.Of(kLib) / "kivcore.dll", L"THEME", "<library/>");
    EXPECT_EQ(Run({"resource", "library", "THEME"}), "<library/>");
    EXPECT_EQ(Run({"resource", "program", "THEME"}), "<program/>");
    EXPECT_EQ(Run({"resource", "program", "OTHER"}), "none");
    EXPECT_EQ(Run({"resource", "program", "#1"}), "none");
    EXPECT_EQ(Run({"resource", "program", ""}), "none");

    // A limit for what has run wild.
    AddResource(Program(), L"THEME", std::string(16 * 1024 * 1024 + 1, ' '));
    EXPECT_EQ(Run({"resource", "program", "THEME"}), "none");
}

std::string RoamingFolder()
{
    wchar_t* text = nullptr;
    EXPECT_EQ(SHGetKnownFolderPath(FOLDERID_RoamingAppData, 0, nullptr, &text), S_OK);
    const std::string folder = std::filesystem::path(text).string();
    CoTaskMemFree(text);
    return folder;
}

struct PrefDirCase {
    const char* company;
    const char* client;
    const char* want;
};

constexpr PrefDirCase kPrefDirCases[] = {
    {"Orvan", "Quillet", "\\Orvan\\Quillet"},
    {"Orvan\xC3\xA9", "\xE3\x81\x82", "\\Orvan\xC3\xA9\\\xE3\x81\x82"},
    {"a/b", "..", "\\a_b\\_"},
    {"", "", "\\_\\_"},
};

TEST(DirSystem, PrefDir)
{
    const std::string roaming = RoamingFolder();
    for (const PrefDirCase& row : kPrefDirCases) {
        EXPECT_EQ(
            RunProgram(KIV_FILE_WORKER, {"prefdir", row.company, row.client}, {"KIV_PREF_DIR="})
                .text,
            roaming + row.want);
    }
    EXPECT_EQ(
        RunProgram(KIV_FILE_WORKER, {"prefdir", "Orvan", "Quillet"}, {"KIV_PREF_DIR=C:\\prefs"})
            .text,
        "C:\\prefs");
}

}  // namespace
}  // namespace kivcore::filesupport
