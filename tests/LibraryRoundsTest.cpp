// The library in a host that is not linked to it: many rounds, loading and unloading.

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "tests/ProcessCounts.h"
#include "tests/SharedLibrary.h"
#include "tests/StartRecord.h"

#ifndef KIV_LIBRARY_PATH
#error "the build names the library"
#endif

namespace kivtests {
namespace {

MetadataAPIInitParams Params(const char* name, const char* language, float scale)
{
    MetadataAPIInitParams params = StartRecord(name, language, scale);
    params.loadCustomDefinitions = 1;
    return params;
}

TEST(ProcessCounts, OpenHandlesCountsWhatIsOpen)
{
    const std::size_t before = OpenHandles();
    std::vector<std::unique_ptr<std::ifstream>> files;
    for (int i = 0; i < 10; ++i) {
        files.push_back(std::make_unique<std::ifstream>(KIV_LIBRARY_PATH));
        ASSERT_TRUE(files.back()->is_open());
    }
    EXPECT_EQ(OpenHandles(), before + 10);
    files.clear();
    EXPECT_EQ(OpenHandles(), before);
}

TEST(ProcessCounts, HeapInUseCountsWhatIsHeld)
{
    const std::size_t before = HeapInUse();
    const std::vector<char> block(kAllowedGrowthBytes * 4, 'x');
    EXPECT_GE(HeapInUse(), before + block.size());
}

// First, while nothing of a dialog pins the framework's libraries in the process.
TEST(LibraryRounds, AHundredLoadsAndUnloads)
{
    // Process-wide objects are never destroyed, on purpose: some hundred bytes stay behind with
    // each load. The heap is compared below.
    AllowLeaksFromHere();
    constexpr int kRounds = 100;
    std::size_t handles = 0;
    std::size_t heapHalfway = 0;
    for (int round = 0; round < kRounds; ++round) {
        {
            const SharedLibrary library(KIV_LIBRARY_PATH);
            const Functions functions(library);
            EXPECT_TRUE(IsLibraryLoaded("kivmetadataapi."));
            if (round == 0) {
                KeepForeignLibraries();
            }
            EXPECT_FALSE(functions.initialize(nullptr));
            const MetadataAPIInitParams params = Params("Loader", "en_US", 1);
            ASSERT_TRUE(functions.initialize(&params));
            EXPECT_FALSE(functions.doDialog(nullptr, nullptr));
            EXPECT_EQ(functions.getVector() == nullptr, functions.getVectorSize() == 0);
            functions.terminate();
        }
        // All of ours is gone: nothing pins a library in the host.
        ASSERT_FALSE(IsLibraryLoaded("kiv")) << "after round " << round;
        if (round == 0) {
            handles = OpenHandles();  // systems keep a few from the first time on
        }
        if (round == kRounds / 2) {
            heapHalfway = HeapInUse();
        }
    }
    CountLeaksAgain();
    EXPECT_EQ(OpenHandles(), handles);
    EXPECT_LE(HeapInUse(), heapHalfway + kAllowedGrowthBytes);
}

TEST(LibraryRounds, AThousandRoundsOfInitializeAndTerminate)
{
    constexpr int kRounds = 1000;
    // Loaded until the process ends: the leak check then reaches its process-wide objects, and
    // finds what a round left behind.
    static const SharedLibrary& library = *new SharedLibrary(KIV_LIBRARY_PATH);
    const Functions functions(library);
    const char* const names[] = {"One", "Another", "A third"};
    const char* const languages[] = {"en_US", "de-DE", "ja_JP.UTF-8", nullptr};
    const float scales[] = {1.0f, 2.0f, 0.0f};
    const std::size_t handles = OpenHandles();
    std::size_t heapHalfway = 0;
    for (int round = 0; round < kRounds; ++round) {
        const MetadataAPIInitParams params =
            Params(names[round % 3], languages[round % 4], scales[round % 3]);
        ASSERT_TRUE(functions.initialize(&params));
        functions.terminate();
        if (round == kRounds / 2) {
            heapHalfway = HeapInUse();
        }
    }
    EXPECT_EQ(OpenHandles(), handles);
    EXPECT_LE(HeapInUse(), heapHalfway + kAllowedGrowthBytes);
}

}  // namespace
}  // namespace kivtests
