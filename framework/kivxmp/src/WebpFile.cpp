#include "framework/kivxmp/src/WebpFile.h"

#include <algorithm>
#include <optional>

#include "framework/kivxmp/src/ByteNumbers.h"
#include "framework/kivxmp/src/HeaderReader.h"

namespace kivxmp::photo {

namespace {

constexpr std::uint64_t kRiffSizeAt = 4;
constexpr std::uint64_t kRiffSizeCounts = 8;  // the size counts what stands behind itself
constexpr std::uint64_t kFirstChunk = 12;
constexpr std::uint64_t kHeadBytes = 4 + 4;  // name and size
constexpr std::uint64_t kLongestRiff = 0xFFFFFFFE;
constexpr std::string_view kPacketName = "XMP ";
constexpr std::string_view kExifName = "EXIF";
constexpr std::string_view kExtendedName = "VP8X";

// The VP8X chunk: flags, three bytes for later, width - 1 and height - 1 of 24 bits each.
constexpr std::uint64_t kExtendedBytes = 10;
constexpr unsigned char kPacketFlag = 0x04;
constexpr unsigned char kAlphaFlag = 0x10;

struct Chunk {
    std::uint64_t begin = 0;
    std::uint64_t contentBytes = 0;
    std::string name;

    std::uint64_t Content() const { return begin + kHeadBytes; }
    std::uint64_t ContentEnd() const { return Content() + contentBytes; }
    // A content of odd length is followed by a byte that it does not count.
    std::uint64_t End() const { return ContentEnd() + (contentBytes & 1); }
};

std::string ChunkBytes(std::string_view name, std::string_view content)
{
    std::string bytes(name);
    bytes += NumberBytes(content.size(), 4, ByteOrder::kLittle);
    bytes += content;
    bytes.append(content.size() & 1, '\0');
    return bytes;
}

/// What a VP8X chunk says, or would say, about an image without one.
std::string ExtendedContent(std::uint64_t width, std::uint64_t height, bool hasAlpha)
{
    return std::string(1, hasAlpha ? static_cast<char>(kAlphaFlag) : '\0') + std::string(3, '\0') +
           NumberBytes(width - 1, 3, ByteOrder::kLittle) +
           NumberBytes(height - 1, 3, ByteOrder::kLittle);
}

class WebpFile final : public PhotoFormat {
public:
    explicit WebpFile(ByteSource& source);

    std::vector<ByteRange> Changeable() const override;
    std::vector<std::uint64_t> PointerTargets() const override { return {riffEnd_}; }
    std::string OtherContent() const override;

private:
    /// Nothing at the end of the RIFF file and where it is damaged, which Refusal() tells.
    std::optional<Chunk> ReadChunk(HeaderReader& reader, std::uint64_t position);
    void NoteFirst(HeaderReader& reader, const Chunk& chunk);
    void NotePacketChunk(const Chunk& chunk);
    SavePlan PlanPlace(const PacketParts& packet) const override;

