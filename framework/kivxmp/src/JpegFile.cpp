#include "framework/kivxmp/src/JpegFile.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <optional>
#include <utility>

#include "framework/kivxmp/src/ByteNumbers.h"
#include "framework/kivxmp/src/HeaderReader.h"
#include "framework/kivxmp/src/MultiPictureIndex.h"
#include "framework/kivxmp/src/PacketDigest.h"

namespace kivxmp::photo {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view kPacketSignature = "http://ns.adobe.com/xap/1.0/\0"sv;
constexpr std::string_view kExtensionSignature = "http://ns.adobe.com/xmp/extension/\0"sv;
constexpr std::string_view kExifSignature = "Exif\0"sv;
constexpr std::string_view kIndexSignature = "MPF\0"sv;
constexpr std::string_view kResourcesSignature = "Photoshop 3.0\0"sv;
constexpr std::size_t kLongestSignature = kExtensionSignature.size();

constexpr unsigned char kMarkerPrefix = 0xFF;
constexpr unsigned char kSoi = 0xD8;
constexpr unsigned char kEoi = 0xD9;
constexpr unsigned char kSos = 0xDA;
constexpr unsigned char kApp0 = 0xE0;
constexpr unsigned char kApp1 = 0xE1;
constexpr unsigned char kApp2 = 0xE2;
constexpr unsigned char kApp13 = 0xED;
constexpr unsigned char kTem = 0x01;
constexpr unsigned char kRst0 = 0xD0;
constexpr unsigned char kRst7 = 0xD7;

constexpr std::size_t kMarkerBytes = 2;
constexpr std::size_t kLengthBytes = 2;
// The segment's own length counts its two bytes, but not the marker.
static_assert(kLengthBytes + kPacketSignature.size() + kJpegPacketLimitBytes <= 65535);

constexpr std::size_t kExtendedHeadBytes = kExtensionSignature.size() + kDigestCharacters + 4 + 4;
constexpr std::size_t kExtendedPieceLimitBytes = 65535 - kLengthBytes - kExtendedHeadBytes;

// More than any writer leaves; the rest is not remembered, and the file not saved.
constexpr std::size_t kMaxExtendedPieces = 4096;
constexpr std::size_t kMaxIndexes = 4;

struct Segment {
    unsigned char marker = 0;
    std::uint64_t begin = 0;    // of the marker, fill bytes not included
    std::uint64_t payload = 0;  // behind the length
    std::uint64_t end = 0;

    std::uint64_t PayloadBytes() const { return end - payload; }
};

/// A piece of an extended part: signature, digest, length of the whole, place in it, bytes.
struct ExtendedPiece {
    std::string digest;
    std::uint64_t wholeBytes = 0;
    std::uint64_t at = 0;
    ByteRange content;
    ByteRange segment;
    bool isTaken = false;
};

std::string SegmentBytes(unsigned char marker, std::initializer_list<std::string_view> parts)
{
    std::size_t length = kLengthBytes;
    for (const std::string_view part : parts) {
        length += part.size();
    }
    std::string bytes;
    bytes.reserve(kMarkerBytes + length);
    bytes.push_back(static_cast<char>(kMarkerPrefix));
    bytes.push_back(static_cast<char>(marker));
    bytes += NumberBytes(length, kLengthBytes, ByteOrder::kBig);
    for (const std::string_view part : parts) {
        bytes += part;
    }
    return bytes;
}

class JpegFile final : public PhotoFormat {
public:
    explicit JpegFile(ByteSource& source);

    bool TakesExtended() const noexcept override { return true; }
    std::optional<std::string> TakeExtended(std::string_view digest, ByteSource& source) override;
    std::vector<ByteRange> Changeable() const override;
    std::vector<std::uint64_t> PointerTargets() const override;

private:
    enum class Next { kSegment, kScan, kCut, kBroken };

