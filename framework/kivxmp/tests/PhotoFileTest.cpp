#include <kivxmp/PhotoFile.h>

#include <gmock/gmock.h>

#include <kivcore/FileStream.h>
#include <kivxmp/XMPAccess.h>

#include <cerrno>
#include <functional>
#include <string>
#include <vector>

#include "framework/kivxmp/tests/JpegBuilder.h"
#include "framework/kivxmp/tests/PhotoFolder.h"
#include "framework/kivxmp/tests/SamplePhotos.h"

namespace kivxmp {
namespace {

using namespace std::string_literals;
using kivcore::filesupport::FileStep;
using kivcore::filesupport::InputFile;
using kivcore::filesupport::SetFileFault;
using test::Jpeg;
using test::kSavedSamples;
using test::kTitle;
using test::PicturesByIndex;
using test::SavedSample;
using test::SmallPacket;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class PhotoFileTest : public test::PhotoFolderTest {};

std::string Photo(std::string_view packet)
{
    return Jpeg().App0().Exif().Xmp(packet).Scan().Bytes();
}

TEST_F(PhotoFileTest, AnEditArrivesInTheFileAndNothingElse)
{
    const std::string before = Photo(SmallPacket("old title"));
    folder_.Write("p.jpg", before);
    const std::unique_ptr<__XMPMeta__> meta = Open("p.jpg");
    const PhotoInfo info = GetPhotoInfo(*meta);
    EXPECT_EQ(info.format, "JPEG");
    EXPECT_EQ(info.place, PacketPlace::kEmbedded);
    EXPECT_EQ(info.packetPath, folder_.Path("p.jpg"));
    EXPECT_TRUE(info.packetFound);
    EXPECT_EQ(before.substr(info.packetOffset, info.packetBytes), SmallPacket("old title"));
    EXPECT_TRUE(info.canSave);
    EXPECT_EQ(info.reason, "");

    meta->SetText(kTitle, "new title");
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);

    const std::string after = folder_.Read("p.jpg");
    const PhotoInfo saved = GetPhotoInfo(*meta);
    const std::string packet = after.substr(saved.packetOffset, saved.packetBytes);
    EXPECT_TRUE(after == Photo(packet));
    EXPECT_THAT(packet, HasSubstr("new title"));
    EXPECT_THAT(packet, HasSubstr("my:odd=\"kept\""));
    EXPECT_THAT(folder_.Names(), ElementsAre("p.jpg"));
    EXPECT_EQ(Title("p.jpg"), "new title");
    EXPECT_EQ(TextOf(Open("p.jpg")->Find("dc:subject[1]")), "sea");
}

// Many programs write properties and fields as attributes. A changed one is written as an element,
// behind those that stay; the check of the copy must not take the new order for damage.
TEST_F(PhotoFileTest, AChangedAttributeIsSavedThoughOthersFollowIt)
{
    constexpr char kSidecar[] =
        "<x:xmpmeta xmlns:x='adobe:ns:meta/'>"
        "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
        "<rdf:Description rdf:about='' xmlns:xmp='http://ns.adobe.com/xap/1.0/'"
        " xmlns:my='http://my.example/' xmp:Rating='3' xmp:Label='red' my:odd='kept'>"
        "<my:box my:width='1' my:height='2' my:depth='3'/>"
        "<my:crate rdf:parseType='Resource'><my:width>1</my:width><my:height>2</my:height>"
        "</my:crate></rdf:Description></rdf:RDF></x:xmpmeta>";
    const struct {
        const char* path;
        const char* value;
    } rows[] = {
        {"xmp:Rating", "4"},      {"xmp:Label", "blue"},     {"{http://my.example/}odd", "changed"},
        {"my:box/my:width", "9"}, {"my:box/my:height", "9"}, {"my:crate/my:width", "9"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path);
        folder_.Write("n.xmp", kSidecar);
        const std::unique_ptr<__XMPMeta__> meta = Open("n.xmp");
        meta->SetText(row.path, row.value);
        EXPECT_EQ(Failure([&] { SavePhoto(*meta); }), "");
        EXPECT_EQ(TextOf(Open("n.xmp")->Find(row.path)), row.value);
    }
}

TEST_F(PhotoFileTest, AFirstPacketGoesBehindExif)
{
    folder_.Write("p.jpg", Jpeg().App0().Exif().Profile(99).Scan().Bytes());
    const std::unique_ptr<__XMPMeta__> meta = Open("p.jpg");
    EXPECT_FALSE(GetPhotoInfo(*meta).packetFound);
    EXPECT_TRUE(GetPhotoInfo(*meta).canSave);
    EXPECT_EQ(meta->PropertyCount(), 0u);
    meta->SetText("dc:format", "image/jpeg");
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    const PhotoInfo info = GetPhotoInfo(*meta);
    const std::string after = folder_.Read("p.jpg");
    const std::string packet = after.substr(info.packetOffset, info.packetBytes);
    EXPECT_TRUE(after == Jpeg().App0().Exif().Xmp(packet).Profile(99).Scan().Bytes());
    EXPECT_EQ(TextOf(Open("p.jpg")->Find("dc:format")), "image/jpeg");
}

TEST_F(PhotoFileTest, WithoutAChangeNothingIsWritten)
{
    folder_.Write("p.jpg", Photo(SmallPacket("t")));
    const auto identity = InputFile(folder_.Path("p.jpg")).Identity();
    const std::unique_ptr<__XMPMeta__> meta = Open("p.jpg");
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kNothingToSave);
    meta->SetText(kTitle, "another");
    meta->SetText(kTitle, "t");
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kNothingToSave);
    EXPECT_EQ(InputFile(folder_.Path("p.jpg")).Identity(), identity);
    // Nor is a photo without a packet given one.
    folder_.Write("none.jpg", Jpeg().Scan().Bytes());
    EXPECT_EQ(SavePhoto(*Open("none.jpg")), SaveResult::kNothingToSave);
    EXPECT_EQ(folder_.Read("none.jpg"), Jpeg().Scan().Bytes());
}

