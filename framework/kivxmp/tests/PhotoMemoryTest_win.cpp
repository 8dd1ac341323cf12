// How much memory a save takes. The system counts it: what each library allocates goes past the
// tests' own counters.

#include <kivxmp/PhotoFile.h>

#include <windows.h>

#include <psapi.h>

#include <gmock/gmock.h>

#include <cstddef>
#include <string>
#include <vector>

#include "framework/kivcore/tests/TestFolder.h"
#include "framework/kivxmp/tests/JpegBuilder.h"
#include "framework/kivxmp/tests/LyingPhotos.h"

namespace kivxmp {
namespace {

std::size_t MostBytesInUse()
{
    PROCESS_MEMORY_COUNTERS counters = {};
    EXPECT_TRUE(GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters));
    return counters.PeakWorkingSetSize;
}

constexpr std::size_t kMiB = std::size_t{1024} * 1024;

// Nothing is taken at its word: what is too large is not even read.
TEST(PhotoMemory, APhotoThatTellsOfGigabytesTakesNoMore)
{
    const kivcore::testing::TestFolder folder;
    const std::vector<test::LyingPhoto> photos = test::MakeLyingPhotos(folder);
    const auto open = [&folder](const test::LyingPhoto& photo) {
        try {
            EXPECT_FALSE(GetPhotoInfo(*OpenPhoto(folder.Path(photo.name))).canSave);
        } catch (const XMP_Error& error) {
            EXPECT_THAT(error.Text(), ::testing::HasSubstr(photo.name));
        }
    };
    open(photos.front());  // loads what a first reading loads
    for (const test::LyingPhoto& photo : photos) {
        SCOPED_TRACE(photo.about);
        const std::size_t before = MostBytesInUse();
        open(photo);
        EXPECT_LE(MostBytesInUse() - before, 4 * kMiB);
    }
}

TEST(PhotoMemory, ASaveTakesTwoMebibytesWhateverThePhotosSize)
{
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
