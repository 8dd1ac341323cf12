#include "framework/kivxmp/src/JpegFile.h"

#include <algorithm>
#include <array>
#include <optional>

#include "framework/kivxmp/src/MultiPictureIndex.h"

namespace kivxmp::photo {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view kPacketSignature = "http://ns.adobe.com/xap/1.0/\0"sv;
constexpr std::string_view kExtensionSignature = "http://ns.adobe.com/xmp/extension/\0"sv;
constexpr std::string_view kExifSignature = "Exif\0"sv;
constexpr std::string_view kIndexSignature = "MPF\0"sv;
constexpr std::size_t kLongestSignature = kExtensionSignature.size();

constexpr unsigned char kMarkerPrefix = 0xFF;
constexpr unsigned char kSoi = 0xD8;
constexpr unsigned char kEoi = 0xD9;
constexpr unsigned char kSos = 0xDA;
constexpr unsigned char kApp0 = 0xE0;
constexpr unsigned char kApp1 = 0xE1;
constexpr unsigned char kApp2 = 0xE2;
constexpr unsigned char kTem = 0x01;
constexpr unsigned char kRst0 = 0xD0;
constexpr unsigned char kRst7 = 0xD7;

constexpr std::size_t kMarkerBytes = 2;
constexpr std::size_t kLengthBytes = 2;
// The segment's own length counts its two bytes, but not the marker.
static_assert(kLengthBytes + kPacketSignature.size() + kJpegPacketLimitBytes <= 65535);

// More of either than any writer leaves; the rest is not remembered, and the file not saved.
constexpr std::size_t kMaxPackets = 64;
constexpr std::size_t kMaxIndexes = 4;

/// Reads a file's beginning through one small window.
class HeaderReader {
public:
    explicit HeaderReader(ByteSource& source) : source_(source), size_(source.SizeBytes()) {}

    std::uint64_t SizeBytes() const { return size_; }
    std::uint64_t BytesFrom(std::uint64_t position) const
    {
        return position < size_ ? size_ - position : 0;
    }

    /// The byte at `position`, or nothing behind the end.
    std::optional<unsigned char> Byte(std::uint64_t position)
    {
        if (position < windowBegin_ || position - windowBegin_ >= windowBytes_) {
            if (position >= size_) {
                return std::nullopt;
            }
            windowBegin_ = position;
            windowBytes_ = source_.ReadAt(position, window_.data(), window_.size());
            if (windowBytes_ == 0) {
                return std::nullopt;
            }
        }
        return static_cast<unsigned char>(
            window_[static_cast<std::size_t>(position - windowBegin_)]);
    }

    /// Up to `bytes` bytes at `position`; fewer at the end.
    std::string Bytes(std::uint64_t position, std::uint64_t bytes)
    {
        std::string result;
        for (std::uint64_t i = 0; i < bytes; ++i) {
            const std::optional<unsigned char> byte = Byte(position + i);
            if (!byte) {
                break;
            }
            result.push_back(static_cast<char>(*byte));
        }
        return result;
    }

private:
    ByteSource& source_;
    std::uint64_t size_;
    std::array<char, 2048> window_{};
    std::uint64_t windowBegin_ = 0;
    std::size_t windowBytes_ = 0;
};

struct Segment {
    unsigned char marker = 0;
    std::uint64_t begin = 0;    // of the marker, fill bytes not included
    std::uint64_t payload = 0;  // behind the length
    std::uint64_t end = 0;

    std::uint64_t PayloadBytes() const { return end - payload; }
};

std::string AtByte(std::uint64_t position)
{
    return " at byte " + std::to_string(position);
}

class JpegFile final : public PhotoFormat {
public:
    explicit JpegFile(ByteSource& source);

    const std::vector<ByteRange>& Packets() const noexcept override { return packets_; }
    const std::optional<PhotoError>& Refusal() const noexcept override { return refusal_; }
    std::size_t PacketLimitBytes() const noexcept override { return kJpegPacketLimitBytes; }
    SavePlan Plan(std::string_view packet) const override;
    std::vector<ByteRange> Changeable() const override;
    std::vector<std::uint64_t> PointerTargets() const override;

private:
    enum class Next { kSegment, kScan, kCut, kBroken };

    /// Moves `position` behind the segment it reads.
    Next ReadSegment(HeaderReader& reader, std::uint64_t& position, Segment& segment);
    void NoteSegment(HeaderReader& reader, const Segment& segment);
    void NoteCutSegment(HeaderReader& reader, const Segment& segment);
    void Refuse(PhotoError::Kind kind, const std::string& reason);
    ByteRange PacketSegment(const ByteRange& packet) const;

