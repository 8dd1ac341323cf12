// Photos of every format with Exif and IIM data, through the public functions.

#include <kivxmp/Derived.h>
#include <kivxmp/PhotoFile.h>
#include <kivxmp/kivxmp.h>
#include <kivxmp/kivxmp_file.h>

#include <gmock/gmock.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <kivxmp/XMPAccess.h>

#include "framework/kivxmp/tests/ExifBuilder.h"
#include "framework/kivxmp/tests/JpegBuilder.h"
#include "framework/kivxmp/tests/PhotoBuilders.h"
#include "framework/kivxmp/tests/PhotoFolder.h"

namespace kivxmp {
namespace {

using namespace std::string_literals;
using test::ExifStream;
using test::Iim;
using test::Jpeg;
using test::Png;
using test::SmallPacket;
using test::Webp;

constexpr unsigned char kApp1 = 0xE1;
constexpr unsigned char kApp13 = 0xED;

ExifStream Camera(photo::ByteOrder order = photo::ByteOrder::kLittle)
{
    return ExifStream(order)
        .Ascii(ExifStream::kImage, 270, "The last ferry")
        .Ascii(ExifStream::kImage, 271, "Kivo")
        .Ascii(ExifStream::kImage, 315, "Jo Doe")
        .Ratio(ExifStream::kPhoto, 33437, {{28, 10}})
        .Ascii(ExifStream::kPhoto, 36867, "2024:05:03 12:34:56")
        .Ascii(ExifStream::kPhoto, 36881, "+02:00")
        .Ascii(ExifStream::kGps, 1, "N")
        .Ratio(ExifStream::kGps, 2, {{48, 1}, {51, 1}, {2988, 100}});
}

std::string Agency()
{
    return Iim()
        .Utf8()
        .Add(2, 5, "Harbour")
        .Add(2, 25, "sea")
        .Add(2, 25, "sk\xC3\xA4")
        .Add(2, 120, "by IIM")
        .Bytes();
}

std::string JpegWith(const ExifStream& exif, const std::string& iim, const std::string& packet)
{
    Jpeg jpeg;
    jpeg.Segment(kApp1, test::ExifSegment(exif));
    if (!packet.empty()) {
        jpeg.Xmp(packet);
    }
    if (!iim.empty()) {
        jpeg.Segment(kApp13, test::ResourcesSegment(test::ImageResource(0x0404, iim)));
    }
    return jpeg.Scan().Bytes();
}

class DerivedTagsTest : public test::PhotoFolderTest {
protected:
    /// "value (tag)" of a derived property; "" where there is none.
    static std::string Told(const __XMPMeta__& meta, const std::string& path)
    {
        const Node* const node = FindDerived(meta, path);
        const DerivedSource* const source = FindDerivedSource(meta, path);
        if (node == nullptr || source == nullptr) {
            return "";
        }
        return ToJson(meta, node) + " (" + source->detail + ")";
    }
};

TEST_F(DerivedTagsTest, EveryFormat)
{
    ExifStream dng = Camera(photo::ByteOrder::kBig);
    dng.Byte(ExifStream::kImage, 50706, "\1\4\0\0"s).Long(ExifStream::kImage, 256, {32});
    struct Row {
        const char* name;
        std::string bytes;
    };
    const Row rows[] = {
        {"p.jpg", JpegWith(Camera(), "", "")},
        {"big.jpg", JpegWith(Camera(photo::ByteOrder::kBig), "", "")},
        {"p.png", Png().Chunk("eXIf", Camera().Bytes()).Image().Bytes()},
        {"p.webp", Webp().Extended(8).Image().Chunk("EXIF", Camera().Bytes()).Bytes()},
        {"p.tif", Camera().Bytes()},
        {"p.tiff", Camera(photo::ByteOrder::kBig).Bytes(/*gap=*/5000)},
        {"p.dng", dng.Bytes(/*gap=*/100)},
        // A raw file that is TIFF inside has its packet beside it, and tells all the same.
        {"p.nef", Camera().Bytes(/*gap=*/100)},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        folder_.Write(row.name, row.bytes);
        const auto meta = Open(row.name);
        EXPECT_EQ(Told(*meta, "tiff:Make"), R"("Kivo" (Exif.Image.Make))");
        EXPECT_EQ(Told(*meta, "exif:FNumber"), R"("28/10" (Exif.Photo.FNumber))");
        EXPECT_EQ(Told(*meta, "exif:DateTimeOriginal"),
                  R"("2024-05-03T12:34:56+02:00" (Exif.Photo.DateTimeOriginal))");
        EXPECT_EQ(Told(*meta, "exif:GPSLatitude"), R"("48,51.4980N" (Exif.GPSInfo.GPSLatitude))");
        EXPECT_EQ(Told(*meta, "dc:creator"), R"(["Jo Doe"] (Exif.Image.Artist))");
        EXPECT_EQ(Told(*meta, "dc:description"),
                  R"({"x-default":"The last ferry"} (Exif.Image.ImageDescription))");
        EXPECT_EQ(FindDerivedSource(*meta, "tiff:Make")->from, DerivedFrom::kExif);
        EXPECT_EQ(meta->PropertyCount(), 0u);
        EXPECT_FALSE(meta->IsChanged());
    }
}

TEST_F(DerivedTagsTest, PacketThenExifThenIim)
{
    folder_.Write("p.jpg", JpegWith(Camera(), Agency(), SmallPacket("in the packet")));
    const auto meta = Open("p.jpg");
    EXPECT_EQ(Told(*meta, "dc:title"), "");
    EXPECT_EQ(Told(*meta, "dc:description"),
              R"({"x-default":"The last ferry"} (Exif.Image.ImageDescription))");

    folder_.Write("i.jpg",
                  JpegWith(ExifStream().Ascii(ExifStream::kImage, 271, "Kivo"), Agency(), ""));
    const auto other = Open("i.jpg");
    EXPECT_EQ(Told(*other, "dc:title"),
              R"({"x-default":"Harbour"} (Iptc.Application2.ObjectName))");
    EXPECT_EQ(FindDerivedSource(*other, "dc:title")->from, DerivedFrom::kIim);
    EXPECT_EQ(Told(*other, "dc:description"),
              R"({"x-default":"by IIM"} (Iptc.Application2.Caption))");
    EXPECT_EQ(Told(*other, "dc:subject"), "[\"sea\",\"sk\xC3\xA4\"] (Iptc.Application2.Keywords)");
}

/// A maker note with a text of more than four bytes, whose offset counts from the stream's
/// beginning.
std::string NoteOf(const std::string& head, std::uint16_t tag, const std::string& text,
                   std::size_t at)
{
    const auto number = [](std::uint64_t value, std::size_t bytes) {
        return photo::NumberBytes(value, bytes, photo::ByteOrder::kLittle);
    };
    const std::size_t textAt = at + head.size() + 2 + 12 + 4;
    return head + number(1, 2) + number(tag, 2) + number(2, 2) + number(text.size(), 4) +
           number(textAt, 4) + number(0, 4) + text;
}

TEST_F(DerivedTagsTest, MakerNotes)
{
    struct Row {
        const char* make;
        std::string head;
        std::uint16_t tag;
        const char* path;
        const char* want;
    };
    const Row rows[] = {
        {"Canon", "", 149, "aux:Lens", R"("K 50mm" (Exif.Canon.LensModel))"},
        {"Canon", "", 7, "aux:Firmware", R"("K 50mm" (Exif.Canon.FirmwareVersion))"},
        {"Panasonic", "Panasonic\0\0\0"s, 81, "aux:Lens", R"("K 50mm" (Exif.Panasonic.LensType))"},
        {"Kivo", "", 149, "aux:Lens", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.make);
        ExifStream exif;
        exif.Ascii(ExifStream::kImage, 271, row.make);
        // The note's place does not depend on what is in it.
        const auto stream = [&](std::size_t at) {
            const std::string note = NoteOf(row.head, row.tag, "K 50mm\0"s, at);
            return exif.Undefined(ExifStream::kPhoto, 37500, note).Bytes();
        };
        const std::size_t at = stream(0).find("K 50mm") - NoteOf(row.head, 0, "", 0).size();
        folder_.Write("p.tif", stream(at));
        EXPECT_EQ(Told(*Open("p.tif"), row.path), row.want);
        folder_.Write("p.jpg", Jpeg().Segment(kApp1, "Exif\0\0"s + stream(at)).Scan().Bytes());
        EXPECT_EQ(Told(*Open("p.jpg"), row.path), row.want);
    }
    const ExifStream note =
        ExifStream(photo::ByteOrder::kBig)
            .Ascii(ExifStream::kImage, 29, "1234567")
            .Ratio(ExifStream::kImage, 132, {{18, 1}, {70, 1}, {35, 10}, {45, 10}});
    folder_.Write("n.jpg", JpegWith(ExifStream()
                                        .Ascii(ExifStream::kImage, 271, "NIKON CORPORATION")
                                        .Undefined(ExifStream::kPhoto, 37500,
                                                   "Nikon\0\2\x10\0\0"s + note.Bytes()),
                                    "", ""));
    EXPECT_EQ(Told(*Open("n.jpg"), "aux:SerialNumber"), R"("1234567" (Exif.Nikon3.SerialNumber))");
    EXPECT_EQ(Told(*Open("n.jpg"), "aux:LensInfo"),
              R"("18/1 70/1 35/10 45/10" (Exif.Nikon3.Lens))");
}

TEST_F(DerivedTagsTest, IimInTiff)
{
    ExifStream bare = Camera();
    folder_.Write("a.tif", bare.Byte(ExifStream::kImage, 33723, Agency()).Bytes());
    EXPECT_EQ(Told(*Open("a.tif"), "dc:title"),
              R"({"x-default":"Harbour"} (Iptc.Application2.ObjectName))");
    ExifStream resources = Camera();
    resources.Byte(ExifStream::kImage, 34377, test::ImageResource(0x0404, Agency()));
    folder_.Write("b.tif", resources.Bytes());
    EXPECT_EQ(Told(*Open("b.tif"), "dc:title"),
              R"({"x-default":"Harbour"} (Iptc.Application2.ObjectName))");
}

TEST_F(DerivedTagsTest, ThroughTheCInterface)
{
    folder_.Write("p.jpg", JpegWith(Camera(), "", ""));
    __XMPMeta__* meta = nullptr;
    ASSERT_EQ(KivXmpOpenPhoto(folder_.Of("p.jpg").string().c_str(), nullptr, &meta), kKivXmpOk);
    EXPECT_EQ(Told(*meta, "tiff:Make"), R"("Kivo" (Exif.Image.Make))");
    KivXmpRelease(meta);
}

TEST_F(DerivedTagsTest, AChangeWritesThePacketAndNothingElse)
{
    const std::string before = JpegWith(Camera(), Agency(), "");
    folder_.Write("p.jpg", before);
    const auto meta = Open("p.jpg");
    meta->SetText("dc:title[@x-default]", "Evening");
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    const std::string after = folder_.Read("p.jpg");
    EXPECT_NE(after.find(test::ExifSegment(Camera())), std::string::npos);
    EXPECT_NE(after.find(Agency()), std::string::npos);
    const auto again = Open("p.jpg");
    EXPECT_EQ(again->PropertyCount(), 1u);
    EXPECT_EQ(Told(*again, "dc:title"), "");
    // What was not changed goes on being told.
    EXPECT_EQ(Told(*again, "dc:creator"), R"(["Jo Doe"] (Exif.Image.Artist))");
}

TEST_F(DerivedTagsTest, DamageTellsLess)
{
    const std::string stream = Camera().Bytes();
    const std::vector<std::string> damaged = {"",
                                              "I",
                                              "II*",
                                              stream.substr(0, 20),
                                              stream.substr(0, stream.size() / 2),
                                              "MM" + stream.substr(2),
                                              std::string(stream.size(), '\xFF'),
                                              std::string(60000, '\0')};
    for (const std::string& bytes : damaged) {
        folder_.Write("p.jpg", Jpeg()
                                   .Segment(kApp1, "Exif\0\0"s + bytes)
                                   .Segment(kApp13, "Photoshop 3.0\0"s + bytes)
                                   .Xmp(SmallPacket("t"))
                                   .Scan()
                                   .Bytes());
        const auto meta = Open("p.jpg");
        EXPECT_EQ(TextOf(meta->Find("dc:title")), "t");
        EXPECT_EQ(Told(*meta, "exif:FNumber"), "");
        EXPECT_LE(DerivedProperties(*meta)->PropertyCount(), 9u);
        EXPECT_TRUE(GetPhotoInfo(*meta).canSave);
    }
    folder_.Write("big.tif", test::Tiff({.isBig = true}).Image().Bytes());
    EXPECT_EQ(DerivedProperties(*Open("big.tif"))->PropertyCount(), 0u);
}

TEST_F(DerivedTagsTest, ReadAtTheFirstQuestion)
{
    folder_.Write("p.jpg", JpegWith(Camera(), "", ""));
    const auto meta = Open("p.jpg");
    // From another photo than the one that was opened nothing is told.
    folder_.Write("p.jpg", JpegWith(Camera(), Agency(), ""));
    EXPECT_EQ(Told(*meta, "tiff:Make"), "");
}

}  // namespace
}  // namespace kivxmp
