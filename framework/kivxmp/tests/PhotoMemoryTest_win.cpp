// How much memory a save takes. The system counts it: what each library allocates goes past the
// tests' own counters.

#include <kivxmp/PhotoFile.h>

#include <windows.h>

#include <psapi.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "framework/kivcore/tests/TestFolder.h"
#include "framework/kivxmp/tests/JpegBuilder.h"

namespace kivxmp {
namespace {

std::size_t MostBytesInUse()
{
    PROCESS_MEMORY_COUNTERS counters = {};
    EXPECT_TRUE(GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters));
    return counters.PeakWorkingSetSize;
}

TEST(PhotoMemory, ASaveTakesTwoMebibytesWhateverThePhotosSize)
{
    constexpr std::size_t kMiB = std::size_t{1024} * 1024;
    const kivcore::testing::TestFolder folder;
    const std::string photo = test::Jpeg().App0().Exif().Xmp(test::SmallPacket("t")).Scan().Bytes();
    const auto save = [&](std::size_t bytes) {
        folder.Write("p.jpg", photo);
        std::filesystem::resize_file(folder.Of("p.jpg"), bytes);
        const std::unique_ptr<__XMPMeta__> meta = OpenPhoto(folder.Path("p.jpg"));
        meta->SetText("dc:title[@x-default]", "edited");
        EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    };
    save(photo.size());  // loads what a first save loads
    const std::size_t before = MostBytesInUse();
    save(48 * kMiB);
    const std::size_t most = MostBytesInUse() - before;
    EXPECT_LE(most, 2 * kMiB);
    RecordProperty("bytes", static_cast<int>(most));
    // The count does count.
    const std::vector<char> touched(16 * kMiB, 'x');
    EXPECT_GE(MostBytesInUse() - before, 8 * kMiB * (touched.back() == 'x' ? 1 : 2));
}

}  // namespace
}  // namespace kivxmp
