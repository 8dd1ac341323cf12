// Saving photos where the system has a word in it: names, attributes, files that other programs
// hold open, kills.

#include <windows.h>

#include <gmock/gmock.h>

#include <string>

#include "framework/kivxmp/tests/PhotoFileFixture.h"

namespace kivxmp {
namespace {

using kivcore::filesupport::FileStep;
using kivcore::filesupport::SetFileFault;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

// In a name of that many units the whole path passes the system's old limit.
constexpr std::size_t kLongNameUnits = 250;

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

TEST_F(PhotoFileSystemTest, ASidecarThatMayNotBeRead)
{
    folder_.Write("p.jpg", photo_);
    folder_.Write("p.gif", "GIF89a");
    HANDLE held[2] = {};
    int count = 0;
    for (const char* const name : {"p.jpg.xmp", "p.gif.xmp"}) {
        folder_.Write(name, test::SmallPacket("beside"));
        held[count] = CreateFileW(folder_.Of(name).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                  0, nullptr);
        ASSERT_NE(held[count++], INVALID_HANDLE_VALUE);
    }
    const PhotoInfo info = GetPhotoInfo(*OpenPhoto(folder_.Path("p.jpg")));
    EXPECT_TRUE(info.canSave);
    EXPECT_THAT(info.note, ::testing::StartsWith("the sidecar "));
    EXPECT_THAT(info.note, HasSubstr("in use by another program"));
    const PhotoInfo gif = GetPhotoInfo(*OpenPhoto(folder_.Path("p.gif")));
    EXPECT_FALSE(gif.canSave);
    EXPECT_THAT(gif.reason, HasSubstr("in use by another program"));
    EXPECT_EQ(Retitle("p.gif"), kKivXmpFileUnsupported);
    CloseHandle(held[0]);
    CloseHandle(held[1]);
    EXPECT_EQ(Title("p.gif"), "beside");
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

// Between the two steps of the system's call there is no file under the photo's name.
TEST_F(PhotoFileSystemTest, AReaderFindsAPhotoThatWasPutAside)
{
    folder_.Write("p.jpg", photo_);
    ASSERT_TRUE(RetitleElsewhere("p.jpg", "rename:KILL:1").WasKilled());
    std::filesystem::remove(folder_.Of("p.jpg"));
    EXPECT_EQ(Title("p.jpg"), "t");
    EXPECT_TRUE(folder_.Read("p.jpg") == photo_);
    EXPECT_THAT(folder_.Names(), ElementsAre("p.jpg"));
}

}  // namespace
}  // namespace kivxmp
