#include "framework/kivxmp/src/JpegFile.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "framework/kivxmp/src/MultiPictureIndex.h"
#include "framework/kivxmp/tests/JpegBuilder.h"

namespace kivxmp::photo {
namespace {

using namespace std::string_view_literals;
using test::Jpeg;
using test::PacketOfSize;
using test::PicturesByIndex;

/// Remembers how far a reader went.
class WatchedSource final : public ByteSource {
public:
    explicit WatchedSource(std::string_view bytes) : memory_(bytes) {}
    std::uint64_t SizeBytes() const noexcept override { return memory_.SizeBytes(); }
    std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t bytes) override
    {
        const std::size_t got = memory_.ReadAt(offset, buffer, bytes);
        total += got;
        return got;
    }

    std::size_t total = 0;

private:
    MemorySource memory_;
};

std::unique_ptr<PhotoFormat> Read(std::string_view bytes)
{
    // A block of exactly the file's size: a sanitizer sees any step behind it.
    const std::unique_ptr<char[]> block(new char[bytes.size()]);
    bytes.copy(block.get(), bytes.size());
    MemorySource source(std::string_view(block.get(), bytes.size()));
    return ReadJpeg(source);
}

std::string Apply(std::string_view bytes, const SavePlan& plan)
{
    std::string saved;
    ApplyPlan(
        plan, bytes.size(),
        [&](ByteRange range) { saved += bytes.substr(range.offset, range.bytes); },
        [&](std::string_view fresh) { saved += fresh; });
    return saved;
}

/// The file with `packet` in it, or the reason why that is refused.
std::string Save(std::string_view bytes, std::string_view packet)
{
    const std::unique_ptr<PhotoFormat> format = Read(bytes);
    try {
        const std::string saved = Apply(bytes, format->Plan(packet));
        MemorySource before(bytes);
        MemorySource after(saved);
        CheckKeptBytes(before, *format, after, *ReadJpeg(after));
        return saved;
    } catch (const PhotoError& error) {
        return error.what();
    }
}

/// The counting packet of a file: "-" where there is none.
std::string Packet(std::string_view bytes)
{
    const std::unique_ptr<PhotoFormat> format = Read(bytes);
    if (format->Packets().empty()) {
        return "-";
    }
    return std::string(bytes.substr(format->Packets()[0].offset, format->Packets()[0].bytes));
}

std::string Refusal(std::string_view bytes)
{
    const std::unique_ptr<PhotoFormat> format = Read(bytes);
    return format->Refusal() ? format->Refusal()->what() : "";
}

struct PlaceCase {
    const char* name;
    std::string before;
    std::string packet;  // found in `before`
    std::string after;   // with the packet "new"
};

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
    for (const PlaceCase& row : PlaceCases()) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(Refusal(row.before), "");
        EXPECT_EQ(Packet(row.before), row.packet);
        EXPECT_TRUE(Save(row.before, "new") == row.after);
        EXPECT_EQ(Packet(row.after), "new");
        // Setting the packet again, and another one and this one again, changes nothing more.
        EXPECT_TRUE(Save(row.after, "new") == row.after);
        EXPECT_TRUE(Save(Save(row.after, "a longer packet"), "new") == row.after);
    }
}

struct RefusalCase {
    const char* name;
    std::string bytes;
    const char* packet;
    const char* reason;
};

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
        {"extended", Jpeg().Exif().Xmp("main").ExtendedXmp().Scan().Bytes(), "main",
         "its metadata is spread over extended segments, which cannot be written yet"},
        {"extended only", Jpeg().ExtendedXmp().Scan().Bytes(), "-",
         "its metadata is spread over extended segments, which cannot be written yet"},
        {"two packets", Jpeg().Xmp("one").Exif().Xmp("two").Scan().Bytes(), "one",
         "it holds several metadata packets, which cannot be put together yet"},
        {"cut within a second packet", Jpeg().Xmp("one").Xmp("two").Bytes().substr(0, 71), "one",
         "it holds several metadata packets, and is cut off within one of them"},
        {"an index without pictures", Jpeg().Segment(0xE2, bigIndex).Scan().Bytes(), "-",
         "its index of further pictures cannot be followed"},
        {"a short index", Jpeg().Segment(0xE2, "MPF\0II"sv).Scan().Bytes(), "-",
         "its index of further pictures cannot be followed"},
        {"cut within the index", Jpeg().Xmp("p").Index(true).Bytes().substr(0, 90), "p",
         "it is cut off within its index of further pictures"},
    };
    for (const RefusalCase& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(Refusal(row.bytes), row.reason);
        EXPECT_EQ(Packet(row.bytes), row.packet);
        EXPECT_EQ(Save(row.bytes, "new"), row.reason);
    }
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
        const std::string saved = Save(cut, "a newer one");
        // Where an index is cut, its pointers cannot be followed.
        const bool inIndex = bytes >= indexBegin + 4 + 4 && bytes < indexEnd;
        if (bytes < packetEnd || inIndex) {
            EXPECT_NE(Refusal(cut), "");
            EXPECT_EQ(saved, Refusal(cut));
        } else {
            EXPECT_EQ(Refusal(cut), "");
            EXPECT_TRUE(saved == fresh + cut.substr(packetEnd));
        }
    }
}