TEST_F(PhotoFileTest, ManySavesOfOneObjectAndOfManyDoNotGrow)
{
    folder_.Write("p.jpg", Photo(SmallPacket("t")));
    std::unique_ptr<__XMPMeta__> meta = Open("p.jpg");
    std::size_t bytes = 0;
    for (int round = 0; round < 60; ++round) {
        if (round >= 30) {
            meta = Open("p.jpg");
        }
        const std::string title = "round " + std::to_string(round + 10);
        meta->SetText(kTitle, title);
        ASSERT_EQ(SavePhoto(*meta), SaveResult::kSaved);
        EXPECT_FALSE(meta->IsChanged());
        EXPECT_EQ(SavePhoto(*meta), SaveResult::kNothingToSave);
        const std::string after = folder_.Read("p.jpg");
        // The first one gets padding, the others use it.
        EXPECT_TRUE(round == 0 || after.size() == bytes) << round << ": " << after.size();
        bytes = after.size();
        EXPECT_EQ(Title("p.jpg"), title);
    }
    EXPECT_THAT(folder_.Names(), ElementsAre("p.jpg"));
}

TEST_F(PhotoFileTest, AClonesEditsAreSavedFromTheCloneToo)
{
    folder_.Write("p.jpg", Photo(SmallPacket("t")));
    const std::unique_ptr<__XMPMeta__> meta = Open("p.jpg");
    const std::unique_ptr<__XMPMeta__> clone = meta->Clone();
    clone->SetText(kTitle, "clone's");
    meta->Swap(*clone);
    EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    EXPECT_EQ(Title("p.jpg"), "clone's");
    clone->SetText(kTitle, "the other's");
    EXPECT_EQ(SavePhoto(*clone), SaveResult::kSaved);
    EXPECT_EQ(Title("p.jpg"), "the other's");
}

