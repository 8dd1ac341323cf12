// Saving photos where the system has a word in it: links, permissions, kills.

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <string>

#include "framework/kivxmp/tests/PhotoFileFixture.h"

namespace {

/// Called with the file that was just flushed.
std::function<void(int file)> behindFlush;

}  // namespace

// A program's own function comes before the C library's, in our libraries too.
extern "C" [[gnu::visibility("default")]] int fsync(int file)
{
    const auto result = static_cast<int>(syscall(SYS_fsync, file));
    if (behindFlush) {
        behindFlush(file);
    }
    return result;
}

namespace kivxmp {
namespace {

using namespace std::string_literals;
using kivcore::testing::RunUnprivileged;
using ::testing::ElementsAre;

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

// Reading a pipe would wait for a writer.
TEST_F(PhotoFileSystemTest, APipeNamedLikeASidecar)
{
    folder_.Write("p.jpg", photo_);
    folder_.Write("p.gif", "GIF89a");
    for (const char* const name : {"p.jpg.xmp", "p.gif.xmp"}) {
        ASSERT_EQ(mkfifo(folder_.Of(name).c_str(), 0600), 0);
    }
    EXPECT_EQ(Retitle("p.jpg"), 0);
    EXPECT_EQ(Retitle("p.gif"), kKivXmpFileUnwritable) << message_;
    EXPECT_TRUE(std::filesystem::is_fifo(folder_.Of("p.gif.xmp")));
    EXPECT_THAT(folder_.Names(), ElementsAre("p.gif", "p.gif.xmp", "p.jpg", "p.jpg.xmp"));
}

TEST_F(PhotoFileSystemTest, ASidecarThatMayNotBeRead)
{
    folder_.Write("p.jpg", photo_);
    folder_.Write("p.gif", "GIF89a");
    ASSERT_EQ(chmod(folder_.Folder().c_str(), 0777), 0);
    for (const char* const name : {"p.jpg", "p.gif"}) {
        ASSERT_EQ(chmod(folder_.Of(name).c_str(), 0666), 0);
        const std::string sidecar = std::string(name) + ".xmp";
        folder_.Write(sidecar, test::SmallPacket("beside"));
        ASSERT_EQ(chmod(folder_.Of(sidecar).c_str(), 0), 0);
    }
    EXPECT_EQ(
        RunUnprivileged([&] {
            const std::string sidecar = folder_.Of("p.jpg.xmp").string();
            if (open(sidecar.c_str(), O_RDONLY) != -1 || errno != EACCES) {
                return "plain reading is not refused"s;
            }
            const PhotoInfo info = GetPhotoInfo(*OpenPhoto(folder_.Path("p.jpg")));
            const PhotoInfo gif = GetPhotoInfo(*OpenPhoto(folder_.Path("p.gif")));
            return std::to_string(info.canSave) + std::to_string(gif.canSave) + info.note + "|" +
                   gif.reason;
        }),
        "10the sidecar " + folder_.Of("p.jpg.xmp").string() +
            " cannot be read: cannot be opened: permission denied|its sidecar cannot be read, "
            "and stays as it is: cannot be opened: permission denied");
    EXPECT_EQ(RunUnprivileged([&] { return std::to_string(Retitle("p.gif")); }),
              std::to_string(kKivXmpFileUnsupported));
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

TEST_F(PhotoFileSystemTest, DamageOnTheWayToTheDiskIsSeen)
{
    const std::size_t packet = photo_.find("<x:xmpmeta");
    const std::string tail(300'000, 'i');
    const std::string photo = photo_ + tail;
    // A number that is less than nothing cuts the file there.
    const auto end = static_cast<off_t>(photo.size());
    for (const off_t place :
         {off_t{3}, static_cast<off_t>(packet), static_cast<off_t>(photo_.size()),
          end - static_cast<off_t>(tail.size()) / 2, -end / 2}) {
        SCOPED_TRACE(place);
        folder_.Write("p.jpg", photo);
        int flushes = 0;
        behindFlush = [&](int file) {
            ++flushes;
            EXPECT_EQ(place < 0 ? ftruncate(file, -place) : pwrite(file, "\xA5", 1, place) - 1, 0);
        };
        EXPECT_NE(Retitle("p.jpg"), 0);
        behindFlush = nullptr;
        EXPECT_EQ(flushes, 1);
        EXPECT_TRUE(folder_.Read("p.jpg") == photo);
        EXPECT_THAT(folder_.Names(), ElementsAre("p.jpg"));
    }
}

}  // namespace
}  // namespace kivxmp
