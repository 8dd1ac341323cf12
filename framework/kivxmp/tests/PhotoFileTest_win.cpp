// Saving photos where the system has a word in it: names, attributes, files that other programs
// hold open, kills.

#include <kivxmp/PhotoFile.h>

#include <windows.h>

#include <gmock/gmock.h>

#include <kivcore/FileStream.h>
#include <kivxmp/XMPAccess.h>

#include <string>

#include "framework/kivcore/tests/ChildProcess_win.h"
#include "framework/kivcore/tests/TestFolder.h"
#include "framework/kivxmp/tests/JpegBuilder.h"

namespace kivxmp {
namespace {

using namespace std::string_literals;
using kivcore::filesupport::FileStep;
using kivcore::filesupport::SetFileFault;
using kivcore::testing::RunProgram;
using test::Jpeg;
using test::SmallPacket;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr char kTitle[] = "dc:title[@x-default]";

// In a name of that many units the whole path passes the system's old limit.
constexpr std::size_t kLongNameUnits = 250;

class PhotoFileSystemTest : public ::testing::Test {
protected:
    ~PhotoFileSystemTest() override { SetFileFault(FileStep::kOpen, 0, 0); }

    /// 0 if a new title was saved, else the code of the failure; its text is message_.
    int Retitle(const std::string& name)
    {
        try {
            const std::unique_ptr<__XMPMeta__> meta = OpenPhoto(folder_.Path(name));
            meta->SetText(kTitle, "edited");
            return SavePhoto(*meta) == SaveResult::kSaved ? 0 : 96;
        } catch (const XMP_Error& error) {
            message_ = error.Text();
            return error.Code();
        }
    }

    std::string Title(const std::string& name)
    {
        return TextOf(OpenPhoto(folder_.Path(name))->Find("dc:title")).value_or("-");
    }

    const std::string photo_ = Jpeg().App0().Exif().Xmp(SmallPacket("t")).Scan().Bytes();
    kivcore::testing::TestFolder folder_;
    std::string message_;
};

TEST_F(PhotoFileSystemTest, ANameThatIsNoPlainText)
{
    const std::string names[] = {
        "caf\xC3\xA9 \xF0\x9F\x93\xB7.jpg",
        "\xE5\x86\x99\xE7\x9C\x9F/\xE7\x8C\xAB e\xCC\x81t\xC3\xA9.jpg",
        std::string(kLongNameUnits - 4, 'p') + ".jpg",
    };
    std::filesystem::create_directory(folder_.Of("\xE5\x86\x99\xE7\x9C\x9F"));
    for (const std::string& name : names) {
        SCOPED_TRACE(name);
        folder_.Write(name, photo_);
        EXPECT_EQ(Retitle(name), 0) << message_;
        EXPECT_EQ(Title(name), "edited");
    }
    EXPECT_EQ(folder_.Names().size(), 3U);
}

TEST_F(PhotoFileSystemTest, RefusedByTheSystem)
{
    folder_.Write("p.jpg", photo_);
    const std::filesystem::path path = folder_.Of("p.jpg");

    // Another program has it open, and lets others only read.
    HANDLE held = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                              0, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    EXPECT_EQ(Retitle("p.jpg"), kKivXmpFileUnwritable);
    EXPECT_THAT(message_, HasSubstr("in use by another program"));
    EXPECT_TRUE(folder_.Read("p.jpg") == photo_);
    CloseHandle(held);

    // It keeps it to itself.
    held = CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    EXPECT_EQ(Retitle("p.jpg"), kKivXmpFileUnreadable);
    EXPECT_THAT(message_, HasSubstr("in use by another program"));
    CloseHandle(held);

    ASSERT_TRUE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(Retitle("p.jpg"), kKivXmpFileReadOnly);
    EXPECT_FALSE(GetPhotoInfo(*OpenPhoto(folder_.Path("p.jpg"))).canSave);
    ASSERT_TRUE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL));
    EXPECT_TRUE(folder_.Read("p.jpg") == photo_);
    EXPECT_THAT(folder_.Names(), ElementsAre("p.jpg"));
    EXPECT_EQ(Retitle("p.jpg"), 0);
}

TEST_F(PhotoFileSystemTest, TheSystemsOwnErrorsOfReplacing)
{
    folder_.Write("p.jpg", photo_);
    for (const int error : {1175, 1176, 1177}) {
        SetFileFault(FileStep::kRename, error, 1);
        EXPECT_EQ(Retitle("p.jpg"), kKivXmpFileUnwritable);
        EXPECT_THAT(message_, HasSubstr("the new file cannot take its place"));
        EXPECT_TRUE(folder_.Read("p.jpg") == photo_);
        EXPECT_THAT(folder_.Names(), ElementsAre("p.jpg"));
    }
}

TEST_F(PhotoFileSystemTest, PermissionsStay)
{
    folder_.Write("p.jpg", photo_);
    const std::filesystem::path path = folder_.Of("p.jpg");
    ASSERT_TRUE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_HIDDEN));
    EXPECT_EQ(Retitle("p.jpg"), 0);
    EXPECT_NE(GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_HIDDEN, 0U);
}

// Killed at every step: the old or the new photo is there, and the next reader clears up.
TEST_F(PhotoFileSystemTest, Killed)
{
    int kills = 0;
    int leftovers = 0;
    for (const char* const step : {"open", "read", "create", "write", "flush", "verify", "rename",
                                   "flushfolder", "remove"}) {
        for (int countdown = 1; countdown < 60; ++countdown) {
            SCOPED_TRACE(step + " "s + std::to_string(countdown));
            folder_.Write("p.jpg", photo_);
            const auto outcome = RunProgram(
                KIV_PHOTO_EDITOR, {folder_.Of("p.jpg").string(), std::string(kTitle) + "=edited"},
                {"KIV_FILE_FAULT="s + step + ":KILL:" + std::to_string(countdown)});
            if (!outcome.WasKilled()) {
                EXPECT_TRUE(outcome.Succeeded());
                break;
            }
            ++kills;
            leftovers += folder_.Names().size() > 1 ? 1 : 0;
            const std::string title = Title("p.jpg");
            EXPECT_TRUE(title == "edited" || folder_.Read("p.jpg") == photo_);
            EXPECT_THAT(folder_.Names(), ElementsAre("p.jpg"));
        }
    }
    EXPECT_GT(kills, 15);
    EXPECT_GT(leftovers, 5);
}

// Between the two steps of the system's call there is no file under the photo's name.
TEST_F(PhotoFileSystemTest, AReaderFindsAPhotoThatWasPutAside)
{
    folder_.Write("p.jpg", photo_);
    ASSERT_TRUE(RunProgram(KIV_PHOTO_EDITOR,
                           {folder_.Of("p.jpg").string(), std::string(kTitle) + "=edited"},
                           {"KIV_FILE_FAULT=rename:KILL:1"})
                    .WasKilled());
    std::filesystem::remove(folder_.Of("p.jpg"));
    EXPECT_EQ(Title("p.jpg"), "t");
    EXPECT_TRUE(folder_.Read("p.jpg") == photo_);
    EXPECT_THAT(folder_.Names(), ElementsAre("p.jpg"));
}

}  // namespace
}  // namespace kivxmp