TEST_F(PhotoFileTest, CorrectsTheIndexOfFurtherPictures)
{
    folder_.Write("p.jpg", Jpeg()
                               .Exif()
                               .Index(false)
                               .Xmp(SmallPacket("t"))
                               .Scan()
                               .Picture("second")
                               .Picture("third")
                               .Bytes());
    Retitle("p.jpg", std::string(300, 'l'));
    const std::vector<std::string> pictures = PicturesByIndex(folder_.Read("p.jpg"));
    ASSERT_EQ(pictures.size(), 3u);
    EXPECT_EQ(pictures[1], "second");
    EXPECT_EQ(pictures[2], "third");
}

struct BadPhoto {
    const char* name;
    std::string bytes;
    const char* failure;
};

TEST_F(PhotoFileTest, WhatIsNoPhotoIsNotOpened)
{
    const std::string packet = SmallPacket("t");
    const BadPhoto rows[] = {
        {"a.jpg", "", "37 a.jpg: the file is empty"},
        {"a.jpg", "hello", "37 a.jpg: the file is no JPEG file and no other photo"},
        {"A.JPG", "\xFF", "37 A.JPG: the file is no JPEG file and no other photo"},
        {"a.nef", "hello", "37 a.nef: the file is no TIFF file and no other photo"},
        {"a.txt", "hello", "38 a.txt: the file is no photo of a known format"},
        {"photo", "", "38 photo: the file is empty"},
        {"a.jpg", Jpeg().Bytes(), "37 a.jpg: the file is cut off before its image data"},
        {"a.jpg", Jpeg().Exif().Bytes(), "37 a.jpg: the file is cut off before its image data"},
        {"a.jpg", Photo(packet).substr(0, 200),
         "37 a.jpg: the file is cut off within its metadata packet"},
        {"a.jpg", Jpeg().Exif().Raw("?").Scan().Bytes(),
         "37 a.jpg: its structure is damaged: no marker at byte 38"},
        {"a.jpg", Jpeg().Raw("\xFF\xE1\0\0"s).Scan().Bytes(),
         "37 a.jpg: its structure is damaged: an impossible segment length at byte 4"},
    };
    for (const BadPhoto& row : rows) {
        SCOPED_TRACE(row.failure);
        folder_.Write(row.name, row.bytes);
        EXPECT_EQ(Failure([&] { Open(row.name); }), row.failure);
        EXPECT_EQ(folder_.Read(row.name), row.bytes);
        EXPECT_THAT(folder_.Names(), ElementsAre(row.name));
        std::filesystem::remove(folder_.Of(row.name));
    }
    EXPECT_THAT(Failure([&] { Open("missing.jpg"); }), HasSubstr("32 missing.jpg: "));
    EXPECT_THAT(Failure([&] { OpenPhoto(folder_.Path("."), {}); }), HasSubstr("33 "));
}

TEST_F(PhotoFileTest, BrokenPacketsAreNotOpened)
{
    std::string deep = "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">";
    for (int i = 0; i < 300; ++i) {
        deep += "<a>";
    }
    std::string multiplying = "<!DOCTYPE r [<!ENTITY a \"aaaaaaaaaa\">";
    for (char name = 'b'; name < 'k'; ++name) {
        multiplying += "<!ENTITY "s + name + " \"";
        for (int i = 0; i < 10; ++i) {
            multiplying += "&"s + static_cast<char>(name - 1) + ";";
        }
        multiplying += "\">";
    }
    multiplying +=
        "]><rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">"
        "<rdf:Description xmlns:e=\"http://example.org/\"><e:f>&j;</e:f></rdf:Description>"
        "</rdf:RDF>";
    const std::pair<std::string, const char*> rows[] = {
        {SmallPacket("t").substr(0, 300), "6 p.jpg: "},
        {"no XML at all", "6 p.jpg: "},
        {"<?xml version=\"1.0\"?><other/>", "7 p.jpg: "},
        {deep, "10 p.jpg: "},
        {multiplying, "12 p.jpg: "},
    };
    for (const auto& [packet, failure] : rows) {
        SCOPED_TRACE(failure);
        folder_.Write("p.jpg", Photo(packet));
        EXPECT_THAT(Failure([&] { Open("p.jpg"); }), ::testing::StartsWith(failure));
        EXPECT_EQ(folder_.Read("p.jpg"), Photo(packet));
    }
}

