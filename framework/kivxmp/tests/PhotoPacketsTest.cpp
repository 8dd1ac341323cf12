#include "framework/kivxmp/src/PhotoPackets.h"

#include <gmock/gmock.h>

#include <kivxmp/PhotoFile.h>

#include <string>
#include <string_view>
#include <vector>

#include "framework/kivxmp/src/PacketDigest.h"
#include "framework/kivxmp/tests/JpegBuilder.h"
#include "framework/kivxmp/tests/PhotoBuilders.h"
#include "framework/kivxmp/tests/PhotoFolder.h"
#include "framework/kivxmp/tests/SamplePhotos.h"

namespace kivxmp {
namespace {

using photo::PacketDigest;
using test::Jpeg;
using test::kSamplePhotos;
using test::kTitle;
using test::Png;
using test::SamplePhoto;
using test::SmallPacket;
using test::Tiff;
using test::Webp;
using ::testing::ElementsAre;

class PhotoPacketsTest : public test::PhotoFolderTest {};

/// RDF with these elements and attributes in one description.
std::string Rdf(std::string_view elements, std::string_view attributes = "")
{
    return "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
           "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description rdf:about='' "
           "xmlns:dc='http://purl.org/dc/elements/1.1/' xmlns:my='http://example.org/my/' "
           "xmlns:xmpNote='http://ns.adobe.com/xmp/note/' " +
           std::string(attributes) + ">" + std::string(elements) +
           "</rdf:Description></rdf:RDF></x:xmpmeta>";
}

TEST_F(PhotoPacketsTest, EveryFormatTakesAFirstPacketAndAnotherOne)
{
    for (const SamplePhoto& row : kSamplePhotos) {
        SCOPED_TRACE(row.format);
        folder_.Write(row.name, row.build(""));
        std::unique_ptr<__XMPMeta__> meta = Open(row.name);
        PhotoInfo info = GetPhotoInfo(*meta);
        EXPECT_EQ(info.format, row.format);
        EXPECT_EQ(info.place, PacketPlace::kEmbedded);
        EXPECT_FALSE(info.packetFound);
        EXPECT_TRUE(info.canSave) << info.reason;
        EXPECT_EQ(meta->PropertyCount(), 0u);

        meta->SetText(kTitle, "first");
        EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
        info = GetPhotoInfo(*meta);
        EXPECT_TRUE(info.packetFound);
        EXPECT_EQ(folder_.Read(row.name).substr(info.packetOffset, info.packetBytes),
                  meta->Serialize());
        EXPECT_EQ(Title(row.name), "first");

        // The padding of the first packet takes the second one: the file keeps its length.
        const std::size_t bytes = folder_.Read(row.name).size();
        Retitle(row.name, "second");
        EXPECT_EQ(folder_.Read(row.name).size(), bytes);
        EXPECT_EQ(Title(row.name), "second");
        // One that outgrows its place.
        Retitle(row.name, std::string(100000, 'x'));
        EXPECT_EQ(Title(row.name), std::string(100000, 'x'));
        Retitle(row.name, "third");
        EXPECT_EQ(Title(row.name), "third");
        std::filesystem::remove(folder_.Of(row.name));
        EXPECT_THAT(folder_.Names(), ElementsAre());
    }
}

// Two packets as two editors leave them: the first one counts, and takes over what it lacks.
TEST_F(PhotoPacketsTest, SeveralPacketsBecomeOne)
{
    const std::string first = Rdf("<dc:format>image/x</dc:format>", "my:both='first'");
    const std::string second =
        Rdf("<dc:subject><rdf:Bag><rdf:li>sea</rdf:li></rdf:Bag></dc:subject>"
            "<my:box rdf:parseType='Resource'><my:a>1</my:a></my:box>",
            "my:both='second'");
    const std::string third = Rdf("<my:last xml:lang='de'>3</my:last>");
    const struct {
        const char* name;
        std::string bytes;
    } rows[] = {
        {"p.jpg", Jpeg().Xmp(first).Exif().Xmp(second).Xmp(third).Scan().Bytes()},
        {"p.png", Png().Xmp(first).PackedXmp(second).Image().Raw("").Xmp(third).Bytes()},
        {"compressed.png", Png()
                               .PackedXmp(first, "en", "k")
                               .Chunk("IDAT", "x")
                               .Xmp(second)
                               .PackedXmp(third)
                               .Chunk("IEND", "")
                               .Bytes()},
        {"p.webp", Webp().Extended(4).Image().Xmp(first).Xmp(second).Xmp(third).Bytes()},
        {"around.webp", Webp().Extended(4).Xmp(first).Image().Xmp(second).Xmp(third).Bytes()},
        {"before.webp", Webp().Extended(4).Xmp(first).Xmp(second).Xmp(third).Image().Bytes()},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        folder_.Write(row.name, row.bytes);
        std::unique_ptr<__XMPMeta__> meta = Open(row.name);
        EXPECT_TRUE(GetPhotoInfo(*meta).canSave);
        // Nobody changed anything yet.
        EXPECT_FALSE(meta->IsChanged());
        EXPECT_EQ(SavePhoto(*meta), SaveResult::kNothingToSave);
        EXPECT_TRUE(folder_.Read(row.name) == row.bytes);

        Retitle(row.name, "edited");
        meta = Open(row.name);
        EXPECT_EQ(Title(row.name), "edited");
        EXPECT_EQ(TextOf(meta->Find("dc:format")), "image/x");
        EXPECT_EQ(TextOf(meta->Find("{http://example.org/my/}both")), "first");
        EXPECT_EQ(TextOf(meta->Find("dc:subject[1]")), "sea");
        EXPECT_EQ(TextOf(meta->Find("my:box/my:a")), "1");
        const bool hasThird = std::string_view(row.name) != "p.png";  // it stood behind the end
        EXPECT_EQ(meta->Find("my:last") != nullptr, hasThird);
        const std::string after = folder_.Read(row.name);
        EXPECT_EQ(after.find("second"), std::string::npos);
    }
}

std::string Main(const std::string& digest)
{
    return Rdf("<dc:format>image/jpeg</dc:format><xmpNote:HasExtendedXMP>" + digest +
               "</xmpNote:HasExtendedXMP>");
}

TEST_F(PhotoPacketsTest, AnExtendedPartBelongsToItsPacket)
{
    const std::string extended = Rdf("<my:long>" + std::string(70000, 'l') + "</my:long>");
    const std::string digest = PacketDigest(extended);
    const std::string photo = Jpeg()
                                  .Xmp(Main(digest))
                                  .Extended(digest, extended.size(), 0, extended.substr(0, 60000))
                                  .Extended(digest, extended.size(), 60000, extended.substr(60000))
                                  .Scan()
                                  .Bytes();
    folder_.Write("p.jpg", photo);
    std::unique_ptr<__XMPMeta__> meta = Open("p.jpg");
    EXPECT_EQ(TextOf(meta->Find("{http://example.org/my/}long"))->size(), 70000u);
    EXPECT_EQ(meta->Find("xmpNote:HasExtendedXMP"), nullptr);
    EXPECT_TRUE(GetPhotoInfo(*meta).canSave);
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kNothingToSave);
    EXPECT_TRUE(folder_.Read("p.jpg") == photo);

