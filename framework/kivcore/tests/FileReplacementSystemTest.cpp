// Replacement against the system, where all systems do the same.

#include "framework/kivcore/tests/FileReplacementFixture.h"

namespace kivcore::filesupport {
namespace {

using ::testing::ElementsAre;

TEST_F(FileReplacementSystemTest, AHardLinkedFileIsReplacedByANewOne)
{
    std::filesystem::create_hard_link(folder_.Of("photo.jpg"), folder_.Of("other.jpg"));
    Replace("photo.jpg", "new");
    EXPECT_EQ(folder_.Read("photo.jpg"), "new");
    EXPECT_EQ(folder_.Read("other.jpg"), "old");
    EXPECT_EQ(std::filesystem::hard_link_count(folder_.Of("photo.jpg")), 1U);
    EXPECT_EQ(std::filesystem::hard_link_count(folder_.Of("other.jpg")), 1U);
}

TEST_F(FileReplacementSystemTest, AReaderOfAnotherFileLeavesALeftoverAlone)
{
    const std::string name = LeaveSomethingBehind();
    RecoverReplacedFile(folder_.Path("other.jpg"));
    EXPECT_THAT(folder_.Names(), ElementsAre(name, "photo.jpg"));
}

constexpr FaultTextCase kFaultTextCases[] = {
    {"write:ENOSPC:1", "cannot be written: no space left on the disk"},
    {"create:EACCES:1", "no new file can be made beside it: permission denied"},
    {"flushfolder:EIO:1", "its folder cannot be flushed to the disk: the disk reports an error"},
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
        ExpectFault(row);
    }
}

}  // namespace
}  // namespace kivcore::filesupport
