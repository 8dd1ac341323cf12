#include <kivxmp/Derived.h>

#include <gmock/gmock.h>

#include <string>

#include <kivxmp/PhotoFile.h>
#include <kivxmp/XMPAccess.h>

#include "framework/kivxmp/tests/JpegBuilder.h"
#include "framework/kivxmp/tests/PhotoFolder.h"

namespace kivxmp {
namespace {

using test::Jpeg;
using test::SmallPacket;

class DerivedTest : public test::PhotoFolderTest {};

std::string PacketWith(const std::string& properties)
{
    return "<x:xmpmeta xmlns:x='adobe:ns:meta/'>"
           "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
           "<rdf:Description rdf:about='' xmlns:dc='http://purl.org/dc/elements/1.1/'"
           " xmlns:xmp='http://ns.adobe.com/xap/1.0/' xmlns:other='http://other.example/'>" +
           properties + "</rdf:Description></rdf:RDF></x:xmpmeta>";
}

TEST_F(DerivedTest, WhatThePacketLacks)
{
    folder_.Write("p.jpg", Jpeg().Xmp(SmallPacket("inside")).Scan().Bytes());
    folder_.Write("p.jpg.xmp",
                  PacketWith("<dc:title>beside</dc:title><xmp:Label>red</xmp:Label>"
                             "<other:list><rdf:Bag><rdf:li>one</rdf:li></rdf:Bag></other:list>"));
    const auto meta = Open("p.jpg");
    // Hidden, in whatever form.
    EXPECT_EQ(FindDerived(*meta, "dc:title"), nullptr);
    EXPECT_EQ(FindDerivedSource(*meta, "dc:title"), nullptr);
    EXPECT_EQ(FindDerived(*meta, "dc:title[@de]"), nullptr);
    EXPECT_EQ(TextOf(FindWithDerived(*meta, "dc:title")), "inside");

    EXPECT_EQ(TextOf(FindDerived(*meta, "xmp:Label")), "red");
    EXPECT_EQ(TextOf(FindWithDerived(*meta, "xmp:Label")), "red");
    EXPECT_EQ(TextOf(FindDerived(*meta, "{http://other.example/}list[1]")), "one");
    EXPECT_EQ(FindDerived(*meta, "{http://other.example/}list[2]"), nullptr);
    const DerivedSource sidecar{DerivedFrom::kSidecar, "p.jpg.xmp"};
    ASSERT_NE(FindDerivedSource(*meta, "xmp:Label"), nullptr);
    EXPECT_EQ(*FindDerivedSource(*meta, "xmp:Label"), sidecar);
    ASSERT_NE(FindDerivedSource(*meta, "{http://other.example/}list[2]"), nullptr);
    EXPECT_EQ(FindDerivedSource(*meta, "xmp:Rating"), nullptr);
    EXPECT_EQ(FindDerived(*meta, "xmp:Rating"), nullptr);
    EXPECT_THROW(FindDerived(*meta, "xmp:"), XMP_Error);

    EXPECT_EQ(DerivedPackets(*meta), std::vector<DerivedSource>{sidecar});
    const auto derived = DerivedProperties(*meta);
    EXPECT_EQ(derived->PropertyCount(), 2u);
    EXPECT_EQ(TextOf(derived->Find("xmp:Label")), "red");

    // It is there for clones, and in nothing that is written.
    const auto clone = meta->Clone();
    EXPECT_EQ(TextOf(FindDerived(*clone, "xmp:Label")), "red");
    EXPECT_FALSE(meta->IsChanged());
    EXPECT_EQ(meta->Find("xmp:Label"), nullptr);
    EXPECT_EQ(meta->Serialize(), SmallPacket("inside"));
}

TEST_F(DerivedTest, SavesAndRemovals)
{
    folder_.Write("p.jpg", Jpeg().Xmp(SmallPacket("inside")).Scan().Bytes());
    folder_.Write("p.jpg.xmp", PacketWith("<dc:title>beside</dc:title><xmp:Label>red</xmp:Label>"
                                          "<xmp:Rating>2</xmp:Rating>"));
    const std::string sidecar = folder_.Read("p.jpg.xmp");
    const auto meta = Open("p.jpg");
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kNothingToSave);
    meta->SetText("xmp:Label", "blue");
    EXPECT_EQ(FindDerived(*meta, "xmp:Label"), nullptr);
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    // Against the new packet.
    EXPECT_EQ(FindDerived(*meta, "xmp:Label"), nullptr);
    EXPECT_EQ(TextOf(FindDerived(*meta, "xmp:Rating")), "2");
    EXPECT_FALSE(meta->IsChanged());
    EXPECT_EQ(meta->Find("xmp:Rating"), nullptr);
    EXPECT_EQ(TextOf(Open("p.jpg")->Find("xmp:Label")), "blue");
    EXPECT_EQ(folder_.Read("p.jpg.xmp"), sidecar);

