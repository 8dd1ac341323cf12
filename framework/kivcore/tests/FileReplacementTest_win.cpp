// Replacement against the system: attributes, access lists, locks, kills, and files that other
// programs hold open.

#include <optional>
#include <set>

#include <windows.h>

#include <psapi.h>
#include <sddl.h>

#include <gmock/gmock.h>

#include <kivcore/Dir.h>
#include <kivcore/Trace.h>

#include "framework/kivcore/tests/ChildProcess_win.h"
#include "framework/kivcore/tests/FileReplacementFixture.h"

namespace kivcore::filesupport {
namespace {

using kivcore::testing::Child;
using kivcore::testing::ChildOutcome;
using kivcore::testing::TextOf;
using ::testing::ElementsAre;

constexpr std::size_t kMiB = std::size_t{1024} * 1024;

// The names that a writer of photo.jpg uses, spelled out.
const std::string kNew = ".kivsave-d507540b661a6876-0";
const std::string kBackup = kNew + ".photo.jpg";
const std::string kLock = kNew + "-lock";

/// A file as another program has it open.
class OpenElsewhere {
public:
    OpenElsewhere(const std::filesystem::path& path, DWORD access, DWORD share)
        : file_(CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING, 0, nullptr))
    {
        EXPECT_NE(file_, INVALID_HANDLE_VALUE) << path << ": " << GetLastError();
    }
    OpenElsewhere(const OpenElsewhere&) = delete;
    OpenElsewhere& operator=(const OpenElsewhere&) = delete;
    ~OpenElsewhere() { CloseHandle(file_); }

    std::string Read() const
    {
        char buffer[64];
        DWORD count = 0;
        EXPECT_TRUE(ReadFile(file_, buffer, sizeof buffer, &count, nullptr));
        return std::string(buffer, count);
    }

private:
    HANDLE file_;
};

/// Who may do what with the file at `path`, as the system spells it.
std::wstring AccessOf(const std::filesystem::path& path)
{
    std::vector<unsigned char> descriptor(4096);
    DWORD bytes = 0;
    wchar_t* text = nullptr;
    EXPECT_TRUE(GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, descriptor.data(),
                                 static_cast<DWORD>(descriptor.size()), &bytes));
    EXPECT_TRUE(ConvertSecurityDescriptorToStringSecurityDescriptorW(
        descriptor.data(), SDDL_REVISION_1, DACL_SECURITY_INFORMATION, &text, nullptr));
    const std::wstring access = text;
    LocalFree(text);
    return access;
}

void SetAccess(const std::filesystem::path& path, const wchar_t* access)
{
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(access, SDDL_REVISION_1,
                                                                     &descriptor, nullptr));
    EXPECT_TRUE(SetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, descriptor));
    LocalFree(descriptor);
}

TEST_F(FileReplacementSystemTest, KeepsThePermissions)
{
    // The owner all, everybody else nothing, or reading.
    std::set<std::wstring> seen;
    for (const wchar_t* const access :
         {L"D:P(A;;FA;;;CO)(A;;FA;;;BA)", L"D:P(A;;FA;;;CO)(A;;FA;;;BA)(A;;FR;;;WD)"}) {
        SetAccess(folder_.Of("photo.jpg"), access);
        const std::wstring before = AccessOf(folder_.Of("photo.jpg"));
        seen.insert(before);
        std::wstring meanwhile;
        ReplaceWholeFile(folder_.Path("photo.jpg"),
                         [&](OutputFile&) { meanwhile = AccessOf(folder_.Of(kNew)); }, {});
        EXPECT_EQ(meanwhile, before);
        EXPECT_EQ(AccessOf(folder_.Of("photo.jpg")), before);
    }
    EXPECT_EQ(seen.size(), 2U);
}

