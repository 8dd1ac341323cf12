#include "framework/kivxmp/src/WebpFile.h"

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
using test::RefusalCase;
using test::WatchedSource;
using test::Webp;

const FormatHarness kWebp(ReadWebp);

constexpr unsigned char kAlpha = 0x10;
constexpr unsigned char kExif = 0x08;
constexpr unsigned char kXmp = 0x04;

TEST(WebpFile, PlacesThePacket)
{
    const PlaceCase rows[] = {
        {"a lossy image alone", Webp().Image().Bytes(), "-",
         Webp().Extended(kXmp).Image().Xmp("new").Bytes()},
        {"a lossless image alone", Webp().LosslessImage(false).Bytes(), "-",
         Webp().Extended(kXmp).LosslessImage(false).Xmp("new").Bytes()},
        {"a lossless image with alpha", Webp().LosslessImage(true).Bytes(), "-",
         Webp().Extended(kAlpha | kXmp).LosslessImage(true).Xmp("new").Bytes()},
        {"a header that is there", Webp().Extended(kExif).Image().Chunk("EXIF", "exif!").Bytes(),
         "-", Webp().Extended(kExif | kXmp).Image().Chunk("EXIF", "exif!").Xmp("new").Bytes()},
        {"in place", Webp().Extended(kXmp).Image().Xmp("old").Chunk("EXIF", "e").Bytes(), "old",
         Webp().Extended(kXmp).Image().Xmp("new").Chunk("EXIF", "e").Bytes()},
        {"an odd length before", Webp().Extended(kXmp).Image().Xmp("even").Bytes(), "even",
         Webp().Extended(kXmp).Image().Xmp("new").Bytes()},
        {"without the flag", Webp().Extended(0).Xmp("old").Image().Bytes(), "old",
         Webp().Extended(kXmp).Xmp("new").Image().Bytes()},
        {"before the image",
         Webp().Extended(kExif | kXmp).Xmp("old").Chunk("EXIF", "e").Image().Bytes(), "old",
         Webp().Extended(kExif | kXmp).Xmp("new").Chunk("EXIF", "e").Image().Bytes()},
        {"before and behind the image",
         Webp().Extended(kXmp).Xmp("odd").Image().Xmp("even").Trailer("t").Bytes(), "odd",
         Webp().Extended(kXmp).Xmp("new").Image().Trailer("t").Bytes()},
        {"the same twice in a row", Webp().Extended(0).Image().Xmp("a").Xmp("a").Bytes(), "a",
         Webp().Extended(kXmp).Image().Xmp("new").Bytes()},
        {"several", Webp().Extended(kXmp).Image().Xmp("a").Chunk("ODD ", "x").Xmp("b").Bytes(), "a",
         Webp().Extended(kXmp).Image().Xmp("new").Chunk("ODD ", "x").Bytes()},
        {"bytes behind the end", Webp().Image().Trailer("trailer").Bytes(), "-",
         Webp().Extended(kXmp).Image().Xmp("new").Trailer("trailer").Bytes()},
        {"an empty packet", Webp().Extended(kXmp).Image().Xmp("").Bytes(), "",
         Webp().Extended(kXmp).Image().Xmp("new").Bytes()},
    };
    kWebp.ExpectPlaces(rows);
}

TEST(WebpFile, Refusals)
{
    std::string odd = Webp().Image().Bytes();
    odd[4] = static_cast<char>(odd[4] | 1);
    std::string small = Webp().Image().Bytes();
    small.replace(4, 4, "\x02\0\0\0"sv);
    std::string beyond = Webp().Extended(kXmp).Xmp("old").Image().Bytes();
    beyond[4] = static_cast<char>(beyond[4] - 2);
    const RefusalCase rows[] = {
        {"a header only", "RIFF", "-", "the file is cut off within its header"},
        {"no RIFF", "RIFX\4\0\0\0WEBP"sv.data() + std::string(8, '\0'), "-",
         "the file is cut off within its header"},
        {"an odd size", odd, "-", "its structure is damaged: an impossible size at byte 4"},
        {"a size that is too small", small, "-",
         "its structure is damaged: an impossible size at byte 4"},
        {"no image", Webp().Bytes(), "-",
         "its structure is damaged: no header of an image at byte 12"},
        {"an image without its code", Webp().Chunk("VP8 ", "0123456789").Bytes(), "-",
         "its structure is damaged: no header of an image at byte 12"},
        {"a header of another size", Webp().Chunk("VP8X", "0123456789ab").Image().Bytes(), "-",
         "its structure is damaged: no header of an image at byte 12"},
        {"a header out of place", Webp().Image().Extended(0).Bytes(), "-",
         "its structure is damaged: a header out of place at byte 36"},
        {"a packet in front of the header", Webp().Xmp("old").Extended(kXmp).Image().Bytes(), "old",
         "its structure is damaged: a header out of place at byte 24"},
        {"a packet in front of an image alone", Webp().Xmp("old").Image().Bytes(), "old",
         "its structure is damaged: no header of an image at byte 12"},
        {"a chunk beyond the end", beyond, "old",
         "its structure is damaged: a chunk reaches beyond the end at byte 42"},
        {"cut within the image", Webp().Image().Bytes().substr(0, 30), "-",
         "its structure is damaged: no header of an image at byte 12"},
        {"cut behind the header", Webp().Extended(0).Image().Bytes().substr(0, 40), "-",
         "the file is cut off before its end"},
    };
    kWebp.ExpectRefusals(rows, "new");
}

// Up to the packet's end a cut file is refused; behind it, it is saved as it is, and its size goes
// on saying what is missing.
TEST(WebpFile, CutAtEveryLength)
{
    const Webp begin = Webp().Extended(kXmp).Xmp("the old one");
    const std::string whole = Webp(begin).Image().Bytes();
    const std::string after = Webp().Extended(kXmp).Xmp("a newer one!").Image().Bytes();
    for (std::size_t bytes = 12; bytes < whole.size(); ++bytes) {
        SCOPED_TRACE(bytes);
        const std::string cut = whole.substr(0, bytes);
        const std::string saved = kWebp.Save(cut, "a newer one!");
        if (bytes < begin.Size()) {
            EXPECT_EQ(saved, kWebp.Refusal(cut));
            EXPECT_NE(saved, "");
        } else {
            EXPECT_TRUE(saved == after.substr(0, bytes));
        }
    }
}

TEST(WebpFile, EveryByteOfASaveIsChecked)
{
    kWebp.ExpectEveryByteIsChecked(
        Webp().Extended(kExif).Image().Xmp("old").Chunk("EXIF", "x").Trailer("behind").Bytes(),
        "fresh packet");
    kWebp.ExpectEveryByteIsChecked(Webp().LosslessImage(true).Bytes(), "fresh packet");
}

TEST(WebpFile, ReadsOnlyHeadersBesidesThePacket)
{
    const std::string bytes =
        Webp().Extended(kXmp).Chunk("VP8 ", std::string(1000000, 'i')).Xmp("old").Bytes();
    WatchedSource source(bytes);
    EXPECT_FALSE(ReadWebp(source)->Refusal());
    EXPECT_LT(source.total, 10000u);
}

}  // namespace
}  // namespace kivxmp::photo
