// Replacement against the system: links, permissions, owners, attributes, locks, kills and rights.

#include <kivcore/FileReplacement.h>

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

#include "framework/kivcore/tests/ChildProcess_posix.h"
#include "framework/kivcore/tests/TestFolder.h"

namespace kivcore::filesupport {
namespace {

using kivcore::testing::ChildOutcome;
using kivcore::testing::RunInChild;
using kivcore::testing::RunProgram;
using kivcore::testing::RunUnprivileged;
using kivcore::testing::TestFolder;
using kivcore::testing::TextOf;
using ::testing::ElementsAre;

constexpr std::size_t kMiB = std::size_t{1024} * 1024;
constexpr uid_t kNobody = 65534;

std::function<void(OutputFile&)> Writes(const std::string& content)
{
    return [content](OutputFile& out) { out.Write(content.data(), content.size()); };
}

class FileReplacementSystemTest : public ::testing::Test {
protected:
    FileReplacementSystemTest()
    {
        chmod(folder_.Folder().c_str(), 0755);
        folder_.Write("photo.jpg", "old");
    }
    ~FileReplacementSystemTest() override { SetFileFault(FileStep::kOpen, 0, 0); }

    struct stat StatusOf(const std::string& name) const
    {
        struct stat status {};
        EXPECT_EQ(lstat(folder_.Of(name).c_str(), &status), 0) << name;
        return status;
    }
    unsigned ModeOf(const std::string& name) const { return StatusOf(name).st_mode & 07777U; }

    void Replace(const std::string& name, const std::string& content) const
    {
        ReplaceWholeFile(folder_.Path(name), Writes(content), {});
    }

    /// A writer that is killed with its new file beside photo.jpg; returns that file's name.
    std::string LeaveSomethingBehind() const
    {
        const ChildOutcome outcome = RunInChild([this](int) {
            SetFileFault(FileStep::kFlush, kKillProcess, 1);
            Replace("photo.jpg", "half");
            return 0;
        });
        EXPECT_TRUE(outcome.WasKilled());
        const std::vector<std::string> names = folder_.Names();
        EXPECT_EQ(names.size(), 2U);
        return names.front();
    }

    /// What replacing photo.jpg without rights ends in, where `probe` is refused too.
    std::string ReplaceUnprivileged(const std::function<bool()>& probe) const
    {
        return RunUnprivileged([&]() -> std::string {
            if (probe()) {
                return "the system does not refuse";
            }
            try {
                Replace("photo.jpg", "new");
            } catch (const FileError& error) {
                return error.GetKind() == FileError::Kind::kRefused ? error.what() : "wrong kind";
            }
            return "replaced";
        });
    }