TEST(JpegFile, PacketLimit)
{
    const std::string photo = Jpeg().Exif().Scan().Bytes();
    const std::string largest = PacketOfSize(65502, "t");
    EXPECT_TRUE(Save(photo, largest) == Jpeg().Exif().Xmp(largest).Scan().Bytes());
    EXPECT_EQ(Save(photo, PacketOfSize(65503, "t")),
              "the metadata takes 65503 bytes; one segment of a JPEG file holds 65502");
    // The segment has room for two bytes more than the standard allows. Such a packet is read.
    const std::string larger = PacketOfSize(65504, "t");
    const std::string lax = Jpeg().Exif().Xmp(larger).Scan().Bytes();
    EXPECT_TRUE(Packet(lax) == larger);
    EXPECT_TRUE(Save(lax, largest) == Jpeg().Exif().Xmp(largest).Scan().Bytes());
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
            EXPECT_TRUE(Save(before, "a packet of another length") == after);
            EXPECT_TRUE(Save(after, "old") == before);
            const std::vector<std::string> pictures = PicturesByIndex(after);
            ASSERT_EQ(pictures.size(), 3u);
            EXPECT_TRUE(pictures[0] == after.substr(0, after.find("second")));
            EXPECT_EQ(pictures[1], "second picture");
            EXPECT_EQ(pictures[2], "third");
        }
        EXPECT_TRUE(Save(build("", true), "fresh") == build("fresh", true));
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
    EXPECT_EQ(Save(bytes, "new"), "its index of further pictures cannot be corrected");
}

// An offset that no longer fits is refused, not wrapped around.
TEST(JpegFile, RefusesAnIndexThatWouldOverflow)
{
    std::string bytes = Jpeg().Index(true).Xmp("old").Scan().Picture("x").Bytes();
    const std::size_t offsetField = bytes.find("MPF\0"sv) + 4 + 8 + 2 + 36 + 4 + 16 + 8;
    bytes.replace(offsetField, 4, "\xFF\xFF\xFF\xFE");
    EXPECT_EQ(Save(bytes, "a longer one"), "its index of further pictures cannot be corrected");
    // Two bytes less in front of it: it still fits.
    EXPECT_EQ(Save(bytes, "o").substr(offsetField, 4), "\xFF\xFF\xFF\xFC");
}

TEST(CheckKeptBytes, SeesEveryByteOutsideOfThePacket)
{
    const std::string before =
        Jpeg().Exif().Xmp("old").Index(true).Scan().Picture("second").Bytes();
    const std::string after = Save(before, "fresh packet");
    const std::size_t packet = after.find("fresh packet");
    MemorySource original(before);
    const std::unique_ptr<PhotoFormat> format = ReadJpeg(original);
    std::size_t seen = 0;
    for (std::size_t at = 0; at < after.size(); ++at) {
        std::string damaged = after;
        damaged[at] = static_cast<char>(damaged[at] ^ 0x01);
        MemorySource written(damaged);
        bool refused = false;
        try {
            CheckKeptBytes(original, *format, written, *ReadJpeg(written));
        } catch (const PhotoError&) {
            refused = true;
        }
        // The packet is compared by itself, as a tree.
        const bool inPacket = at >= packet && at < packet + 12;
        EXPECT_EQ(refused, !inPacket) << at;
        seen += refused ? 1 : 0;
    }
    EXPECT_EQ(seen, after.size() - 12);
    for (std::size_t bytes = 0; bytes < after.size(); ++bytes) {
        MemorySource written(std::string_view(after).substr(0, bytes));
        EXPECT_THROW(CheckKeptBytes(original, *format, written, *ReadJpeg(written)), PhotoError);
    }
}

}  // namespace
}  // namespace kivxmp::photo