    std::vector<ByteRange> packets_;
    std::vector<MultiPictureIndex> indexes_;
    std::uint64_t app0End_ = 0;
    std::uint64_t exifEnd_ = 0;
    bool hasExtension_ = false;
    bool cutInPacket_ = false;
    std::optional<PhotoError> refusal_;
};

JpegFile::JpegFile(ByteSource& source)
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
        if (packets_.empty()) {
            Refuse(PhotoError::Kind::kBroken, cutInPacket_
                                                  ? "the file is cut off within its metadata packet"
                                                  : "the file is cut off before its image data");
        }
    }
    if (hasExtension_) {
        Refuse(PhotoError::Kind::kRefused,
               "its metadata is spread over extended segments, which cannot be written yet");
    }
    if (packets_.size() > 1) {
        Refuse(PhotoError::Kind::kRefused,
               "it holds several metadata packets, which cannot be put together yet");
    }
}

void JpegFile::Refuse(PhotoError::Kind kind, const std::string& reason)
{
    // The first reason lies nearest to the beginning of the file.
    if (!refusal_) {
        refusal_.emplace(kind, reason);
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
    if (segment.marker != kApp1 && segment.marker != kApp2) {
        return;
    }
    const std::string head = reader.Bytes(
        segment.payload, std::min<std::uint64_t>(segment.PayloadBytes(), kLongestSignature));
    if (segment.marker == kApp1) {
        if (head.starts_with(kPacketSignature)) {
            if (packets_.size() < kMaxPackets) {
                const std::uint64_t packet = segment.payload + kPacketSignature.size();
                packets_.push_back({packet, segment.end - packet});
            }
        } else if (head.starts_with(kExtensionSignature)) {
            hasExtension_ = true;
        } else if (head.starts_with(kExifSignature) && exifEnd_ == 0) {
            exifEnd_ = segment.end;
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
        if (!packets_.empty()) {
            Refuse(PhotoError::Kind::kRefused,
                   "it holds several metadata packets, and is cut off within one of them");
        }
    } else if (segment.marker == kApp1 && head.starts_with(kExtensionSignature)) {
        hasExtension_ = true;
    } else if (segment.marker == kApp2 && head.starts_with(kIndexSignature)) {
        Refuse(PhotoError::Kind::kRefused, "it is cut off within its index of further pictures");
    }
}

ByteRange JpegFile::PacketSegment(const ByteRange& packet) const
{
    constexpr std::uint64_t kBefore = kMarkerBytes + kLengthBytes + kPacketSignature.size();
    return {packet.offset - kBefore, packet.bytes + kBefore};
}

SavePlan JpegFile::Plan(std::string_view packet) const
{
    if (refusal_) {
        throw PhotoError(*refusal_);
    }
    if (packet.size() > kJpegPacketLimitBytes) {
        throw PhotoError(PhotoError::Kind::kRefused,
                         "the metadata takes " + std::to_string(packet.size()) +
                             " bytes; one segment of a JPEG file holds " +
                             std::to_string(kJpegPacketLimitBytes));
    }
    const std::size_t length = kLengthBytes + kPacketSignature.size() + packet.size();
    Patch segment;
    segment.fresh.reserve(kMarkerBytes + length);
    segment.fresh.push_back(static_cast<char>(kMarkerPrefix));
    segment.fresh.push_back(static_cast<char>(kApp1));
    segment.fresh.push_back(static_cast<char>(length >> 8));
    segment.fresh.push_back(static_cast<char>(length & 0xFF));
    segment.fresh += kPacketSignature;
    segment.fresh += packet;
    if (!packets_.empty()) {
        segment.replaced = PacketSegment(packets_.front());
    } else {
        segment.replaced.offset = exifEnd_ != 0   ? exifEnd_
                                  : app0End_ != 0 ? app0End_
                                                  : kMarkerBytes;
    }

    SavePlan plan;
    const LengthChange change{segment.replaced, segment.fresh.size()};
    for (const MultiPictureIndex& index : indexes_) {
        const std::optional<std::vector<std::string>> values = index.Corrected(change);
        if (!values) {
            throw PhotoError(PhotoError::Kind::kRefused,
                             "its index of further pictures cannot be corrected");
        }
        const std::vector<ByteRange> fields = index.Fields();
        for (std::size_t i = 0; i < fields.size(); ++i) {
            plan.push_back({fields[i], (*values)[i]});
        }
    }
    plan.push_back(std::move(segment));
    std::sort(plan.begin(), plan.end(), [](const Patch& left, const Patch& right) {
        return left.replaced.offset < right.replaced.offset;
    });
    return plan;
}

std::vector<ByteRange> JpegFile::Changeable() const
{
    std::vector<ByteRange> ranges;
    for (const ByteRange& packet : packets_) {
        ranges.push_back(PacketSegment(packet));
    }
    for (const MultiPictureIndex& index : indexes_) {
        const std::vector<ByteRange> fields = index.Fields();
        ranges.insert(ranges.end(), fields.begin(), fields.end());
    }
    std::sort(ranges.begin(), ranges.end(), [](const ByteRange& left, const ByteRange& right) {
        return left.offset < right.offset;
    });
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
