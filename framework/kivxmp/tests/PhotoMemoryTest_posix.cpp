// How much memory a save takes. A program of its own, because it counts what all of it allocates.

#include <gmock/gmock.h>

#include <kivxmp/PhotoFile.h>

#include <malloc.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <string>

#include "framework/kivcore/tests/TestFolder.h"
#include "framework/kivxmp/tests/JpegBuilder.h"
#include "framework/kivxmp/tests/LyingPhotos.h"

namespace {

std::size_t bytesInUse = 0;
std::size_t mostBytesInUse = 0;

}  // namespace

void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept
{
    void* const block = std::malloc(bytes);
    if (block != nullptr) {
        bytesInUse += malloc_usable_size(block);
        mostBytesInUse = std::max(mostBytesInUse, bytesInUse);
    }
    return block;
}

void* operator new(std::size_t bytes)
{
    void* const block = operator new(bytes, std::nothrow);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

// A sanitizer has array forms of its own.
void* operator new[](std::size_t bytes)
{
    return operator new(bytes);
}

void operator delete(void* block) noexcept
{
    bytesInUse -= malloc_usable_size(block);
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    operator delete(block);
}

void operator delete[](void* block) noexcept
{
    operator delete(block);
}

void operator delete[](void* block, std::size_t) noexcept
{
    operator delete(block);
}

namespace kivxmp {
namespace {

constexpr std::size_t kMiB = std::size_t{1024} * 1024;

// Nothing is taken at its word: what is too large is not even read.
TEST(PhotoMemory, APhotoThatTellsOfGigabytesTakesNoMore)
{
    const kivcore::testing::TestFolder folder;
    for (const test::LyingPhoto& photo : test::MakeLyingPhotos(folder)) {
        SCOPED_TRACE(photo.about);
        const std::size_t before = bytesInUse;
        mostBytesInUse = before;
        try {
            EXPECT_FALSE(GetPhotoInfo(*OpenPhoto(folder.Path(photo.name))).canSave);
        } catch (const XMP_Error& error) {
            EXPECT_THAT(error.Text(), ::testing::HasSubstr(photo.name));
        }
        EXPECT_LE(mostBytesInUse - before, 4 * kMiB);
    }
}

TEST(PhotoMemory, ASaveTakesTwoMebibytesWhateverThePhotosSize)
{
    const kivcore::testing::TestFolder folder;
    const std::string photo = test::Jpeg().App0().Exif().Xmp(test::SmallPacket("t")).Scan().Bytes();
    for (const std::size_t bytes : {photo.size(), 48 * kMiB}) {
        SCOPED_TRACE(bytes);
        folder.Write("p.jpg", photo);
        std::filesystem::resize_file(folder.Of("p.jpg"), bytes);
        const std::unique_ptr<__XMPMeta__> meta = OpenPhoto(folder.Path("p.jpg"));
        meta->SetText("dc:title[@x-default]", "edited");
        const std::size_t before = bytesInUse;
        mostBytesInUse = before;
        EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
        const std::size_t most = mostBytesInUse - before;
        EXPECT_LE(most, 2 * kMiB);
        // The buffers alone are more than this: the count does count.
        EXPECT_GE(most, kMiB / 8);
        RecordProperty("bytes", static_cast<int>(most));
    }
}

}  // namespace
}  // namespace kivxmp
