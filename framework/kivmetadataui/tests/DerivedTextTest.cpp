#include "framework/kivmetadataui/src/DerivedText.h"

#include <string>

#include "framework/kivcore/tests/TestFolder.h"
#include "framework/kivmetadataui/tests/Samples.h"

#include <gtest/gtest.h>
#include <kivxmp/PhotoFile.h>
#include <kivxmp/XMPMeta.h>

namespace kivmetadataui {
namespace {

using kivxmp::DerivedFrom;
using samples::Utf8;

struct SourceCase {
    DerivedFrom from;
    const char* detail;
    const char* wantMark;
    const char* wantDetail;
};

constexpr SourceCase kSourceCases[] = {
    {DerivedFrom::kExif, "Exif.Photo.FNumber", "Exif",
     "From the camera’s Exif data: Exif.Photo.FNumber"},
    {DerivedFrom::kIim, "Iptc.Application2.Caption", "IPTC",
     "From the IPTC record: Iptc.Application2.Caption"},
    {DerivedFrom::kSidecar, "^0 sea.jpg.xmp", "Sidecar", "From the sidecar ^0 sea.jpg.xmp"},
    {DerivedFrom::kEmbedded, "sea.cr2", "Photo", "From the photo’s own packet"},
};

TEST(SourceText, EachKind)
{
    for (const SourceCase& row : kSourceCases) {
        SCOPED_TRACE(row.wantMark);
        const FieldSource text = SourceText({row.from, row.detail});
        EXPECT_EQ(Utf8(text.mark), row.wantMark);
        EXPECT_EQ(Utf8(text.detail), row.wantDetail);
    }
}

constexpr char kCity[] = "<photoshop:City>Bonn</photoshop:City>";
constexpr char kRated[] = "<xmp:Rating>3</xmp:Rating>";
constexpr char kRatedCity[] =
    "<xmp:Rating>3</xmp:Rating><photoshop:City>Köln</photoshop:City><xmp:Label>red</xmp:Label>";

struct NoteCase {
    const char* story;
    const char* inPhoto;  // properties; null for no packet
    const char* beside;   // properties; null for no sidecar
    kivxmp::PacketPlace place;
    const char* wantText;
    const char* wantDetail;  // its beginning
};

constexpr NoteCase kNoteCases[] = {
    {"nothing lies beside", kCity, nullptr, kivxmp::PacketPlace::kAuto, "", ""},
    {"several properties", nullptr, kRatedCity, kivxmp::PacketPlace::kAuto,
     "The sidecar sea.jpg.xmp adds 3 properties", "The metadata in the photo counts."},
    {"what the photo has itself is not added", kCity, kRatedCity, kivxmp::PacketPlace::kAuto,
     "The sidecar sea.jpg.xmp adds 2 properties", "The metadata in the photo counts."},
    {"one property", kCity, kRated, kivxmp::PacketPlace::kAuto,
     "The sidecar sea.jpg.xmp adds 1 property", "The metadata in the photo counts."},
    {"nothing new", kRatedCity, kRated, kivxmp::PacketPlace::kAuto,
     "The sidecar sea.jpg.xmp adds nothing", "The metadata in the photo counts."},
    {"the sidecar counts", kRatedCity, kCity, kivxmp::PacketPlace::kSidecar,
     "The photo itself adds 2 properties", "The sidecar counts."},
    {"the sidecar counts, one property more", kRated, kCity, kivxmp::PacketPlace::kSidecar,
     "The photo itself adds 1 property", "The sidecar counts."},
    {"the sidecar has it all", kCity, kRatedCity, kivxmp::PacketPlace::kSidecar, "", ""},
};

std::unique_ptr<__XMPMeta__> OpenCase(const kivcore::testing::TestFolder& folder,
                                      const NoteCase& row)
{
    folder.Write("sea.jpg", samples::Jpeg(row.inPhoto == nullptr ? std::string()
                                                                 : samples::Packet(row.inPhoto)));
    if (row.beside != nullptr) {
        folder.Write("sea.jpg.xmp", samples::Packet(row.beside));
    }
    kivxmp::OpenOptions options;
    options.place = row.place;
    return kivxmp::OpenPhoto(folder.Path("sea.jpg"), options);
}

TEST(NoteOf, WhatLiesBesideAndWhatItAdds)
{
    for (const NoteCase& row : kNoteCases) {
        SCOPED_TRACE(row.story);
        const kivcore::testing::TestFolder folder;
        const PhotoNote note = NoteOf(*OpenCase(folder, row));
        EXPECT_EQ(Utf8(note.text), row.wantText);
        EXPECT_TRUE(Utf8(note.detail).starts_with(row.wantDetail)) << Utf8(note.detail);
        EXPECT_EQ(note.text.empty(), note.detail.empty());
    }
}

TEST(NoteOf, WhatCouldNotBeRead)
{
    const kivcore::testing::TestFolder folder;
    folder.Write("sea.jpg", samples::Jpeg(samples::Packet(kCity)));
    folder.Write("sea.jpg.xmp", "no packet");
    const PhotoNote note = NoteOf(*kivxmp::OpenPhoto(folder.Path("sea.jpg")));
    EXPECT_EQ(note.text, u"There is a note on this photo");
    EXPECT_NE(note.detail.find(u"sea.jpg.xmp"), kivcore::UString::npos) << Utf8(note.detail);
}

TEST(NoteOf, AnObjectOfNoFile)
{
    const PhotoNote note = NoteOf(*samples::Parse(kCity));
    EXPECT_TRUE(note.text.empty());
    EXPECT_TRUE(note.detail.empty());
}

}  // namespace
}  // namespace kivmetadataui