    std::vector<ByteRange> chunks_;      // one for each packet
    std::optional<ByteRange> extended_;  // the VP8X chunk
    std::string content_;                // its content, also where it is yet to be made
    std::uint64_t riffEnd_ = 0;
    std::uint64_t place_ = 0;  // of a new packet
    bool isCut_ = false;
};

WebpFile::WebpFile(ByteSource& source)
{
    HeaderReader reader(source);
    const std::string head = reader.Bytes(0, kFirstChunk);
    if (head.size() < kFirstChunk || !head.starts_with("RIFF")) {
        Refuse(PhotoError::Kind::kBroken, "the file is cut off within its header");
        return;
    }
    const std::uint64_t size = GetNumber(head, kRiffSizeAt, 4, ByteOrder::kLittle);
    riffEnd_ = size + kRiffSizeCounts;
    if (riffEnd_ < kFirstChunk || (size & 1) != 0) {
        Refuse(PhotoError::Kind::kBroken, "its structure is damaged: an impossible size at byte 4");
        return;
    }
    std::uint64_t position = kFirstChunk;
    for (std::optional<Chunk> chunk = ReadChunk(reader, position); chunk;
         chunk = ReadChunk(reader, position)) {
        if (chunk->begin == kFirstChunk) {
            NoteFirst(reader, *chunk);
        }
        if (chunk->name == kPacketName) {
            NotePacketChunk(*chunk);
        } else if (chunk->name == kExifName) {
            NoteBlock(MetadataBlock::Kind::kExif, {chunk->Content(), chunk->contentBytes});
        } else if (chunk->name == kExtendedName && chunk->begin != kFirstChunk) {
            Refuse(PhotoError::Kind::kBroken,
                   "its structure is damaged: a header out of place" + AtByte(chunk->begin));
        }
        position = chunk->End();
    }
    place_ = position;
    if (content_.empty()) {
        Refuse(PhotoError::Kind::kBroken,
               "its structure is damaged: no header of an image at byte 12");
    }
    if (isCut_ && Packets().empty()) {
        Refuse(PhotoError::Kind::kBroken, "the file is cut off before its end");
    }
}

std::optional<Chunk> WebpFile::ReadChunk(HeaderReader& reader, std::uint64_t position)
{
    if (position == riffEnd_) {
        return std::nullopt;
    }
    const std::string head = reader.Bytes(position, kHeadBytes);
    if (head.size() < kHeadBytes) {
        isCut_ = true;
        return std::nullopt;
    }
    const Chunk chunk{position, GetNumber(head, 4, 4, ByteOrder::kLittle), head.substr(0, 4)};
    if (position + kHeadBytes > riffEnd_ || chunk.End() > riffEnd_) {
        Refuse(PhotoError::Kind::kBroken,
               "its structure is damaged: a chunk reaches beyond the end" + AtByte(position));
        return std::nullopt;
    }
    if (chunk.End() > reader.SizeBytes()) {
        isCut_ = true;
        return std::nullopt;
    }
    return chunk;
}

/// The first chunk is VP8X, or the image itself where there is nothing but the image.
void WebpFile::NoteFirst(HeaderReader& reader, const Chunk& chunk)
{
    const std::string content = reader.Bytes(chunk.Content(), kExtendedBytes);
    if (content.size() < kExtendedBytes || chunk.contentBytes < kExtendedBytes) {
        return;
    }
    if (chunk.name == kExtendedName) {
        // A longer chunk than ours is of a later format: what else it says is not known.
        if (chunk.contentBytes == kExtendedBytes) {
            extended_ = ByteRange{chunk.begin, chunk.End() - chunk.begin};
            content_ = content;
        }
        return;
    }
    constexpr std::uint64_t kSizeMask = 0x3FFF;
    if (chunk.name == "VP8 ") {
        // RFC 6386: three bytes of frame tag, the start code, width and height of 14 bits each.
        const std::uint64_t width = GetNumber(content, 6, 2, ByteOrder::kLittle) & kSizeMask;
        const std::uint64_t height = GetNumber(content, 8, 2, ByteOrder::kLittle) & kSizeMask;
        if (content.substr(3, 3) == "\x9D\x01\x2A" && width != 0 && height != 0) {
            content_ = ExtendedContent(width, height, /*hasAlpha=*/false);
        }
    } else if (chunk.name == "VP8L" && content[0] == '\x2F') {
        // RFC 9649: a signature, then width - 1 and height - 1 of 14 bits each and the alpha flag.
        const std::uint64_t bits = GetNumber(content, 1, 4, ByteOrder::kLittle);
        content_ = ExtendedContent((bits & kSizeMask) + 1, (bits >> 14 & kSizeMask) + 1,
                                   (bits >> 28 & 1) != 0);
    }
}

void WebpFile::NotePacketChunk(const Chunk& chunk)
{
    if (NotePacket({chunk.Content(), chunk.contentBytes})) {
        chunks_.push_back({chunk.begin, chunk.End() - chunk.begin});
    }
}

SavePlan WebpFile::PlanPlace(const PacketParts& packet) const
{
    std::string content = content_;
    content[0] = static_cast<char>(static_cast<unsigned char>(content[0]) | kPacketFlag);
    SavePlan plan;
    plan.push_back(
        {extended_.value_or(ByteRange{kFirstChunk, 0}), ChunkBytes(kExtendedName, content)});
    for (const ByteRange& old : chunks_) {
        plan.push_back({old, {}});
    }
    if (chunks_.empty()) {
        plan.push_back({{place_, 0}, {}});
    }
    plan[1].fresh = ChunkBytes(kPacketName, packet.main);
    const std::optional<std::uint64_t> end = place_ == riffEnd_ && chunks_.empty()
                                                 ? MovedStart(plan, riffEnd_)
                                                 : MovedEnd(plan, riffEnd_);
    if (!end || *end - kRiffSizeCounts > kLongestRiff) {
        throw PhotoError(PhotoError::Kind::kRefused,
                         "the file would be larger than a WebP file can be");
    }
    plan.insert(plan.begin(),
                {{kRiffSizeAt, 4}, NumberBytes(*end - kRiffSizeCounts, 4, ByteOrder::kLittle)});
    return plan;
}

std::vector<ByteRange> WebpFile::Changeable() const
{
    std::vector<ByteRange> ranges = {{kRiffSizeAt, 4}};
    if (extended_) {
        ranges.push_back(*extended_);
    }
    ranges.insert(ranges.end(), chunks_.begin(), chunks_.end());
    return ranges;
}

std::string WebpFile::OtherContent() const
{
    std::string content = content_;
    if (!content.empty()) {
        content[0] = static_cast<char>(static_cast<unsigned char>(content[0]) & ~kPacketFlag);
    }
    return content;
}

}  // namespace

std::unique_ptr<PhotoFormat> ReadWebp(ByteSource& source)
{
    return std::make_unique<WebpFile>(source);
}

}  // namespace kivxmp::photo