    /// Moves `position` behind the segment it reads.
    Next ReadSegment(HeaderReader& reader, std::uint64_t& position, Segment& segment);
    void NoteSegment(HeaderReader& reader, const Segment& segment);
    void NoteExtendedPiece(HeaderReader& reader, const Segment& segment);
    void NoteCutSegment(HeaderReader& reader, const Segment& segment);
    SavePlan PlanPlace(const PacketParts& packet) const override;
    ByteRange PacketSegment(const ByteRange& packet) const;

    std::vector<MultiPictureIndex> indexes_;
    std::uint64_t app0End_ = 0;
    std::uint64_t exifEnd_ = 0;
    std::vector<ExtendedPiece> pieces_;
    bool cutInPacket_ = false;
};

JpegFile::JpegFile(ByteSource& source)
    : PhotoFormat({kJpegPacketLimitBytes, "one segment of a JPEG file holds"})
{
    HeaderReader reader(source);
    std::uint64_t position = kMarkerBytes;
    Segment segment;
    Next next = ReadSegment(reader, position, segment);
    for (; next == Next::kSegment; next = ReadSegment(reader, position, segment)) {
        NoteSegment(reader, segment);
    }
    if (next == Next::kCut) {
        // A packet that is there in full is the place, and what is missing lies behind it. Without
        // one nobody can tell whether the missing part held it.
        NoteCutSegment(reader, segment);
        if (Packets().empty()) {
            Refuse(PhotoError::Kind::kBroken, cutInPacket_
                                                  ? "the file is cut off within its metadata packet"
                                                  : "the file is cut off before its image data");
        }
    }
}

JpegFile::Next JpegFile::ReadSegment(HeaderReader& reader, std::uint64_t& position,
                                     Segment& segment)
{
    for (;;) {
        std::optional<unsigned char> byte = reader.Byte(position);
        if (!byte) {
            segment = {};
            return Next::kCut;
        }
        if (*byte != kMarkerPrefix) {
            Refuse(PhotoError::Kind::kBroken,
                   "its structure is damaged: no marker" + AtByte(position));
            return Next::kBroken;
        }
        // Any number of fill bytes may stand before the marker's own.
        while (byte && *byte == kMarkerPrefix) {
            ++position;
            byte = reader.Byte(position);
        }
        if (!byte) {
            segment = {};
            return Next::kCut;
        }
        segment = {.marker = *byte, .begin = position - 1};
        ++position;
        if (segment.marker == kSos) {
            return Next::kScan;
        }
        if (segment.marker == 0 || segment.marker == kSoi || segment.marker == kEoi) {
            Refuse(PhotoError::Kind::kBroken,
                   "its structure is damaged: a marker out of place" + AtByte(segment.begin));
            return Next::kBroken;
        }
        if (segment.marker != kTem && (segment.marker < kRst0 || segment.marker > kRst7)) {
            break;
        }
    }
    const std::optional<unsigned char> high = reader.Byte(position);
    const std::optional<unsigned char> low = reader.Byte(position + 1);
    segment.payload = position + kLengthBytes;
    if (!high || !low) {
        segment.end = segment.payload;
        return Next::kCut;
    }
    const std::uint64_t length = static_cast<std::uint64_t>(*high) << 8 | *low;
    if (length < kLengthBytes) {
        Refuse(PhotoError::Kind::kBroken,
               "its structure is damaged: an impossible segment length" + AtByte(position));
        return Next::kBroken;
    }
    segment.end = position + length;
    if (segment.end > reader.SizeBytes()) {
        return Next::kCut;
    }
    position = segment.end;
    return Next::kSegment;
}

void JpegFile::NoteSegment(HeaderReader& reader, const Segment& segment)
{
    if (segment.marker == kApp0) {
        const bool joins = app0End_ == 0 || segment.begin == app0End_;
        app0End_ = joins ? segment.end : app0End_;
        return;
    }
    if (segment.marker != kApp1 && segment.marker != kApp2 && segment.marker != kApp13) {
        return;
    }
    const std::string head = reader.Bytes(
        segment.payload, std::min<std::uint64_t>(segment.PayloadBytes(), kLongestSignature));
    if (segment.marker == kApp13) {
        if (head.starts_with(kResourcesSignature)) {
            const std::uint64_t resources = segment.payload + kResourcesSignature.size();
            NoteBlock(MetadataBlock::Kind::kImageResources, {resources, segment.end - resources});
        }
        return;
    }
    if (segment.marker == kApp1) {
        if (head.starts_with(kPacketSignature)) {
            const std::uint64_t packet = segment.payload + kPacketSignature.size();
            NotePacket({packet, segment.end - packet});
        } else if (head.starts_with(kExtensionSignature)) {
            NoteExtendedPiece(reader, segment);
        } else if (head.starts_with(kExifSignature) && exifEnd_ == 0) {
            exifEnd_ = segment.end;
            NoteBlock(MetadataBlock::Kind::kExif, {segment.payload, segment.PayloadBytes()});
        }
        return;
    }
    if (head.starts_with(kIndexSignature)) {
        const std::uint64_t base = segment.payload + kIndexSignature.size();
        std::optional<MultiPictureIndex> index;
        if (indexes_.size() < kMaxIndexes) {
            index = MultiPictureIndex::Read(reader.Bytes(base, segment.end - base), base);
        }
        if (index) {
            indexes_.push_back(std::move(*index));
        } else {
            Refuse(PhotoError::Kind::kRefused, "its index of further pictures cannot be followed");
        }
    }
}

void JpegFile::NoteCutSegment(HeaderReader& reader, const Segment& segment)
{
    if (segment.payload == 0 || (segment.marker != kApp1 && segment.marker != kApp2)) {
        return;
    }
    const std::string head = reader.Bytes(segment.payload, kLongestSignature);
    if (segment.marker == kApp1 && head.starts_with(kPacketSignature)) {
        cutInPacket_ = true;
        if (!Packets().empty()) {
            Refuse(PhotoError::Kind::kRefused,
                   "it holds several metadata packets, and is cut off within one of them");
        }
    } else if (segment.marker == kApp1 && head.starts_with(kExtensionSignature)) {
        Refuse(PhotoError::Kind::kRefused, "it is cut off within an extended part of its metadata");
    } else if (segment.marker == kApp2 && head.starts_with(kIndexSignature)) {
        Refuse(PhotoError::Kind::kRefused, "it is cut off within its index of further pictures");
    }
}

void JpegFile::NoteExtendedPiece(HeaderReader& reader, const Segment& segment)
{
    if (pieces_.size() == kMaxExtendedPieces) {
        Refuse(PhotoError::Kind::kRefused,
               "its metadata has more extended segments than any photo");
        return;
    }
    const std::string head = reader.Bytes(
        segment.payload, std::min<std::uint64_t>(segment.PayloadBytes(), kExtendedHeadBytes));
    if (head.size() < kExtendedHeadBytes) {
        return;  // no reader takes it for a part of anything
    }
    const std::size_t numbers = kExtensionSignature.size() + kDigestCharacters;
    pieces_.push_back(
        {head.substr(kExtensionSignature.size(), kDigestCharacters),
         GetNumber(head, numbers, 4, ByteOrder::kBig),
         GetNumber(head, numbers + 4, 4, ByteOrder::kBig),
         {segment.payload + kExtendedHeadBytes, segment.PayloadBytes() - kExtendedHeadBytes},
         {segment.begin, segment.end - segment.begin}});
}

std::optional<std::string> JpegFile::TakeExtended(std::string_view digest, ByteSource& source)
{
    std::vector<ExtendedPiece*> own;
    for (ExtendedPiece& piece : pieces_) {
        if (piece.digest == digest) {
            piece.isTaken = true;
            own.push_back(&piece);
        }
    }
    std::stable_sort(
        own.begin(), own.end(),
        [](const ExtendedPiece* left, const ExtendedPiece* right) { return left->at < right->at; });
    std::uint64_t joined = 0;
    for (const ExtendedPiece* const piece : own) {
        if (piece->wholeBytes != own.front()->wholeBytes || piece->at != joined) {
            return std::nullopt;
        }
        joined += piece->content.bytes;
    }
    if (own.empty() || joined != own.front()->wholeBytes || joined > kPacketBytesLimit) {
        return std::nullopt;
    }
    std::string text;
    text.reserve(static_cast<std::size_t>(joined));
    for (const ExtendedPiece* const piece : own) {
        text += ReadRange(source, piece->content);
    }
    return text;
}

ByteRange JpegFile::PacketSegment(const ByteRange& packet) const
{
    constexpr std::uint64_t kBefore = kMarkerBytes + kLengthBytes + kPacketSignature.size();
    return {packet.offset - kBefore, packet.bytes + kBefore};
}

SavePlan JpegFile::PlanPlace(const PacketParts& packet) const
{
    SavePlan plan;
    for (const ByteRange& old : Packets()) {
        plan.push_back({PacketSegment(old), {}});
    }
    if (Packets().empty()) {
        const std::uint64_t place = exifEnd_ != 0   ? exifEnd_
                                    : app0End_ != 0 ? app0End_
                                                    : kMarkerBytes;
        plan.push_back({{place, 0}, {}});
    }
    std::string& fresh = plan.front().fresh;
    fresh = SegmentBytes(kApp1, {kPacketSignature, packet.main});
    const std::string digest = packet.extended.empty() ? "" : PacketDigest(packet.extended);
    for (std::size_t at = 0; at < packet.extended.size(); at += kExtendedPieceLimitBytes) {
        const std::string_view piece =
            std::string_view(packet.extended).substr(at, kExtendedPieceLimitBytes);
        fresh += SegmentBytes(kApp1, {kExtensionSignature, digest,
                                      NumberBytes(packet.extended.size(), 4, ByteOrder::kBig),
                                      NumberBytes(at, 4, ByteOrder::kBig), piece});
    }
    for (const ExtendedPiece& piece : pieces_) {
        if (piece.isTaken) {
            plan.push_back({piece.segment, {}});
        }
    }
    SortPlan(plan);

    // A pointer into a pointer would not lead to the same bytes afterwards.
    SavePlan fields;
    for (const MultiPictureIndex& index : indexes_) {
        for (const ByteRange& field : index.Fields()) {
            fields.push_back({field, std::string(static_cast<std::size_t>(field.bytes), '\0')});
        }
    }
    SavePlan all = plan;
    all.insert(all.end(), fields.begin(), fields.end());
    SortPlan(all);
    std::size_t next = 0;
    for (const MultiPictureIndex& index : indexes_) {
        std::optional<std::vector<std::string>> values = index.Corrected(all);
        if (!values) {
            throw PhotoError(PhotoError::Kind::kRefused,
                             "its index of further pictures cannot be corrected");
        }
        for (std::string& value : *values) {
            fields[next++].fresh = std::move(value);
        }
    }
    std::move(fields.begin(), fields.end(), std::back_inserter(plan));
    SortPlan(plan);
    return plan;
}

std::vector<ByteRange> JpegFile::Changeable() const
{
    std::vector<ByteRange> ranges;
    for (const ByteRange& packet : Packets()) {
        ranges.push_back(PacketSegment(packet));
    }
    for (const ExtendedPiece& piece : pieces_) {
        if (piece.isTaken) {
            ranges.push_back(piece.segment);
        }
    }
    for (const MultiPictureIndex& index : indexes_) {
        const std::vector<ByteRange> fields = index.Fields();
        ranges.insert(ranges.end(), fields.begin(), fields.end());
    }
    SortRanges(ranges);
    return ranges;
}

std::vector<std::uint64_t> JpegFile::PointerTargets() const
{
    std::vector<std::uint64_t> targets;
    for (const MultiPictureIndex& index : indexes_) {
        const std::vector<std::uint64_t> own = index.Targets();
        targets.insert(targets.end(), own.begin(), own.end());
    }
    return targets;
}

}  // namespace

std::unique_ptr<PhotoFormat> ReadJpeg(ByteSource& source)
{
    return std::make_unique<JpegFile>(source);
}

}  // namespace kivxmp::photo
