// Saving photos where the system has a word in it, and all systems do the same.

#include "framework/kivxmp/tests/PhotoFileFixture.h"

namespace kivxmp {
namespace {

using ::testing::ElementsAre;

// Killed at every step: the old or the new photo is there, and the next reader clears up.
TEST_F(PhotoFileSystemTest, Killed)
{
    int kills = 0;
    int leftovers = 0;
    for (const char* const step : {"open", "read", "create", "write", "flush", "verify", "rename",
                                   "flushfolder", "remove"}) {
        for (int countdown = 1; countdown < 60; ++countdown) {
            const std::string fault = std::string(step) + ":KILL:" + std::to_string(countdown);
            SCOPED_TRACE(fault);
            folder_.Write("p.jpg", photo_);
            const auto outcome = RetitleElsewhere("p.jpg", fault);
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