TEST_F(PhotoFileTest, WhatCannotBeWrittenIsShown)
{
    const std::string packet = SmallPacket("shown");
    std::string extended = packet;
    extended.insert(extended.find("<dc:title>"),
                    "<xmpNote:HasExtendedXMP xmlns:xmpNote=\"http://ns.adobe.com/xmp/note/\">"
                    "00112233445566778899AABBCCDDEEFF</xmpNote:HasExtendedXMP>");
    const std::pair<std::string, const char*> rows[] = {
        {Jpeg().Exif().Xmp(extended).Scan().Bytes(),
         "a part of its metadata, which an extended segment held, is missing"},
        {Jpeg().Exif().Xmp(packet).Xmp("no packet").Scan().Bytes(),
         "it holds several metadata packets, which cannot be put together"},
        {Jpeg().Exif().Xmp(packet).Segment(0xE2, "MPF\0xx"s).Scan().Bytes(),
         "its index of further pictures cannot be followed"},
    };
    for (const auto& [bytes, reason] : rows) {
        SCOPED_TRACE(reason);
        folder_.Write("p.jpg", bytes);
        const std::unique_ptr<__XMPMeta__> meta = Open("p.jpg");
        EXPECT_EQ(TextOf(meta->Find("dc:title")), "shown");
        EXPECT_FALSE(GetPhotoInfo(*meta).canSave);
        EXPECT_EQ(GetPhotoInfo(*meta).reason, reason);
        EXPECT_EQ(SavePhoto(*meta), SaveResult::kNothingToSave);
        meta->SetText(kTitle, "edited");
        EXPECT_EQ(Failure([&] { SavePhoto(*meta); }), "38 p.jpg: "s + reason);
        EXPECT_TRUE(folder_.Read("p.jpg") == bytes);
        EXPECT_THAT(folder_.Names(), ElementsAre("p.jpg"));
    }
}

// Cut within or before the packet it is refused; behind it, it is saved cut as it was.
TEST_F(PhotoFileTest, CutAtEveryLength)
{
    const std::string whole = Photo(SmallPacket("t"));
    const std::size_t packetEnd = Jpeg().App0().Exif().Xmp(SmallPacket("t")).Size();
    int refused = 0;
    int saved = 0;
    for (std::size_t bytes = 0; bytes < whole.size(); ++bytes) {
        SCOPED_TRACE(bytes);
        const std::string cut = whole.substr(0, bytes);
        folder_.Write("p.jpg", cut);
        if (bytes < packetEnd) {
            EXPECT_THAT(Failure([&] { Open("p.jpg"); }), ::testing::StartsWith("37 p.jpg: "));
            EXPECT_TRUE(folder_.Read("p.jpg") == cut);
            ++refused;
            continue;
        }
        Retitle("p.jpg", "edited");
        const std::string after = folder_.Read("p.jpg");
        const std::string rest = cut.substr(packetEnd);
        EXPECT_TRUE(after.ends_with("<?xpacket end=\"w\"?>" + rest));
        EXPECT_EQ(Title("p.jpg"), "edited");
        ++saved;
    }
    EXPECT_EQ(refused, static_cast<int>(packetEnd));
    EXPECT_GT(saved, 50);
}

