// For builds without a library that reads Exif and IIM data.

#include <kivxmp/Derived.h>

#include <gtest/gtest.h>

#include "framework/kivxmp/tests/ExifBuilder.h"
#include "framework/kivxmp/tests/JpegBuilder.h"
#include "framework/kivxmp/tests/PhotoFolder.h"

namespace kivxmp {
namespace {

class DerivedTagsNoneTest : public test::PhotoFolderTest {};

TEST_F(DerivedTagsNoneTest, NothingIsTold)
{
    constexpr unsigned char kApp1 = 0xE1;
    const test::ExifStream exif = test::ExifStream().Ascii(test::ExifStream::kImage, 271, "Kivo");
    folder_.Write("p.jpg", test::Jpeg().Segment(kApp1, test::ExifSegment(exif)).Scan().Bytes());
    const auto meta = Open("p.jpg");
    EXPECT_EQ(FindDerived(*meta, "tiff:Make"), nullptr);
    EXPECT_EQ(DerivedProperties(*meta)->PropertyCount(), 0u);
    meta->SetText(test::kTitle, "Evening");
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    EXPECT_EQ(Title("p.jpg"), "Evening");
}

}  // namespace
}  // namespace kivxmp