TEST_F(FileReplacementSystemTest, KeepsAccessListsAndAttributes)
{
    const std::filesystem::path path = folder_.Of("photo.jpg");
    for (const DWORD attributes : {FILE_ATTRIBUTE_HIDDEN, FILE_ATTRIBUTE_SYSTEM,
                                   FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM}) {
        ASSERT_TRUE(SetFileAttributesW(path.c_str(), attributes));
        const DWORD before = GetFileAttributesW(path.c_str());
        ASSERT_NE(before & attributes, 0U);
        Replace("photo.jpg", "new");
        EXPECT_EQ(GetFileAttributesW(path.c_str()) & attributes, before & attributes);
    }
}

TEST_F(FileReplacementSystemTest, NobodyElseReadsTheNewFileMeanwhile)
{
    ReplaceWholeFile(folder_.Path("photo.jpg"),
                     [&](OutputFile& out) {
                         out.Write("new", 3);
                         EXPECT_THAT(folder_.Names(), ElementsAre(kNew, kLock, "photo.jpg"));
                         for (const std::string& name : {kNew, kLock}) {
                             EXPECT_EQ(
                                 CreateFileW(folder_.Of(name).c_str(), GENERIC_READ,
                                             FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                             nullptr, OPEN_EXISTING, 0, nullptr),
                                 INVALID_HANDLE_VALUE);
                             EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
                         }
                     },
                     {});
    EXPECT_THAT(folder_.Names(), ElementsAre("photo.jpg"));
}

struct HeldCase {
    const char* what;
    DWORD access;
    DWORD share;
    const char* want;  // null where it is replaced all the same
};

constexpr char kInUse[] = "the new file cannot take its place: in use by another program";

constexpr HeldCase kHeldCases[] = {
    {"kept to itself", GENERIC_READ, 0, kInUse},
    {"shared for reading", GENERIC_READ, FILE_SHARE_READ, kInUse},
    {"shared for reading and writing", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, kInUse},
    {"being written", GENERIC_WRITE, FILE_SHARE_READ, kInUse},
    {"shared for all", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
     nullptr},
};

TEST_F(FileReplacementSystemTest, AFileHeldOpenByAnotherProgram)
{
    for (const HeldCase& row : kHeldCases) {
        SCOPED_TRACE(row.what);
        folder_.Write("photo.jpg", "old");
        {
            const OpenElsewhere held(folder_.Of("photo.jpg"), row.access, row.share);
            EXPECT_EQ(Failure(), row.want != nullptr ? row.want : "");
            if (row.want == nullptr) {
                EXPECT_EQ(held.Read(), "old");  // whoever reads goes on with what he began with
            }
        }
        EXPECT_EQ(folder_.Read("photo.jpg"), row.want != nullptr ? "old" : "new");
        RecoverReplacedFile(folder_.Path("photo.jpg"));
        EXPECT_THAT(folder_.Names(), ElementsAre("photo.jpg"));
    }
}

