#include "framework/kivxmp/src/PngFile.h"

#include <zlib.h>

#include <algorithm>
#include <optional>

#include "framework/kivxmp/src/ByteNumbers.h"
#include "framework/kivxmp/src/HeaderReader.h"
#include "framework/kivxmp/src/PngText.h"

namespace kivxmp::photo {

namespace {

using namespace std::string_view_literals;

constexpr std::uint64_t kSignatureBytes = 8;
constexpr std::uint64_t kHeadBytes = 4 + 4;  // length and type
constexpr std::uint64_t kChecksumBytes = 4;
constexpr std::uint64_t kImageHeaderBytes = 13;
constexpr std::uint64_t kLongestChunk = 0x7FFFFFFF;
constexpr std::string_view kTextType = "iTXt";
constexpr std::string_view kExifType = "eXIf";
constexpr std::string_view kKeyword = "XML:com.adobe.xmp\0"sv;
// Behind the keyword: not compressed, method 0, no language, no translated keyword.
constexpr std::string_view kPlainText = "\0\0\0\0"sv;
// Longer language and keyword texts than any writer's; such a chunk is none of ours.
constexpr std::uint64_t kLongestTextHead = 1024;

struct Chunk {
    std::uint64_t begin = 0;
    std::uint64_t contentBytes = 0;
    std::string type;

