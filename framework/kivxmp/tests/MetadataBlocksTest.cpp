#include "framework/kivxmp/src/MetadataBlocks.h"

#include <gtest/gtest.h>

#include <kivcore/Trace.h>

#include <memory>
#include <string>
#include <string_view>

#include "framework/kivxmp/src/CondensedTiff.h"
#include "framework/kivxmp/src/IimBlock.h"
#include "framework/kivxmp/src/PngText.h"
#include "framework/kivxmp/src/TagValue.h"
#include "framework/kivxmp/tests/ExifBuilder.h"
#include "framework/kivxmp/tests/JpegBuilder.h"
#include "framework/kivxmp/tests/PhotoBuilders.h"

namespace kivxmp::photo {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;
using test::ExifStream;
using test::Iim;
using test::ImageResource;
using test::Jpeg;
using test::Png;
using test::ResourcesSegment;
using test::Webp;

constexpr unsigned char kApp1 = 0xE1;
constexpr unsigned char kApp13 = 0xED;
constexpr unsigned kIimNumber = 0x0404;

MetadataBlocks Read(const std::string& file)
{
    MemorySource source(file);
    const FormatRow* const row = RecogniseFormat(source);
    return ReadMetadataBlocks(*row->read(source), source);
}

const std::string& Stream()
{
    static const std::string& stream = *new std::string(
        ExifStream(ByteOrder::kBig).Ascii(ExifStream::kImage, 271, "Kivo").Bytes());
    return stream;
}

TEST(MetadataBlocks, Jpeg)
{
    const std::string iim = Iim().Add(2, 5, "Harbour").Bytes();
    const std::string file =
        Jpeg()
            .Segment(kApp13, ResourcesSegment(ImageResource(1005, "ppi", "a name") +
                                              ImageResource(kIimNumber, iim)))
            .Segment(kApp1, "Exif\0\0"s + Stream())
            .Segment(kApp1, "Exif\0\0second"sv)
            .Scan()
            .Bytes();
    EXPECT_EQ(Read(file).exif, Stream());
    EXPECT_EQ(Read(file).iim, iim);
    EXPECT_EQ(Read(Jpeg().App0().Scan().Bytes()).exif, "");
    EXPECT_EQ(Read(Jpeg().App0().Scan().Bytes()).iim, "");
    // Of other makers.
    EXPECT_EQ(Read(Jpeg().Segment(kApp13, "Adobe_CM\0"sv).Scan().Bytes()).iim, "");
    // Where the chain breaks, what stands in front of it counts.
    EXPECT_EQ(Read(Jpeg().Segment(kApp1, "Exif\0\0"s + Stream()).Raw("no marker").Bytes()).exif,
              Stream());
}

TEST(MetadataBlocks, TracesWhatItCannotRead)
{
    std::string traced;
    const int sink = kivcore::debug::AddTraceSink(
        [&](int, const char*, std::string_view text) { traced += std::string(text) + "\n"; });
    kivcore::debug::SetTraceLevel("kivxmp", 1);
    Read(Jpeg().Segment(kApp1, "Exif\0\0no stream at all"sv).Scan().Bytes());
    Read(Jpeg().Segment(kApp1, "Exif\0\0"s + Stream()).Scan().Bytes());
    kivcore::debug::SetTraceLevel("kivxmp", -1);
    kivcore::debug::RemoveTraceSink(sink);
    EXPECT_EQ(traced, "Exif data cannot be read: they hold no directory\n");
}

TEST(MetadataBlocks, ResourcesOfSeveralSegments)
{
    const std::string iim = Iim().Add(2, 120, std::string(100, 'x')).Bytes();
    const std::string resources = ImageResource(1, "odd") + ImageResource(kIimNumber, iim);
    for (const std::size_t cut : {std::size_t{1}, std::size_t{20}, std::size_t{60}}) {
        const std::string file = Jpeg()
                                     .Segment(kApp13, ResourcesSegment(resources.substr(0, cut)))
                                     .Segment(kApp13, ResourcesSegment(resources.substr(cut)))
                                     .Scan()
                                     .Bytes();
        EXPECT_EQ(Read(file).iim, iim) << cut;
    }
}

TEST(MetadataBlocks, ResourcesCutAtEveryLength)
{
    const std::string iim = Iim().Add(2, 5, "Harbour").Bytes();
    const std::string whole =
        ImageResource(1, "odd", "name") + ImageResource(kIimNumber, iim) + ImageResource(2, "x");
    const std::size_t end = whole.find("Harbour") + 7;
    for (std::size_t bytes = 0; bytes <= whole.size(); ++bytes) {
        const std::string cut(whole, 0, bytes);
        EXPECT_EQ(CollectIim(cut), bytes < end ? "" : iim) << bytes;
    }
    // An empty one says nothing, and what is divided belongs together.
    EXPECT_EQ(CollectIim(ImageResource(kIimNumber, "") + ImageResource(kIimNumber, iim) +
                         ImageResource(1, "x") + ImageResource(kIimNumber, iim)),
              iim + iim);
    // A length that lies.
    EXPECT_EQ(CollectIim("8BIM\x04\x04\0\0\xFF\xFF\xFF\xFFxx"sv), "");
    EXPECT_EQ(CollectIim("OTHR\x04\x04\0\0\0\0\0\x02xx"sv), "");
}

TEST(MetadataBlocks, PngAndWebp)
{
    EXPECT_EQ(Read(Png().Chunk("eXIf", Stream()).Image().Bytes()).exif, Stream());
    EXPECT_EQ(Read(Png().Chunk("tIME", "1234567").Image().Bytes()).exif, "");
    EXPECT_EQ(Read(Webp().Extended(8).Image().Chunk("EXIF", Stream()).Bytes()).exif, Stream());
    // Some writers keep JPEG's signature.
    EXPECT_EQ(Read(Webp().Extended(8).Image().Chunk("EXIF", "Exif\0\0"s + Stream()).Bytes()).exif,
              Stream());
    // Too large, also where nothing else is.
    EXPECT_EQ(
        Read(Png().Chunk("eXIf", std::string(kBlockBytesLimit + 1, 'x')).Image().Bytes()).exif, "");
}

std::string Condensed(const std::string& stream)
{
    MemorySource source(stream);
    return CondenseTiff(source).stream;
}

TEST(CondensedTiff, KeepsTheTags)
{
    for (const ByteOrder order : {ByteOrder::kLittle, ByteOrder::kBig}) {
        // What leads elsewhere, and maker notes, go; all others come in their order.
        ExifStream whole(order);
        ExifStream want(order);
        for (ExifStream* const stream : {&whole, &want}) {
            stream->Ascii(ExifStream::kImage, 271, "Kivo")
                .Short(ExifStream::kImage, 274, {6})
                .Ratio(ExifStream::kPhoto, 33437, {{28, 10}})
                .Undefined(ExifStream::kPhoto, 36864, "0232")
                .Ratio(ExifStream::kGps, 2, {{48, 1}, {51, 1}, {0, 1}});
        }
        whole.Long(ExifStream::kImage, 273, {8})
            .Long(ExifStream::kImage, 330, {8, 8})
            .Byte(ExifStream::kImage, 700, "<x:xmpmeta/>")
            .Undefined(ExifStream::kPhoto, 37500, std::string(1000, 'm'))
            .Ascii(ExifStream::kImage, 270, std::string(kTagBytesLimit, 'x'))
            .Byte(ExifStream::kImage, 33723, "IIM")
            .Byte(ExifStream::kImage, 34377, "resources");
        const std::string file = whole.Bytes(/*gap=*/100000);
        MemorySource source(file);
        const CondensedTiff condensed = CondenseTiff(source);
        EXPECT_EQ(condensed.stream, want.Bytes());
        EXPECT_EQ(condensed.iim, "IIM");
        EXPECT_EQ(condensed.imageResources, "resources");
    }
}

/// "\nexif\n       8\n4578..." in lines of 72 digits.
std::string HexProfile(std::string_view name, std::string_view bytes)
{
    std::string text = "\n" + std::string(name) + "\n" + std::to_string(bytes.size()) + "\n";
    constexpr char kDigits[] = "0123456789abcdef";
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        text += kDigits[byte / 16];
        text += kDigits[byte % 16];
        text += i % 36 == 35 ? "\n" : "";
    }
    return text + "\n";
}