    Retitle("p.jpg", "edited");
    meta = Open("p.jpg");
    EXPECT_EQ(Title("p.jpg"), "edited");
    EXPECT_EQ(TextOf(meta->Find("dc:format")), "image/jpeg");
    EXPECT_EQ(TextOf(meta->Find("my:long"))->size(), 70000u);

    // What has room again comes back into the packet.
    meta->SetText("my:long", "short");
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    const std::string after = folder_.Read("p.jpg");
    EXPECT_EQ(after.find("http://ns.adobe.com/xmp/extension/"), std::string::npos);
    EXPECT_EQ(after.find("HasExtendedXMP"), std::string::npos);
    EXPECT_EQ(TextOf(Open("p.jpg")->Find("my:long")), "short");
}

// The pieces tell where they belong; writers put them in any order, and other things between them.
TEST_F(PhotoPacketsTest, ExtendedPiecesStandInAnyOrder)
{
    const std::string extended = Rdf("<my:long>" + std::string(150000, 'l') + "</my:long>");
    const std::string digest = PacketDigest(extended);
    const std::string main = Main(digest);
    constexpr std::size_t kPiece = 60000;
    const auto piece = [&](std::size_t number) {
        const std::size_t at = number * kPiece;
        return Jpeg()
            .Extended(digest, extended.size(), at, extended.substr(at, kPiece))
            .Bytes()
            .substr(2);
    };
    const std::string foreign = Jpeg().Extended("A", 4, 0, "<x/>").Bytes().substr(2);
    const struct {
        const char* about;
        std::string bytes;
    } rows[] = {
        {"backwards", Jpeg().Xmp(main).Raw(piece(2)).Raw(piece(1)).Raw(piece(0)).Scan().Bytes()},
        {"the first one last",
         Jpeg().Exif().Xmp(main).Raw(piece(1)).Raw(piece(2)).Raw(piece(0)).Scan().Bytes()},
        {"before the packet",
         Jpeg().Raw(piece(0)).Raw(piece(2)).Raw(piece(1)).Exif().Xmp(main).Scan().Bytes()},
        {"around the packet, others between", Jpeg()
                                                  .Raw(piece(1))
                                                  .Raw(foreign)
                                                  .Xmp(main)
                                                  .Profile(99)
                                                  .Raw(piece(2))
                                                  .Comment("c")
                                                  .Raw(piece(0))
                                                  .Exif()
                                                  .Scan()
                                                  .Bytes()},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.about);
        folder_.Write("p.jpg", row.bytes);
        std::unique_ptr<__XMPMeta__> meta = Open("p.jpg");
        EXPECT_TRUE(GetPhotoInfo(*meta).canSave) << GetPhotoInfo(*meta).reason;
        EXPECT_EQ(TextOf(meta->Find("my:long")), std::string(150000, 'l'));
        EXPECT_EQ(SavePhoto(*meta), SaveResult::kNothingToSave);
        EXPECT_TRUE(folder_.Read("p.jpg") == row.bytes);

        Retitle("p.jpg", "edited");
        EXPECT_EQ(TextOf(Open("p.jpg")->Find("my:long")), std::string(150000, 'l'));
        EXPECT_EQ(Title("p.jpg"), "edited");
        // What was between them is there still, in its order.
        std::string rest = folder_.Read("p.jpg");
        std::size_t at = 0;
        for (const std::string& other : {foreign, std::string("\xFF\xE2"), std::string("\xFF\xFE"),
                                         std::string("Exif"), Jpeg().Scan().Bytes().substr(2)}) {
            if (row.bytes.find(other) != std::string::npos) {
                at = rest.find(other, at);
                EXPECT_NE(at, std::string::npos);
            }
        }
        // With one of them gone it is shown, and not saved.
        std::string gap = row.bytes;
        gap.replace(
            gap.find(digest, gap.find(main) < gap.find(digest) ? gap.find(main) + main.size() : 0),
            1, "!");
        folder_.Write("p.jpg", gap);
        meta = Open("p.jpg");
        EXPECT_FALSE(GetPhotoInfo(*meta).canSave);
        EXPECT_EQ(TextOf(meta->Find("dc:format")), "image/jpeg");
    }
}