    TestFolder folder_;
};

TEST_F(FileReplacementSystemTest, FollowsSymbolicLinks)
{
    std::filesystem::create_directory(folder_.Of("real"));
    folder_.Write("real/target.jpg", "old");
    std::filesystem::create_symlink("real/target.jpg", folder_.Of("near.jpg"));
    std::filesystem::create_symlink(folder_.Of("near.jpg"), folder_.Of("far.jpg"));
    Replace("far.jpg", "new");
    EXPECT_EQ(folder_.Read("real/target.jpg"), "new");
    EXPECT_TRUE(S_ISLNK(StatusOf("near.jpg").st_mode));
    EXPECT_TRUE(S_ISLNK(StatusOf("far.jpg").st_mode));
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
    EXPECT_TRUE(S_ISLNK(StatusOf("link.jpg").st_mode));
}

TEST_F(FileReplacementSystemTest, LinksInACircleAreRefused)
{
    std::filesystem::create_symlink("b", folder_.Of("a"));
    std::filesystem::create_symlink("a", folder_.Of("b"));
    EXPECT_EQ(TextOf<FileError>([&] { Replace("a", "new"); }),
              folder_.Of("a").string() + ": cannot be opened: too many symbolic links");
}

TEST_F(FileReplacementSystemTest, AHardLinkedFileIsReplacedByANewOne)
{
    std::filesystem::create_hard_link(folder_.Of("photo.jpg"), folder_.Of("other.jpg"));
    Replace("photo.jpg", "new");
    EXPECT_EQ(folder_.Read("photo.jpg"), "new");
    EXPECT_EQ(folder_.Read("other.jpg"), "old");
    EXPECT_EQ(StatusOf("photo.jpg").st_nlink, 1U);
    EXPECT_EQ(StatusOf("other.jpg").st_nlink, 1U);
}

TEST_F(FileReplacementSystemTest, KeepsThePermissions)
{
    const mode_t mask = umask(077);
    for (const unsigned mode : {0600U, 0644U, 0666U, 0200U, 0775U}) {
        ASSERT_EQ(chmod(folder_.Of("photo.jpg").c_str(), mode), 0);
        Replace("photo.jpg", "new");
        EXPECT_EQ(ModeOf("photo.jpg"), mode);
    }
    // A new file's come from the mask.
    Replace("new.jpg", "new");
    EXPECT_EQ(ModeOf("new.jpg"), 0600U);
    umask(mask);
}

TEST_F(FileReplacementSystemTest, NobodyElseReadsTheNewFileMeanwhile)
{
    ASSERT_EQ(chmod(folder_.Of("photo.jpg").c_str(), 0600), 0);
    ReplaceWholeFile(folder_.Path("photo.jpg"),
                     [&](OutputFile&) {
                         for (const std::string& name : folder_.Names()) {
                             EXPECT_EQ(ModeOf(name), 0600U);
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
    EXPECT_EQ(StatusOf("photo.jpg").st_uid, owner);
    EXPECT_EQ(StatusOf("photo.jpg").st_gid, group);
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
    EXPECT_EQ(ModeOf("photo.jpg"), geteuid() == 0 ? 0644U : 0664U);
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
    EXPECT_EQ(ModeOf("photo.jpg"), hasLists ? 0640U : 0644U);
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
    EXPECT_EQ(ModeOf("photo.jpg"), 0644U);
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
    const std::string old(600'000, 'o');
    const std::string fresh(700'000, 'n');
    folder_.Write("source", fresh);
    int kills = 0;
    int leftovers = 0;
    for (const FileStep step :
         {FileStep::kOpen, FileStep::kRead, FileStep::kCreate, FileStep::kWrite, FileStep::kFlush,
          FileStep::kVerify, FileStep::kRename, FileStep::kFlushFolder, FileStep::kRemove}) {
        for (int countdown = 1; countdown < 100; ++countdown) {
            folder_.Write("photo.jpg", old);
            const ChildOutcome outcome = RunInChild([&](int) {
                SetFileFault(step, kKillProcess, countdown);
                ReplaceWholeFile(folder_.Path("photo.jpg"),
                                 [&](OutputFile& out) {
                                     InputFile source(folder_.Path("source"));
                                     out.CopyFrom(source, 0, source.SizeBytes());
                                 },
                                 {});
                return 0;
            });
            const std::string content = folder_.Read("photo.jpg");
            if (!outcome.WasKilled()) {
                ASSERT_TRUE(outcome.Succeeded());
                ASSERT_TRUE(content == fresh);
                break;
            }
            ++kills;
            ASSERT_TRUE(content == old || content == fresh);
            leftovers += folder_.Names().size() > 2 ? 1 : 0;
            // A reader of this file or the next save of any file in the folder clears it.
            if (kills % 2 == 0) {
                RecoverReplacedFile(folder_.Path("photo.jpg"));
            } else {
                Replace("source", fresh);
            }
            ASSERT_THAT(folder_.Names(), ElementsAre("photo.jpg", "source"));
            ASSERT_TRUE(folder_.Read("photo.jpg") == content);
        }
    }
    EXPECT_GE(kills, 14);
    EXPECT_GE(leftovers, 9);
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

TEST_F(FileReplacementSystemTest, AReaderOfAnotherFileLeavesALeftoverAlone)
{
    const std::string name = LeaveSomethingBehind();
    RecoverReplacedFile(folder_.Path("other.jpg"));
    EXPECT_THAT(folder_.Names(), ElementsAre(name, "photo.jpg"));
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
        ReplaceUnprivileged([&] { return open(folder_.Of("photo.jpg").c_str(), O_WRONLY) != -1; }),
        folder_.Of("photo.jpg").string() + ": cannot be written: permission denied");
    EXPECT_EQ(folder_.Read("photo.jpg"), "old");
    EXPECT_THAT(folder_.Names(), ElementsAre("photo.jpg"));
}

TEST_F(FileReplacementSystemTest, AFolderThatWeMayNotWriteIsTold)
{
    ASSERT_EQ(chmod(folder_.Of("photo.jpg").c_str(), 0666), 0);
    ASSERT_EQ(chmod(folder_.Folder().c_str(), 0555), 0);
    EXPECT_EQ(ReplaceUnprivileged(
                  [&] { return open(folder_.Of("new").c_str(), O_WRONLY | O_CREAT, 0600) != -1; }),
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
        ReplaceUnprivileged([&] { return open(folder_.Of("photo.jpg").c_str(), O_WRONLY) != -1; }),
        want);
    EXPECT_EQ(TextOf<FileError>([&] { Replace("photo.jpg", "new"); }), want);
    EXPECT_EQ(folder_.Read("photo.jpg"), "old");
}

struct FaultTextCase {
    const char* value;
    const char* want;  // behind "PATH: "; null where nothing fails
};

constexpr FaultTextCase kFaultTextCases[] = {
    {"write:ENOSPC:1", "cannot be written: no space left on the disk"},
    {"create:EACCES:1", "no new file can be made beside it: permission denied"},
    {"flushfolder:EIO:1", "its folder cannot be flushed to the disk: the disk reports an error"},
    {"verify:5:1", "what was written cannot be read back: the disk reports an error"},
    // The second one does not come.
    {"write:ENOSPC:2", nullptr},
    // What is not understood does nothing.
    {"", nullptr},
    {"write", nullptr},
    {"write:ENOSPC", nullptr},
    {"write:ENOSPC:0", nullptr},
    {"write:ENOSPC:-1", nullptr},
    {"write:NOSUCHERROR:1", nullptr},
    {"nosuchstep:EIO:1", nullptr},
};

TEST_F(FileReplacementSystemTest, FaultsCanBeSetByTheEnvironment)
{
    for (const FaultTextCase& row : kFaultTextCases) {
        SCOPED_TRACE(row.value);
        folder_.Write("photo.jpg", "old");
        const ChildOutcome outcome =
            RunProgram(KIV_FILE_WORKER, {"replace", folder_.Of("photo.jpg").string(), "new"},
                       {std::string("KIV_FILE_FAULT=") + row.value});
        EXPECT_EQ(outcome.text, row.want ? folder_.Of("photo.jpg").string() + ": " + row.want
                                         : std::string("replaced"));
        EXPECT_EQ(folder_.Read("photo.jpg"), row.want ? "old" : "new");
        EXPECT_THAT(folder_.Names(), ElementsAre("photo.jpg"));
    }
    EXPECT_TRUE(RunProgram(KIV_FILE_WORKER, {"replace", folder_.Of("photo.jpg").string(), "killed"},
                           {"KIV_FILE_FAULT=rename:KILL:1"})
                    .WasKilled());
    EXPECT_EQ(folder_.Read("photo.jpg"), "new");
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