TEST_F(FileReplacementSystemTest, AReadOnlyFileIsRefusedWithAndWithoutRights)
{
    ASSERT_TRUE(SetFileAttributesW(folder_.Of("photo.jpg").c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(Failure(), "is read-only");
    EXPECT_EQ(TextOf<FileError>([&] { CheckReplaceable(folder_.Path("photo.jpg")); }),
              folder_.Of("photo.jpg").string() + ": is read-only");
    EXPECT_EQ(folder_.Read("photo.jpg"), "old");
    EXPECT_THAT(folder_.Names(), ElementsAre("photo.jpg"));
    ASSERT_TRUE(SetFileAttributesW(folder_.Of("photo.jpg").c_str(), FILE_ATTRIBUTE_NORMAL));
    EXPECT_EQ(Failure(), "");
}

struct ReplaceCase {
    const char* fault;
    const char* want;
};

constexpr ReplaceCase kReplaceCases[] = {
    {"ERROR_UNABLE_TO_REMOVE_REPLACED", "the old one cannot be put aside"},
    {"ERROR_UNABLE_TO_MOVE_REPLACEMENT", "the system does not move it"},
    {"ERROR_UNABLE_TO_MOVE_REPLACEMENT_2",
     "the system put the old one aside and does not move the new one"},
    {"1175", "the old one cannot be put aside"},
    {"1176", "the system does not move it"},
    {"1177", "the system put the old one aside and does not move the new one"},
};

TEST_F(FileReplacementSystemTest, TheSystemsOwnErrorsOfReplacingLeaveTheOldFile)
{
    const FileIdentity before = InputFile(folder_.Path("photo.jpg")).Identity();
    for (const ReplaceCase& row : kReplaceCases) {
        const ChildOutcome outcome = RunWorker({"replace", folder_.Of("photo.jpg").string(), "new"},
                                               std::string("rename:") + row.fault + ":1");
        EXPECT_EQ(outcome.status, 1U);
        EXPECT_EQ(outcome.text, folder_.Of("photo.jpg").string() +
                                    ": the new file cannot take its place: " + row.want);
        EXPECT_EQ(InputFile(folder_.Path("photo.jpg")).Identity(), before);
        EXPECT_EQ(folder_.Read("photo.jpg"), "old");
        EXPECT_THAT(folder_.Names(), ElementsAre("photo.jpg"));
    }
    SetFileFault(FileStep::kRename, 1177, 1);
    EXPECT_EQ(Failure(),
              std::string("the new file cannot take its place: ") + kReplaceCases[2].want);
    EXPECT_EQ(Failure(), "");
    EXPECT_EQ(folder_.Read("photo.jpg"), "new");
}

TEST_F(FileReplacementSystemTest, WhereTheOldFileCannotBeRenamedBackTheMessageTellsWhereItIs)
{
    // Another program takes hold of the backup in the very moment in which it is one.
    std::optional<OpenElsewhere> held;
    kivcore::debug::SetTraceLevel("kivcore", 0);
    const int sink = kivcore::debug::AddTraceSink([&](int, const char*, std::string_view text) {
        if (text.ends_with("replacing answers 1177")) {
            held.emplace(folder_.Of(kBackup), GENERIC_READ, FILE_SHARE_READ);
        }
    });
    SetFileFault(FileStep::kRename, 1177, 1);
    EXPECT_EQ(Failure(),
              "the new file cannot take its place, and the old one could not be renamed back; it "
              "is kept as " +
                  kBackup);
    kivcore::debug::RemoveTraceSink(sink);
    kivcore::debug::SetTraceLevel("kivcore", -1);
    EXPECT_THAT(folder_.Names(), ElementsAre(kBackup));
    EXPECT_EQ(folder_.Read(kBackup), "old");
    held.reset();
    RecoverReplacedFile(folder_.Path("photo.jpg"));
    EXPECT_THAT(folder_.Names(), ElementsAre("photo.jpg"));
    EXPECT_EQ(folder_.Read("photo.jpg"), "old");
}

// The state in which a kill between the two steps of the system's call leaves everything.
TEST_F(FileReplacementSystemTest, ABackupWithoutItsPhotoIsRenamedBack)
{
    for (const bool byReader : {true, false}) {
        std::filesystem::remove(folder_.Of("photo.jpg"));
        folder_.Write(kNew, "new, whole or not");
        folder_.Write(kBackup, "old");
        if (byReader) {
            RecoverReplacedFile(folder_.Path("photo.jpg"));
            EXPECT_THAT(folder_.Names(), ElementsAre("photo.jpg"));
        } else {
            Replace("other.jpg", "another photo");
            EXPECT_THAT(folder_.Names(), ElementsAre("other.jpg", "photo.jpg"));
        }
        EXPECT_EQ(folder_.Read("photo.jpg"), "old");
    }
}

TEST_F(FileReplacementSystemTest, ABackupGoesOnceThePhotoCouldBeReadWhole)
{
    folder_.Write(kBackup, "old");
    folder_.Write("photo.jpg", "new");
    {
        const OpenElsewhere held(folder_.Of("photo.jpg"), GENERIC_READ, 0);
        RecoverReplacedFile(folder_.Path("photo.jpg"));
        Replace("other.jpg", "another photo");
        EXPECT_THAT(folder_.Names(), ElementsAre(kBackup, "other.jpg", "photo.jpg"));
    }
    RecoverReplacedFile(folder_.Path("photo.jpg"));
    EXPECT_THAT(folder_.Names(), ElementsAre("other.jpg", "photo.jpg"));
    EXPECT_EQ(folder_.Read("photo.jpg"), "new");
}

TEST_F(FileReplacementSystemTest, ABackupOfALongNameIsFoundByItsPhoto)
{
    const std::string longName = std::string(100, 'p') + ".jpg";
    folder_.Write(longName, "old");
    EXPECT_TRUE(
        RunWorker({"replace", folder_.Of(longName).string(), "new"}, "rename:KILL:1").WasKilled());
    std::vector<std::string> names = folder_.Names();
    ASSERT_EQ(names.size(), 3U);
    EXPECT_EQ(names[0].substr(27), "." + std::string(64, 'p'));
    // Nobody else can tell whose it is.
    std::filesystem::remove(folder_.Of(longName));
    Replace("photo.jpg", "new");
    EXPECT_THAT(folder_.Names(), ElementsAre(names[0], "photo.jpg"));
    RecoverReplacedFile(folder_.Path(longName));
    EXPECT_THAT(folder_.Names(), ElementsAre("photo.jpg", longName));
    EXPECT_EQ(folder_.Read(longName), "old");
}

TEST_F(FileReplacementSystemTest, AKillAtAnyStepLeavesTheOldFileOrTheNewOne)
{
    int backups = 0;
    const Kills kills = KillAtEveryStep([&] {
        backups += std::filesystem::exists(folder_.Of(kBackup)) ? 1 : 0;
        EXPECT_FALSE(std::filesystem::exists(folder_.Of(kLock)));
    });
    EXPECT_GE(kills.all, 18);
    EXPECT_GE(kills.leftovers, 9);
    EXPECT_GE(backups, 3);
}

TEST_F(FileReplacementSystemTest, OnlyAnUnlockedLeftoverIsRemoved)
{
    EXPECT_EQ(LeaveSomethingBehind(), kNew);
    folder_.Write(kLock, "");
    {
        const OpenElsewhere held(folder_.Of(kLock), GENERIC_READ, 0);
        RecoverReplacedFile(folder_.Path("photo.jpg"));
        EXPECT_THAT(folder_.Names(), ElementsAre(kNew, kLock, "photo.jpg"));
        // The number is taken, so the replacement takes another one.
        Replace("photo.jpg", "new");
        EXPECT_EQ(folder_.Read("photo.jpg"), "new");
        EXPECT_THAT(folder_.Names(), ElementsAre(kNew, kLock, "photo.jpg"));
    }
    // The lock file that a power failure leaves holds nobody up.
    RecoverReplacedFile(folder_.Path("photo.jpg"));
    EXPECT_THAT(folder_.Names(), ElementsAre("photo.jpg"));
    EXPECT_EQ(folder_.Read("photo.jpg"), "new");
    folder_.Write(kLock, "");
    Replace("other.jpg", "new");
    EXPECT_THAT(folder_.Names(), ElementsAre("other.jpg", "photo.jpg"));
}

TEST_F(FileReplacementSystemTest, FilesOfTheUsersOwnAreNoLeftovers)
{
    // A backup's name that was made from another photo's, and others that only look like ours.
    const std::string names[] = {kNew + ".other.jpg", kNew + "-locks", kNew + "x", kNew + "."};
    for (const std::string& name : names) {
        folder_.Write(name, "the user's");
    }
    Replace("photo.jpg", "new");
    RecoverReplacedFile(folder_.Path("photo.jpg"));
    for (const std::string& name : names) {
        if (name != kNew + ".") {  // Windows has no such name
            EXPECT_EQ(folder_.Read(name), "the user's") << name;
        }
    }
}

TEST_F(FileReplacementSystemTest, WritersAtOnceLeaveOneOfThemWhole)
{
    constexpr int kWriters = 3;
    constexpr std::size_t kBytes = 300'000;
    Replace("photo.jpg", std::string(kBytes, 'a'));
    std::vector<std::unique_ptr<Child>> writers;
    for (int writer = 0; writer < kWriters; ++writer) {
        writers.push_back(std::make_unique<Child>(
            KIV_FILE_WORKER,
            std::vector<std::string>{"fill", folder_.Of("photo.jpg").string(),
                                     std::string(1, static_cast<char>('a' + writer))},
            std::vector<std::string>()));
    }
    // Readers, which clear away what they take for leftovers, see one of them, whole, whenever they
    // see one: for the moment between the system's two steps there is none.
    int reads = 0;
    while (!writers.back()->HasEnded()) {
        RecoverReplacedFile(folder_.Path("photo.jpg"));
        try {
            const std::string content = File(folder_.Path("photo.jpg")).ReadAll(kMiB);
            ASSERT_TRUE(content == std::string(kBytes, content.empty() ? '?' : content.front()));
            ++reads;
        } catch (const FileError& error) {
            ASSERT_TRUE(error.GetKind() == FileError::Kind::kNotFound ||
                        std::string(error.what()).ends_with("in use by another program"))
                << error.what();
        }
    }
    EXPECT_GT(reads, 0);
    for (const std::unique_ptr<Child>& writer : writers) {
        const ChildOutcome outcome = writer->Wait();
        EXPECT_TRUE(outcome.Succeeded());
        EXPECT_GT(std::stoi(outcome.text), 0);
    }
    RecoverReplacedFile(folder_.Path("photo.jpg"));
    EXPECT_THAT(folder_.Names(), ElementsAre("photo.jpg"));
    EXPECT_EQ(folder_.Read("photo.jpg").size(), kBytes);
}

TEST_F(FileReplacementSystemTest, FaultsByTheSystemsOwnNumbers)
{
    ExpectFault({"verify:5:1", "what was written cannot be read back: permission denied"});
    ExpectFault({"rename:ERROR_SHARING_VIOLATION:1",
                 "the new file cannot take its place: in use by another program"});
}

// Behind the call, because it takes more than one step.
TEST_F(FileReplacementSystemTest, AKillSetByTheEnvironment)
{
    EXPECT_TRUE(RunWorker({"replace", folder_.Of("photo.jpg").string(), "killed"}, "rename:KILL:1")
                    .WasKilled());
    EXPECT_EQ(folder_.Read("photo.jpg"), "killed");
    EXPECT_EQ(folder_.Read(kBackup), "old");
}

std::size_t PeakKiB()
{
    PROCESS_MEMORY_COUNTERS counters = {};
    EXPECT_TRUE(GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters));
    return counters.PeakWorkingSetSize / 1024;
}

TEST_F(FileReplacementSystemTest, MemoryDoesNotGrowWithTheFile)
{
    const auto copy = [this](std::size_t bytes) {
        folder_.Write("source", std::string());
        std::filesystem::resize_file(folder_.Of("source"), bytes);
        InputFile source(folder_.Path("source"));
        ReplaceWholeFile(folder_.Path("photo.jpg"),
                         [&](OutputFile& out) { out.CopyFrom(source, 0, source.SizeBytes()); }, {});
        EXPECT_EQ(std::filesystem::file_size(folder_.Of("photo.jpg")), bytes);
    };
    copy(kMiB);
    const std::size_t before = PeakKiB();
    copy(64 * kMiB);
    const std::size_t after = PeakKiB();
    EXPECT_LT(after - before, 1024U);
    // The count does count.
    const std::vector<char> touched(64 * kMiB, 'x');
    EXPECT_GT(PeakKiB() - after, 32U * 1024U + static_cast<unsigned char>(touched.back()) / 256U);
}

}  // namespace
}  // namespace kivcore::filesupport
