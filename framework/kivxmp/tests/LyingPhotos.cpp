#include "framework/kivxmp/tests/LyingPhotos.h"

#include <cstdint>
#include <filesystem>
#include <string_view>

#include "framework/kivxmp/src/ByteNumbers.h"
#include "framework/kivxmp/tests/JpegBuilder.h"
#include "framework/kivxmp/tests/PhotoBuilders.h"

namespace kivxmp::test {

using namespace std::string_literals;
using namespace std::string_view_literals;
using photo::ByteOrder;
using photo::NumberBytes;

namespace {

constexpr std::uint64_t kGiB = std::uint64_t{1} << 30;

std::string Little(std::uint64_t value, std::size_t bytes)
{
    return NumberBytes(value, bytes, ByteOrder::kLittle);
}

/// A directory entry of the packet, behind a header that leads to `count` entries.
std::string TiffBegin(bool isBig, std::uint64_t count, std::uint64_t packetBytes)
{
    const std::size_t number = isBig ? 8 : 4;
    const std::string header = isBig ? "II+\0\x08\0\0\0\x10\0\0\0\0\0\0\0"s : "II*\0\x08\0\0\0"s;
    return header + Little(count, isBig ? 8 : 2) + Little(700, 2) + Little(1, 2) +
           Little(packetBytes, number) + Little(4096, number);
}

std::string Digest()
{
    return std::string(32, 'A');
}

}  // namespace

std::vector<LyingPhoto> MakeLyingPhotos(const kivcore::testing::TestFolder& folder)
{
    const std::string text("iTXtXML:com.adobe.xmp\0\0\0\0\0<x"sv);
    std::string named = SmallPacket("t");
    named.insert(named.find("my:odd"),
                 "xmlns:xmpNote=\"http://ns.adobe.com/xmp/note/\""
                 " xmpNote:HasExtendedXMP=\"" +
                     Digest() + "\" ");
    Jpeg jpeg;
    jpeg.Xmp(named).Extended(Digest(), 0xFFFFFFFF, 0, "<x").Extended(Digest(), 0xFFFFFFFF, 2, ">");
    const std::string riff = "RIFF" + Little(4 * kGiB - 16, 4) + "WEBP";
    const std::string extended = Webp().Extended(4).Bytes().substr(12);
    struct Row {
        const char* about;
        const char* name;
        std::string begin;
        std::uint64_t bytes;
    };
    const Row rows[] = {
        {"a sidecar", "a.xmp", "<x", 3 * kGiB},
        {"a text chunk", "b.png",
         Png().Bytes() + NumberBytes(2 * kGiB - 64, 4, ByteOrder::kBig) + text, 2 * kGiB + 64},
        {"a compressed chunk", "c.png",
         Png().Bytes() + NumberBytes(2 * kGiB - 64, 4, ByteOrder::kBig) +
             "iTXtXML:com.adobe.xmp\0\x01\0\0\0x"s,
         2 * kGiB + 64},
        {"a chunk of RIFF", "d.webp", riff + extended + "XMP " + Little(4 * kGiB - 256, 4),
         4 * kGiB - 8},
        {"a packet of TIFF", "e.tif", TiffBegin(false, 1, 3 * kGiB), 4 * kGiB - 1},
        {"a packet of BigTIFF", "f.tif", TiffBegin(true, 1, 7 * kGiB), 8 * kGiB},
        {"a directory of TIFF", "g.tif", TiffBegin(false, 65535, 100), kGiB},
        {"a directory of BigTIFF", "h.tif", TiffBegin(true, 0xFFFFFFFFFFFF, 100), kGiB},
        {"an extended part", "i.jpg", jpeg.Scan().Bytes(), 0},
    };
    std::vector<LyingPhoto> photos;
    for (const Row& row : rows) {
        folder.Write(row.name, row.begin);
        if (row.bytes != 0) {
            std::filesystem::resize_file(folder.Of(row.name), row.bytes);
        }
        photos.push_back({row.about, row.name});
    }
    return photos;
}

}  // namespace kivxmp::test