    std::uint64_t Content() const { return begin + kHeadBytes; }
    std::uint64_t ContentEnd() const { return Content() + contentBytes; }
    std::uint64_t End() const { return ContentEnd() + kChecksumBytes; }
};

struct PacketChunk {
    ByteRange chunk;
    bool isCompressed = false;
};

std::uint32_t Checksum(std::string_view bytes)
{
    return static_cast<std::uint32_t>(
        crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

std::string ChunkBytes(std::string_view type, std::initializer_list<std::string_view> content)
{
    std::string checked(type);
    for (const std::string_view part : content) {
        checked += part;
    }
    return NumberBytes(checked.size() - type.size(), 4, ByteOrder::kBig) + checked +
           NumberBytes(Checksum(checked), 4, ByteOrder::kBig);
}

class PngFile final : public PhotoFormat {
public:
    explicit PngFile(ByteSource& source);

    std::string ReadPacket(std::size_t number, ByteSource& source) const override;
    std::vector<ByteRange> Changeable() const override;

private:
    enum class Next { kChunk, kEnd, kCut, kBroken };

    Next ReadChunk(HeaderReader& reader, std::uint64_t& position, Chunk& chunk);
    void NoteText(HeaderReader& reader, const Chunk& chunk, ByteSource& source);
    void NoteProfile(HeaderReader& reader, const Chunk& chunk);
    SavePlan PlanPlace(const PacketParts& packet) const override;

    std::vector<PacketChunk> chunks_;  // one for each packet
};

PngFile::PngFile(ByteSource& source)
{
    HeaderReader reader(source);
    std::uint64_t position = kSignatureBytes;
    Chunk chunk;
    Next next = ReadChunk(reader, position, chunk);
    for (; next == Next::kChunk; next = ReadChunk(reader, position, chunk)) {
        if (chunk.type == kTextType) {
            NoteText(reader, chunk, source);
        } else if (chunk.type == kExifType) {
            NoteBlock(MetadataBlock::Kind::kExif, {chunk.Content(), chunk.contentBytes});
        } else {
            NoteProfile(reader, chunk);
        }
    }
    // A packet that is there in full is the place, and what is missing lies behind it. Without one
    // nobody can tell whether the missing part held it.
    if (next == Next::kCut && Packets().empty()) {
        Refuse(PhotoError::Kind::kBroken, "the file is cut off before its end");
    }
}

PngFile::Next PngFile::ReadChunk(HeaderReader& reader, std::uint64_t& position, Chunk& chunk)
{
    const std::string head = reader.Bytes(position, kHeadBytes);
    if (head.size() < kHeadBytes) {
        return Next::kCut;
    }
    chunk = {position, GetNumber(head, 0, 4, ByteOrder::kBig), head.substr(4)};
    const bool isType = std::all_of(chunk.type.begin(), chunk.type.end(), [](char letter) {
        return (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z');
    });
    const bool isFirst = position == kSignatureBytes;
    if (!isType || chunk.contentBytes > kLongestChunk ||
        isFirst != (chunk.type == "IHDR" && chunk.contentBytes == kImageHeaderBytes)) {
        Refuse(PhotoError::Kind::kBroken,
               "its structure is damaged: no chunk" + AtByte(chunk.begin));
        return Next::kBroken;
    }
    if (chunk.End() > reader.SizeBytes()) {
        return Next::kCut;
    }
    position = chunk.End();
    return chunk.type == "IEND" ? Next::kEnd : Next::kChunk;
}

void PngFile::NoteText(HeaderReader& reader, const Chunk& chunk, ByteSource& source)
{
    const std::string head =
        reader.Bytes(chunk.Content(), std::min(chunk.contentBytes, kLongestTextHead));
    if (!head.starts_with(kKeyword)) {
        return;
    }
    // A compression flag and method, then a language and a translated keyword, each up to a zero.
    const std::size_t flagAt = kKeyword.size();
    const std::size_t language = head.find('\0', flagAt + 2);
    const std::size_t keyword =
        language == std::string::npos ? language : head.find('\0', language + 1);
    const bool isCompressed = head.size() > flagAt && head[flagAt] == 1;
    if (keyword == std::string::npos || (head[flagAt] != 0 && !isCompressed) ||
        (isCompressed && head[flagAt + 1] != 0)) {
        Refuse(PhotoError::Kind::kBroken,
               "its structure is damaged: a text chunk that cannot be read" + AtByte(chunk.begin));
        return;
    }
    if (chunk.contentBytes > kPacketBytesLimit) {
        Refuse(PhotoError::Kind::kRefused, "it holds a metadata packet that is too large");
        return;
    }
    const std::uint64_t text = chunk.Content() + keyword + 1;
    if (!NotePacket({text, chunk.ContentEnd() - text})) {
        return;
    }
    chunks_.push_back({{chunk.begin, chunk.End() - chunk.begin}, isCompressed});
    // A wrong checksum is not made right: whoever looks at it should see that something happened.
    const std::string checked =
        ReadRange(source, {chunk.begin + 4, 4 + chunk.contentBytes + kChecksumBytes});
    const std::size_t checkedBytes = checked.size() - kChecksumBytes;
    if (Checksum(std::string_view(checked).substr(0, checkedBytes)) !=
        GetNumber(checked, checkedBytes, 4, ByteOrder::kBig)) {
        Refuse(PhotoError::Kind::kBroken,
               "its metadata is damaged: the checksum is wrong" + AtByte(chunk.begin));
    }
}

/// The older way to keep Exif and IIM data, by which Exiv2 and ImageMagick write.
void PngFile::NoteProfile(HeaderReader& reader, const Chunk& chunk)
{
    const bool isPacked = chunk.type == "zTXt";
    if (!isPacked && chunk.type != "tEXt") {
        return;
    }
    const std::string head = reader.Bytes(
        chunk.Content(), std::min<std::uint64_t>(chunk.contentBytes, kProfileKeywordBytes));
    if (IsProfileKeyword(head)) {
        NoteBlock(isPacked ? MetadataBlock::Kind::kPackedProfile : MetadataBlock::Kind::kProfile,
                  {chunk.Content(), chunk.contentBytes});
    }
}

std::string PngFile::ReadPacket(std::size_t number, ByteSource& source) const
{
    std::string text = ReadRange(source, Packets().at(number));
    if (!chunks_[number].isCompressed) {
        return text;
    }
    std::optional<std::string> unpacked = UnpackText(text, kPacketBytesLimit);
    if (!unpacked) {
        throw PhotoError(PhotoError::Kind::kBroken, "its compressed metadata cannot be unpacked" +
                                                        AtByte(chunks_[number].chunk.offset));
    }
    return std::move(*unpacked);
}

SavePlan PngFile::PlanPlace(const PacketParts& packet) const
{
    SavePlan plan;
    for (const PacketChunk& old : chunks_) {
        plan.push_back({old.chunk, {}});
    }
    if (plan.empty()) {
        // Behind the image header, where readers find it before the image data.
        plan.push_back(
            {{kSignatureBytes + kHeadBytes + kImageHeaderBytes + kChecksumBytes, 0}, {}});
    }
    plan.front().fresh = ChunkBytes(kTextType, {kKeyword, kPlainText, packet.main});
    return plan;
}

std::vector<ByteRange> PngFile::Changeable() const
{
    std::vector<ByteRange> ranges;
    for (const PacketChunk& packet : chunks_) {
        ranges.push_back(packet.chunk);
    }
    return ranges;
}

}  // namespace

std::unique_ptr<PhotoFormat> ReadPng(ByteSource& source)
{
    return std::make_unique<PngFile>(source);
}

}  // namespace kivxmp::photo