TEST(MetadataBlocks, ProfilesOfPng)
{
    const std::string exif = HexProfile("exif", "Exif\0\0"s + Stream());
    const std::string iim = Iim().Add(2, 5, "Harbour").Bytes();
    const std::string iptc = HexProfile("iptc", ImageResource(kIimNumber, iim));
    const std::string packed = test::Packed(exif);

    const MetadataBlocks plain = Read(Png()
                                          .Chunk("tEXt", "Raw profile type exif\0"s + exif)
                                          .Chunk("tEXt", "Raw profile type iptc\0"s + iptc)
                                          .Image()
                                          .Bytes());
    EXPECT_EQ(plain.exif, Stream());
    EXPECT_EQ(plain.iim, iim);
    EXPECT_EQ(Read(Png()
                       .Chunk("tEXt", "Raw profile type iptc\0"s + HexProfile("iptc", iim))
                       .Image()
                       .Bytes())
                  .iim,
              iim);
    const auto packedChunk = [](const std::string& text) {
        return Png().Chunk("zTXt", "Raw profile type APP1\0\0"s + text).Image().Bytes();
    };
    EXPECT_EQ(Read(packedChunk(packed)).exif, Stream());
    // The standard's own chunk counts before it, where it comes first.
    EXPECT_EQ(Read(Png()
                       .Chunk("eXIf", ExifStream().Ascii(ExifStream::kImage, 271, "one").Bytes())
                       .Chunk("tEXt", "Raw profile type exif\0"s + exif)
                       .Image()
                       .Bytes())
                  .exif,
              ExifStream().Ascii(ExifStream::kImage, 271, "one").Bytes());
    // Damaged, cut, of another kind, too long.
    for (std::size_t bytes = 0; bytes < packed.size(); ++bytes) {
        EXPECT_EQ(Read(packedChunk(packed.substr(0, bytes))).exif, "") << bytes;
    }
    for (const std::string& text : {""s, "\n\n"s, "\nexif\n8\nnothing"s, "\nexif\n8\n4"s}) {
        EXPECT_EQ(Read(Png().Chunk("tEXt", "Raw profile type exif\0"s + text).Image().Bytes()).exif,
                  "");
    }
    EXPECT_EQ(Read(Png().Chunk("tEXt", "Raw profile type exif "s + exif).Image().Bytes()).exif, "");
    EXPECT_EQ(ReadProfile("Raw profile type exif\0"s + exif, /*isPacked=*/false, 10), "");
}