// Also where a rename would pass, and also for an administrator.
TEST_F(PhotoFileTest, ReadOnly)
{
    namespace fs = std::filesystem;
    for (const SavedSample& row : kSavedSamples) {
        SCOPED_TRACE(row.photo);
        folder_.Write(row.photo, row.bytes);
        fs::permissions(folder_.Of(row.photo), fs::perms::owner_read | fs::perms::group_read);
        const std::unique_ptr<__XMPMeta__> meta = Open(row.photo);
        meta->SetText(kTitle, "edited");
        if (row.photo != row.saved) {
            // A photo that is not written may well be read-only.
            EXPECT_TRUE(GetPhotoInfo(*meta).canSave);
            EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
            fs::permissions(folder_.Of(row.saved), fs::perms::owner_read);
            meta->SetText(kTitle, "again");
        } else {
            EXPECT_FALSE(GetPhotoInfo(*meta).canSave);
            EXPECT_EQ(GetPhotoInfo(*meta).reason, "the file is read-only");
        }
        const std::string before = folder_.Read(row.saved);
        const std::vector<std::string> names = folder_.Names();
        EXPECT_EQ(Failure([&] { SavePhoto(*meta); }), "35 " + row.saved + ": is read-only");
        EXPECT_TRUE(folder_.Read(row.saved) == before);
        EXPECT_EQ(folder_.Names(), names);
        // Once it may be written, the same object can be saved.
        fs::permissions(folder_.Of(row.saved), fs::perms::owner_read | fs::perms::owner_write);
        EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
        for (const std::string& name : names) {
            fs::permissions(folder_.Of(name), fs::perms::owner_all);
            fs::remove(folder_.Of(name));
        }
    }
}

TEST_F(PhotoFileTest, ChangedMeanwhile)
{
    folder_.Write("p.jpg", Photo(SmallPacket("t")));
    const std::unique_ptr<__XMPMeta__> meta = Open("p.jpg");
    Retitle("p.jpg", "another program's");
    const std::string others = folder_.Read("p.jpg");
    meta->SetText(kTitle, "edited");
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(Failure([&] { SavePhoto(*meta); }),
                  "36 p.jpg: was changed since it was read; nothing was written");
        EXPECT_TRUE(folder_.Read("p.jpg") == others);
        EXPECT_TRUE(meta->IsChanged());
    }
    std::filesystem::remove(folder_.Of("p.jpg"));
    EXPECT_THAT(Failure([&] { SavePhoto(*meta); }), ::testing::StartsWith("32 p.jpg: "));
    EXPECT_TRUE(folder_.Names().empty());
}

constexpr FileStep kSteps[] = {FileStep::kOpen,   FileStep::kRead,       FileStep::kCreate,
                               FileStep::kWrite,  FileStep::kFlush,      FileStep::kVerify,
                               FileStep::kRename, FileStep::kFlushFolder};

// Every call to the system fails in turn: the photo stays, and so do the edits.
TEST_F(PhotoFileTest, AFullDiskAndOtherFailures)
{
    for (const SavedSample& row : kSavedSamples) {
        const bool isNew = row.photo != row.saved;
        const auto begin = [&] {
            std::filesystem::remove(folder_.Of(row.saved));
            folder_.Write(row.photo, row.bytes);
        };
        for (const FileStep step : kSteps) {
            int failures = 0;
            for (int countdown = 1; countdown < 50; ++countdown) {
                SCOPED_TRACE(testing::Message() << row.saved << ", step " << static_cast<int>(step)
                                                << ", occurrence " << countdown);
                begin();
                const std::unique_ptr<__XMPMeta__> meta = Open(row.photo);
                meta->SetText(kTitle, "edited");
                const int error = step == FileStep::kWrite ? ENOSPC : EIO;
                SetFileFault(step, error, countdown);
                const std::string failure = Failure([&] { SavePhoto(*meta); });
                SetFileFault(step, 0, 0);
                if (failure.empty()) {
                    EXPECT_EQ(Title(row.photo), "edited");
                    break;
                }
                ++failures;
                EXPECT_THAT(failure, HasSubstr("34 " + row.saved + ": "));
                EXPECT_TRUE(folder_.Read(row.photo) == row.bytes);
                EXPECT_THAT(folder_.Names(), ElementsAre(row.photo));
                EXPECT_TRUE(meta->IsChanged());
                // With room made, the same object can be saved.
                EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
                EXPECT_EQ(Title(row.photo), "edited");
            }
            // What is made anew is neither opened nor read before.
            const bool isOfOld = step == FileStep::kOpen || step == FileStep::kRead;
            EXPECT_GE(failures, isNew && isOfOld ? 0 : 1) << static_cast<int>(step);
            EXPECT_LT(failures, 40) << static_cast<int>(step);
        }
        begin();
        std::filesystem::remove(folder_.Of(row.photo));
    }
}

