#include "bench/PhotoFiles.h"

#include "framework/kivxmp/src/ByteNumbers.h"
#include "framework/kivxmp/tests/JpegBuilder.h"
#include "framework/kivxmp/tests/PhotoBuilders.h"

#include <kivcore/Dir.h>
#include <kivxmp/PhotoFile.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <random>
#include <stdexcept>

#include <sys/vfs.h>

namespace bench {

namespace {

using kivxmp::photo::ByteOrder;
using kivxmp::photo::NumberBytes;
using kivxmp::test::Jpeg;
using kivxmp::test::Png;
using kivxmp::test::Tiff;
using namespace std::string_view_literals;

constexpr std::size_t kUnitBytes = std::size_t{8} * 1024;
// A segment's length counts itself and the signature too.
constexpr std::size_t kLongestSegmentPacket = 65535 - 2 - 29;

/// A file: `head`, then `units` times `unit` (a hole of the same length), then `tail`.
struct Layout {
    std::string head;
    std::string unit;
    std::uint64_t units = 0;
    std::string tail;

    std::uint64_t ImageBytes() const { return units * unit.size(); }
};

std::string Noise()
{
    std::mt19937 random(1);
    std::string bytes(kUnitBytes, '\0');
    // Without the byte that could begin a marker in a JPEG scan.
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random() % 255); });
    return bytes;
}

std::uint64_t UnitsFor(std::uint64_t photoBytes, std::size_t unitBytes)
{
    return std::max<std::uint64_t>(photoBytes / unitBytes, 1);
}

Layout JpegLayout(std::string_view packet, std::uint64_t photoBytes)
{
    Jpeg jpeg;
    jpeg.App0().Exif();
    if (!packet.empty()) {
        jpeg.Xmp(packet);
    }
    jpeg.Segment(0xDB, std::string(65, '\x10'));
    jpeg.Segment(0xC0, "\x08\0\x10\0\x10\x01\x01\x11\0"sv);
    jpeg.Segment(0xDA, "\x01\x01\0\0\x3F\0"sv);
    return {jpeg.Bytes(), Noise(), UnitsFor(photoBytes, kUnitBytes), "\xFF\xD9"};
}

Layout PngLayout(std::string_view packet, std::uint64_t photoBytes, ImageData data)
{
    constexpr std::string_view kType = "IDAT";
    Layout layout{Png().Xmp(packet).Bytes(), Noise(), UnitsFor(photoBytes, kUnitBytes),
                  Png().Chunk("IEND", "").Bytes().substr(Png().Size())};
    if (data == ImageData::kSparse) {
        layout.head += NumberBytes(layout.ImageBytes(), 4, ByteOrder::kBig);
        layout.head += kType;
        // Nobody reads the checksum of image data here.
        layout.tail.insert(0, 4, '\0');
    } else {
        layout.unit = Png().Chunk(kType, layout.unit).Bytes().substr(Png().Size());
        layout.units = UnitsFor(photoBytes, layout.unit.size());
    }
    return layout;
}

Layout WebpLayout(std::string_view packet, std::uint64_t photoBytes)
{
    const auto number = [](std::uint64_t value) {
        return NumberBytes(value, 4, ByteOrder::kLittle);
    };
    constexpr std::string_view kImageHead = "\x10\x02\x00\x9D\x01\x2A\x20\x00\x14\x00"sv;
    Layout layout{"", Noise(), UnitsFor(photoBytes, kUnitBytes), ""};
    layout.tail = "XMP " + number(packet.size()) + std::string(packet);
    layout.tail.append(packet.size() & 1, '\0');
    layout.head = "VP8X" + number(10) + std::string("\x04\0\0\0\x1F\0\0\x13\0\0"sv) + "VP8 " +
                  number(kImageHead.size() + layout.ImageBytes()) + std::string(kImageHead);
    layout.head = "RIFF" +
                  number(4 + layout.head.size() + layout.ImageBytes() + layout.tail.size()) +
                  "WEBP" + layout.head;
    return layout;
}

