#include "framework/kivxmp/src/TiffFile.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "framework/kivxmp/tests/FormatHarness.h"
#include "framework/kivxmp/tests/PhotoBuilders.h"

namespace kivxmp::photo {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;
using test::FormatHarness;
using test::RefusalCase;
using test::Tiff;
using test::TiffLayout;
using test::WatchedSource;

const FormatHarness kTiff(ReadTiff);

constexpr TiffLayout kLayouts[] = {{false, false}, {true, false}, {false, true}, {true, true}};
constexpr std::string_view kOld = "the old packet, twenty-nine b";
constexpr std::string_view kSame = "a new one of the same length.";
constexpr char kCut[] = "it is cut off, and its metadata has no room but behind its end";
constexpr std::string_view kLonger = "a new one that is longer than the old packet";

/// A photo with an entry before and one behind the packet's, whose values stand behind it.
Tiff Photo(const TiffLayout& layout, std::string_view packet)
{
    Tiff tiff(layout);
    tiff.Image();
    if (!packet.empty()) {
        tiff.Xmp(packet);
    }
    return tiff.Entry(33432, 2, 20, "a copyright notice\0\0"sv).Second();
}

TEST(TiffFile, ReplacesAPacketInItsPlace)
{
    for (const TiffLayout& layout : kLayouts) {
        const std::string before = Photo(layout, kOld).Bytes();
        EXPECT_EQ(kTiff.Refusal(before), "");
        EXPECT_EQ(kTiff.Packet(before), kOld);
        EXPECT_EQ(kTiff.Read(before)->PacketRoomBytes(), kOld.size());
        EXPECT_TRUE(kTiff.Save(before, kSame) == Photo(layout, kSame).Bytes());
    }
}

// The old packet stays where it was, and nothing else moves.
TEST(TiffFile, PutsALongerPacketAtTheEnd)
{
    for (const TiffLayout& layout : kLayouts) {
        const Tiff numbers(layout);
        const std::size_t size = layout.isBig ? 8 : 4;
        const std::string before = Photo(layout, kOld).Bytes();
        const std::string saved = kTiff.Save(before, kLonger);
        std::string want = before;
        const std::string fields =
            numbers.Number(kOld.size(), size) + numbers.Number(before.find(kOld), size);
        const std::string fresh =
            numbers.Number(kLonger.size(), size) + numbers.Number(before.size(), size);
        want.replace(want.find(fields), fields.size(), fresh);
        EXPECT_TRUE(saved == want + std::string(kLonger));
        EXPECT_EQ(kTiff.Packet(saved), kLonger);

        // At the end a packet has room for any length.
        const std::string longest = std::string(kLonger) + "!!!";
        const std::string again = kTiff.Save(saved, longest);
        EXPECT_EQ(again.size(), saved.size() + 3);
        EXPECT_EQ(kTiff.Packet(again), longest);
        EXPECT_TRUE(kTiff.Save(again, kLonger) == saved);
    }
}

// The directory goes to the end with one entry more, in the order of the tags; the old one stays.
TEST(TiffFile, CopiesADirectoryThatMustGrow)
{
    for (const TiffLayout& layout : kLayouts) {
        const Tiff numbers(layout);
        const std::size_t size = layout.isBig ? 8 : 4;
        const std::size_t header = layout.isBig ? 16 : 8;
        for (const std::string_view trailer : {""sv, "x"sv}) {
            const std::string before = Photo(layout, "").Bytes() + std::string(trailer);
            const std::string saved = kTiff.Save(before, kLonger);
            const std::string pad(before.size() & 1, '\0');
            const std::size_t directory = before.size() + pad.size();

            const std::size_t entryBytes = layout.isBig ? 20 : 12;
            const std::size_t countBytes = layout.isBig ? 8 : 2;
            const std::size_t packet = directory + countBytes + 4 * entryBytes + size;
            std::string want = before;
            want.replace(layout.isBig ? 8 : 4, size, numbers.Number(directory, size));
            want += pad + numbers.Number(4, countBytes) +
                    before.substr(header + countBytes, 2 * entryBytes) + numbers.Number(700, 2) +
                    numbers.Number(1, 2) + numbers.Number(kLonger.size(), size) +
                    numbers.Number(packet, size) +
                    before.substr(header + countBytes + 2 * entryBytes, entryBytes + size) +
                    std::string(kLonger);
            EXPECT_TRUE(saved == want);
        }
    }
}

struct OddCase {
    const char* name;
    std::string bytes;
    std::string packet;
};

TEST(TiffFile, UnusualPackets)
{
    const OddCase rows[] = {
        {"in the entry itself", Tiff().Image().Xmp("abc").Bytes(), "abc"},
        {"of no bytes", Tiff().Image().Xmp("").Bytes(), ""},
        {"undefined bytes", Tiff().Image().Entry(700, 7, kOld.size(), kOld).Bytes(),
         std::string(kOld)},
        {"before all others", Tiff().Xmp(kOld).Entry(701, 3, 1, "ab").Bytes(), std::string(kOld)},
    };
    for (const OddCase& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(kTiff.Refusal(row.bytes), "");
        EXPECT_EQ(kTiff.Packet(row.bytes), row.packet);
        EXPECT_EQ(kTiff.Packet(kTiff.Save(row.bytes, kLonger)), kLonger);
    }
}

// Few bytes stand in the entry itself, where readers do not look for a packet.
TEST(TiffFile, APacketOfFewBytesIsRefused)
{
    EXPECT_EQ(kTiff.Save(Photo({}, "").Bytes(), "1234"),
              "the metadata is too short for a TIFF file");
    EXPECT_EQ(kTiff.Packet(kTiff.Save(Photo({}, "").Bytes(), "12345")), "12345");
    EXPECT_EQ(kTiff.Save(Photo({false, true}, "").Bytes(), "12345678"),
              "the metadata is too short for a TIFF file");
}

TEST(TiffFile, Refusals)
{
    const std::string whole = Photo({}, kOld).Bytes();
    const auto with = [&whole](std::size_t at, std::string_view bytes) {
        return std::string(whole).replace(at, bytes.size(), bytes);
    };
    const std::size_t entry = 8 + 2 + 2 * 12;
    const RefusalCase rows[] = {
        {"two bytes", "II", "-", "the file is cut off within its header"},
        {"a cut header", whole.substr(0, 7), "-", "the file is cut off within its header"},
        {"a cut BigTIFF header", Photo({false, true}, kOld).Bytes().substr(0, 15), "-",
         "the file is cut off within its header"},
        {"a BigTIFF with short offsets", std::string("II+\0\4\0\0\0"sv) + std::string(8, '\0'), "-",
         "its structure is damaged: an impossible size of offsets at byte 4"},
        {"a directory in the header", with(4, "\4\0\0\0"sv), "-",
         "its structure is damaged: the first directory is not in the file"},
        {"a directory behind the end", with(4, "\xFF\xFF\xFF\xFF"sv), "-",
         "its structure is damaged: the first directory is not in the file"},
        {"no entries", with(8, "\0\0"sv), "-",
         "its structure is damaged: an impossible directory at byte 8"},
        {"more entries than bytes", with(8, "\xFF\xFF"sv), "-",
         "the file is cut off within its first directory"},
        {"a packet of numbers", with(entry + 2, "\4\0"sv), "-",
         "its structure is damaged: metadata that is not made of bytes"},
        {"a packet behind the end", with(entry + 8, "\xFF\xFF\xFF\xFF"sv), "-",
         "the file is cut off within its metadata packet"},
        {"a packet of four gigabytes", with(entry + 4, "\xFF\xFF\xFF\xFF"sv), "-",
         "the file is cut off within its metadata packet"},
        {"two packets", Tiff().Xmp(kOld).Xmp(kSame).Bytes(), "the old packet, twenty-nine b",
         "it holds several metadata packets, which cannot be put together"},
    };
    kTiff.ExpectRefusals(rows, kSame);
    const std::string overDirectory = with(entry + 8, "\x0A\0\0\0"sv);
    EXPECT_EQ(kTiff.Save(overDirectory, kSame),
              "its structure is damaged: its metadata lies over its directory");
}

/// Classic TIFF and BigTIFF, least and most significant byte first, each with a part of another.
TEST(TiffFile, HeadersThatContradictThemselves)
{
    const struct {
        const char* about;
        std::string bytes;
    } unknown[] = {
        {"a version in the other order", "II\0*\0\0\0\x08"s},
        {"the same, the other way round", "MM*\0\x08\0\0\0"s},
        {"a BigTIFF version in the other order", "II\0+\0\x08\0\0\0\0\0\0\0\0\0\x10"s},
        {"one letter of each", "IM*\0\x08\0\0\0"s},
        {"the same, the other way round", "MI\0*\0\0\0\x08"s},
        {"a version nobody has", "II,\0\x08\0\0\0"s},
    };
    for (const auto& row : unknown) {
        SCOPED_TRACE(row.about);
        const std::string bytes = row.bytes + Photo({}, kOld).Bytes().substr(8);
        MemorySource source(bytes);
        EXPECT_EQ(RecogniseFormat(source), nullptr);
    }

    const std::string classic = Photo({}, kOld).Bytes();
    const std::string big = Photo({false, true}, kOld).Bytes();
    const std::string bigOther = Photo({true, true}, kOld).Bytes();
    const RefusalCase rows[] = {
        {"offsets of BigTIFF in the other order", "II+\0\0\x08\0\0"s + big.substr(8), "-",
         "its structure is damaged: an impossible size of offsets at byte 4"},
        {"the first directory of BigTIFF in the other order",
         big.substr(0, 8) + bigOther.substr(8, 8) + big.substr(16), "-",
         "its structure is damaged: the first directory is not in the file"},
        {"a directory of BigTIFF in the other order", big.substr(0, 16) + bigOther.substr(16), "-",
         "its structure is damaged: an impossible directory at byte 16"},
        {"a classic header in front of BigTIFF",
         "II*\0\x10\0\0\0"s + std::string(8, '\0') + big.substr(16).replace(0, 2, "\0\0"sv), "-",
         "its structure is damaged: an impossible directory at byte 16"},
        {"a BigTIFF header in front of a classic directory",
         "II+\0\x08\0\0\0\x10\0\0\0\0\0\0\0"s + classic.substr(8), "-",
         "its structure is damaged: an impossible directory at byte 16"},
    };
    kTiff.ExpectRefusals(rows, kSame);
    // Read as what its header says, such a file leads anywhere.
    const std::string mixed = "II*\0\x10\0\0\0"s + std::string(8, '\0') + big.substr(16);
    EXPECT_EQ(kTiff.Save(mixed, kLonger), kCut);
}

/// Directories that lead to themselves, to the header, or to each other are not followed: only the
/// first one is read, and what it says of the next one stays.
TEST(TiffFile, DirectoriesInCircles)
{
    for (const TiffLayout& layout : kLayouts) {
        const Tiff numbers(layout);
        const std::size_t number = layout.isBig ? 8 : 4;
        const std::size_t first = layout.isBig ? 16 : 8;
        const std::string whole = Photo(layout, kOld).Bytes();
        const std::size_t next = first + (layout.isBig ? 8 : 2) + 4 * (4 + 2 * number);
        for (const std::uint64_t place : {first, std::size_t{0}, whole.size(), whole.size() * 2}) {
            SCOPED_TRACE(testing::Message() << layout.isBig << layout.bigEndian << " " << place);
            const auto circle = [&](std::string bytes) {
                return bytes.replace(next, number, numbers.Number(place, number));
            };
            EXPECT_TRUE(kTiff.Save(circle(whole), kSame) == circle(Photo(layout, kSame).Bytes()));
            const std::string grown = kTiff.Save(circle(whole), kLonger);
            if (place >= whole.size()) {
                EXPECT_EQ(grown, kCut);
                continue;
            }
            EXPECT_EQ(kTiff.Packet(grown), kLonger);
            EXPECT_EQ(grown.substr(next, number), numbers.Number(place, number));
        }
    }
}

/// A first directory that must grow moves to the end. What leads to it besides the header would
/// lead to the old one then, and readers would see one image more.
TEST(TiffFile, AFirstDirectoryThatOthersLeadToCannotGrow)
{
    for (const TiffLayout& layout : kLayouts) {
        const Tiff numbers(layout);
        const std::size_t number = layout.isBig ? 8 : 4;
        const std::size_t countBytes = layout.isBig ? 8 : 2;
        const std::size_t entryBytes = 4 + 2 * number;
        const std::size_t first = layout.isBig ? 16 : 8;
        const std::string whole = Photo(layout, "").Bytes();
        const std::size_t firstNext = first + countBytes + 3 * entryBytes;
        const std::size_t second = firstNext + number;
        const std::size_t secondNext = second + countBytes + entryBytes;
        const auto with = [&](std::size_t at, std::uint64_t place) {
            return std::string(whole).replace(at, number, numbers.Number(place, number));
        };
        constexpr char kCircle[] = "its directories lead in a circle, which would be broken open";
        const struct {
            const char* about;
            std::string bytes;
            const char* refusal;
        } rows[] = {
            {"to itself", with(firstNext, first), kCircle},
            {"the second one to the first one", with(secondNext, first), kCircle},
            // Circles of others stay what they are.
            {"the second one to itself", with(secondNext, second), ""},
            {"nowhere", whole, ""},
        };
        for (const auto& row : rows) {
            SCOPED_TRACE(row.about);
            EXPECT_EQ(kTiff.Refusal(row.bytes), row.refusal);
            const std::string saved = kTiff.Save(row.bytes, kLonger);
            if (*row.refusal != '\0') {
                EXPECT_EQ(saved, row.refusal);
            } else {
                EXPECT_EQ(kTiff.Packet(saved), kLonger);
            }
        }
    }
}

TEST(TiffFile, CutAtEveryLength)
{
    for (const TiffLayout& layout : kLayouts) {
        const std::string whole = Photo(layout, kOld).Bytes();
        const std::size_t packetEnd = whole.find(kOld) + kOld.size();
        for (std::size_t bytes = 4; bytes < whole.size(); ++bytes) {
            SCOPED_TRACE(bytes);
            const std::string cut = whole.substr(0, bytes);
            const std::string saved = kTiff.Save(cut, kSame);
            if (bytes < packetEnd) {
                EXPECT_NE(kTiff.Refusal(cut), "");
                EXPECT_EQ(saved, kTiff.Refusal(cut));
            } else {
                EXPECT_TRUE(saved == Photo(layout, kSame).Bytes().substr(0, bytes));
            }
        }
    }
}

/// What a file lacks behind its end would be found in the packet, were that put there. In its own
/// place a packet of the same length can be saved.
TEST(TiffFile, NothingIsPutBehindTheEndOfACutFile)
{
    for (const TiffLayout& layout : kLayouts) {
        const Tiff numbers(layout);
        const std::size_t number = layout.isBig ? 8 : 4;
        const auto image = [&](std::uint16_t places, std::uint16_t sizes, std::uint64_t end,
                               std::uint64_t bytes) {
            return [=](Tiff tiff) {
                // Two parts: the last one ends at `end`.
                const std::string ends = numbers.Number(8, 4) + numbers.Number(end - bytes, 4);
                return tiff.Entry(places, 4, 2, ends)
                    .Entry(sizes, 4, 2, numbers.Number(bytes, 4) + numbers.Number(bytes, 4));
            };
        };
        struct Row {
            const char* about;
            std::function<Tiff(Tiff)> add;
            bool isCut;
        };
        constexpr std::uint64_t kFar = 100000;
        const Row rows[] = {
            {"nothing", [](const Tiff& tiff) { return tiff; }, false},
            {"strips", image(273, 279, kFar, 60), true},
            {"strips that are there", image(273, 279, 80, 60), false},
            {"tiles", image(324, 325, kFar, 60), true},
            {"a JPEG file", image(513, 514, kFar, 60), true},
            {"a strip of short numbers",
             [&](Tiff tiff) {
                 return tiff.Entry(273, 3, 1, numbers.Number(8, 2))
                     .Entry(279, 3, 1, numbers.Number(65000, 2));
             },
             true},
            {"the directory of a camera's data",
             [&](Tiff tiff) { return tiff.Entry(34665, 4, 1, numbers.Number(kFar, 4)); }, true},
            {"a number that is as large",
             [&](Tiff tiff) { return tiff.Entry(40000, 4, 1, numbers.Number(kFar, 4)); }, false},
            {"places without sizes",
             [&](Tiff tiff) { return tiff.Entry(273, 4, 1, numbers.Number(kFar, 4)); }, false},
        };
        for (const Row& row : rows) {
            SCOPED_TRACE(row.about);
            const std::string with = row.add(Photo(layout, kOld)).Bytes();
            EXPECT_EQ(kTiff.Refusal(with), "");
            EXPECT_EQ(kTiff.Packet(kTiff.Save(with, kSame)), kSame);
            for (const std::string& bytes : {with, row.add(Photo(layout, "")).Bytes()}) {
                const std::string saved = kTiff.Save(bytes, kLonger);
                EXPECT_EQ(row.isCut ? saved : kTiff.Packet(saved), row.isCut ? kCut : kLonger);
            }
        }

        // A directory inside the first one, of which the strip is missing, or all of it.
        for (const std::uint64_t end : {std::uint64_t{80}, kFar}) {
            const std::size_t type = layout.isBig ? 16 : 4;
            const auto field = [&](std::uint16_t tag, std::uint64_t value) {
                return numbers.Number(tag, 2) + numbers.Number(type, 2) +
                       numbers.Number(1, number) + numbers.Number(value, number);
            };
            const std::string inside = numbers.Number(2, layout.isBig ? 8 : 2) +
                                       field(273, end - 60) + field(279, 60) +
                                       numbers.Number(0, number);
            const auto build = [&](std::uint64_t place) {
                return Photo(layout, "")
                    .Entry(330, static_cast<std::uint16_t>(type), 1, numbers.Number(place, number))
                    .Entry(40000, 7, inside.size(), inside)
                    .Bytes();
            };
            const std::string bytes = build(build(8).find(inside));
            const std::string saved = kTiff.Save(bytes, kLonger);
            EXPECT_EQ(end == kFar ? saved : kTiff.Packet(saved), end == kFar ? kCut : kLonger);
            EXPECT_EQ(kTiff.Save(build(kFar), kLonger), kCut);
        }

        // A value, and the last directory, of which nothing is there any more.
        const std::string whole = Photo(layout, "").Bytes();
        EXPECT_EQ(kTiff.Save(whole.substr(0, whole.size() - 1), kLonger), kCut);
        std::string behind = whole;
        const std::size_t next = (layout.isBig ? 16 + 8 : 8 + 2) + 3 * (4 + 2 * number);
        behind.replace(next, number, numbers.Number(whole.size(), number));
        EXPECT_EQ(kTiff.Save(behind, kLonger), kCut);
        behind.replace(next, number, numbers.Number(whole.size() - 1, number));
        EXPECT_EQ(kTiff.Save(behind, kLonger), kCut);
    }
}

TEST(TiffFile, EveryByteOfASaveIsChecked)
{
    for (const TiffLayout& layout : kLayouts) {
        kTiff.ExpectEveryByteIsChecked(Photo(layout, kOld).Bytes(), kSame);
        kTiff.ExpectEveryByteIsChecked(Photo(layout, kOld).Bytes(), kLonger);
        kTiff.ExpectEveryByteIsChecked(Photo(layout, "").Bytes() + "x", kLonger);
    }
}

TEST(TiffFile, ReadsOnlyTheFirstDirectory)
{
    const std::string bytes = Photo({}, kOld).Bytes() + std::string(1000000, 'i');
    WatchedSource source(bytes);
    EXPECT_FALSE(ReadTiff(source)->Refusal());
    EXPECT_LT(source.total, 10000u);
}

struct NameCase {
    const char* extension;
    bool hasDngVersion;
    bool isBig;
    const char* name;  // null: a raw file
};

// A raw file looks like a TIFF, but its maker alone knows what may be changed in it.
TEST(TiffFile, TellsRawFiles)
{
    const NameCase rows[] = {
        {"tif", false, false, "TIFF"},  {"tiff", false, true, "BigTIFF"},
        {"dng", true, false, "DNG"},    {"nef", true, false, "DNG"},
        {"tif", true, false, "DNG"},    {"nef", false, false, nullptr},
        {"dng", false, false, nullptr}, {"", false, false, nullptr},
        {"jpg", false, true, nullptr},
    };
    for (const NameCase& row : rows) {
        SCOPED_TRACE(row.extension);
        Tiff tiff(TiffLayout{false, row.isBig});
        tiff.Image();
        if (row.hasDngVersion) {
            tiff.Entry(50706, 1, 4, "\1\4\0\0"sv);
        }
        const std::string bytes = tiff.Bytes();
        MemorySource source(bytes);
        EXPECT_STREQ(ReadTiff(source)->NameOf(RecogniseFormat(source)->name, row.extension),
                     row.name);
    }
}

}  // namespace
}  // namespace kivxmp::photo
