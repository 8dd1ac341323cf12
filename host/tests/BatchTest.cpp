#include "host/Batch.h"

#include "host/Interruption.h"

#include <stdexcept>

#include <gtest/gtest.h>

namespace kivhost {
namespace {

TEST(Batch, AFailureDoesNotStopTheOthers)
{
    const Interruption interruption;
    std::string done;
    ::testing::internal::CaptureStderr();
    const BatchResult result = RunBatch({"a", "b", "c", "d"}, interruption,
                                        [&done](const std::string& file, tools::Progress&) {
                                            if (file == "b" || file == "d") {
                                                throw std::runtime_error(file + ": is bad");
                                            }
                                            done += file;
                                        });
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "kivhost: b: is bad\nkivhost: d: is bad\n");
    EXPECT_EQ(done, "ac");
    EXPECT_EQ(result.failed, 2U);
    EXPECT_EQ(result.notReached, 0U);
}

TEST(Batch, NothingToDo)
{
    const Interruption interruption;
    const BatchResult result =
        RunBatch({}, interruption, [](const std::string&, tools::Progress&) { FAIL(); });
    EXPECT_EQ(result.failed, 0U);
    EXPECT_EQ(result.notReached, 0U);
}

}  // namespace
}  // namespace kivhost