/// The directory and its values, then one strip of image data up to the end.
Layout TiffLayoutOf(std::string_view packet, std::uint64_t photoBytes, bool isDng)
{
    Layout layout{"", Noise(), UnitsFor(photoBytes, kUnitBytes), ""};
    const auto head = [&](std::uint64_t stripOffset) {
        Tiff tiff;
        tiff.Image()
            .Entry(258, 3, 1, tiff.Number(8, 2))
            .Entry(259, 3, 1, tiff.Number(1, 2))
            .Entry(262, 3, 1, tiff.Number(1, 2))
            .Entry(273, 4, 1, tiff.Number(stripOffset, 4))
            .Entry(277, 3, 1, tiff.Number(1, 2))
            .Entry(278, 4, 1, tiff.Number(1, 4))
            .Entry(279, 4, 1, tiff.Number(layout.ImageBytes(), 4))
            .Xmp(packet);
        if (isDng) {
            tiff.Entry(50706, 1, 4, "\1\4\0\0"sv);
        }
        return tiff.Bytes();
    };
    layout.head = head(head(0).size());
    return layout;
}

Layout LayoutOf(std::string_view format, std::string_view packet, std::uint64_t photoBytes,
                ImageData data)
{
    if (format == "jpg") {
        return JpegLayout(packet, photoBytes);
    }
    if (format == "png") {
        return PngLayout(packet, photoBytes, data);
    }
    if (format == "webp") {
        return WebpLayout(packet, photoBytes);
    }
    return TiffLayoutOf(packet, photoBytes, format == "dng");
}

void Write(const std::filesystem::path& path, const Layout& layout, ImageData data)
{
    std::ofstream file(path, std::ios_base::binary | std::ios_base::trunc);
    file << layout.head;
    if (data == ImageData::kSparse) {
        file.seekp(static_cast<std::streamoff>(layout.ImageBytes()), std::ios_base::cur);
    } else {
        for (std::uint64_t i = 0; i < layout.units; ++i) {
            file << layout.unit;
        }
    }
    file << layout.tail;
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write " + path.string());
    }
    // Where the hole is the last thing, nothing was written behind it yet.
    std::filesystem::resize_file(path,
                                 layout.head.size() + layout.ImageBytes() + layout.tail.size());
}

void SaveInto(const std::filesystem::path& photo, std::string_view packet)
{
    const auto meta = OpenPhoto(photo);
    const auto source = __XMPMeta__::Parse(packet);
    for (const kivxmp::Node* const property : source->Properties()) {
        meta->SetCopy("{" + property->NamespaceUri() + "}" + property->LocalName(), *property);
    }
    kivxmp::SavePhoto(*meta);
}

}  // namespace

