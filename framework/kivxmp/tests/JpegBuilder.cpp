#include "framework/kivxmp/tests/JpegBuilder.h"

#include <stdexcept>

#include "framework/kivxmp/src/ByteNumbers.h"

namespace kivxmp::test {

namespace {

using namespace std::string_view_literals;

// Room for the pictures of one test: the first and three more.
constexpr std::size_t kIndexPictures = 4;
constexpr std::size_t kIndexDirectoryBytes = 8 + 2 + 3 * 12 + 4;

photo::ByteOrder OrderOf(bool bigEndian)
{
    return bigEndian ? photo::ByteOrder::kBig : photo::ByteOrder::kLittle;
}

std::string Number(std::uint64_t value, std::size_t bytes, bool bigEndian)
{
    return photo::NumberBytes(value, bytes, OrderOf(bigEndian));
}

std::string PictureEntry(std::size_t bytes, std::size_t offset, bool bigEndian)
{
    return Number(offset == 0 ? 0x20030000 : 0x00020002, 4, bigEndian) +
           Number(bytes, 4, bigEndian) + Number(offset, 4, bigEndian) + Number(0, 4, bigEndian);
}

}  // namespace

std::string SmallPacket(std::string_view title)
{
    return "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
           "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n"
           "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
           "<rdf:Description rdf:about=\"\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\""
           " xmlns:my=\"http://example.org/my/\" my:odd=\"kept\">\n"
           "<dc:title><rdf:Alt><rdf:li xml:lang=\"x-default\">" +
           std::string(title) +
           "</rdf:li></rdf:Alt></dc:title>\n"
           "<dc:subject><rdf:Bag><rdf:li>sea</rdf:li></rdf:Bag></dc:subject>\n"
           "</rdf:Description>\n</rdf:RDF>\n</x:xmpmeta>\n"
           "<?xpacket end=\"w\"?>";
}

std::string PacketOfSize(std::size_t bytes, std::string_view title)
{
    std::string packet = SmallPacket(title);
    if (packet.size() > bytes) {
        throw std::invalid_argument("no packet is so small");
    }
    packet.insert(packet.rfind("<?xpacket"), std::string(bytes - packet.size(), ' '));
    return packet;
}

Jpeg& Jpeg::Segment(unsigned char marker, std::string_view payload)
{
    if (payload.size() + 2 > 0xFFFF) {
        throw std::invalid_argument("no segment is so long");
    }
    bytes_ += '\xFF';
    bytes_ += static_cast<char>(marker);
    bytes_ += Number(payload.size() + 2, 2, true);
    bytes_ += payload;
    return *this;
}

Jpeg& Jpeg::App0()
{
    return Segment(0xE0, "JFIF\0\x01\x01\0\0\x48\0\x48\0\0"sv);
}

Jpeg& Jpeg::Exif()
{
    // One directory with one entry: orientation 1.
    return Segment(0xE1,
                   "Exif\0\0MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0\x01\0\0\0\0\0\0"sv);
}

Jpeg& Jpeg::Comment(std::string_view text)
{
    return Segment(0xFE, text);
}

Jpeg& Jpeg::Xmp(std::string_view packet)
{
    return Segment(0xE1, std::string("http://ns.adobe.com/xap/1.0/\0"sv) + std::string(packet));
}

Jpeg& Jpeg::Extended(std::string_view digest, std::size_t wholeBytes, std::size_t at,
                     std::string_view piece)
{
    return Segment(0xE1, std::string("http://ns.adobe.com/xmp/extension/\0"sv) +
                             std::string(32 - digest.size(), '0') + std::string(digest) +
                             Number(wholeBytes, 4, true) + Number(at, 4, true) +
                             std::string(piece));
}

Jpeg& Jpeg::Profile(std::size_t bytes)
{
    return Segment(0xE2, std::string("ICC_PROFILE\0\x01\x01"sv) + std::string(bytes, 'p'));
}

Jpeg& Jpeg::Fill(std::size_t count)
{
    return Raw(std::string(count, '\xFF'));
}

Jpeg& Jpeg::Standalone(unsigned char marker)
{
    bytes_ += '\xFF';
    bytes_ += static_cast<char>(marker);
    return *this;
}

Jpeg& Jpeg::Raw(std::string_view bytes)
{
    bytes_ += bytes;
    return *this;
}

Jpeg& Jpeg::Index(bool bigEndian)
{
    const auto number = [bigEndian](std::uint64_t value, std::size_t bytes) {
        return Number(value, bytes, bigEndian);
    };
    std::string index = bigEndian ? "MM" : "II";
    index += number(42, 2) + number(8, 4) + number(3, 2);
    index += number(0xB000, 2) + number(7, 2) + number(4, 4) + "0100";
    index += number(0xB001, 2) + number(4, 2) + number(1, 4) + number(kIndexPictures, 4);
    index += number(0xB002, 2) + number(7, 2) + number(16 * kIndexPictures, 4) +
             number(kIndexDirectoryBytes, 4);
    index += number(0, 4);
    index += std::string(16 * kIndexPictures, '\0');
    Segment(0xE2, std::string("MPF\0"sv) + index);
    indexAt_ = bytes_.size() - index.size();
    indexBigEndian_ = bigEndian;
    return *this;
}

Jpeg& Jpeg::Scan()
{
    Segment(0xDB, std::string(65, '\x10'));
    Segment(0xC0, "\x08\0\x10\0\x10\x01\x01\x11\0"sv);
    Segment(0xDA, "\x01\x01\0\0\x3F\0"sv);
    // A marker within the data: only its escape tells that the scan goes on.
    Raw("\x12\x34\xFF\0\x56\xFF\xD0\x78"sv);
    Raw("\xFF\xD9");
    firstPictureEnd_ = bytes_.size();
    return *this;
}

Jpeg& Jpeg::Picture(std::string_view bytes)
{
    pictures_.emplace_back(bytes_.size(), bytes.size());
    return Raw(bytes);
}

std::string Jpeg::Bytes() const
{
    std::string bytes = bytes_;
    if (indexAt_ != 0) {
        std::string entries = PictureEntry(firstPictureEnd_, 0, indexBigEndian_);
        for (const auto& [offset, length] : pictures_) {
            entries += PictureEntry(length, offset - indexAt_, indexBigEndian_);
        }
        entries.resize(16 * kIndexPictures, '\0');
        bytes.replace(indexAt_ + kIndexDirectoryBytes, entries.size(), entries);
    }
    return bytes;
}

std::vector<std::string> PicturesByIndex(std::string_view file)
{
    std::vector<std::string> pictures;
    const std::size_t signature = file.find("MPF\0"sv);
    if (signature == std::string_view::npos) {
        return pictures;
    }
    const std::size_t index = signature + 4;
    const bool bigEndian = file.at(index) == 'M';
    for (std::size_t i = 0; i < kIndexPictures; ++i) {
        const std::size_t entry = index + kIndexDirectoryBytes + 16 * i;
        const std::uint64_t bytes = photo::GetNumber(file, entry + 4, 4, OrderOf(bigEndian));
        const std::uint64_t offset = photo::GetNumber(file, entry + 8, 4, OrderOf(bigEndian));
        if (bytes == 0) {
            break;
        }
        pictures.emplace_back(file.substr(offset == 0 ? 0 : index + offset, bytes));
    }
    return pictures;
}

}  // namespace kivxmp::test
