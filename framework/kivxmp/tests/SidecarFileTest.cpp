#include "framework/kivxmp/src/SidecarFile.h"

#include <gmock/gmock.h>

#include <kivcore/StringConversion.h>
#include <kivxmp/PhotoFile.h>
#include <kivxmp/XMPAccess.h>

#include <string>

#include "framework/kivcore/tests/TestFolder.h"
#include "framework/kivxmp/tests/JpegBuilder.h"
#include "framework/kivxmp/tests/PhotoBuilders.h"

namespace kivxmp {
namespace {

using namespace std::string_literals;
using kivcore::UString;
using test::Jpeg;
using test::SmallPacket;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

const std::string kGif = "GIF89athe rest is not looked at";
constexpr char kTitle[] = "dc:title[@x-default]";

struct NameCase {
    const char16_t* path;
    const char16_t* full;
    const char16_t* brief;
    const char16_t* extension;
};

TEST(SidecarNames, Cases)
{
    const NameCase rows[] = {
        {u"/a/b.JPG", u"/a/b.JPG.xmp", u"/a/b.xmp", u"jpg"},
        {u"b.tar.gz", u"b.tar.gz.xmp", u"b.tar.xmp", u"gz"},
        {u"/a/b", u"/a/b.xmp", u"/a/b.xmp", u""},
        // The folder's dot is not the file's.
        {u"/a.d/b", u"/a.d/b.xmp", u"/a.d/b.xmp", u""},
        {u"/a/.hidden", u"/a/.hidden.xmp", u"/a/.hidden.xmp", u""},
        {u"/a/b.", u"/a/b..xmp", u"/a/b.xmp", u""},
        {u"/a/b.XMP", u"/a/b.XMP.xmp", u"/a/b.xmp", u"xmp"},
    };
    for (const NameCase& row : rows) {
        SCOPED_TRACE(kivcore::string::UTF16to8(row.path));
        EXPECT_EQ(photo::FullSidecarName(row.path), row.full);
        EXPECT_EQ(photo::ShortSidecarName(row.path), row.brief);
        EXPECT_EQ(photo::LowerExtension(row.path), row.extension);
        EXPECT_EQ(photo::IsSidecarName(row.path), UString(row.extension) == u"xmp");
    }
}

class SidecarFileTest : public ::testing::Test {
protected:
    std::unique_ptr<__XMPMeta__> Open(const std::string& name, const OpenOptions& options = {})
    {
        return OpenPhoto(folder_.Path(name), options);
    }

    /// The name of the file that the packet lies in, and the title there.
    std::string Seen(const std::string& name, const OpenOptions& options = {})
    {
        const std::unique_ptr<__XMPMeta__> meta = Open(name, options);
        const PhotoInfo info = GetPhotoInfo(*meta);
        const std::string path = kivcore::filesupport::PathToUTF8(info.packetPath);
        return path.substr(folder_.Folder().string().size() + 1) + " " +
               TextOf(meta->Find("dc:title")).value_or("-");
    }

    std::string Failure(const std::string& name, const OpenOptions& options)
    {
        try {
            Open(name, options);
        } catch (const XMP_Error& error) {
            return std::to_string(error.Code()) + error.Text();
        }
        return "";
    }