std::string PacketOfEditor(std::size_t bytes)
{
    std::string packet =
        "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
        "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n"
        " <rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
        "  <rdf:Description rdf:about=\"\"\n"
        "    xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\"\n"
        "    xmlns:dc=\"http://purl.org/dc/elements/1.1/\"\n"
        "    xmlns:photoshop=\"http://ns.adobe.com/photoshop/1.0/\"\n"
        "    xmlns:xmpMM=\"http://ns.adobe.com/xap/1.0/mm/\"\n"
        "    xmlns:stEvt=\"http://ns.adobe.com/xap/1.0/sType/ResourceEvent#\"\n"
        "    xmlns:crs=\"http://ns.adobe.com/camera-raw-settings/1.0/\"\n"
        "   xmp:CreatorTool=\"Example Converter 4.2\"\n"
        "   xmp:CreateDate=\"2021-06-01T12:00:00.250+02:00\"\n"
        "   xmp:Rating=\"4\"\n"
        "   photoshop:City=\"Bergen\"\n"
        "   xmpMM:DocumentID=\"xmp.did:5e0f7a9c-6a3d-4b0e-9d7c-0d2f6a1b3c4d\"\n";
    for (const char* const setting :
         {"WhiteBalance=\"As Shot\"", "Temperature=\"5450\"", "Tint=\"+9\"", "Saturation=\"0\"",
          "Sharpness=\"40\"", "Exposure=\"+0.35\"", "Shadows=\"+18\"", "Contrast=\"+12\""}) {
        packet += "   crs:" + std::string(setting) + "\n";
    }
    packet +=
        "   crs:HasSettings=\"True\">\n"
        "   <dc:title><rdf:Alt><rdf:li xml:lang=\"x-default\">Harbour at noon</rdf:li></rdf:Alt>"
        "</dc:title>\n"
        "   <dc:creator><rdf:Seq><rdf:li>A. Photographer</rdf:li></rdf:Seq></dc:creator>\n"
        "   <dc:subject>\n    <rdf:Bag>\n";
    for (const char* const keyword : {"sea", "sky", "boats", "harbour", "summer", "Norway"}) {
        packet += "     <rdf:li>" + std::string(keyword) + "</rdf:li>\n";
    }
    packet +=
        "    </rdf:Bag>\n   </dc:subject>\n"
        "   <xmpMM:History>\n    <rdf:Seq>\n";
    const std::string end =
        "    </rdf:Seq>\n   </xmpMM:History>\n"
        "  </rdf:Description>\n </rdf:RDF>\n</x:xmpmeta>\n";
    for (int step = 1000; packet.size() + end.size() < bytes; ++step) {
        packet +=
            "     <rdf:li\n      stEvt:action=\"saved\"\n"
            "      stEvt:instanceID=\"xmp.iid:5e0f7a9c-6a3d-4b0e-9d7c-0d2f6a1b" +
            std::to_string(step) +
            "\"\n      stEvt:when=\"2021-06-02T09:15:42+02:00\"\n"
            "      stEvt:softwareAgent=\"Example Converter 4.2\"\n"
            "      stEvt:changed=\"/metadata\"/>\n";
    }
    return packet + end + std::string(2048, ' ') + "<?xpacket end=\"w\"?>";
}

std::filesystem::path MakePhoto(const std::filesystem::path& folder, const std::string& name,
                                std::string_view format, std::uint64_t photoBytes,
                                std::size_t packetBytes, ImageData data)
{
    std::filesystem::path path = folder / (name + "." + std::string(format));
    const std::string packet = PacketOfEditor(packetBytes);
    const bool isSplit = format == "jpg" && packet.size() > kLongestSegmentPacket;
    Write(path, LayoutOf(format, isSplit ? std::string_view() : packet, photoBytes, data), data);
    if (isSplit) {
        SaveInto(path, packet);
    }
    return path;
}

std::string ExtendedPart(const std::filesystem::path& path)
{
    constexpr std::string_view kSignature = "http://ns.adobe.com/xmp/extension/\0"sv;
    constexpr std::size_t kHeadBytes = kSignature.size() + 32 + 4 + 4;
    // It stands at the beginning.
    std::string bytes(std::min<std::uintmax_t>(std::filesystem::file_size(path), 1'000'000), '\0');
    std::ifstream(path, std::ios_base::binary)
        .read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    std::string text;
    for (std::size_t at = bytes.find(kSignature); at != std::string::npos;
         at = bytes.find(kSignature, at + 1)) {
        const auto segment =
            static_cast<std::size_t>(kivxmp::photo::GetNumber(bytes, at - 2, 2, ByteOrder::kBig));
        text += bytes.substr(at + kHeadBytes, segment - 2 - kHeadBytes);
    }
    return text;
}

std::unique_ptr<__XMPMeta__> OpenPhoto(const std::filesystem::path& path)
{
    return kivxmp::OpenPhoto(kivcore::filesupport::PathFromUTF8(path.string()));
}

std::filesystem::path PhotoFolder()
{
    const char* const folder = std::getenv("KIV_BENCH_PHOTOS");
    return folder != nullptr ? folder : ".";
}

std::string FileSystemOf(const std::filesystem::path& folder)
{
    struct statfs status {};
    if (statfs(folder.c_str(), &status) != 0) {
        return "unknown";
    }
    switch (static_cast<unsigned long>(status.f_type)) {
        case 0x01021994:
            return "tmpfs: in memory, nothing is flushed";
        case 0xEF53:
            return "ext4";
        case 0x9123683E:
            return "btrfs";
        case 0x58465342:
            return "xfs";
        default:
            return "another";
    }
}

}  // namespace bench
