#include "framework/kivxmp/src/JpegFile.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "framework/kivxmp/src/PacketDigest.h"
#include "framework/kivxmp/tests/FormatHarness.h"
#include "framework/kivxmp/tests/JpegBuilder.h"

namespace kivxmp::photo {
namespace {

using namespace std::string_view_literals;
using test::FormatHarness;
using test::Jpeg;
using test::PacketOfSize;
using test::PicturesByIndex;
using test::PlaceCase;
using test::RefusalCase;
using test::WatchedSource;

const FormatHarness kJpeg(ReadJpeg);

std::vector<PlaceCase> PlaceCases()
{
    const std::string picture = Jpeg().Scan().Bytes();
    return {
        {"behind Exif", Jpeg().App0().Exif().Profile(9).Scan().Bytes(), "-",
         Jpeg().App0().Exif().Xmp("new").Profile(9).Scan().Bytes()},
        {"behind APP0", Jpeg().App0().Profile(9).Scan().Bytes(), "-",
         Jpeg().App0().Xmp("new").Profile(9).Scan().Bytes()},
        {"behind SOI", Jpeg().Scan().Bytes(), "-", Jpeg().Xmp("new").Scan().Bytes()},
        {"in place", Jpeg().App0().Exif().Xmp("old one").Scan().Bytes(), "old one",
         Jpeg().App0().Exif().Xmp("new").Scan().Bytes()},
        {"an empty packet", Jpeg().Exif().Xmp("").Scan().Bytes(), "",
         Jpeg().Exif().Xmp("new").Scan().Bytes()},
        // An unusual order is nobody's mistake, and stays.
        {"before Exif", Jpeg().Xmp("old").Exif().App0().Scan().Bytes(), "old",
         Jpeg().Xmp("new").Exif().App0().Scan().Bytes()},
        {"behind everything", Jpeg().Exif().Profile(9).Comment("c").Xmp("old").Scan().Bytes(),
         "old", Jpeg().Exif().Profile(9).Comment("c").Xmp("new").Scan().Bytes()},
        {"Exif behind others", Jpeg().Profile(9).Comment("c").Exif().Scan().Bytes(), "-",
         Jpeg().Profile(9).Comment("c").Exif().Xmp("new").Scan().Bytes()},
        {"several APP0", Jpeg().App0().App0().Profile(9).App0().Scan().Bytes(), "-",
         Jpeg().App0().App0().Xmp("new").Profile(9).App0().Scan().Bytes()},
        {"fill bytes", Jpeg().Fill(3).App0().Fill(1).Exif().Fill(2).Xmp("o").Fill(9).Scan().Bytes(),
         "o", Jpeg().Fill(3).App0().Fill(1).Exif().Fill(2).Xmp("new").Fill(9).Scan().Bytes()},
        {"fill bytes behind the place", Jpeg().Exif().Fill(2).Scan().Bytes(), "-",
         Jpeg().Exif().Xmp("new").Fill(2).Scan().Bytes()},
        {"standalone markers", Jpeg().Standalone(0x01).Exif().Standalone(0xD3).Scan().Bytes(), "-",
         Jpeg().Standalone(0x01).Exif().Xmp("new").Standalone(0xD3).Scan().Bytes()},
        // An extended part that no packet names is a foreign segment.
        {"an extended part of nobody's",
         Jpeg().Exif().Xmp("main").Extended("A", 4, 0, "<x/>").Scan().Bytes(), "main",
         Jpeg().Exif().Xmp("new").Extended("A", 4, 0, "<x/>").Scan().Bytes()},
        {"an extended part without a packet", Jpeg().Extended("A", 4, 0, "<x/>").Scan().Bytes(),
         "-", Jpeg().Xmp("new").Extended("A", 4, 0, "<x/>").Scan().Bytes()},
        {"an extended segment that is too short",
         Jpeg().Segment(0xE1, "http://ns.adobe.com/xmp/extension/\0AAAA"sv).Scan().Bytes(), "-",
         Jpeg()
             .Xmp("new")
             .Segment(0xE1, "http://ns.adobe.com/xmp/extension/\0AAAA"sv)
             .Scan()
             .Bytes()},
        // One packet is written in the first one's place, and the others go.
        {"two packets", Jpeg().Xmp("one").Exif().Xmp("two").Scan().Bytes(), "one",
         Jpeg().Xmp("new").Exif().Scan().Bytes()},
        {"three packets in a row", Jpeg().Xmp("one").Xmp("two").Xmp("").Scan().Bytes(), "one",
         Jpeg().Xmp("new").Scan().Bytes()},
        {"an empty segment", Jpeg().Segment(0xE1, "").Segment(0xE5, "").Xmp("old").Scan().Bytes(),
         "old", Jpeg().Segment(0xE1, "").Segment(0xE5, "").Xmp("new").Scan().Bytes()},
        {"a trailer", Jpeg().Exif().Scan().Trailer("trailer \xFF\xE1").Bytes(), "-",
         Jpeg().Exif().Xmp("new").Scan().Trailer("trailer \xFF\xE1").Bytes()},
        // What stands behind the scan's beginning is no business of ours.
        {"a packet of a later picture",
         Jpeg().Exif().Scan().Trailer(Jpeg().Xmp("its own").Scan().Bytes()).Bytes(), "-",
         Jpeg().Exif().Xmp("new").Scan().Trailer(Jpeg().Xmp("its own").Scan().Bytes()).Bytes()},
        {"a signature without its zero",
         Jpeg().Segment(0xE1, "http://ns.adobe.com/xap/1.0/").Exif().Scan().Bytes(), "-",
         Jpeg().Segment(0xE1, "http://ns.adobe.com/xap/1.0/").Exif().Xmp("new").Scan().Bytes()},
        {"the signature in another segment",
         Jpeg().Segment(0xE3, "http://ns.adobe.com/xap/1.0/\0x"sv).Scan().Bytes(), "-",
         Jpeg().Xmp("new").Segment(0xE3, "http://ns.adobe.com/xap/1.0/\0x"sv).Scan().Bytes()},
        // Nothing but the scan's marker is needed to know that all segments were seen.
        {"cut behind the scan's marker", Jpeg().Exif().Raw("\xFF\xDA").Bytes(), "-",
         Jpeg().Exif().Xmp("new").Raw("\xFF\xDA").Bytes()},
    };
}

TEST(JpegFile, PlacesThePacket)
{
    kJpeg.ExpectPlaces(PlaceCases());
}

TEST(JpegFile, Refusals)
{
    const std::string bigIndex = std::string("MPF\0"sv) + "MM" + std::string("\0*\0\0\0\x08"sv);
    const RefusalCase rows[] = {
        {"nothing behind SOI", Jpeg().Bytes(), "-", "the file is cut off before its image data"},
        {"only fill bytes", Jpeg().Fill(9).Bytes(), "-",
         "the file is cut off before its image data"},
        {"cut between segments", Jpeg().App0().Exif().Bytes(), "-",
         "the file is cut off before its image data"},
        {"cut within the packet", Jpeg().Exif().Xmp("abc").Bytes().substr(0, 72), "-",
         "the file is cut off within its metadata packet"},
        {"no marker", Jpeg().Exif().Raw("x").Scan().Bytes(), "-",
         "its structure is damaged: no marker at byte 38"},
        {"a zero marker", Jpeg().Exif().Raw("\xFF\0\0\x04zz"sv).Scan().Bytes(), "-",
         "its structure is damaged: a marker out of place at byte 38"},
        {"a zero length", Jpeg().Raw("\xFF\xE1\0\0"sv).Scan().Bytes(), "-",
         "its structure is damaged: an impossible segment length at byte 4"},
        {"a length of one", Jpeg().Raw("\xFF\xE1\0\x01"sv).Scan().Bytes(), "-",
         "its structure is damaged: an impossible segment length at byte 4"},
        {"a second beginning", Jpeg().Raw("\xFF\xD8").Exif().Scan().Bytes(), "-",
         "its structure is damaged: a marker out of place at byte 2"},
        {"an end without image data", Jpeg().Exif().Raw("\xFF\xD9").Bytes(), "-",
         "its structure is damaged: a marker out of place at byte 38"},
        {"a length behind the end", Jpeg().Exif().Raw("\xFF\xDB\x7F\xFFzz").Bytes(), "-",
         "the file is cut off before its image data"},
        // Damage behind the packet: shown, but what follows is unknown, pointers included.
        {"no marker behind the packet", Jpeg().Xmp("p").Raw("x").Scan().Bytes(), "p",
         "its structure is damaged: no marker at byte 36"},
        {"cut within an extended part",
         Jpeg().Xmp("main").Extended("A", 4, 0, "<x/>").Bytes().substr(0, 80), "main",
         "it is cut off within an extended part of its metadata"},
        {"cut within a second packet", Jpeg().Xmp("one").Xmp("two").Bytes().substr(0, 71), "one",
         "it holds several metadata packets, and is cut off within one of them"},
        {"an index without pictures", Jpeg().Segment(0xE2, bigIndex).Scan().Bytes(), "-",
         "its index of further pictures cannot be followed"},
        {"a short index", Jpeg().Segment(0xE2, "MPF\0II"sv).Scan().Bytes(), "-",
         "its index of further pictures cannot be followed"},
        {"cut within the index", Jpeg().Xmp("p").Index(true).Bytes().substr(0, 90), "p",
         "it is cut off within its index of further pictures"},
    };
    kJpeg.ExpectRefusals(rows, "new");
}

// Up to the packet's end a cut file is refused; behind it, it is saved as it is.
TEST(JpegFile, CutAtEveryLength)
{
    const auto build = [](std::string_view packet) {
        return Jpeg().App0().Exif().Xmp(packet).Comment("behind").Index(false).Scan();
    };
    const std::string whole = build("the old one").Bytes();
    const std::size_t packetEnd = Jpeg().App0().Exif().Xmp("the old one").Size();
    const std::size_t indexBegin = Jpeg().App0().Exif().Xmp("the old one").Comment("behind").Size();
    const std::size_t indexEnd =
        Jpeg().App0().Exif().Xmp("the old one").Comment("behind").Index(false).Size();
    const std::string fresh = Jpeg().App0().Exif().Xmp("a newer one").Bytes();
    ASSERT_EQ(fresh.size(), packetEnd);

    for (std::size_t bytes = 2; bytes < whole.size(); ++bytes) {
        SCOPED_TRACE(bytes);
        const std::string cut = whole.substr(0, bytes);
        const std::string saved = kJpeg.Save(cut, "a newer one");
        // Where an index is cut, its pointers cannot be followed.
        const bool inIndex = bytes >= indexBegin + 4 + 4 && bytes < indexEnd;
        if (bytes < packetEnd || inIndex) {
            EXPECT_NE(kJpeg.Refusal(cut), "");
            EXPECT_EQ(saved, kJpeg.Refusal(cut));
        } else {
            EXPECT_EQ(kJpeg.Refusal(cut), "");
            EXPECT_TRUE(saved == fresh + cut.substr(packetEnd));
        }
    }
}

TEST(JpegFile, PacketLimit)
{
    const std::string photo = Jpeg().Exif().Scan().Bytes();
    const std::string largest = PacketOfSize(65502, "t");
    EXPECT_TRUE(kJpeg.Save(photo, largest) == Jpeg().Exif().Xmp(largest).Scan().Bytes());
    EXPECT_EQ(kJpeg.Save(photo, PacketOfSize(65503, "t")),
              "the metadata takes 65503 bytes; one segment of a JPEG file holds 65502");
    // The segment has room for two bytes more than the standard allows. Such a packet is read.
    const std::string larger = PacketOfSize(65504, "t");
    const std::string lax = Jpeg().Exif().Xmp(larger).Scan().Bytes();
    EXPECT_TRUE(kJpeg.Packet(lax) == larger);
    EXPECT_TRUE(kJpeg.Save(lax, largest) == Jpeg().Exif().Xmp(largest).Scan().Bytes());
}

std::string Digest(std::string_view bytes)
{
    return PacketDigest(bytes);
}

// The pieces stand behind the packet, each with the digest and the length of the whole and its
// place in it. Those of an earlier save go, wherever they stood.
TEST(JpegFile, WritesAnExtendedPartInPieces)
{
    constexpr std::size_t kPiece = 65458;
    const std::string photo =
        Jpeg().Exif().Xmp("main").Profile(9).Extended("A", 4, 0, "<x/>").Scan().Bytes();
    for (const std::size_t bytes : {std::size_t{1}, kPiece, kPiece + 1, 3 * kPiece}) {
        SCOPED_TRACE(bytes);
        const std::string text(bytes, 'e');
        Jpeg want;
        want.Exif().Xmp("new");
        for (std::size_t at = 0; at < bytes; at += kPiece) {
            want.Extended(Digest(text), bytes, at, std::string_view(text).substr(at, kPiece));
        }
        const std::string saved = kJpeg.Save(photo, PacketParts{"new", text});
        EXPECT_TRUE(saved == want.Profile(9).Extended("A", 4, 0, "<x/>").Scan().Bytes());
        EXPECT_TRUE(kJpeg.Save(saved, PacketParts{"new", text}, Digest(text)) == saved);
        EXPECT_TRUE(kJpeg.Save(saved, PacketParts{"main", ""}, Digest(text)) == photo);
    }
}

struct ExtendedCase {
    const char* name;
    std::string bytes;
    std::optional<std::string> text;
};

TEST(JpegFile, JoinsExtendedPieces)
{
    const ExtendedCase rows[] = {
        {"one", Jpeg().Xmp("").Extended("D", 3, 0, "abc").Scan().Bytes(), "abc"},
        {"in order", Jpeg().Extended("D", 5, 0, "abc").Extended("D", 5, 3, "de").Scan().Bytes(),
         "abcde"},
        {"out of order",
         Jpeg().Extended("D", 5, 3, "de").Xmp("").Extended("D", 5, 0, "abc").Scan().Bytes(),
         "abcde"},
        {"between those of another",
         Jpeg()
             .Extended("D", 5, 0, "abc")
             .Extended("E", 9, 0, "x")
             .Extended("D", 5, 3, "de")
             .Scan()
             .Bytes(),
         "abcde"},
        {"no piece", Jpeg().Xmp("").Extended("E", 3, 0, "abc").Scan().Bytes(), std::nullopt},
        {"a gap", Jpeg().Extended("D", 5, 0, "ab").Extended("D", 5, 3, "de").Scan().Bytes(),
         std::nullopt},
        {"an overlap", Jpeg().Extended("D", 5, 0, "abcd").Extended("D", 5, 3, "de").Scan().Bytes(),
         std::nullopt},
        {"the same piece twice",
         Jpeg().Extended("D", 3, 0, "abc").Extended("D", 3, 0, "abc").Scan().Bytes(), std::nullopt},
        {"the beginning missing", Jpeg().Extended("D", 5, 3, "de").Scan().Bytes(), std::nullopt},
        {"the end missing", Jpeg().Extended("D", 5, 0, "abc").Scan().Bytes(), std::nullopt},
        {"different lengths",
         Jpeg().Extended("D", 5, 0, "abc").Extended("D", 6, 3, "de").Scan().Bytes(), std::nullopt},
    };
    const std::string digest = std::string(31, '0') + "D";
    for (const ExtendedCase& row : rows) {
        SCOPED_TRACE(row.name);
        MemorySource source(row.bytes);
        EXPECT_EQ(ReadJpeg(source)->TakeExtended(digest, source), row.text);
    }
}

// RFC 1321's own examples.
TEST(PacketDigest, IsMd5)
{
    EXPECT_EQ(PacketDigest(""), "D41D8CD98F00B204E9800998ECF8427E");
    EXPECT_EQ(PacketDigest("abc"), "900150983CD24FB0D6963F7D28E17F72");
    EXPECT_EQ(PacketDigest("12345678901234567890123456789012345678901234567890123456789012345678901"
                           "234567890"),
              "57EDF4A22BE3C955AC49DA2E2107B67A");
}

TEST(JpegFile, ReadsNothingBehindTheBeginningOfTheScan)
{
    const std::string photo = Jpeg()
                                  .App0()
                                  .Exif()
                                  .Xmp(PacketOfSize(40000, "t"))
                                  .Profile(60000)
                                  .Scan()
                                  .Trailer(std::string(1000000, 'i'))
                                  .Bytes();
    WatchedSource source(photo);
    const std::unique_ptr<PhotoFormat> format = ReadJpeg(source);
    EXPECT_FALSE(format->Refusal());
    // The segments' contents are passed over, too.
    EXPECT_LT(source.total, 10000u);
}

TEST(JpegFile, CorrectsTheIndexOfFurtherPictures)
{
    for (const bool bigEndian : {false, true}) {
        SCOPED_TRACE(bigEndian);
        const auto build = [bigEndian](std::string_view packet, bool packetFirst) {
            Jpeg jpeg;
            jpeg.App0().Exif();
            if (packetFirst && !packet.empty()) {
                jpeg.Xmp(packet);
            }
            jpeg.Index(bigEndian);
            if (!packetFirst && !packet.empty()) {
                jpeg.Xmp(packet);
            }
            return jpeg.Profile(40)
                .Scan()
                .Picture("second picture")
                .Trailer("gap")
                .Picture("third")
                .Trailer("end")
                .Bytes();
        };
        for (const bool packetFirst : {false, true}) {
            SCOPED_TRACE(packetFirst);
            const std::string before = build("old", packetFirst);
            const std::string after = build("a packet of another length", packetFirst);
            EXPECT_TRUE(kJpeg.Save(before, "a packet of another length") == after);
            EXPECT_TRUE(kJpeg.Save(after, "old") == before);
            const std::vector<std::string> pictures = PicturesByIndex(after);
            ASSERT_EQ(pictures.size(), 3u);
            EXPECT_TRUE(pictures[0] == after.substr(0, after.find("second")));
            EXPECT_EQ(pictures[1], "second picture");
            EXPECT_EQ(pictures[2], "third");
        }
        EXPECT_TRUE(kJpeg.Save(build("", true), "fresh") == build("fresh", true));
    }
}

// A pointer that leads into the packet itself belongs to a file that nobody understands.
TEST(JpegFile, RefusesAnIndexThatLeadsIntoThePacket)
{
    Jpeg jpeg;
    jpeg.Index(true).Xmp("the old packet").Scan();
    std::string bytes = jpeg.Picture("x").Bytes();
    const std::size_t index = bytes.find("MPF\0"sv) + 4;
    const std::size_t offsetField = index + 8 + 2 + 36 + 4 + 16 + 8;
    const std::size_t offset = bytes.find("old packet") - index;
    ASSERT_LT(offset, 256u);
    bytes.replace(offsetField, 4, std::string(3, '\0') + static_cast<char>(offset));
    EXPECT_EQ(kJpeg.Save(bytes, "new"), "its index of further pictures cannot be corrected");
}

// Nor may it lead into itself: what it points to would not be the same afterwards.
TEST(JpegFile, RefusesAnIndexThatLeadsIntoItself)
{
    std::string bytes = Jpeg().Index(true).Xmp("the old packet").Scan().Picture("x").Bytes();
    const std::size_t index = bytes.find("MPF\0"sv) + 4;
    const std::size_t entries = index + 8 + 2 + 36 + 4;
    const std::size_t offset = entries + 4 - index;
    bytes.replace(entries + 16 + 8, 4, std::string(3, '\0') + static_cast<char>(offset));
    EXPECT_EQ(kJpeg.Save(bytes, "new"), "its index of further pictures cannot be corrected");
}

// An offset that no longer fits is refused, not wrapped around.
TEST(JpegFile, RefusesAnIndexThatWouldOverflow)
{
    std::string bytes = Jpeg().Index(true).Xmp("old").Scan().Picture("x").Bytes();
    const std::size_t offsetField = bytes.find("MPF\0"sv) + 4 + 8 + 2 + 36 + 4 + 16 + 8;
    bytes.replace(offsetField, 4, "\xFF\xFF\xFF\xFE");
    EXPECT_EQ(kJpeg.Save(bytes, "a longer one"),
              "its index of further pictures cannot be corrected");
    // Two bytes less in front of it: it still fits.
    EXPECT_EQ(kJpeg.Save(bytes, "o").substr(offsetField, 4), "\xFF\xFF\xFF\xFC");
}

TEST(JpegFile, EveryByteOfASaveIsChecked)
{
    kJpeg.ExpectEveryByteIsChecked(
        Jpeg().Exif().Xmp("old").Comment("c").Index(true).Scan().Picture("second").Bytes(),
        "fresh packet");
    kJpeg.ExpectEveryByteIsChecked(Jpeg().Exif().Profile(9).Scan().Bytes(), "fresh packet");
}

}  // namespace
}  // namespace kivxmp::photo
