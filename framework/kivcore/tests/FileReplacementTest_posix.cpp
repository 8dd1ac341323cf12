// Replacement against the system: links, permissions, owners, attributes, locks, kills and rights.

#include <cerrno>
#include <cstring>
#include <fstream>
#include <optional>
#include <set>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "framework/kivcore/src/ReplacementChecks.h"
#include "framework/kivcore/tests/ChildProcess_posix.h"
#include "framework/kivcore/tests/FileReplacementFixture.h"

namespace kivcore::filesupport {
namespace {

using kivcore::testing::ChildOutcome;
using kivcore::testing::RunProgram;
using kivcore::testing::RunUnprivileged;
using kivcore::testing::TextOf;
using ::testing::ElementsAre;

constexpr std::size_t kMiB = std::size_t{1024} * 1024;
constexpr uid_t kNobody = 65534;

/// How the file at `path` itself stands, a link not followed.
struct stat StatusOf(const std::filesystem::path& path)
{
    struct stat status {};
    EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
    return status;
}

unsigned ModeOf(const std::filesystem::path& path)
{
    return StatusOf(path).st_mode & 07777U;
}

/// What `replace` ends in without rights, where `probe` is refused too.
std::string ReplaceUnprivileged(const std::function<bool()>& probe,
                                const std::function<void()>& replace)
{
    return RunUnprivileged([&]() -> std::string {
        if (probe()) {
            return "the system does not refuse";
        }
        try {
            replace();
        } catch (const FileError& error) {
            return error.GetKind() == FileError::Kind::kRefused ? error.what() : "wrong kind";
        }
        return "replaced";
    });
}

TEST_F(FileReplacementSystemTest, FollowsSymbolicLinks)
{
    std::filesystem::create_directory(folder_.Of("real"));
    folder_.Write("real/target.jpg", "old");
    std::filesystem::create_symlink("real/target.jpg", folder_.Of("near.jpg"));
    std::filesystem::create_symlink(folder_.Of("near.jpg"), folder_.Of("far.jpg"));
    Replace("far.jpg", "new");
    EXPECT_EQ(folder_.Read("real/target.jpg"), "new");
    EXPECT_TRUE(S_ISLNK(StatusOf(folder_.Of("near.jpg")).st_mode));
    EXPECT_TRUE(S_ISLNK(StatusOf(folder_.Of("far.jpg")).st_mode));
}

TEST_F(FileReplacementSystemTest, FollowsALinkBesideALinkedFolder)
{
    // The link climbs out of the folder that it lies in, not of the one by which we came.
    std::filesystem::create_directories(folder_.Of("a/b"));
    std::filesystem::create_symlink("../target.jpg", folder_.Of("a/b/link.jpg"));
    std::filesystem::create_symlink("a/b", folder_.Of("short"));
    folder_.Write("a/target.jpg", "old");
    Replace("short/link.jpg", "new");
    EXPECT_EQ(folder_.Read("a/target.jpg"), "new");
    EXPECT_FALSE(std::filesystem::exists(folder_.Of("target.jpg")));
}

TEST_F(FileReplacementSystemTest, MakesWhatALinkLeadsTo)
{
    std::filesystem::create_symlink("missing.jpg", folder_.Of("link.jpg"));
    Replace("link.jpg", "new");
    EXPECT_EQ(folder_.Read("missing.jpg"), "new");
    EXPECT_TRUE(S_ISLNK(StatusOf(folder_.Of("link.jpg")).st_mode));
}

TEST_F(FileReplacementSystemTest, LinksInACircleAreRefused)
{
    std::filesystem::create_symlink("b", folder_.Of("a"));
    std::filesystem::create_symlink("a", folder_.Of("b"));
    EXPECT_EQ(TextOf<FileError>([&] { Replace("a", "new"); }),
              folder_.Of("a").string() + ": cannot be opened: too many symbolic links");
}

TEST_F(FileReplacementSystemTest, KeepsThePermissions)
{
    const mode_t mask = umask(077);
    for (const unsigned mode : {0600U, 0644U, 0666U, 0200U, 0775U}) {
        ASSERT_EQ(chmod(folder_.Of("photo.jpg").c_str(), mode), 0);
        Replace("photo.jpg", "new");
        EXPECT_EQ(ModeOf(folder_.Of("photo.jpg")), mode);
    }
    // A new file's come from the mask.
    Replace("new.jpg", "new");
    EXPECT_EQ(ModeOf(folder_.Of("new.jpg")), 0600U);
    umask(mask);
}

TEST_F(FileReplacementSystemTest, NobodyElseReadsTheNewFileMeanwhile)
{
    ASSERT_EQ(chmod(folder_.Of("photo.jpg").c_str(), 0600), 0);
    ReplaceWholeFile(folder_.Path("photo.jpg"),
                     [&](OutputFile&) {
                         for (const std::string& name : folder_.Names()) {
                             EXPECT_EQ(ModeOf(folder_.Of(name)), 0600U);
                         }
                     },
                     {});
}

TEST_F(FileReplacementSystemTest, KeepsOwnerAndGroup)
{
    // Only an administrator can give files away; for all others both are their own anyway.
    const uid_t owner = geteuid() == 0 ? 1234 : geteuid();
    const gid_t group = geteuid() == 0 ? 2345 : getegid();
    ASSERT_EQ(chown(folder_.Of("photo.jpg").c_str(), owner, group), 0);
    Replace("photo.jpg", "new");
    EXPECT_EQ(StatusOf(folder_.Of("photo.jpg")).st_uid, owner);
    EXPECT_EQ(StatusOf(folder_.Of("photo.jpg")).st_gid, group);
}

TEST_F(FileReplacementSystemTest, AGroupThatCannotBeKeptGivesNoRightsToAnother)
{
    ASSERT_EQ(chmod(folder_.Of("photo.jpg").c_str(), 0664), 0);
    if (geteuid() == 0) {
        ASSERT_EQ(chown(folder_.Folder().c_str(), kNobody, kNobody), 0);
        ASSERT_EQ(chown(folder_.Of("photo.jpg").c_str(), kNobody, 2345), 0);
    }
    RunUnprivileged([&]() -> std::string {
        Replace("photo.jpg", "new");
        return {};
    });
    EXPECT_EQ(folder_.Read("photo.jpg"), "new");
    EXPECT_EQ(ModeOf(folder_.Of("photo.jpg")), geteuid() == 0 ? 0644U : 0664U);
}

std::vector<std::string> AttributesOf(const std::filesystem::path& path)
{
    char names[4096];
    const ssize_t length = listxattr(path.c_str(), names, sizeof names);
    std::set<std::string> sorted;
    for (ssize_t i = 0; i < length; i += static_cast<ssize_t>(std::strlen(names + i)) + 1) {
        char value[4096];
        const ssize_t size = getxattr(path.c_str(), names + i, value, sizeof value);
        sorted.insert(std::string(names + i) + "=" +
                      std::string(value, static_cast<std::size_t>(std::max<ssize_t>(size, 0))));
    }
    return {sorted.begin(), sorted.end()};
}

TEST_F(FileReplacementSystemTest, KeepsAccessListsAndAttributes)
{
    const std::string path = folder_.Of("photo.jpg").string();
    // An access list as the system keeps it: version 2, then tag, permissions and id of the owner,
    // user 65534, the group, the mask and all others.
    const unsigned char list[] = {2,  0, 0, 0,                      //
                                  1,  0, 6, 0, 255, 255, 255, 255,  //
                                  2,  0, 4, 0, 254, 255, 0,   0,    //
                                  4,  0, 0, 0, 255, 255, 255, 255,  //
                                  16, 0, 4, 0, 255, 255, 255, 255,  //
                                  32, 0, 0, 0, 255, 255, 255, 255};
    const bool hasLists =
        setxattr(path.c_str(), "system.posix_acl_access", list, sizeof list, 0) == 0;
    const bool hasAttributes = setxattr(path.c_str(), "user.tag", "blue", 4, 0) == 0;
    const std::vector<std::string> before = AttributesOf(path);
    EXPECT_EQ(before.size(), std::size_t{hasLists} + std::size_t{hasAttributes});
    Replace("photo.jpg", "new");
    EXPECT_EQ(AttributesOf(path), before);
    EXPECT_EQ(ModeOf(folder_.Of("photo.jpg")), hasLists ? 0640U : 0644U);
}

TEST_F(FileReplacementSystemTest, AFoldersDefaultListDoesNotReachAnExistingFile)
{
    const unsigned char list[] = {2,  0, 0, 0,                      //
                                  1,  0, 7, 0, 255, 255, 255, 255,  //
                                  2,  0, 7, 0, 254, 255, 0,   0,    //
                                  4,  0, 7, 0, 255, 255, 255, 255,  //
                                  16, 0, 7, 0, 255, 255, 255, 255,  //
                                  32, 0, 0, 0, 255, 255, 255, 255};
    const bool hasLists =
        setxattr(folder_.Folder().c_str(), "system.posix_acl_default", list, sizeof list, 0) == 0;
    Replace("photo.jpg", "new");
    EXPECT_THAT(AttributesOf(folder_.Of("photo.jpg")), ElementsAre());
    EXPECT_EQ(ModeOf(folder_.Of("photo.jpg")), 0644U);
    // A new file takes it.
    Replace("new.jpg", "new");
    EXPECT_EQ(AttributesOf(folder_.Of("new.jpg")).size(), std::size_t{hasLists});
}

TEST_F(FileReplacementSystemTest, DamageOnTheWayToTheDiskIsSeen)
{
    const std::string content(kMiB, 'n');
    const auto damage = [&](OutputFile& out) {
        out.Write(content.data(), content.size());
        std::fstream file(folder_.Of(folder_.Names().front()),
                          std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(12345);
        file.put('m');
    };
    const auto cut = [&](OutputFile& out) {
        out.Write(content.data(), content.size());
        std::filesystem::resize_file(folder_.Of(folder_.Names().front()), 512 * 1024);
    };
    for (const std::function<void(OutputFile&)>& write :
         {std::function<void(OutputFile&)>(damage), std::function<void(OutputFile&)>(cut)}) {
        EXPECT_EQ(
            TextOf<FileError>([&] { ReplaceWholeFile(folder_.Path("photo.jpg"), write, {}); }),
            folder_.Of("photo.jpg").string() + ": what was written does not read back the same");
        EXPECT_EQ(folder_.Read("photo.jpg"), "old");
        EXPECT_THAT(folder_.Names(), ElementsAre("photo.jpg"));
    }
}

TEST_F(FileReplacementSystemTest, AKillAtAnyStepLeavesTheOldFileOrTheNewOne)
{
    const Kills kills = KillAtEveryStep([] {});
    EXPECT_GE(kills.all, 14);
    EXPECT_GE(kills.leftovers, 9);
}

TEST_F(FileReplacementSystemTest, OnlyAnUnlockedLeftoverIsRemoved)
{
    const std::string name = LeaveSomethingBehind();
    const int file = open(folder_.Of(name).c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(flock(file, LOCK_EX), 0);
    RecoverReplacedFile(folder_.Path("photo.jpg"));
    EXPECT_THAT(folder_.Names(), ElementsAre(name, "photo.jpg"));
    // The name is taken, so the replacement takes another one.
    Replace("photo.jpg", "new");
    EXPECT_EQ(folder_.Read("photo.jpg"), "new");
    EXPECT_THAT(folder_.Names(), ElementsAre(name, "photo.jpg"));
    close(file);
    RecoverReplacedFile(folder_.Path("photo.jpg"));
    EXPECT_THAT(folder_.Names(), ElementsAre("photo.jpg"));
    EXPECT_EQ(folder_.Read("photo.jpg"), "new");
}

TEST_F(FileReplacementSystemTest, ALinkInPlaceOfALeftoverIsNotFollowed)
{
    const std::string name = LeaveSomethingBehind();
    std::filesystem::remove(folder_.Of(name));
    std::filesystem::create_symlink("photo.jpg", folder_.Of(name));
    Replace("photo.jpg", "new");
    EXPECT_EQ(folder_.Read("photo.jpg"), "new");
    EXPECT_THAT(folder_.Names(), ElementsAre(name, "photo.jpg"));
}

TEST_F(FileReplacementSystemTest, WritersAtOnceLeaveOneOfThemWhole)
{
    constexpr int kWriters = 3;
    constexpr int kRounds = 60;
    constexpr std::size_t kBytes = 300'000;
    Replace("photo.jpg", std::string(kBytes, 'a'));
    std::vector<pid_t> writers;
    for (int writer = 0; writer < kWriters; ++writer) {
        const pid_t child = fork();
        if (child == 0) {
            int failures = 0;
            for (int round = 0; round < kRounds; ++round) {
                try {
                    Replace("photo.jpg", std::string(kBytes, static_cast<char>('a' + writer)));
                } catch (const FileError&) {
                    ++failures;
                }
            }
            _exit(failures);
        }
        writers.push_back(child);
    }
    // Readers, which clear away what they take for leftovers, see one of them, whole, at every
    // moment.
    int reads = 0;
    for (pid_t ended = 0; (ended = waitpid(writers.back(), nullptr, WNOHANG)) == 0; ++reads) {
        RecoverReplacedFile(folder_.Path("photo.jpg"));
        const std::string content = File(folder_.Path("photo.jpg")).ReadAll(kMiB);
        ASSERT_TRUE(content == std::string(kBytes, content.empty() ? '?' : content.front()));
    }
    writers.pop_back();
    EXPECT_GT(reads, 0);
    for (const pid_t writer : writers) {
        int status = -1;
        ASSERT_EQ(waitpid(writer, &status, 0), writer);
        EXPECT_EQ(status, 0);
    }
    EXPECT_THAT(folder_.Names(), ElementsAre("photo.jpg"));
}

TEST_F(FileReplacementSystemTest, AFileThatWeMayNotWriteIsRefusedThoughItCouldBeRenamedOver)
{
    // Its folder is ours, so that the system would let a rename pass.
    if (geteuid() == 0) {
        ASSERT_EQ(chown(folder_.Folder().c_str(), kNobody, kNobody), 0);
    } else {
        ASSERT_EQ(chmod(folder_.Of("photo.jpg").c_str(), 0464), 0);
    }
    EXPECT_EQ(
        ReplaceUnprivileged([&] { return open(folder_.Of("photo.jpg").c_str(), O_WRONLY) != -1; },
                            [&] { Replace("photo.jpg", "new"); }),
        folder_.Of("photo.jpg").string() + ": cannot be written: permission denied");
    EXPECT_EQ(folder_.Read("photo.jpg"), "old");
    EXPECT_THAT(folder_.Names(), ElementsAre("photo.jpg"));
}

TEST_F(FileReplacementSystemTest, AFolderThatWeMayNotWriteIsTold)
{
    ASSERT_EQ(chmod(folder_.Of("photo.jpg").c_str(), 0666), 0);
    ASSERT_EQ(chmod(folder_.Folder().c_str(), 0555), 0);
    EXPECT_EQ(ReplaceUnprivileged(
                  [&] { return open(folder_.Of("new").c_str(), O_WRONLY | O_CREAT, 0600) != -1; },
                  [&] { Replace("photo.jpg", "new"); }),
              folder_.Of("photo.jpg").string() +
                  ": no new file can be made beside it: permission denied");
    ASSERT_EQ(chmod(folder_.Folder().c_str(), 0755), 0);
    EXPECT_EQ(folder_.Read("photo.jpg"), "old");
}

TEST_F(FileReplacementSystemTest, AReadOnlyFileIsRefusedWithAndWithoutRights)
{
    ASSERT_EQ(chmod(folder_.Of("photo.jpg").c_str(), 0444), 0);
    ASSERT_EQ(chmod(folder_.Folder().c_str(), 0777), 0);
    const std::string want = folder_.Of("photo.jpg").string() + ": is read-only";
    EXPECT_EQ(
        ReplaceUnprivileged([&] { return open(folder_.Of("photo.jpg").c_str(), O_WRONLY) != -1; },
                            [&] { Replace("photo.jpg", "new"); }),
        want);
    EXPECT_EQ(TextOf<FileError>([&] { Replace("photo.jpg", "new"); }), want);
    EXPECT_EQ(folder_.Read("photo.jpg"), "old");
}

TEST_F(FileReplacementSystemTest, FaultsByTheSystemsOwnNumbers)
{
    ExpectFault({"verify:5:1", "what was written cannot be read back: the disk reports an error"});
}

// Elsewhere the new file is read once more before the old one is given up.
TEST_F(FileReplacementSystemTest, NobodyReadsTheCopyWhereACallerCompares)
{
    ReplaceOptions options;
    options.compare = [](InputFile&) {};
    SetFileFault(FileStep::kVerify, EIO, 1);
    ReplaceWholeFile(
        folder_.Path("photo.jpg"), [](OutputFile& out) { out.Write("compared", 8); }, options);
    EXPECT_EQ(folder_.Read("photo.jpg"), "compared");
    SetReplacementChecks(false);
    Replace("photo.jpg", "unchecked");
    SetReplacementChecks(true);
    EXPECT_EQ(folder_.Read("photo.jpg"), "unchecked");
    // The fault still waits for whoever reads.
    EXPECT_THROW(Replace("photo.jpg", "checked"), FileError);
    SetFileFault(FileStep::kOpen, 0, 0);
}

TEST_F(FileReplacementSystemTest, AKillSetByTheEnvironment)
{
    EXPECT_TRUE(RunWorker({"replace", folder_.Of("photo.jpg").string(), "killed"}, "rename:KILL:1")
                    .WasKilled());
    EXPECT_EQ(folder_.Read("photo.jpg"), "old");
}

TEST_F(FileReplacementSystemTest, MemoryDoesNotGrowWithTheFile)
{
    const auto peakFor = [this](std::size_t bytes) {
        folder_.Write("source", std::string());
        std::filesystem::resize_file(folder_.Of("source"), bytes);
        const ChildOutcome outcome = RunProgram(
            KIV_FILE_WORKER,
            {"copy", folder_.Of("source").string(), folder_.Of("photo.jpg").string()}, {});
        EXPECT_EQ(outcome.text, "copied");
        EXPECT_EQ(std::filesystem::file_size(folder_.Of("photo.jpg")), bytes);
        return outcome.peakKiB;
    };
    const long small = peakFor(kMiB);
    EXPECT_LT(peakFor(64 * kMiB) - small, 1024);
}

}  // namespace
}  // namespace kivcore::filesupport
