// Photos damaged in many ways: each is saved right or refused.

#include <gtest/gtest.h>

#include <kivxmp/PhotoFile.h>
#include <kivxmp/XMPAccess.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "framework/kivxmp/src/ByteNumbers.h"
#include "framework/kivxmp/src/JpegFile.h"
#include "framework/kivxmp/src/PngFile.h"
#include "framework/kivxmp/src/SidecarFile.h"
#include "framework/kivxmp/src/TiffFile.h"
#include "framework/kivxmp/src/WebpFile.h"
#include "framework/kivxmp/tests/FormatHarness.h"
#include "framework/kivxmp/tests/JpegBuilder.h"
#include "framework/kivxmp/tests/PhotoBuilders.h"
#include "framework/kivxmp/tests/PhotoFolder.h"

namespace kivxmp::photo {
namespace {

using namespace std::string_view_literals;
using test::FormatHarness;
using test::Jpeg;
using test::kTitle;
using test::Png;
using test::SmallPacket;
using test::Tiff;
using test::TiffLayout;
using test::Webp;

constexpr int kFiles = 2000;

/// The same numbers on every platform and in every run.
class Chance {
public:
    std::size_t Below(std::size_t limit) { return engine_() % limit; }
    template <class Container>
    const auto& Of(const Container& choices)
    {
        return choices[Below(std::size(choices))];
    }

private:
    std::minstd_rand engine_{20261121};
};

/// A number of the structure: a length, a count, the place of something.
struct Field {
    std::size_t at;
    std::size_t bytes;
    ByteOrder order;
};

/// An undamaged file, and how it is put together.
struct Sample {
    std::string bytes;
    std::vector<std::size_t>
        cuts;  // where its segments, chunks or entries begin, and the last ends
    std::vector<Field> fields;
};

Sample SampleOf(std::string bytes, std::size_t first, std::size_t headBytes, const Field& length,
                std::uint64_t besides)
{
    Sample sample{std::move(bytes), {first}, {}};
    for (std::size_t at = first; at + headBytes <= sample.bytes.size();) {
        const Field field{at + length.at, length.bytes, length.order};
        sample.fields.push_back(field);
        at += static_cast<std::size_t>(GetNumber(sample.bytes, field.at, field.bytes, field.order) +
                                       besides);
        sample.cuts.push_back(std::min(at, sample.bytes.size()));
    }
    return sample;
}

Sample OfJpeg(const Jpeg& jpeg)
{
    // The image data have no length, so that the last piece ends somewhere in them.
    return SampleOf(jpeg.Bytes(), 2, 4, {2, 2, ByteOrder::kBig}, 2);
}

Sample OfPng(const Png& png)
{
    return SampleOf(png.Bytes(), 8, 12, {0, 4, ByteOrder::kBig}, 12);
}

Sample OfWebp(const Webp& webp)
{
    Sample sample = SampleOf(webp.Bytes(), 12, 8, {4, 4, ByteOrder::kLittle}, 8);
    sample.fields.push_back({4, 4, ByteOrder::kLittle});  // of the whole
    return sample;
}

Sample OfTiff(const Tiff& tiff, TiffLayout layout = {})
{
    const std::string bytes = tiff.Bytes();
    const ByteOrder order = layout.bigEndian ? ByteOrder::kBig : ByteOrder::kLittle;
    const std::size_t number = layout.isBig ? 8 : 4;
    const std::size_t directory = layout.isBig ? 16 : 8;
    const std::size_t countBytes = layout.isBig ? 8 : 2;
    const std::size_t entryBytes = 4 + 2 * number;
    const auto count = static_cast<std::size_t>(GetNumber(bytes, directory, countBytes, order));
    Sample sample{bytes, {}, {}};
    sample.fields = {{layout.isBig ? 8U : 4U, number, order}, {directory, countBytes, order}};
    for (std::size_t i = 0; i <= count; ++i) {
        const std::size_t entry = directory + countBytes + i * entryBytes;
        sample.cuts.push_back(entry);
        if (i < count) {
            sample.fields.insert(sample.fields.end(), {{entry, 2, order},
                                                       {entry + 2, 2, order},
                                                       {entry + 4, number, order},
                                                       {entry + 4 + number, number, order}});
        } else {
            sample.fields.push_back({entry, number, order});  // the next directory
        }
    }
    return sample;
}

Sample OfSidecar(const std::string& packet)
{
    Sample sample{packet, {}, {}};
    for (std::size_t at = packet.find('<'); at != std::string::npos;
         at = packet.find('<', at + 1)) {
        sample.cuts.push_back(at);
    }
    return sample;
}

/// What a structure may say of sizes and places and cannot be: nothing, four gigabytes, one byte
/// more or less, the beginning, a directory's own place, behind the end.
std::uint64_t Lie(const Sample& sample, const Field& field, Chance& chance)
{
    const std::uint64_t truth = GetNumber(sample.bytes, field.at, field.bytes, field.order);
    const std::uint64_t size = sample.bytes.size();
    const std::uint64_t lies[] = {
        0,
        1,
        8,
        16,
        truth + 1,
        truth - 1,
        truth * 2,
        size,
        size - 1,
        size + 1,
        size - truth,
        sample.cuts.empty() ? 0 : chance.Of(sample.cuts),
        0x7FFFFFFF,
        0x80000000,
        0xFFFFFFF8,
        0xFFFFFFFF,
        0x100000000,
        0x7FFFFFFFFFFFFFFF,
        0xFFFFFFFFFFFFFFF0,
        ~std::uint64_t{0},
    };
    return chance.Of(lies);
}

/// One piece of the structure doubled, moved or left out, or one number of it a lie.
void DamageStructure(Sample& sample, Chance& chance)
{
    if (!sample.fields.empty() && chance.Below(2) == 0) {
        const Field& field = chance.Of(sample.fields);
        sample.bytes.replace(field.at, field.bytes,
                             NumberBytes(Lie(sample, field, chance), field.bytes, field.order));
        return;
    }
    const std::size_t number = chance.Below(sample.cuts.size() - 1);
    const std::size_t begin = sample.cuts[number];
    const std::string piece = sample.bytes.substr(begin, sample.cuts[number + 1] - begin);
    const std::size_t other = chance.Of(sample.cuts);
    switch (chance.Below(3)) {
        case 0:
            sample.bytes.insert(other, piece);
            break;
        case 1:
            sample.bytes.erase(begin, piece.size());
            break;
        default:
            sample.bytes.erase(begin, piece.size());
            sample.bytes.insert(other > begin ? other - piece.size() : other, piece);
            break;
    }
}

/// Bits, whole numbers, ranges that are cut, doubled or moved.
void DamageBytes(std::string& bytes, Chance& chance)
{
    constexpr std::uint64_t kNumbers[] = {0, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFF8, 0xFFFFFFFF};
    const std::size_t at = chance.Below(bytes.size() - 8);
    const std::size_t length = 1 + chance.Below(std::min<std::size_t>(bytes.size() - at, 200));
    switch (chance.Below(6)) {
        case 0:
            bytes[at] = static_cast<char>(bytes[at] ^ 1 << chance.Below(8));
            break;
        case 1:
            bytes.replace(at, 4,
                          NumberBytes(chance.Of(kNumbers), 4,
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

/// One to three kinds of damage.
std::string Damaged(Sample sample, Chance& chance)
{
    const bool isStructural = chance.Below(2) == 0;
    if (isStructural) {
        DamageStructure(sample, chance);
    }
    for (std::size_t i = isStructural ? 1 : 0; i <= chance.Below(3) && sample.bytes.size() > 16;
         ++i) {
        DamageBytes(sample.bytes, chance);
    }
    return sample.bytes;
}

struct DamageCase {
    const char* name;
    const char* file;
    FormatHarness format;
    std::vector<Sample> samples;
};

std::unique_ptr<PhotoFormat> ReadSidecar(ByteSource& source)
{
    return MakeSidecarFormat(source.SizeBytes());
}

std::vector<DamageCase> DamageCases()
{
    const std::string packet = SmallPacket("t");
    const std::string_view dng = "\1\4\0\0"sv;
    std::vector<DamageCase> cases = {
        {"JPEG",
         "p.jpg",
         FormatHarness(ReadJpeg),
         {OfJpeg(Jpeg().App0().Exif().Xmp(packet).Index(true).Scan().Picture("second")),
          OfJpeg(Jpeg().Exif().Profile(50).Index(false).Scan().Picture("second")),
          OfJpeg(Jpeg().Xmp(packet).Exif().Xmp("b").Extended("D", 3, 0, "abc").Scan())}},
        {"PNG",
         "p.png",
         FormatHarness(ReadPng),
         {OfPng(Png().Chunk("gAMA", "1234").Xmp(packet).Image()),
          OfPng(Png().PackedXmp(packet, "en", "k").Chunk("tEXt", "k\0v"sv).Image().Raw("x")),
          OfPng(Png().Image())}},
        {"WebP",
         "p.webp",
         FormatHarness(ReadWebp),
         {OfWebp(Webp().Extended(12).Image().Xmp(packet).Chunk("EXIF", "x").Trailer("t")),
          OfWebp(Webp().LosslessImage(true)), OfWebp(Webp().Image())}},
        {"sidecar", "p.xmp", FormatHarness(ReadSidecar), {OfSidecar(packet)}},
    };
    struct TiffCase {
        const char* name;
        const char* file;
        bool isBig;
        bool isDng;
    };
    constexpr TiffCase kTiffCases[] = {{"TIFF", "p.tif", false, false},
                                       {"BigTIFF", "p.tif", true, false},
                                       {"DNG", "p.dng", false, true}};
    for (const TiffCase& row : kTiffCases) {
        DamageCase made{row.name, row.file, FormatHarness(ReadTiff), {}};
        for (const bool bigEndian : {false, true}) {
            const TiffLayout layout{bigEndian, row.isBig};
            Tiff with(layout);
            Tiff without(layout);
            with.Image().Xmp(packet).Entry(33432, 2, 20, "a copyright notice\0\0"sv);
            without.Image();
            if (row.isDng) {
                with.Entry(50706, 1, 4, dng);
                without.Entry(50706, 1, 4, dng);
            }
            made.samples.push_back(OfTiff(with.Second(), layout));
            made.samples.push_back(OfTiff(without.Second(), layout));
        }
        cases.push_back(std::move(made));
    }
    return cases;
}

/// Counts what became of damaged files.
struct Outcomes {
    int saved = 0;
    std::set<std::string> reasons;

    void Add(const std::string& outcome, bool isSaved)
    {
        if (isSaved) {
            ++saved;
        } else {
            reasons.insert(outcome);
            EXPECT_EQ(outcome.find("the copy was not put in place"), std::string::npos) << outcome;
        }
    }
};

/// The packet with a title of our own; a new one where there is none. Throws XMP_Error.
std::string Edited(const std::string& packet)
{
    const std::unique_ptr<__XMPMeta__> meta =
        packet == "-" || packet.empty() ? __XMPMeta__::Create() : __XMPMeta__::Parse(packet);
    meta->SetText(kTitle, "edited");
    const std::string edited = meta->Serialize();
    const std::unique_ptr<__XMPMeta__> again = __XMPMeta__::Parse(edited);
    EXPECT_TRUE(Compare(*meta, *again).empty());
    EXPECT_EQ(TextOf(again->Find("dc:title")), "edited");
    return edited;
}

TEST(DamagedPhotos, AreSavedRightOrRefused)
{
    for (const DamageCase& row : DamageCases()) {
        SCOPED_TRACE(row.name);
        Chance chance;
        Outcomes outcomes;
        for (int number = 0; number < kFiles && !HasFailure(); ++number) {
            SCOPED_TRACE(number);
            const std::string photo = Damaged(chance.Of(row.samples), chance);
            std::string packet;
            try {
                packet = Edited(row.format.Packet(photo));
            } catch (const XMP_Error& error) {
                outcomes.Add("packet " + std::to_string(error.Code()), false);
                continue;
            }
            // What is saved has passed the check of a save.
            const std::string saved = row.format.Save(photo, packet);
            outcomes.Add(saved, saved.find(packet) != std::string::npos);
        }
        EXPECT_GT(outcomes.saved, kFiles / 100);
        EXPECT_GE(outcomes.reasons.size(), row.name == "sidecar"sv ? 2U : 5U);
        RecordProperty(std::string(row.name) + "_saved", outcomes.saved);
    }
}

TEST(DamagedPhotos, CutAtEveryLength)
{
    const std::string packet = SmallPacket("u");
    for (const DamageCase& row : DamageCases()) {
        for (const Sample& sample : row.samples) {
            Outcomes outcomes;
            for (std::size_t bytes = 0; bytes < sample.bytes.size(); ++bytes) {
                SCOPED_TRACE(testing::Message() << row.name << " " << bytes);
                const std::string saved = row.format.Save(sample.bytes.substr(0, bytes), packet);
                outcomes.Add(saved, saved.find(packet) != std::string::npos);
            }
            EXPECT_GE(outcomes.reasons.size(), row.name == "sidecar"sv ? 0U : 1U);
        }
    }
}

/// The whole way: files that are opened, edited and saved.
class DamagedFiles : public test::PhotoFolderTest {};

TEST_F(DamagedFiles, AreSavedRightOrLeftAlone)
{
    for (const DamageCase& row : DamageCases()) {
        SCOPED_TRACE(row.name);
        Chance chance;
        int saved = 0;
        int refused = 0;
        for (int number = 0; number < kFiles / 40; ++number) {
            SCOPED_TRACE(number);
            const std::string photo = Damaged(chance.Of(row.samples), chance);
            folder_.Write(row.file, photo);
            const std::string failure = Failure([&] {
                const std::unique_ptr<__XMPMeta__> meta = Open(row.file);
                meta->SetText(kTitle, "edited");
                EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
            });
            if (!failure.empty()) {
                ++refused;
                EXPECT_EQ(failure.find("the copy was not put in place"), std::string::npos)
                    << failure;
                EXPECT_TRUE(folder_.Read(row.file) == photo);
            } else if (folder_.Names().size() == 2) {
                // Damage made a raw file of a photo: it has a sidecar, and stays as it is.
                EXPECT_TRUE(folder_.Read(row.file) == photo);
                std::filesystem::remove(folder_.Of(std::string(row.file) + ".xmp"));
            } else {
                ++saved;
                EXPECT_EQ(Title(row.file), "edited");
            }
            EXPECT_EQ(folder_.Names().size(), 1U);
        }
        EXPECT_GT(saved, 0);
        EXPECT_GT(refused, 5);
        std::filesystem::remove(folder_.Of(row.file));
    }
}

}  // namespace
}  // namespace kivxmp::photo
