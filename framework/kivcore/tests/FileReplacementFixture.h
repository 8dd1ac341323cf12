// What the tests of replacement against the system share; each system has a file of further ones.

#pragma once

#include <kivcore/FileReplacement.h>

#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "framework/kivcore/tests/ChildProcess.h"
#include "framework/kivcore/tests/TestFolder.h"

namespace kivcore::filesupport {

struct FaultTextCase {
    const char* value;
    const char* want;  // behind "PATH: "; null where nothing fails
};

class FileReplacementSystemTest : public ::testing::Test {
protected:
    FileReplacementSystemTest()
    {
        // Users without rights have to reach it too.
        std::filesystem::permissions(folder_.Folder(), std::filesystem::perms{0755});
        folder_.Write("photo.jpg", "old");
    }
    ~FileReplacementSystemTest() override { SetFileFault(FileStep::kOpen, 0, 0); }

    void Replace(const std::string& name, const std::string& content) const
    {
        ReplaceWholeFile(folder_.Path(name),
                         [&content](OutputFile& out) { out.Write(content.data(), content.size()); },
                         {});
    }

    /// What replacing photo.jpg ends in, without its path; empty where it is replaced.
    std::string Failure() const
    {
        const std::string text =
            testing::TextOf<FileError>([this] { Replace("photo.jpg", "new"); });
        const std::string path = folder_.Of("photo.jpg").string() + ": ";
        return text.starts_with(path) ? text.substr(path.size()) : text;
    }

    testing::ChildOutcome RunWorker(const std::vector<std::string>& arguments,
                                    const std::string& fault) const
    {
        return testing::RunProgram(KIV_FILE_WORKER, arguments, {"KIV_FILE_FAULT=" + fault});
    }

    /// A writer that is killed with its new file beside photo.jpg; returns that file's name.
    std::string LeaveSomethingBehind() const
    {
        EXPECT_TRUE(RunWorker({"replace", folder_.Of("photo.jpg").string(), "half"}, "flush:KILL:1")
                        .WasKilled());
        const std::vector<std::string> names = folder_.Names();
        EXPECT_EQ(names.size(), 2U);
        return names.front();
    }

    struct Kills {
        int all = 0;
        int leftovers = 0;  ///< of them, those that left something beside
    };

    /// Copies "source" over photo.jpg with a kill at each step in turn; whole is the old or the new
    /// content then, and the next reader or writer clears up. `look` sees what the kill left.
    Kills KillAtEveryStep(const std::function<void()>& look) const
    {
        const std::string old(600'000, 'o');
        const std::string fresh(700'000, 'n');
        folder_.Write("source", fresh);
        Kills kills;
        for (const char* const step : {"open", "read", "create", "write", "flush", "verify",
                                       "rename", "flushfolder", "remove"}) {
            for (int countdown = 1; countdown < 100; ++countdown) {
                SCOPED_TRACE(std::string(step) + " " + std::to_string(countdown));
                folder_.Write("photo.jpg", old);
                const testing::ChildOutcome outcome = RunWorker(
                    {"copy", folder_.Of("source").string(), folder_.Of("photo.jpg").string()},
                    std::string(step) + ":KILL:" + std::to_string(countdown));
                const std::string content = folder_.Read("photo.jpg");
                if (!outcome.WasKilled()) {
                    EXPECT_TRUE(outcome.Succeeded());
                    EXPECT_TRUE(content == fresh);
                    break;
                }
                ++kills.all;
                EXPECT_TRUE(content == old || content == fresh);
                kills.leftovers += folder_.Names().size() > 2 ? 1 : 0;
                look();
                // A reader of this file or the next save of any file in the folder clears it.
                if (kills.all % 2 == 0) {
                    RecoverReplacedFile(folder_.Path("photo.jpg"));
                } else {
                    Replace("source", fresh);
                }
                EXPECT_THAT(folder_.Names(), ::testing::ElementsAre("photo.jpg", "source"));
                EXPECT_TRUE(folder_.Read("photo.jpg") == content);
            }
        }
        return kills;
    }

    void ExpectFault(const FaultTextCase& row) const
    {
        SCOPED_TRACE(row.value);
        folder_.Write("photo.jpg", "old");
        const testing::ChildOutcome outcome =
            RunWorker({"replace", folder_.Of("photo.jpg").string(), "new"}, row.value);
        EXPECT_EQ(outcome.text, row.want ? folder_.Of("photo.jpg").string() + ": " + row.want
                                         : std::string("replaced"));
        EXPECT_EQ(folder_.Read("photo.jpg"), row.want ? "old" : "new");
        EXPECT_THAT(folder_.Names(), ::testing::ElementsAre("photo.jpg"));
    }

    testing::TestFolder folder_;
};

}  // namespace kivcore::filesupport