struct SpreadCase {
    const char* name;
    std::string bytes;
    const char* format;  // of dc:format: what can be shown is shown
    const char* reason;
};

TEST_F(PhotoPacketsTest, WhatCannotBePutTogetherIsShownAndNotSaved)
{
    const std::string extended = Rdf("<my:long>l</my:long>");
    const std::string digest = PacketDigest(extended);
    const std::string other(32, 'A');
    const std::string broken = "<x:xmpmeta";
    const std::string twins = Rdf("<my:twin>1</my:twin><my:twin>2</my:twin>");
    const auto photo = [](const std::string& main, const std::string& named,
                          const std::string& text) {
        return Jpeg().Xmp(main).Extended(named, text.size(), 0, text).Scan().Bytes();
    };
    const char* const missing =
        "a part of its metadata, which an extended segment held, is missing";
    const SpreadCase rows[] = {
        {"none", Jpeg().Xmp(Main(digest)).Scan().Bytes(), "image/jpeg", missing},
        {"another's", photo(Main(digest), other, extended), "image/jpeg", missing},
        {"a gap",
         Jpeg()
             .Xmp(Main(digest))
             .Extended(digest, extended.size(), 1, extended.substr(1))
             .Scan()
             .Bytes(),
         "image/jpeg", missing},
        {"changed", photo(Main(other), other, extended), "image/jpeg",
         "the extended part of its metadata is not the one that was written"},
        {"broken", photo(Main(PacketDigest(broken)), PacketDigest(broken), broken), "image/jpeg",
         "the extended part of its metadata cannot be read: "},
        {"one property twice", photo(Main(PacketDigest(twins)), PacketDigest(twins), twins),
         "image/jpeg", "the parts of its metadata cannot be put together"},
        {"a second packet that is none",
         Jpeg().Xmp(Rdf("<dc:format>image/jpeg</dc:format>")).Xmp("<").Scan().Bytes(), "image/jpeg",
         "it holds several metadata packets, which cannot be put together"},
        {"a second packet that has lost a part",
         Jpeg().Xmp(Rdf("<dc:format>image/jpeg</dc:format>")).Xmp(Main(digest)).Scan().Bytes(),
         "image/jpeg", "it holds several metadata packets, which cannot be put together"},
    };
    for (const SpreadCase& row : rows) {
        SCOPED_TRACE(row.name);
        folder_.Write("p.jpg", row.bytes);
        const std::unique_ptr<__XMPMeta__> meta = Open("p.jpg");
        EXPECT_EQ(TextOf(meta->Find("dc:format")), row.format);
        EXPECT_FALSE(GetPhotoInfo(*meta).canSave);
        EXPECT_THAT(GetPhotoInfo(*meta).reason, ::testing::StartsWith(row.reason));
        meta->SetText(kTitle, "edited");
        EXPECT_THAT(Failure([&] { SavePhoto(*meta); }),
                    ::testing::StartsWith("38 p.jpg: " + std::string(row.reason)));
        EXPECT_TRUE(folder_.Read("p.jpg") == row.bytes);
        EXPECT_THAT(folder_.Names(), ElementsAre("p.jpg"));
    }
}

