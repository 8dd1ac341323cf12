#include <gtest/gtest.h>

#include <kivxmp/Derived.h>
#include <kivxmp/PhotoFile.h>
#include <kivxmp/kivxmp_file.h>

#include "framework/kivcore/tests/TestFolder.h"
#include "framework/kivxmp/tests/JpegBuilder.h"

extern "C" int KivXmpTryPhotoFromC(const char* path, const char* packetPath);
extern "C" int KivXmpTryDerivedFromC(const char* path);

namespace kivxmp {
namespace {

static_assert(static_cast<int>(PacketPlace::kSidecar) == kKivXmpPlaceSidecar);
static_assert(static_cast<int>(PacketPlace::kEmbedded) == kKivXmpPlaceEmbedded);
static_assert(static_cast<int>(SidecarName::kFull) == kKivXmpSidecarFull);
static_assert(static_cast<int>(SidecarName::kShort) == kKivXmpSidecarShort);

TEST(FileApi, FromC)
{
    const kivcore::testing::TestFolder folder;
    folder.Write("p.jpg", test::Jpeg().Exif().Xmp(test::SmallPacket("t")).Scan().Bytes());
    EXPECT_EQ(KivXmpTryPhotoFromC(folder.Of("p.jpg").string().c_str(),
                                  folder.Of("out.xmp").string().c_str()),
              0);
}

static_assert(static_cast<int>(DerivedFrom::kExif) == kKivXmpFromExif);
static_assert(static_cast<int>(DerivedFrom::kIim) == kKivXmpFromIim);
static_assert(static_cast<int>(DerivedFrom::kSidecar) == kKivXmpFromSidecar);
static_assert(static_cast<int>(DerivedFrom::kEmbedded) == kKivXmpFromEmbedded);

TEST(FileApi, DerivedFromC)
{
    const kivcore::testing::TestFolder folder;
    folder.Write("p.jpg", test::Jpeg().Scan().Bytes());
    folder.Write("p.jpg.xmp", test::SmallPacket("beside"));
    EXPECT_EQ(KivXmpTryDerivedFromC(folder.Of("p.jpg").string().c_str()), 0);
}

TEST(FileApi, OptionsThatMeanNothing)
{
    const kivcore::testing::TestFolder folder;
    folder.Write("p.jpg", test::Jpeg().Scan().Bytes());
    __XMPMeta__* meta = nullptr;
    KivXmpOpenOptions options = {9, kKivXmpSidecarAuto};
    EXPECT_EQ(KivXmpOpenPhoto(folder.Of("p.jpg").string().c_str(), &options, &meta),
              kKivXmpBadArgument);
    options = {kKivXmpPlaceAuto, -1};
    EXPECT_EQ(KivXmpOpenPhoto(folder.Of("p.jpg").string().c_str(), &options, &meta),
              kKivXmpBadArgument);
    EXPECT_EQ(meta, nullptr);
}

}  // namespace
}  // namespace kivxmp