TEST(CondensedTiff, MakerNotes)
{
    // Of a note only what is of use comes along.
    const std::string_view head = "Nikon\0\2\x10\0\0"sv;
    const auto nikon = [&](const ExifStream& note) {
        return ExifStream(ByteOrder::kBig)
            .Ascii(ExifStream::kImage, 271, "NIKON CORPORATION")
            .Undefined(ExifStream::kPhoto, 37500, std::string(head) + note.Bytes())
            .Bytes();
    };
    const ExifStream used = ExifStream().Ascii(ExifStream::kImage, 29, "1234567");
    ExifStream whole = used;
    whole.Undefined(ExifStream::kImage, 152, std::string(5000, 'l'))
        .Long(ExifStream::kImage, 17, {8});
    EXPECT_EQ(Condensed(nikon(whole)), nikon(used));
    EXPECT_EQ(Condensed(nikon(used)), nikon(used));
    EXPECT_EQ(
        Condensed(nikon(ExifStream().Ascii(ExifStream::kImage, 30, "of no use"))),
        ExifStream(ByteOrder::kBig).Ascii(ExifStream::kImage, 271, "NIKON CORPORATION").Bytes());
    // Of other makers nothing.
    EXPECT_EQ(Condensed(ExifStream()
                            .Ascii(ExifStream::kImage, 271, "Kivo")
                            .Undefined(ExifStream::kPhoto, 37500, std::string(head) + used.Bytes())
                            .Bytes()),
              ExifStream().Ascii(ExifStream::kImage, 271, "Kivo").Bytes());
}

TEST(CondensedTiff, ValuesOverEachOther)
{
    // 240 directory entries that all lead to the same 60,000 bytes: 14 MB in a stream of 64 KiB.
    std::string stream = "II*\0\x08\0\0\0\xF0\0"s;
    for (std::uint64_t tag = 0; tag < 240; ++tag) {
        stream += NumberBytes(1000 + tag, 2, ByteOrder::kLittle) + "\x07\0\x60\xEA\0\0\x08\0\0\0"s;
    }
    stream.resize(65000);
    EXPECT_LE(Condensed(stream).size(), (1u << 20) + 4000);
    EXPECT_GE(Condensed(stream).size(), 60000u);
}

