// When the photo's own data is asked, and which place comes before which. Only with Exiv2.

#include <gmock/gmock.h>

#include <string>

#include <kivxmp/Derived.h>
#include <kivxmp/PhotoFile.h>
#include <kivxmp/XMPAccess.h>

#include "framework/kivxmp/tests/JpegBuilder.h"
#include "framework/kivxmp/tests/PhotoBuilders.h"
#include "framework/kivxmp/tests/PhotoFolder.h"

namespace kivxmp {
namespace {

using namespace std::string_literals;
using test::Jpeg;
using test::SmallPacket;
using test::Tiff;

constexpr std::uint16_t kMakeTag = 0x010F;
constexpr std::uint16_t kModelTag = 0x0110;
constexpr std::uint16_t kText = 2;

/// A JPEG file with maker ACME and model M1 in its Exif data.
std::string Photo(const std::string& packet)
{
    const std::string tiff = Tiff({.bigEndian = true})
                                 .Entry(kMakeTag, kText, 5, "ACME\0"s)
                                 .Entry(kModelTag, kText, 3, "M1\0"s)
                                 .Bytes();
    return Jpeg().Segment(0xE1, "Exif\0\0"s + tiff).Xmp(packet).Scan().Bytes();
}

std::string With(const std::string& property, const std::string& value)
{
    std::string packet = SmallPacket("t");
    return packet.insert(packet.find("<dc:title>"),
                         "<tiff:" + property + " xmlns:tiff='http://ns.adobe.com/tiff/1.0/'>" +
                             value + "</tiff:" + property + ">");
}

class DerivedPhotoTest : public test::PhotoFolderTest {
protected:
    /// "ACME(1 Exif.Image.Make)" for a derived property, its text alone for one of the packet.
    static std::string Seen(const __XMPMeta__& meta, const char* path)
    {
        std::string text = TextOf(FindWithDerived(meta, path)).value_or("-");
        if (const DerivedSource* const source = FindDerivedSource(meta, path)) {
            text +=
                "(" + std::to_string(static_cast<int>(source->from)) + " " + source->detail + ")";
        }
        return text;
    }
    static std::string Seen(const __XMPMeta__& meta)
    {
        return Seen(meta, "tiff:Make") + " " + Seen(meta, "tiff:Model");
    }
};

constexpr char kBoth[] = "ACME(1 Exif.Image.Make) M1(1 Exif.Image.Model)";

TEST_F(DerivedPhotoTest, ThePacketThenTheOtherPacketThenExif)
{
    folder_.Write("p.jpg", Photo(SmallPacket("t")));
    EXPECT_EQ(Seen(*Open("p.jpg")), kBoth);
    folder_.Write("p.jpg.xmp", With("Make", "Sidecar Works"));
    EXPECT_EQ(Seen(*Open("p.jpg")), "Sidecar Works(3 p.jpg.xmp) M1(1 Exif.Image.Model)");
    folder_.Write("p.jpg", Photo(With("Make", "Packet Ltd")));
    EXPECT_EQ(Seen(*Open("p.jpg")), "Packet Ltd M1(1 Exif.Image.Model)");
    EXPECT_EQ(Seen(*Open("p.jpg", {.place = PacketPlace::kSidecar})),
              "Sidecar Works M1(1 Exif.Image.Model)");
    folder_.Write("p.jpg.xmp", With("Model", "M2"));
    EXPECT_EQ(Seen(*Open("p.jpg", {.place = PacketPlace::kSidecar})), "Packet Ltd(4 p.jpg) M2");
    const auto derived = DerivedProperties(*Open("p.jpg", {.place = PacketPlace::kSidecar}));
    EXPECT_EQ(TextOf(derived->Find("tiff:Make")), "Packet Ltd");
    EXPECT_EQ(derived->Find("tiff:Model"), nullptr);
}

TEST_F(DerivedPhotoTest, ARawFile)
{
    folder_.Write("p.nef", Tiff()
                               .Entry(kMakeTag, kText, 5, "ACME\0"s)
                               .Entry(kModelTag, kText, 3, "M1\0"s)
                               .Image()
                               .Xmp(With("Make", "Packet Ltd"))
                               .Bytes());
    const auto meta = Open("p.nef");
    EXPECT_EQ(Seen(*meta), "Packet Ltd(4 p.nef) M1(1 Exif.Image.Model)");
    meta->SetText("tiff:Model", "M3");
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    EXPECT_EQ(Seen(*meta), "Packet Ltd(4 p.nef) M3");
    EXPECT_EQ(Seen(*Open("p.nef")), "Packet Ltd(4 p.nef) M3");
    EXPECT_EQ(Open("p.nef.xmp")->PropertyCount(), 1u);
}

TEST_F(DerivedPhotoTest, ASaveChangesNothingInIt)
{
    folder_.Write("p.jpg", Photo(SmallPacket("t")));
    for (const bool isAskedBefore : {false, true}) {
        SCOPED_TRACE(isAskedBefore);
        const auto meta = Open("p.jpg");
        if (isAskedBefore) {
            EXPECT_EQ(Seen(*meta), kBoth);
        }
        meta->SetText(test::kTitle, isAskedBefore ? "second" : "first");
        EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
        EXPECT_EQ(Seen(*meta), kBoth);
        EXPECT_EQ(meta->Find("tiff:Make"), nullptr);
    }
    const auto meta = Open("p.jpg");
    meta->SetText("tiff:Make", "ACME");
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kNothingToSave);
    meta->SetText("tiff:Make", "ACNE");
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    EXPECT_EQ(Seen(*meta), "ACNE M1(1 Exif.Image.Model)");
    EXPECT_TRUE(meta->Remove("tiff:Make"));
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    EXPECT_EQ(Seen(*Open("p.jpg")), kBoth);
}

// Packet and data would belong to two states of the photo.
TEST_F(DerivedPhotoTest, AChangedPhotoIsNotAsked)
{
    folder_.Write("p.jpg", Photo(SmallPacket("t")));
    const auto changed = Open("p.jpg");
    const auto asked = Open("p.jpg");
    EXPECT_EQ(Seen(*asked), kBoth);
    folder_.Write("p.jpg", Photo(SmallPacket("longer")));
    EXPECT_EQ(Seen(*changed), "- -");
    EXPECT_EQ(Seen(*asked), kBoth);
    const auto gone = Open("p.jpg");
    std::filesystem::remove(folder_.Of("p.jpg"));
    EXPECT_EQ(Seen(*gone), "- -");
    EXPECT_EQ(Seen(*asked), kBoth);
}

}  // namespace
}  // namespace kivxmp