    meta->Remove("dc:title");
    EXPECT_EQ(TextOf(FindWithDerived(*meta, "dc:title")), "beside");
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    EXPECT_EQ(TextOf(FindWithDerived(*meta, "dc:title")), "beside");
    EXPECT_EQ(TextOf(FindWithDerived(*Open("p.jpg"), "dc:title")), "beside");
}

TEST_F(DerivedTest, AReplacedPacketHidesWhatItHolds)
{
    folder_.Write("p.jpg", Jpeg().Xmp(SmallPacket("inside")).Scan().Bytes());
    folder_.Write("p.jpg.xmp", PacketWith("<dc:title>beside</dc:title><xmp:Label>red</xmp:Label>"));
    const auto meta = Open("p.jpg");
    // A property that equals the derived one belongs to the packet that was put there.
    const std::string packet = PacketWith("<xmp:Label>red</xmp:Label>");
    meta->ReplacePacket(*__XMPMeta__::Parse(packet));
    EXPECT_EQ(FindDerivedSource(*meta, "xmp:Label"), nullptr);
    EXPECT_EQ(TextOf(FindWithDerived(*meta, "dc:title")), "beside");
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    EXPECT_EQ(TextOf(meta->Find("xmp:Label")), "red");
    EXPECT_EQ(TextOf(FindDerived(*meta, "dc:title")), "beside");
    EXPECT_EQ(Open("p.jpg")->PropertyCount(), 1u);
}

// A sidecar that is a copy of a photo's main packet names the extended part that the photo has. The
// name goes into the photo all the same.
TEST_F(DerivedTest, ASidecarThatNamesTheSameExtendedPart)
{
    folder_.Write("p.jpg", Jpeg().Xmp(SmallPacket("t")).Scan().Bytes());
    const std::string longText(70'000, 'l');
    const auto meta = Open("p.jpg");
    meta->SetText("dc:source", longText);
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    const PhotoInfo info = GetPhotoInfo(*meta);
    folder_.Write("p.jpg.xmp", folder_.Read("p.jpg").substr(info.packetOffset, info.packetBytes));
    const auto again = Open("p.jpg");
    EXPECT_NE(FindDerivedSource(*again, "xmpNote:HasExtendedXMP"), nullptr);
    again->SetText(test::kTitle, "edited");
    EXPECT_EQ(SavePhoto(*again), SaveResult::kSaved);
    EXPECT_EQ(Title("p.jpg"), "edited");
    EXPECT_EQ(TextOf(Open("p.jpg")->Find("dc:source")), longText);
}

TEST_F(DerivedTest, AnObjectOfNoFileHasNone)
{
    const auto meta = __XMPMeta__::Parse(SmallPacket("t"));
    EXPECT_EQ(FindDerived(*meta, "xmp:Label"), nullptr);
    EXPECT_EQ(FindDerivedSource(*meta, "dc:title"), nullptr);
    EXPECT_EQ(TextOf(FindWithDerived(*meta, "dc:title")), "t");
    EXPECT_EQ(DerivedProperties(*meta)->PropertyCount(), 0u);
    EXPECT_TRUE(DerivedPackets(*meta).empty());
}

}  // namespace
}  // namespace kivxmp