// The largest properties go into the extended part, until the rest fits; not one byte earlier.
TEST_F(PhotoPacketsTest, APacketThatOutgrowsItsSegmentIsSplit)
{
    const std::string photo = Jpeg().Exif().Scan().Bytes();
    folder_.Write("p.jpg", photo);
    std::unique_ptr<__XMPMeta__> meta = Open("p.jpg");
    meta->SetText("dc:source", "x");
    const std::size_t frame = meta->Serialize({.maxBytes = 1}).size() - 1;

    meta->SetText("dc:source", std::string(65502 - frame, 'x'));
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    EXPECT_EQ(folder_.Read("p.jpg").size(), photo.size() + 4 + 29 + 65502);

    meta->SetText("dc:source", std::string(65503 - frame, 'x'));
    meta->SetText("dc:format", "image/jpeg");
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    const PhotoInfo info = GetPhotoInfo(*meta);
    const std::string main = folder_.Read("p.jpg").substr(info.packetOffset, info.packetBytes);
    EXPECT_LE(main.size(), 65502u);
    EXPECT_NE(main.find("image/jpeg"), std::string::npos);
    EXPECT_NE(main.find("HasExtendedXMP"), std::string::npos);
    EXPECT_EQ(main.find("dc:source"), std::string::npos);
    EXPECT_EQ(TextOf(Open("p.jpg")->Find("dc:source"))->size(), 65503 - frame);
    EXPECT_FALSE(meta->IsChanged());

    // Many small properties, of which most have to go.
    for (int i = 0; i < 3000; ++i) {
        meta->SetText("{http://example.org/my/}p" + std::to_string(i), std::string(50, 'v'));
    }
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    meta = Open("p.jpg");
    EXPECT_EQ(meta->PropertyCount(), 3002u);
    EXPECT_EQ(TextOf(meta->Find("{http://example.org/my/}p2999")), std::string(50, 'v'));
    EXPECT_THAT(folder_.Names(), ElementsAre("p.jpg"));
}

