#include "framework/kivxmp/src/PngFile.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "framework/kivxmp/tests/FormatHarness.h"
#include "framework/kivxmp/tests/PhotoBuilders.h"

namespace kivxmp::photo {
namespace {

using namespace std::string_view_literals;
using test::FormatHarness;
using test::PlaceCase;
using test::Png;
using test::RefusalCase;
using test::WatchedSource;

const FormatHarness kPng(ReadPng);

TEST(PngFile, PlacesThePacket)
{
    const std::string packed("XML:com.adobe.xmp\0\0x\x9C\x03\0\0\0\0\x01"sv);
    const std::string plain("XML:com.adobe.xmp\0old"sv);
    const std::string foreign("XML:com.adobe.xmp2\0\0\0\0\0old"sv);
    const PlaceCase rows[] = {
        {"behind the image header", Png().Chunk("gAMA", "1234").Image().Bytes(), "-",
         Png().Xmp("new").Chunk("gAMA", "1234").Image().Bytes()},
        {"in place", Png().Chunk("gAMA", "1234").Xmp("old one").Image().Bytes(), "old one",
         Png().Chunk("gAMA", "1234").Xmp("new").Image().Bytes()},
        {"behind the image data", Png().Chunk("IDAT", "x").Xmp("old").Chunk("IEND", "").Bytes(),
         "old", Png().Chunk("IDAT", "x").Xmp("new").Chunk("IEND", "").Bytes()},
        {"an empty packet", Png().Xmp("").Image().Bytes(), "", Png().Xmp("new").Image().Bytes()},
        {"compressed", Png().PackedXmp("old").Image().Bytes(), "old",
         Png().Xmp("new").Image().Bytes()},
        {"compressed, with a language", Png().PackedXmp("old", "en", "metadata").Image().Bytes(),
         "old", Png().Xmp("new").Image().Bytes()},
        // One packet is written in the first one's place, and the others go.
        {"several", Png().Xmp("a").Chunk("tEXt", "k\0v"sv).PackedXmp("b").Image().Bytes(), "a",
         Png().Xmp("new").Chunk("tEXt", "k\0v"sv).Image().Bytes()},
        {"another keyword", Png().Chunk("iTXt", foreign).Image().Bytes(), "-",
         Png().Xmp("new").Chunk("iTXt", foreign).Image().Bytes()},
        // A packet stands in iTXt and nowhere else: what other kinds of text hold is foreign.
        {"the keyword in other kinds of text",
         Png().Chunk("zTXt", packed).Chunk("tEXt", plain).Image().Bytes(), "-",
         Png().Xmp("new").Chunk("zTXt", packed).Chunk("tEXt", plain).Image().Bytes()},
        {"among other kinds of text",
         Png().Chunk("zTXt", packed).PackedXmp("a").Chunk("tEXt", plain).Xmp("b").Image().Bytes(),
         "a", Png().Chunk("zTXt", packed).Xmp("new").Chunk("tEXt", plain).Image().Bytes()},
        {"several, compressed first",
         Png()
             .PackedXmp("a", "en")
             .Chunk("IDAT", "x")
             .Xmp("b")
             .PackedXmp("c")
             .Chunk("IEND", "")
             .Bytes(),
         "a", Png().Xmp("new").Chunk("IDAT", "x").Chunk("IEND", "").Bytes()},
        {"a profile as old programs left it",
         Png().Chunk("zTXt", "Raw profile type xmp\0\0x"sv).Image().Bytes(), "-",
         Png().Xmp("new").Chunk("zTXt", "Raw profile type xmp\0\0x"sv).Image().Bytes()},
        {"bytes behind the end", Png().Xmp("old").Image().Raw("trailer iTXt").Bytes(), "old",
         Png().Xmp("new").Image().Raw("trailer iTXt").Bytes()},
    };
    kPng.ExpectPlaces(rows);
}

TEST(PngFile, Refusals)
{
    std::string wrongSum = Png().Xmp("old").Bytes();
    wrongSum.back() = static_cast<char>(wrongSum.back() ^ 1);
    std::string noType = Png().Xmp("old").Image().Bytes();
    noType.replace(noType.find("IDAT"), 4, "ID T");
    std::string tooLong = Png().Image().Bytes();
    tooLong[tooLong.find("IDAT") - 4] = '\x80';
    const std::string notPacked("XML:com.adobe.xmp\0\x01\0\0\0what"sv);
    const RefusalCase rows[] = {
        {"nothing behind the signature", Png().Bytes().substr(0, 8), "-",
         "the file is cut off before its end"},
        {"no end", Png().Chunk("IDAT", "x").Bytes(), "-", "the file is cut off before its end"},
        {"cut within the packet", Png().Xmp("old").Bytes().substr(0, 60), "-",
         "the file is cut off before its end"},
        {"another first chunk", Png().Bytes().substr(0, 8) + Png().Image().Bytes().substr(33), "-",
         "its structure is damaged: no chunk at byte 8"},
        {"a second image header", Png().Bytes() + Png().Bytes().substr(8), "-",
         "its structure is damaged: no chunk at byte 33"},
        {"a length of four gigabytes", tooLong, "-",
         "its structure is damaged: no chunk at byte 33"},
        // Damage behind the packet: shown, but what follows is unknown.
        {"no type", noType, "old", "its structure is damaged: no chunk at byte 70"},
        {"a wrong checksum", wrongSum + Png().Image().Bytes().substr(33), "old",
         "its metadata is damaged: the checksum is wrong at byte 33"},
        {"a compression nobody knows",
         Png().Chunk("iTXt", "XML:com.adobe.xmp\0\x01\x01\0\0x"sv).Image().Bytes(), "-",
         "its structure is damaged: a text chunk that cannot be read at byte 33"},
        {"a flag nobody knows",
         Png().Chunk("iTXt", "XML:com.adobe.xmp\0\x02\0\0\0x"sv).Image().Bytes(), "-",
         "its structure is damaged: a text chunk that cannot be read at byte 33"},
        {"no text", Png().Chunk("iTXt", "XML:com.adobe.xmp\0\0"sv).Image().Bytes(), "-",
         "its structure is damaged: a text chunk that cannot be read at byte 33"},
    };
    kPng.ExpectRefusals(rows, "new");
    EXPECT_EQ(kPng.Packet(Png().Chunk("iTXt", notPacked).Image().Bytes()),
              "its compressed metadata cannot be unpacked at byte 33");
}

// A packet that unpacks to more than a packet may be costs no more memory than one that may be.
TEST(PngFile, UnpacksNoMoreThanAPacketMayBe)
{
    const std::string bytes =
        Png().PackedXmp(std::string(kPacketBytesLimit + 1, 'x')).Image().Bytes();
    EXPECT_EQ(kPng.Packet(bytes), "its compressed metadata cannot be unpacked at byte 33");
    EXPECT_EQ(
        kPng.Packet(Png().PackedXmp(std::string(kPacketBytesLimit, 'x')).Image().Bytes()).size(),
        kPacketBytesLimit);
}

// Up to the packet's end a cut file is refused; behind it, it is saved as it is.
TEST(PngFile, CutAtEveryLength)
{
    const std::string whole = Png().Xmp("the old one").Chunk("tEXt", "behind").Image().Bytes();
    const std::size_t packetEnd = Png().Xmp("the old one").Size();
    const std::string fresh = Png().Xmp("a new packet").Bytes();
    for (std::size_t bytes = 8; bytes < whole.size(); ++bytes) {
        SCOPED_TRACE(bytes);
        const std::string cut = whole.substr(0, bytes);
        const std::string saved = kPng.Save(cut, "a new packet");
        if (bytes < packetEnd) {
            EXPECT_EQ(saved, "the file is cut off before its end");
        } else {
            EXPECT_TRUE(saved == fresh + cut.substr(packetEnd));
        }
    }
}

TEST(PngFile, EveryByteOfASaveIsChecked)
{
    kPng.ExpectEveryByteIsChecked(
        Png().Chunk("gAMA", "1234").Xmp("old").PackedXmp("two").Image().Raw("behind").Bytes(),
        "fresh packet");
    kPng.ExpectEveryByteIsChecked(Png().Image().Bytes(), "fresh packet");
}

TEST(PngFile, ReadsOnlyHeadersBesidesThePacket)
{
    const std::string bytes = Png()
                                  .Chunk("iCCP", std::string(100000, 'p'))
                                  .Xmp("old")
                                  .Chunk("IDAT", std::string(1000000, 'i'))
                                  .Chunk("IEND", "")
                                  .Bytes();
    WatchedSource source(bytes);
    EXPECT_FALSE(ReadPng(source)->Refusal());
    EXPECT_LT(source.total, 10000u);
}

}  // namespace
}  // namespace kivxmp::photo
