// Saving photos where the system has a word in it: links, permissions, kills.

#include <kivxmp/PhotoFile.h>

#include <gmock/gmock.h>

#include <kivcore/FileStream.h>
#include <kivxmp/XMPAccess.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "framework/kivcore/tests/ChildProcess_posix.h"
#include "framework/kivcore/tests/TestFolder.h"
#include "framework/kivxmp/tests/JpegBuilder.h"

namespace kivxmp {
namespace {

using namespace std::string_literals;
using kivcore::filesupport::FileStep;
using kivcore::filesupport::kKillProcess;
using kivcore::filesupport::SetFileFault;
using kivcore::testing::RunInChild;
using kivcore::testing::RunUnprivileged;
using test::Jpeg;
using test::SmallPacket;
using ::testing::ElementsAre;

constexpr char kTitle[] = "dc:title[@x-default]";

class PhotoFileSystemTest : public ::testing::Test {
protected:
    ~PhotoFileSystemTest() override { SetFileFault(FileStep::kOpen, 0, 0); }

    /// 0 if a new title was saved, else the code of the failure.
    int Retitle(const std::string& name)
    {
        try {
            const std::unique_ptr<__XMPMeta__> meta = OpenPhoto(folder_.Path(name));
            meta->SetText(kTitle, "edited");
            return SavePhoto(*meta) == SaveResult::kSaved ? 0 : 96;
        } catch (const XMP_Error& error) {
            return error.Code();
        }
    }

    std::string Title(const std::string& name)
    {
        return TextOf(OpenPhoto(folder_.Path(name))->Find("dc:title")).value_or("-");
    }

    const std::string photo_ = Jpeg().App0().Exif().Xmp(SmallPacket("t")).Scan().Bytes();
    kivcore::testing::TestFolder folder_;
};

TEST_F(PhotoFileSystemTest, ThroughASymbolicLinkTheTargetIsSaved)
{
    namespace fs = std::filesystem;
    fs::create_directory(folder_.Of("there"));
    folder_.Write("there/p.jpg", photo_);
    fs::create_symlink("there/p.jpg", folder_.Of("link.jpg"));
    EXPECT_EQ(Retitle("link.jpg"), 0);
    EXPECT_TRUE(fs::is_symlink(folder_.Of("link.jpg")));
    EXPECT_EQ(Title("there/p.jpg"), "edited");
    EXPECT_THAT(folder_.Names(), ElementsAre("link.jpg", "there"));
}

TEST_F(PhotoFileSystemTest, ANameThatIsNoPlainText)
{
    folder_.Write("caf\xE9 \xF0\x9F\x93\xB7.jpg", photo_);
    EXPECT_EQ(Retitle("caf\xE9 \xF0\x9F\x93\xB7.jpg"), 0);
    EXPECT_EQ(Title("caf\xE9 \xF0\x9F\x93\xB7.jpg"), "edited");
}

TEST_F(PhotoFileSystemTest, RefusedByTheSystem)
{
    folder_.Write("p.jpg", photo_);
    const std::string path = folder_.Of("p.jpg").string();
    const std::string beside = folder_.Of("beside").string();
    const bool administrator = geteuid() == 0;

    // A file of another user, in a folder that takes new files: only its owner may write it. (An
    // owner who runs this without such a user takes the write permission away from itself.)
    ASSERT_EQ(chmod(folder_.Folder().c_str(), 0777), 0);
    ASSERT_EQ(chmod(path.c_str(), administrator ? 0644 : 0444), 0);
    EXPECT_EQ(RunUnprivileged([&] {
                  // The proof that the system refuses a plain write.
                  if (open(path.c_str(), O_WRONLY) != -1 || errno != EACCES) {
                      return "a plain write is not refused"s;
                  }
                  return std::to_string(Retitle("p.jpg"));
              }),
              std::to_string(kKivXmpFileReadOnly));
    EXPECT_TRUE(folder_.Read("p.jpg") == photo_);

    // A file that may be written, in a folder that takes no new file.
    ASSERT_EQ(chmod(path.c_str(), 0666), 0);
    ASSERT_EQ(chmod(folder_.Folder().c_str(), administrator ? 0755 : 0555), 0);
    EXPECT_EQ(RunUnprivileged([&] {
                  if (open(beside.c_str(), O_WRONLY | O_CREAT, 0600) != -1 || errno != EACCES) {
                      return "a plain new file is not refused"s;
                  }
                  return std::to_string(Retitle("p.jpg"));
              }),
              std::to_string(kKivXmpFileUnwritable));
    EXPECT_TRUE(folder_.Read("p.jpg") == photo_);

    // A file that may not even be read.
    ASSERT_EQ(chmod(path.c_str(), 0200), 0);
    EXPECT_EQ(RunUnprivileged([&] {
                  if (open(path.c_str(), O_RDONLY) != -1 || errno != EACCES) {
                      return "plain reading is not refused"s;
                  }
                  return std::to_string(Retitle("p.jpg"));
              }),
              std::to_string(kKivXmpFileUnreadable));
    ASSERT_EQ(chmod(folder_.Folder().c_str(), 0755), 0);
    ASSERT_EQ(chmod(path.c_str(), 0644), 0);
    EXPECT_TRUE(folder_.Read("p.jpg") == photo_);
    EXPECT_THAT(folder_.Names(), ElementsAre("p.jpg"));
}

TEST_F(PhotoFileSystemTest, PermissionsStay)
{
    folder_.Write("p.jpg", photo_);
    ASSERT_EQ(chmod(folder_.Of("p.jpg").c_str(), 0640), 0);
    EXPECT_EQ(Retitle("p.jpg"), 0);
    struct stat status {};
    ASSERT_EQ(stat(folder_.Of("p.jpg").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
}

// Killed at every step: the old or the new photo is there, and the next reader clears up.
TEST_F(PhotoFileSystemTest, Killed)
{
    constexpr FileStep kSteps[] = {FileStep::kOpen,   FileStep::kRead,        FileStep::kCreate,
                                   FileStep::kWrite,  FileStep::kFlush,       FileStep::kVerify,
                                   FileStep::kRename, FileStep::kFlushFolder, FileStep::kRemove};
    int kills = 0;
    int leftovers = 0;
    for (const FileStep step : kSteps) {
        for (int countdown = 1; countdown < 60; ++countdown) {
            SCOPED_TRACE(testing::Message()
                         << "step " << static_cast<int>(step) << ", occurrence " << countdown);
            folder_.Write("p.jpg", photo_);
            const auto outcome = RunInChild([&](int) {
                SetFileFault(step, kKillProcess, countdown);
                return Retitle("p.jpg");
            });
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

}  // namespace
}  // namespace kivxmp