// A program that knows nothing of extended parts took the packet away and left them behind.
TEST_F(PhotoPacketsTest, PiecesOfTheSamePartThatWereLeftBehindAreReplaced)
{
    const std::string text(70000, 'x');
    folder_.Write("first.jpg", Jpeg().Exif().Scan().Bytes());
    std::unique_ptr<__XMPMeta__> meta = Open("first.jpg");
    meta->SetText("dc:source", text);
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    const PhotoInfo info = GetPhotoInfo(*meta);
    std::string left = folder_.Read("first.jpg");
    constexpr std::size_t kSegmentHead = 2 + 2 + 29;
    left.erase(info.packetOffset - kSegmentHead, info.packetBytes + kSegmentHead);
    folder_.Write("p.jpg", left);

    meta = Open("p.jpg");
    EXPECT_EQ(meta->PropertyCount(), 0u);
    meta->SetText("dc:source", text);
    EXPECT_EQ(Failure([&] { SavePhoto(*meta); }), "");
    EXPECT_EQ(TextOf(Open("p.jpg")->Find("dc:source")), text);
    EXPECT_TRUE(folder_.Read("p.jpg") == folder_.Read("first.jpg"));
}

// A packet that nobody can move away, because it holds a property twice.
TEST_F(PhotoPacketsTest, APacketThatCannotBeSplitHasNoPlace)
{
    const std::string twin = "<my:twin>" + std::string(40000, 't') + "</my:twin>";
    const std::string sidecar = Rdf(twin + twin);
    const std::unique_ptr<__XMPMeta__> big = __XMPMeta__::Parse(sidecar);
    const std::string photo = Jpeg().Exif().Scan().Bytes();
    folder_.Write("p.jpg", photo);
    const std::unique_ptr<__XMPMeta__> meta = Open("p.jpg");
    big->SetOrigin(meta->GetOrigin());
    big->SetText(kTitle, "edited");
    EXPECT_THAT(Failure([&] { SavePhoto(*big); }),
                ::testing::StartsWith("39 p.jpg: the metadata takes"));
    EXPECT_TRUE(folder_.Read("p.jpg") == photo);
}

/// A packet with its wrapper and that much padding.
std::string Wrapped(std::string_view rdf, std::size_t paddingBytes)
{
    return "<?xpacket begin='\xEF\xBB\xBF' id='W5M0MpCehiHzreSzNTczkc9d'?>\n" + std::string(rdf) +
           std::string(paddingBytes, ' ') + "<?xpacket end='w'?>";
}

/// Puts the packet in place of the photo's own; "written", "unchanged", or why not.
std::string Insert(__XMPMeta__& meta, const std::string& packet)
{
    meta.ReplacePacket(*__XMPMeta__::Parse(packet));
    try {
        return SavePhoto(meta) == SaveResult::kSaved ? "written" : "unchanged";
    } catch (const XMP_Error& error) {
        const std::string text = error.Text();
        return text.substr(text.rfind(": ") + 2);
    }
}

TEST_F(PhotoPacketsTest, AWholePacketIsReplacedByteForByte)
{
    // Longer and shorter than what it replaces, with and without a wrapper.
    const std::string packets[] = {
        Wrapped(Rdf("<my:a>1</my:a><!-- kept -->"), 4000),
        Wrapped(Rdf("<my:b>2</my:b>"), 10),
        Rdf("<my:c>3</my:c>", "my:d = '4'") + "\n",
    };
    for (const SamplePhoto& row : kSamplePhotos) {
        for (const bool hadOne : {false, true}) {
            SCOPED_TRACE(row.format + std::string(hadOne ? " with a packet" : " without"));
            folder_.Write(row.name, row.build(hadOne ? SmallPacket("old") : ""));
            for (const std::string& packet : packets) {
                EXPECT_EQ(Insert(*Open(row.name), packet), "written");
                const PhotoInfo info = GetPhotoInfo(*Open(row.name));
                const std::string there =
                    folder_.Read(row.name).substr(info.packetOffset, info.packetBytes);
                // Where the place is longer, spaces fill it.
                EXPECT_EQ(there.substr(0, packet.size()), packet);
                EXPECT_EQ(there.find_first_not_of(' ', packet.size()), std::string::npos);
                EXPECT_EQ(Title(row.name), "-");

                const std::string saved = folder_.Read(row.name);
                EXPECT_EQ(Insert(*Open(row.name), packet), "unchanged");
                EXPECT_TRUE(folder_.Read(row.name) == saved);
            }
        }
    }
}