TEST(CondensedTiff, Damage)
{
    ExifStream stream;
    stream.Ascii(ExifStream::kImage, 271, "Kivo")
        .Entry(ExifStream::kImage, 272, 2, 0xFFFFFFFF, "offset of nothing")
        .Entry(ExifStream::kImage, 305, 99, 4, "type")
        .Entry(ExifStream::kImage, 306, 12, 0x40000000, "more than there is")
        .Ratio(ExifStream::kPhoto, 33437, {{28, 10}});
    const std::string want = ExifStream()
                                 .Ascii(ExifStream::kImage, 271, "Kivo")
                                 .Ratio(ExifStream::kPhoto, 33437, {{28, 10}})
                                 .Bytes();
    const std::string file = stream.Bytes();
    MemorySource source(file);
    EXPECT_EQ(CondenseTiff(source).stream, want);
    // Cut anywhere, whatever is left comes, and nothing but.
    for (std::size_t bytes = 0; bytes < file.size(); ++bytes) {
        const std::unique_ptr<char[]> exact(new char[bytes]);
        file.copy(exact.get(), bytes);
        MemorySource cut({exact.get(), bytes});
        EXPECT_LE(CondenseTiff(cut).stream.size(), want.size()) << bytes;
    }
    // A directory that leads to itself.
    ExifStream circle;
    circle.Long(ExifStream::kImage, 34665, {8}).Ascii(ExifStream::kImage, 271, "Kivo");
    const std::string round = circle.Bytes();
    MemorySource roundSource(round);
    const std::string unrolled = CondenseTiff(roundSource).stream;
    const std::size_t once = unrolled.find("Kivo");
    const std::size_t twice = unrolled.find("Kivo", once + 1);
    EXPECT_NE(twice, std::string::npos);
    EXPECT_EQ(unrolled.find("Kivo", twice + 1), std::string::npos);
    // No classic TIFF.
    for (const std::string_view other :
         {"II+\0\x08\0\0\0"sv, "II*\0"sv, "II*\0\xFF\xFF\xFF\xFF"sv}) {
        MemorySource none(other);
        EXPECT_EQ(CondenseTiff(none).stream, "");
    }
}

TEST(IimBlock, SoundPart)
{
    const std::string good = Iim().Utf8().Add(2, 5, "Harbour").Add(2, 25, "sea").Bytes();
    EXPECT_EQ(SoundIim(good), good);
    EXPECT_EQ(SoundIim(good + std::string(8, '\0')), good);
    EXPECT_EQ(SoundIim(good + "\x1C\x02\x05\x00\xFFshort"s), good);
    // Other records, empty ones, and what is too long.
    EXPECT_EQ(SoundIim(Iim().Add(3, 1, "x").Add(2, 5, "").Add(7, 1, "y").Bytes() + good), good);
    EXPECT_EQ(SoundIim(Iim().Add(2, 202, std::string(kTagBytesLimit + 1, 'p')).Bytes() + good),
              good);
    const std::string extended = Iim().Add(2, 120, std::string(40000, 'c')).Bytes();
    EXPECT_EQ(SoundIim(extended), extended);
    // Lengths of lengths that lie.
    EXPECT_EQ(SoundIim("\x1C\x02\x05\xFF\xFFxxxx"sv), "");
    EXPECT_EQ(SoundIim("\x1C\x02\x05\x80\x04\xFF\xFF\xFF\xFFx"sv), "");
    EXPECT_EQ(SoundIim("\x1C\x02\x05\x80\x00x"sv), "");
    for (std::size_t bytes = 0; bytes < good.size(); ++bytes) {
        const std::string cut(good, 0, bytes);
        EXPECT_TRUE(good.starts_with(SoundIim(cut))) << bytes;
    }
    EXPECT_EQ(SoundIim(""), "");
    EXPECT_EQ(SoundIim("Harbour"), "");

    std::string many;
    for (int i = 0; i < 5000; ++i) {
        many += Iim().Add(2, 25, "k").Bytes();
    }
    EXPECT_EQ(SoundIim(many).size(), 4096u * 6);
}

TEST(IimBlock, FirstDataset)
{
    const std::string iim = Iim().Add(2, 60, "123456").Add(2, 60, "000000+0000").Bytes();
    EXPECT_EQ(FirstDataset(iim, 2, 60), "123456");
    EXPECT_EQ(FirstDataset(iim, 2, 63), "");
    EXPECT_EQ(FirstDataset(iim, 1, 60), "");
    EXPECT_EQ(FirstDataset("", 2, 60), "");
}

}  // namespace
}  // namespace kivxmp::photo