// So does every call while a photo is opened; nothing of that is left.
TEST_F(PhotoFileTest, OpeningThatFails)
{
    for (const SavedSample& row : kSavedSamples) {
        folder_.Write(row.photo, row.bytes);
        for (const FileStep step : {FileStep::kOpen, FileStep::kRead}) {
            int failures = 0;
            for (int countdown = 1; countdown < 50; ++countdown) {
                SCOPED_TRACE(testing::Message() << row.photo << ", occurrence " << countdown);
                SetFileFault(step, EIO, countdown);
                const std::string failure = Failure([&] { Open(row.photo); });
                SetFileFault(step, 0, 0);
                if (failure.empty()) {
                    break;
                }
                ++failures;
                EXPECT_THAT(failure, HasSubstr("33 " + row.photo + ": "));
            }
            EXPECT_GE(failures, 1);
            EXPECT_LT(failures, 40);
        }
        EXPECT_TRUE(folder_.Read(row.photo) == row.bytes);
        EXPECT_THAT(folder_.Names(), ElementsAre(row.photo));
        std::filesystem::remove(folder_.Of(row.photo));
    }
}

// The same bytes at the same time under the same name, and still another file: whoever put it there
// may mean something by it.
TEST_F(PhotoFileTest, ReplacedMeanwhileByItsLike)
{
    for (const SavedSample& row : kSavedSamples) {
        if (row.photo != row.saved) {
            continue;
        }
        SCOPED_TRACE(row.photo);
        folder_.Write(row.photo, row.bytes);
        const std::unique_ptr<__XMPMeta__> meta = Open(row.photo);
        meta->SetText(kTitle, "edited");
        folder_.Write("other", row.bytes);
        namespace fs = std::filesystem;
        fs::last_write_time(folder_.Of("other"), fs::last_write_time(folder_.Of(row.photo)));
        fs::rename(folder_.Of("other"), folder_.Of(row.photo));
        EXPECT_EQ(Failure([&] { SavePhoto(*meta); }),
                  "36 " + row.photo + ": was changed since it was read; nothing was written");
        EXPECT_TRUE(folder_.Read(row.photo) == row.bytes);
        EXPECT_THAT(folder_.Names(), ElementsAre(row.photo));
        fs::remove(folder_.Of(row.photo));
    }
}

TEST_F(PhotoFileTest, AnObjectOfNoFileHasNone)
{
    const std::unique_ptr<__XMPMeta__> meta = __XMPMeta__::Create();
    EXPECT_EQ(Failure([&] { GetPhotoInfo(*meta); }), "1 the XMP object was not opened from a file");
    EXPECT_EQ(Failure([&] { SavePhoto(*meta); }), "1 the XMP object was not opened from a file");
}

TEST_F(PhotoFileTest, WritesThePacketAlone)
{
    const std::string packet = SmallPacket("t");
    folder_.Write("p.jpg", Photo(packet));
    folder_.Write("none.jpg", Jpeg().Scan().Bytes());
    WritePacket(*Open("p.jpg"), folder_.Path("out.xmp"));
    EXPECT_EQ(folder_.Read("out.xmp"), packet);
    const std::unique_ptr<__XMPMeta__> meta = Open("p.jpg");
    meta->SetText(kTitle, "edited");
    WritePacket(*meta, folder_.Path("out.xmp"));
    EXPECT_EQ(Title("out.xmp"), "edited");

    EXPECT_EQ(Failure([&] { WritePacket(*meta, folder_.Path("none.jpg")); }),
              "38 none.jpg: the file is a photo; a packet is not written in its place");
    EXPECT_EQ(folder_.Read("none.jpg"), Jpeg().Scan().Bytes());
    EXPECT_EQ(Failure([&] { WritePacket(*Open("none.jpg"), folder_.Path("none.xmp")); }),
              "7 there is no metadata packet to write");
    EXPECT_THAT(folder_.Names(), ElementsAre("none.jpg", "out.xmp", "p.jpg"));
}

}  // namespace
}  // namespace kivxmp