TEST_F(PhotoPacketsTest, ASidecarIsReplacedByteForByte)
{
    const std::string packet = "\xFF\xFE" + [] {
        std::string wide;
        for (const char c : Rdf("<my:a>1</my:a>")) {
            wide += {c, '\0'};
        }
        return wide;
    }();
    folder_.Write("p.xmp", SmallPacket("old"));
    EXPECT_EQ(Insert(*Open("p.xmp"), packet), "written");
    EXPECT_TRUE(folder_.Read("p.xmp") == packet);
    EXPECT_EQ(Insert(*Open("p.xmp"), packet), "unchanged");

    // In a photo only UTF-8 is at home.
    folder_.Write("p.jpg", Jpeg().Exif().Scan().Bytes());
    EXPECT_THAT(Insert(*Open("p.jpg"), packet), ::testing::StartsWith("a photo takes"));
}

TEST_F(PhotoPacketsTest, AReplacingPacketThatDoesNotFitGivesUpItsPadding)
{
    folder_.Write("p.jpg", Jpeg().Exif().Scan().Bytes());
    EXPECT_EQ(Insert(*Open("p.jpg"), Wrapped(Rdf("<my:a>1</my:a>"), 70000)), "written");
    const PhotoInfo info = GetPhotoInfo(*Open("p.jpg"));
    EXPECT_EQ(info.packetBytes, 65502u);
    EXPECT_EQ(TextOf(Open("p.jpg")->Find("my:a")), "1");

    // What has no room without padding either goes into an extended part.
    const std::string big = Wrapped(Rdf("<my:a>" + std::string(80000, 'x') + "</my:a>"), 0);
    EXPECT_EQ(Insert(*Open("p.jpg"), big), "written");
    EXPECT_EQ(TextOf(Open("p.jpg")->Find("my:a"))->size(), 80000u);
    const std::string saved = folder_.Read("p.jpg");
    EXPECT_EQ(Insert(*Open("p.jpg"), big), "unchanged");
    EXPECT_TRUE(folder_.Read("p.jpg") == saved);

    // As another program extracts it: the part in the segment alone. The rest must not be lost.
    const std::string main = saved.substr(GetPhotoInfo(*Open("p.jpg")).packetOffset,
                                          GetPhotoInfo(*Open("p.jpg")).packetBytes);
    EXPECT_THAT(Insert(*Open("p.jpg"), main), ::testing::StartsWith("the packet tells of"));
    EXPECT_TRUE(folder_.Read("p.jpg") == saved);
}

TEST_F(PhotoPacketsTest, AReplacingPacketIsHeldToTheFilesState)
{
    const std::string packet = Wrapped(Rdf("<my:a>1</my:a>"), 10);
    folder_.Write("p.jpg", Jpeg().Exif().Xmp(SmallPacket("old")).Scan().Bytes());
    const std::unique_ptr<__XMPMeta__> meta = Open("p.jpg");
    // The very packet comes there by another program: the file is not the one that was opened.
    folder_.Write("p.jpg", Jpeg().Exif().Xmp(packet).Scan().Bytes());
    EXPECT_THAT(Insert(*meta, packet), ::testing::HasSubstr("nothing was written"));

    // Several packets become that one.
    folder_.Write("p.jpg", Jpeg().Xmp(packet).Xmp(SmallPacket("second")).Scan().Bytes());
    EXPECT_EQ(Insert(*Open("p.jpg"), packet), "written");
    EXPECT_TRUE(folder_.Read("p.jpg") == Jpeg().Xmp(packet).Scan().Bytes());
}

}  // namespace
}  // namespace kivxmp
