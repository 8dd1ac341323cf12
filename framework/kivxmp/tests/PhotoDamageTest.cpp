// Photos damaged in many ways: each is saved right or refused.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "framework/kivxmp/src/ByteNumbers.h"
#include "framework/kivxmp/src/JpegFile.h"
#include "framework/kivxmp/src/PngFile.h"
#include "framework/kivxmp/src/TiffFile.h"
#include "framework/kivxmp/src/WebpFile.h"
#include "framework/kivxmp/tests/FormatHarness.h"
#include "framework/kivxmp/tests/JpegBuilder.h"
#include "framework/kivxmp/tests/PhotoBuilders.h"

namespace kivxmp::photo {
namespace {

using namespace std::string_view_literals;
using test::FormatHarness;
using test::Jpeg;
using test::Png;
using test::SmallPacket;
using test::Tiff;
using test::Webp;

/// The same numbers on every platform and in every run.
class Chance {
public:
    std::size_t Below(std::size_t limit) { return engine_() % limit; }

private:
    std::minstd_rand engine_{20261121};
};

/// One to three kinds of damage: bits, whole numbers, ranges that are cut, doubled or moved.
std::string Damaged(std::string bytes, Chance& chance)
{
    constexpr std::uint64_t kNumbers[] = {0, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFF8, 0xFFFFFFFF};
    for (std::size_t i = 0; i <= chance.Below(3) && bytes.size() > 16; ++i) {
        const std::size_t at = chance.Below(bytes.size() - 8);
        const std::size_t length = 1 + chance.Below(std::min<std::size_t>(bytes.size() - at, 200));
        switch (chance.Below(6)) {
            case 0:
                bytes[at] = static_cast<char>(bytes[at] ^ 1 << chance.Below(8));
                break;
            case 1:
                bytes.replace(
                    at, 4,
                    NumberBytes(kNumbers[chance.Below(std::size(kNumbers))], 4,
                                chance.Below(2) == 0 ? ByteOrder::kBig : ByteOrder::kLittle));
                break;
            case 2:
                bytes.resize(at);
                break;
            case 3:
                bytes.erase(at, length);
                break;
            case 4:
                bytes.insert(at, bytes.substr(at, length));
                break;
            default: {
                const std::string moved = bytes.substr(at, length);
                bytes.erase(at, length);
                bytes.insert(chance.Below(bytes.size() + 1), moved);
                break;
            }
        }
    }
    return bytes;
}

struct DamageCase {
    const char* name;
    FormatHarness format;
    std::vector<std::string> photos;
};

TEST(DamagedPhotos, AreSavedRightOrRefused)
{
    const std::string packet = SmallPacket("t");
    const DamageCase rows[] = {
        {"JPEG",
         FormatHarness(ReadJpeg),
         {Jpeg().App0().Exif().Xmp(packet).Index(true).Scan().Picture("second").Bytes(),
          Jpeg().Exif().Profile(50).Index(false).Scan().Picture("second").Bytes(),
          Jpeg().Xmp(packet).Exif().Xmp("b").Extended("D", 3, 0, "abc").Scan().Bytes()}},
        {"PNG",
         FormatHarness(ReadPng),
         {Png().Chunk("gAMA", "1234").Xmp(packet).Image().Bytes(),
          Png().PackedXmp(packet, "en", "k").Chunk("tEXt", "k\0v"sv).Image().Raw("x").Bytes(),
          Png().Image().Bytes()}},
        {"WebP",
         FormatHarness(ReadWebp),
         {Webp().Extended(12).Image().Xmp(packet).Chunk("EXIF", "x").Trailer("t").Bytes(),
          Webp().LosslessImage(true).Bytes(), Webp().Image().Bytes()}},
        {"TIFF",
         FormatHarness(ReadTiff),
         {Tiff().Image().Xmp(packet).Entry(33432, 2, 20, "a copyright notice\0\0"sv).Bytes(),
          Tiff({true, false}).Image().Second().Bytes(),
          Tiff({false, true}).Image().Xmp(packet).Bytes()}},
    };
    for (const DamageCase& row : rows) {
        SCOPED_TRACE(row.name);
        Chance chance;
        std::set<std::string> outcomes;
        for (int number = 0; number < 2000; ++number) {
            SCOPED_TRACE(number);
            const std::string photo = Damaged(row.photos[chance.Below(row.photos.size())], chance);
            // What is saved has passed the check of a save.
            const std::string saved =
                row.format.Save(photo, chance.Below(2) == 0 ? packet : packet + "    ");
            outcomes.insert(saved.find(packet) != std::string::npos ? "saved" : saved);
            if (HasFailure()) {
                return;
            }
        }
        EXPECT_TRUE(outcomes.contains("saved"));
        EXPECT_GT(outcomes.size(), 5u);  // reasons among them
        for (const std::string& outcome : outcomes) {
            EXPECT_EQ(outcome.find("the copy was not put in place"), std::string::npos);
        }
    }
}

}  // namespace
}  // namespace kivxmp::photo
