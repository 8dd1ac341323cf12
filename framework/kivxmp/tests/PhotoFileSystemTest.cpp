// Saving photos where the system has a word in it, and all systems do the same.

#include <cstdio>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "framework/kivxmp/tests/PhotoFileFixture.h"
#include "framework/kivxmp/tests/SamplePhotos.h"

namespace kivxmp {
namespace {

using test::kSavedSamples;
using test::SavedSample;
using ::testing::ElementsAre;

// Killed at every step: the old or the new file is there, byte for byte, and the next reader clears
// up what else is.
TEST_F(PhotoFileSystemTest, Killed)
{
    std::string told;
    for (const SavedSample& row : kSavedSamples) {
        const auto begin = [&] {
            std::filesystem::remove(folder_.Of(row.saved));
            folder_.Write(row.photo, row.bytes);
        };
        const auto content = [&] {
            return std::filesystem::exists(folder_.Of(row.saved)) ? folder_.Read(row.saved) : "";
        };
        begin();
        const std::string old = content();
        ASSERT_TRUE(RetitleElsewhere(row.photo, "").Succeeded());
        const std::string fresh = content();
        const std::vector<std::string> names = folder_.Names();
        ASSERT_NE(fresh, old);

        int kills = 0;
        int leftovers = 0;
        std::set<std::string> seen;
        for (const char* const step : {"open", "read", "create", "write", "flush", "verify",
                                       "rename", "flushfolder", "remove"}) {
            for (int countdown = 1; countdown < 60; ++countdown) {
                const std::string fault = std::string(step) + ":KILL:" + std::to_string(countdown);
                SCOPED_TRACE(row.saved + " " + fault);
                begin();
                const auto outcome = RetitleElsewhere(row.photo, fault);
                if (!outcome.WasKilled()) {
                    EXPECT_TRUE(outcome.Succeeded());
                    EXPECT_TRUE(content() == fresh);
                    break;
                }
                ++kills;
                const std::size_t wanted = content().empty() ? 1 : names.size();
                leftovers += folder_.Names().size() > wanted ? 1 : 0;
                const std::string title = Title(row.photo);
                EXPECT_TRUE(content() == (title == "edited" ? fresh : old));
                EXPECT_TRUE(row.photo == row.saved || folder_.Read(row.photo) == row.bytes);
                if (content().empty()) {
                    EXPECT_THAT(folder_.Names(), ElementsAre(row.photo));
                } else {
                    EXPECT_EQ(folder_.Names(), names);
                }
                seen.insert(content());
            }
        }
        // A sidecar that is yet to be made is neither copied nor put aside.
        EXPECT_GE(kills, 10);
        EXPECT_GT(leftovers, old.empty() ? 3 : 5);
        EXPECT_EQ(seen.size(), 2U);
        told += ", " + row.saved + " " + std::to_string(kills);
        for (const std::string& name : folder_.Names()) {
            std::filesystem::remove(folder_.Of(name));
        }
    }
    std::printf("Each kill left the old or the new file, at so many points: %s\n",
                told.substr(2).c_str());
}

}  // namespace
}  // namespace kivxmp
