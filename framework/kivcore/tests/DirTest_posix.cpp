// What of folders and files depends on the system: names of any bytes, links, the environment, and
// where programs and libraries lie.

#include <kivcore/Dir.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include <kivcore/FileStream.h>
#include <kivcore/Resource.h>
#include <kivcore/Trace.h>

#include "framework/kivcore/tests/ChildProcess_posix.h"
#include "framework/kivcore/tests/TestFolder.h"

namespace kivcore::filesupport {
namespace {

using kivcore::testing::ChildOutcome;
using kivcore::testing::RunProgram;
using kivcore::testing::RunUnprivileged;
using kivcore::testing::TestFolder;
using kivcore::testing::TextOf;
using ::testing::ElementsAre;

struct PathCase {
    std::string bytes;
    UString units;
};

const PathCase kPathCases[] = {
    {"/plain", u"/plain"},
    {"\xC3\xA9\xF0\x9F\x98\x80", u"\u00e9\U0001F600"},
    // Bytes that are no UTF-8: alone, cut off, overlong, a surrogate's, beyond the last character.
    {"a\xFF"
     "b",
     {u'a', 0xDCFF, u'b'}},
    {"\xC3", {0xDCC3}},
    {"\xE3\x81", {0xDCE3, 0xDC81}},
    {"\xC0\xAF", {0xDCC0, 0xDCAF}},
    {"\xED\xB2\x80", {0xDCED, 0xDCB2, 0xDC80}},
    {"\xF4\x90\x80\x80", {0xDCF4, 0xDC90, 0xDC80, 0xDC80}},
    {"\x80\xC3\xA9\x80", {0xDC80, 0x00E9, 0xDC80}},
};

TEST(PathBorder, WhatIsNoTextSurvivesTheWay)
{
    for (const PathCase& row : kPathCases) {
        EXPECT_EQ(PathFromUTF8(row.bytes), row.units) << row.bytes;
        EXPECT_EQ(PathToUTF8(row.units), row.bytes);
    }
    for (int first = 0x80; first <= 0xFF; ++first) {
        for (int second = 0x80; second <= 0xFF; ++second) {
            for (const char* tail : {"", "\x80", "\x80\x80", "x"}) {
                const std::string bytes =
                    std::string{static_cast<char>(first), static_cast<char>(second)} + tail;
                ASSERT_EQ(PathToUTF8(PathFromUTF8(bytes)), bytes);
            }
        }
    }
}

TEST(PathBorder, UnitsThatNoNameHas)
{
    const UString high = {u'a', 0xD800, u'b'};
    EXPECT_EQ(PathToUTF8(high),
              "a\xEF\xBF\xBD"
              "b");
    const UString low = {0xDC7F, 0xDD00};
    EXPECT_EQ(PathToUTF8(low), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(PathBorder, FilesOfAnyNameAreFoundAndOpened)
{
    const TestFolder folder;
    folder.Write("bad\xFF.jpg", "content");
    const std::vector<UString> names = Dir(folder.Path("")).FileNames();
    ASSERT_EQ(names.size(), 1U);
    const File file(Dir(folder.Path("")), names[0]);
    EXPECT_TRUE(file.Exists());
    EXPECT_EQ(file.ReadAll(100), "content");
    file.Remove();
    // A message is UTF-8 whatever the name.
    EXPECT_EQ(
        TextOf<FileError>([&] { file.ReadAll(100); }),
        folder.Of("bad\xEF\xBF\xBD.jpg").string() + ": cannot be opened: no such file or folder");
}

TEST(DirSystem, RelativePathsAndSeparators)
{
    char current[4096];
    ASSERT_NE(getcwd(current, sizeof current), nullptr);
    EXPECT_EQ(PathToUTF8(Dir(u"sub/").FullPath()), std::string(current) + "/sub");
    EXPECT_EQ(Dir(u"/").FullPath(), u"/");
    EXPECT_EQ((Dir(u"/") / u"a").FullPath(), u"/a");
    EXPECT_EQ(Dir(u"/a//").FullPath(), u"/a");
    EXPECT_EQ(File(u"/a").Folder().FullPath(), u"/");
}

TEST(DirSystem, ListsWhatLinksLeadTo)
{
    const TestFolder folder;
    folder.Write("file", "");
    std::filesystem::create_directory(folder.Of("folder"));
    std::filesystem::create_symlink("file", folder.Of("to file"));
    std::filesystem::create_symlink("folder", folder.Of("to folder"));
    std::filesystem::create_symlink("missing", folder.Of("to nothing"));
    ASSERT_EQ(mkfifo(folder.Of("pipe").c_str(), 0600), 0);
    EXPECT_THAT(Dir(folder.Path("")).FileNames(), ElementsAre(u"file", u"to file"));
    EXPECT_THAT(Dir(folder.Path("")).FolderNames(), ElementsAre(u"folder", u"to folder"));
}

// Who put something there wants to know why it has no effect.
TEST(DirSystem, AFolderThatCannotBeReadIsTraced)
{
    const TestFolder folder;
    std::filesystem::create_directory(folder.Of("sub"));
    folder.Write("sub/x", "content");
    folder.Write("file", "content");
    ASSERT_EQ(chmod(folder.Of("sub").c_str(), 0), 0);
    const std::string text = RunUnprivileged([&]() -> std::string {
        if (open(folder.Of("sub").c_str(), O_RDONLY) != -1) {
            return "the system does not refuse";
        }
        std::string traced;
        kivcore::debug::SetTraceLevel("kivcore", 0);
        kivcore::debug::AddTraceSink([&](int, const char* channel, std::string_view line) {
            traced += std::string(channel) + ": " + std::string(line) + "\n";
        });
        for (const char* const name : {"sub", "file", "missing"}) {
            if (!Dir(folder.Path(name)).FileNames().empty()) {
                return "there are names";
            }
        }
        return traced;
    });
    ASSERT_EQ(chmod(folder.Of("sub").c_str(), 0700), 0);
    EXPECT_EQ(text, "kivcore: " + folder.Of("sub").string() +
                        ": cannot be listed: permission denied\n" +
                        "kivcore: " + folder.Of("file").string() +
                        ": cannot be listed: a part of the path is not a folder\n");
}

TEST(InputFileSystem, NamedPipesAndDevicesAreRefusedAtOnce)
{
    const TestFolder folder;
    ASSERT_EQ(mkfifo(folder.Of("pipe").c_str(), 0600), 0);
    EXPECT_EQ(TextOf<FileError>([&] { InputFile{folder.Path("pipe")}; }),
              folder.Of("pipe").string() + ": is not a file");
    EXPECT_EQ(TextOf<FileError>([] { InputFile{u"/dev/zero"}; }), "/dev/zero: is not a file");
}

TEST(InputFileSystem, RefusalsOfTheSystem)
{
    const TestFolder folder;
    folder.Write("x", "content");
    ASSERT_EQ(chmod(folder.Of("x").c_str(), 0), 0);
    const std::string text = RunUnprivileged([&]() -> std::string {
        if (open(folder.Of("x").c_str(), O_RDONLY) != -1) {
            return "the system does not refuse";
        }
        try {
            InputFile{folder.Path("x")};
        } catch (const FileError& error) {
            return error.GetKind() == FileError::Kind::kRefused ? error.what() : "wrong kind";
        }
        return "opened";
    });
    EXPECT_EQ(text, folder.Of("x").string() + ": cannot be opened: permission denied");
}

// An installation in small: a program, the library, and their data.
class InstallationTest : public ::testing::Test {
protected:
    InstallationTest()
    {
        namespace fs = std::filesystem;
        fs::create_directories(folder_.Of("bin"));
        fs::create_directories(folder_.Of("lib"));
        fs::copy_file(KIV_FILE_WORKER, folder_.Of("bin/worker"));
        fs::copy_file(KIV_CORE_LIBRARY, folder_.Of("lib/libkivcore.so.0.1.0"));
        fs::create_symlink("libkivcore.so.0.1.0", folder_.Of("lib/libkivcore.so.0"));
    }

    std::string Run(const std::vector<std::string>& arguments,
                    std::vector<std::string> environment = {})
    {
        environment.push_back("LD_LIBRARY_PATH=" + folder_.Of("lib").string());
        return RunProgram(folder_.Of("bin/worker").string(), arguments, environment).text;
    }

    TestFolder folder_;
};

TEST_F(InstallationTest, AppDirIsLookedForInOrder)
{
    // Nothing holds data: the folder that an installation would have.
    EXPECT_EQ(Run({"appdir"}), (folder_.Of("lib") / KIV_LIB_TO_DATA).lexically_normal().string());
    std::filesystem::create_directory(folder_.Of("lib/Required"));
    EXPECT_EQ(Run({"appdir"}), folder_.Of("lib").string());
    std::filesystem::create_directory(folder_.Of("bin/Required"));
    EXPECT_EQ(Run({"appdir"}), folder_.Of("bin").string());
    EXPECT_EQ(Run({"appdir"}, {"KIV_APP_DIR=/anywhere/"}), "/anywhere");
    // Set to nothing is not set.
    EXPECT_EQ(Run({"appdir"}, {"KIV_APP_DIR="}), folder_.Of("bin").string());
}

TEST_F(InstallationTest, ResourcesBelongToTheirModule)
{
    EXPECT_EQ(Run({"resource", "library", "THEME"}), "none");
    std::filesystem::create_directory(folder_.Of("lib/libkivcore.res"));
    std::filesystem::create_directory(folder_.Of("bin/worker.res"));
    folder_.Write("lib/libkivcore.res/THEME.xml", "<library/>");
    folder_.Write("bin/worker.res/THEME.xml", "<program/>");
    EXPECT_EQ(Run({"resource", "library", "THEME"}), "<library/>");
    EXPECT_EQ(Run({"resource", "program", "THEME"}), "<program/>");
    EXPECT_EQ(Run({"resource", "program", "OTHER"}), "none");
    EXPECT_EQ(Run({"resource", "program", "../worker.res/THEME"}), "none");

    // A limit for what has run wild.
    std::filesystem::resize_file(folder_.Of("bin/worker.res/THEME.xml"), 16 * 1024 * 1024 + 1);
    EXPECT_EQ(Run({"resource", "program", "THEME"}), "none");
}

TEST_F(InstallationTest, ResourcesAreFoundThroughALinkToTheLibrary)
{
    std::filesystem::create_directory(folder_.Of("real"));
    std::filesystem::rename(folder_.Of("lib/libkivcore.so.0.1.0"),
                            folder_.Of("real/libkivcore.so.0.1.0"));
    std::filesystem::remove(folder_.Of("lib/libkivcore.so.0"));
    std::filesystem::create_symlink("../real/libkivcore.so.0.1.0",
                                    folder_.Of("lib/libkivcore.so.0"));
    std::filesystem::create_directory(folder_.Of("real/libkivcore.res"));
    folder_.Write("real/libkivcore.res/THEME.xml", "<library/>");
    EXPECT_EQ(Run({"resource", "library", "THEME"}), "<library/>");
}

struct PrefDirCase {
    std::vector<std::string> environment;
    const char* company;
    const char* client;
    const char* want;
};

const PrefDirCase kPrefDirCases[] = {
    {{"HOME=/home/x"}, "Orvan", "Quillet", "/home/x/.config/Orvan/Quillet"},
    {{"HOME=/home/x", "XDG_CONFIG_HOME=/cfg/"}, "Orvan", "Quillet", "/cfg/Orvan/Quillet"},
    // A relative one does not count.
    {{"HOME=/home/x", "XDG_CONFIG_HOME=cfg"}, "Orvan", "Quillet", "/home/x/.config/Orvan/Quillet"},
    {{"HOME=/home/x"}, "a/b", "..", "/home/x/.config/a_b/_"},
    {{"HOME=/home/x"}, "", "", "/home/x/.config/_/_"},
    {{"HOME=/home/x", "KIV_PREF_DIR=/prefs"}, "Orvan", "Quillet", "/prefs"},
};

TEST(DirSystem, PrefDir)
{
    for (const PrefDirCase& row : kPrefDirCases) {
        const ChildOutcome outcome =
            RunProgram(KIV_FILE_WORKER, {"prefdir", row.company, row.client}, row.environment);
        EXPECT_EQ(outcome.text, row.want);
    }
}

}  // namespace
}  // namespace kivcore::filesupport