    kivcore::testing::TestFolder folder_;
};

TEST_F(SidecarFileTest, OfAFormatThatIsNotWritten)
{
    folder_.Write("p.gif", kGif);
    const std::unique_ptr<__XMPMeta__> meta = Open("p.gif");
    const PhotoInfo info = GetPhotoInfo(*meta);
    EXPECT_EQ(info.format, "GIF");
    EXPECT_EQ(info.place, PacketPlace::kSidecar);
    EXPECT_EQ(info.packetPath, folder_.Path("p.gif.xmp"));
    EXPECT_FALSE(info.packetFound);
    EXPECT_TRUE(info.canSave);
    EXPECT_EQ(info.note, "packets embedded in GIF files are not read yet; the sidecar counts");

    EXPECT_EQ(SavePhoto(*meta), SaveResult::kNothingToSave);
    EXPECT_THAT(folder_.Names(), ElementsAre("p.gif"));
    meta->SetText(kTitle, "beside");
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    EXPECT_THAT(folder_.Names(), ElementsAre("p.gif", "p.gif.xmp"));
    EXPECT_EQ(folder_.Read("p.gif"), kGif);
    EXPECT_EQ(Seen("p.gif"), "p.gif.xmp beside");
    EXPECT_TRUE(GetPhotoInfo(*meta).packetFound);

    // And the same object again, now over a file.
    meta->SetText(kTitle, "again");
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    EXPECT_EQ(Seen("p.gif"), "p.gif.xmp again");
}

TEST_F(SidecarFileTest, WhichNameCounts)
{
    const OpenOptions full{.sidecar = SidecarName::kFull};
    const OpenOptions brief{.sidecar = SidecarName::kShort};
    folder_.Write("p.gif", kGif);
    EXPECT_EQ(Seen("p.gif"), "p.gif.xmp -");
    EXPECT_EQ(Seen("p.gif", brief), "p.xmp -");
    folder_.Write("p.xmp", SmallPacket("short"));
    EXPECT_EQ(Seen("p.gif"), "p.xmp short");
    EXPECT_EQ(Seen("p.gif", full), "p.gif.xmp -");
    folder_.Write("p.gif.xmp", SmallPacket("full"));
    EXPECT_EQ(Seen("p.gif"), "p.gif.xmp full");
    EXPECT_EQ(Seen("p.gif", brief), "p.xmp short");
    // Opened by its own name, a sidecar is the photo.
    EXPECT_EQ(Seen("p.xmp"), "p.xmp short");
}

TEST_F(SidecarFileTest, OfAJpegFile)
{
    const OpenOptions sidecar{.place = PacketPlace::kSidecar};
    const std::string photo = Jpeg().Xmp(SmallPacket("inside")).Scan().Bytes();
    folder_.Write("p.jpg", photo);
    EXPECT_EQ(Seen("p.jpg", sidecar), "p.jpg.xmp -");
    folder_.Write("p.jpg.xmp", SmallPacket("beside"));
    EXPECT_EQ(Seen("p.jpg"), "p.jpg inside");
    EXPECT_THAT(GetPhotoInfo(*Open("p.jpg")).note, HasSubstr("p.jpg.xmp"));
    const std::unique_ptr<__XMPMeta__> meta = Open("p.jpg", sidecar);
    EXPECT_EQ(GetPhotoInfo(*meta).format, "JPEG");
    meta->SetText(kTitle, "edited");
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    EXPECT_EQ(Seen("p.jpg", sidecar), "p.jpg.xmp edited");
    EXPECT_EQ(folder_.Read("p.jpg"), photo);
}

TEST_F(SidecarFileTest, PlacesThatCannotBe)
{
    const OpenOptions embedded{.place = PacketPlace::kEmbedded};
    folder_.Write("p.gif", kGif);
    EXPECT_THAT(Failure("p.gif", embedded),
                HasSubstr("p.gif: metadata is not written into GIF files"));
    folder_.Write("p.nef", test::Tiff().Image().Bytes());
    EXPECT_THAT(Failure("p.nef", embedded),
                HasSubstr("p.nef: metadata is not written into raw files, and one with TIFF "
                          "content under this name is a raw file"));
    folder_.Write("unknown.bin", "content that nobody knows");
    EXPECT_THAT(Failure("unknown.bin", {}), HasSubstr("no photo of a known format"));
    // Who asks for a sidecar gets one; and where there is one, the file is of worth to somebody.
    EXPECT_EQ(Seen("unknown.bin", {.place = PacketPlace::kSidecar}), "unknown.bin.xmp -");
    folder_.Write("unknown.xmp", SmallPacket("beside"));
    EXPECT_EQ(Seen("unknown.bin"), "unknown.xmp beside");
    EXPECT_THAT(Failure("unknown.bin", embedded), HasSubstr("no photo of a known format"));
}

TEST_F(SidecarFileTest, MadeByAnotherProgramMeanwhile)
{
    folder_.Write("p.gif", kGif);
    const std::unique_ptr<__XMPMeta__> meta = Open("p.gif");
    meta->SetText(kTitle, "mine");
    folder_.Write("p.gif.xmp", SmallPacket("theirs"));
    try {
        SavePhoto(*meta);
        ADD_FAILURE() << "saved";
    } catch (const XMP_Error& error) {
        EXPECT_EQ(error.Code(), kKivXmpFileChanged);
        EXPECT_THAT(error.Text(),
                    HasSubstr("was made by another program meanwhile; nothing was written"));
    }
    EXPECT_EQ(folder_.Read("p.gif.xmp"), SmallPacket("theirs"));
    EXPECT_THAT(folder_.Names(), ElementsAre("p.gif", "p.gif.xmp"));
}

TEST_F(SidecarFileTest, KeepsItsEncoding)
{
    std::string utf16 = "\xFF\xFE";
    for (const char16_t unit : kivcore::string::UTF8to16(SmallPacket("alt"))) {
        utf16 += static_cast<char>(unit & 0xFF);
        utf16 += static_cast<char>(unit >> 8);
    }
    folder_.Write("p.xmp", utf16);
    EXPECT_EQ(Seen("p.xmp"), "p.xmp alt");
    const std::unique_ptr<__XMPMeta__> meta = Open("p.xmp");
    meta->SetText(kTitle, "neu");
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    EXPECT_EQ(Seen("p.xmp"), "p.xmp neu");
    const std::string after = folder_.Read("p.xmp");
    EXPECT_EQ(after.substr(0, 4), "\xFF\xFE<\0"s);
    EXPECT_NE(after.find("n\0e\0u\0"s), std::string::npos);
}

TEST_F(SidecarFileTest, BadOnes)
{
    folder_.Write("p.xmp", "no packet");
    EXPECT_THAT(Failure("p.xmp", {}), HasSubstr("p.xmp: "));
    EXPECT_EQ(folder_.Read("p.xmp"), "no packet");
    // What another program left empty may be filled.
    folder_.Write("empty.xmp", "");
    const std::unique_ptr<__XMPMeta__> meta = Open("empty.xmp");
    EXPECT_EQ(meta->PropertyCount(), 0u);
    meta->SetText(kTitle, "t");
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    EXPECT_EQ(Seen("empty.xmp"), "empty.xmp t");
    std::filesystem::resize_file(folder_.Of("p.xmp"), kMaxPacketBytes + 1);
    EXPECT_THAT(Failure("p.xmp", {}), HasSubstr("larger than any metadata packet"));
}

}  // namespace
}  // namespace kivxmp
