#include "framework/kivxmp/src/TiffFile.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "framework/kivxmp/src/ByteNumbers.h"
#include "framework/kivxmp/src/HeaderReader.h"
#include "framework/kivxmp/src/TiffNumbers.h"

namespace kivxmp::photo {

namespace {

using namespace tiff;

// More than any writer's; a classic directory cannot have more.
constexpr std::uint64_t kMaxEntries = 65535;

/// The sizes in which classic TIFF and BigTIFF differ.
struct Sizes {
    std::uint64_t firstOffsetAt;  // in the header: where the first directory lies
    std::size_t entryCount;       // the number of a directory's entries
    std::size_t number;           // a count or an offset
    std::uint64_t entry;          // tag, type, count, value or offset
};
constexpr Sizes kClassic = {4, 2, 4, 2 + 2 + 4 + 4};
constexpr Sizes kBig = {8, 8, 8, 2 + 2 + 8 + 8};
constexpr std::uint64_t kCountInEntry = 4;

bool Overlap(const ByteRange& left, const ByteRange& right)
{
    return left.offset < right.End() && right.offset < left.End();
}

class TiffFile final : public PhotoFormat {
public:
    explicit TiffFile(ByteSource& source);

    const char* NameOf(const char* signatureName, std::string_view extension) const override;
    std::size_t PacketRoomBytes() const noexcept override;
    std::vector<ByteRange> Changeable() const override;
    std::string OtherContent() const override;

private:
    bool IsBig() const { return sizes_ == &kBig; }
    bool ReadHeader(HeaderReader& reader);
    void ReadDirectory(HeaderReader& reader);
    void NotePacketEntry(std::uint64_t number);
    void CheckChain(HeaderReader& reader);
    bool LeadsBehindTheEnd(std::string_view entry) const;
    std::optional<std::uint64_t> ListNumber(std::string_view entry, std::uint64_t index,
                                            HeaderReader& reader) const;
    bool IsCut(std::string_view entries, HeaderReader& reader) const;
    bool HasCutFurtherImage(HeaderReader& reader) const;
    SavePlan PlanPlace(const PacketParts& packet) const override;

    std::uint64_t Number(std::string_view bytes, std::uint64_t at, std::size_t count) const
    {
        return GetNumber(bytes, at, count, order_);
    }
    std::string_view Entry(std::uint64_t number) const
    {
        return std::string_view(entries_).substr(number * sizes_->entry, sizes_->entry);
    }
    ByteRange PacketFields() const;
    std::string NumberPair(std::uint64_t count, std::uint64_t offset) const;
    /// The directory with one more entry, for a packet at `offset`.
    std::string GrownDirectory(std::uint64_t packetBytes, std::uint64_t offset) const;

    std::uint64_t fileBytes_;
    ByteOrder order_ = ByteOrder::kLittle;
    const Sizes* sizes_ = &kClassic;
    ByteRange directory_;
    std::string entries_;
    std::string nextDirectory_;
    std::optional<std::uint64_t> packetEntry_;
    bool isInline_ = false;  // the packet's few bytes stand in the entry
    bool isDng_ = false;
    bool isCut_ = false;  // something that its directories lead to is missing
};

TiffFile::TiffFile(ByteSource& source) : fileBytes_(source.SizeBytes())
{
    HeaderReader reader(source);
    if (ReadHeader(reader)) {
        ReadDirectory(reader);
    }
}

const char* TiffFile::NameOf(const char* signatureName, std::string_view extension) const
{
    if (isDng_) {
        return "DNG";
    }
    return extension == "tif" || extension == "tiff" ? signatureName : nullptr;
}

bool TiffFile::ReadHeader(HeaderReader& reader)
{
    constexpr std::uint64_t kLongestHeader = 16;
    constexpr std::uint64_t kBigVersion = 43;
    const std::string head = reader.Bytes(0, kLongestHeader);
    if (head.size() < 4) {
        Refuse(PhotoError::Kind::kBroken, "the file is cut off within its header");
        return false;
    }
    order_ = head.starts_with("MM") ? ByteOrder::kBig : ByteOrder::kLittle;
    sizes_ = Number(head, 2, 2) == kBigVersion ? &kBig : &kClassic;
    if (!HasBytes(head, sizes_->firstOffsetAt, sizes_->number)) {
        Refuse(PhotoError::Kind::kBroken, "the file is cut off within its header");
        return false;
    }
    // BigTIFF: the size of an offset, and a zero.
    if (IsBig() && (Number(head, 4, 2) != kBig.number || Number(head, 6, 2) != 0)) {
        Refuse(PhotoError::Kind::kBroken,
               "its structure is damaged: an impossible size of offsets at byte 4");
        return false;
    }
    directory_.offset = Number(head, sizes_->firstOffsetAt, sizes_->number);
    if (!IsBig()) {
        NoteBlock(MetadataBlock::Kind::kTiff, {0, fileBytes_});
    }
    return true;
}

void TiffFile::ReadDirectory(HeaderReader& reader)
{
    const std::uint64_t headerEnd = sizes_->firstOffsetAt + sizes_->number;
    const auto isThere = [this](std::uint64_t offset, std::uint64_t bytes) {
        return offset <= fileBytes_ && fileBytes_ - offset >= bytes;
    };
    if (directory_.offset < headerEnd || !isThere(directory_.offset, sizes_->entryCount)) {
        Refuse(PhotoError::Kind::kBroken,
               "its structure is damaged: the first directory is not in the file");
        return;
    }
    const std::uint64_t count =
        Number(reader.Bytes(directory_.offset, sizes_->entryCount), 0, sizes_->entryCount);
    if (count == 0 || count > kMaxEntries) {
        Refuse(PhotoError::Kind::kBroken,
               "its structure is damaged: an impossible directory" + AtByte(directory_.offset));
        return;
    }
    const std::uint64_t entriesBytes = count * sizes_->entry;
    directory_.bytes = sizes_->entryCount + entriesBytes + sizes_->number;
    if (!isThere(directory_.offset, directory_.bytes)) {
        Refuse(PhotoError::Kind::kBroken, "the file is cut off within its first directory");
        return;
    }
    entries_ = reader.Bytes(directory_.offset + sizes_->entryCount, entriesBytes);
    nextDirectory_ = reader.Bytes(directory_.End() - sizes_->number, sizes_->number);
    for (std::uint64_t number = 0; number < count; ++number) {
        const std::uint64_t tag = Number(Entry(number), 0, 2);
        isDng_ = isDng_ || tag == kTagDngVersion;
        if (tag == kTagPacket) {
            NotePacketEntry(number);
        }
    }
    CheckChain(reader);
    isCut_ = isCut_ || IsCut(entries_, reader) || HasCutFurtherImage(reader);
}

/// Looks where the directories lead, without reading them.
void TiffFile::CheckChain(HeaderReader& reader)
{
    std::uint64_t next = Number(nextDirectory_, 0, sizes_->number);
    // Circles that the first one is no part of end at a directory that was kept in mind.
    std::uint64_t known = 0;
    for (std::uint64_t steps = 1; next != 0 && next != directory_.offset && next != known;
         ++steps) {
        if ((steps & (steps - 1)) == 0) {
            known = next;
        }
        const std::string count = reader.Bytes(next, sizes_->entryCount);
        const std::uint64_t entries =
            count.size() < sizes_->entryCount ? 0 : Number(count, 0, sizes_->entryCount);
        if (entries > kMaxEntries) {
            return;  // no directory
        }
        const std::string place =
            reader.Bytes(next + sizes_->entryCount + entries * sizes_->entry, sizes_->number);
        if (place.size() < sizes_->number) {
            isCut_ = true;
            return;
        }
        next = Number(place, 0, sizes_->number);
    }
    // Without a packet the first one has to move: what leads to it besides the header would lead to
    // the old one then.
    if (next == directory_.offset && !packetEntry_) {
        Refuse(PhotoError::Kind::kRefused,
               "its directories lead in a circle, which would be broken open");
    }
}

/// True if the entry's value, or the directory that it names, is not in the file.
bool TiffFile::LeadsBehindTheEnd(std::string_view entry) const
{
    constexpr std::uint16_t kDirectoryTags[] = {kTagFurther, kTagExif, kTagGps};
    const std::uint64_t tag = Number(entry, 0, 2);
    const std::size_t bytes = TypeBytes(Number(entry, 2, 2));
    const std::uint64_t count = Number(entry, kCountInEntry, sizes_->number);
    const std::size_t value = kCountInEntry + sizes_->number;
    if (tag == kTagPacket || bytes == 0) {
        return false;
    }
    if (count > sizes_->number / bytes) {
        const std::uint64_t place = Number(entry, value, sizes_->number);
        return place > fileBytes_ || count > (fileBytes_ - place) / bytes;
    }
    const bool isDirectory = std::find(std::begin(kDirectoryTags), std::end(kDirectoryTags), tag) !=
                             std::end(kDirectoryTags);
    return isDirectory && count == 1 && Number(entry, value, bytes) >= fileBytes_;
}

/// Number `index` of an entry's list of sizes or places; nothing where it is none.
std::optional<std::uint64_t> TiffFile::ListNumber(std::string_view entry, std::uint64_t index,
                                                  HeaderReader& reader) const
{
    const std::uint64_t type = Number(entry, 2, 2);
    const std::uint64_t count = Number(entry, kCountInEntry, sizes_->number);
    const std::size_t value = kCountInEntry + sizes_->number;
    if (!IsPlaceType(type) || index >= count) {
        return std::nullopt;
    }
    const std::size_t bytes = TypeBytes(type);
    if (count <= sizes_->number / bytes) {
        return Number(entry, value + index * bytes, bytes);
    }
    const std::string number =
        reader.Bytes(Number(entry, value, sizes_->number) + index * bytes, bytes);
    return number.size() == bytes ? std::optional(Number(number, 0, bytes)) : std::nullopt;
}

/// True if a value of the directory, or the last part of its image, is not in the file as a whole.
bool TiffFile::IsCut(std::string_view entries, HeaderReader& reader) const
{
    struct Parts {
        std::uint16_t places;
        std::uint16_t sizes;
        std::optional<std::uint64_t> place = {};
        std::optional<std::uint64_t> bytes = {};
    };
    Parts parts[] = {{kTagStripPlaces, kTagStripSizes},
                     {kTagTilePlaces, kTagTileSizes},
                     {kTagJpegPlace, kTagJpegSize}};
    for (std::size_t at = 0; at < entries.size(); at += sizes_->entry) {
        const std::string_view entry = entries.substr(at, sizes_->entry);
        if (LeadsBehindTheEnd(entry)) {
            return true;
        }
        const std::uint64_t tag = Number(entry, 0, 2);
        const std::uint64_t last = Number(entry, kCountInEntry, sizes_->number) - 1;
        for (Parts& part : parts) {
            if (tag == part.places) {
                part.place = ListNumber(entry, last, reader);
            } else if (tag == part.sizes) {
                part.bytes = ListNumber(entry, last, reader);
            }
        }
    }
    return std::any_of(std::begin(parts), std::end(parts), [this](const Parts& part) {
        return part.place && part.bytes &&
               (*part.place > fileBytes_ || fileBytes_ - *part.place < *part.bytes);
    });
}

/// The same of the directories that the first one has besides the next: a DNG file's image is
/// there.
bool TiffFile::HasCutFurtherImage(HeaderReader& reader) const
{
    constexpr std::uint64_t kMaxFurther = 32;
    constexpr std::uint64_t kMaxFurtherEntries = 1024;
    for (std::size_t at = 0; at < entries_.size(); at += sizes_->entry) {
        const std::string_view entry = std::string_view(entries_).substr(at, sizes_->entry);
        for (std::uint64_t i = 0; i < kMaxFurther && Number(entry, 0, 2) == kTagFurther; ++i) {
            const std::optional<std::uint64_t> place = ListNumber(entry, i, reader);
            if (!place) {
                break;
            }
            const std::string count = reader.Bytes(*place, sizes_->entryCount);
            if (count.size() < sizes_->entryCount) {
                return true;
            }
            const std::uint64_t number = Number(count, 0, sizes_->entryCount);
            if (number > kMaxFurtherEntries) {
                continue;  // no directory
            }
            const std::uint64_t bytes = number * sizes_->entry;
            const std::string entries = reader.Bytes(*place + sizes_->entryCount, bytes);
            if (entries.size() < bytes || IsCut(entries, reader)) {
                return true;
            }
        }
    }
    return false;
}

void TiffFile::NotePacketEntry(std::uint64_t number)
{
    if (packetEntry_) {
        Refuse(PhotoError::Kind::kRefused,
               "it holds several metadata packets, which cannot be put together");
        return;
    }
    packetEntry_ = number;
    const std::string_view entry = Entry(number);
    const std::uint64_t type = Number(entry, 2, 2);
    const std::uint64_t bytes = Number(entry, kCountInEntry, sizes_->number);
    if (type != kTypeByte && type != kTypeUndefined) {
        Refuse(PhotoError::Kind::kBroken,
               "its structure is damaged: metadata that is not made of bytes");
        return;
    }
    isInline_ = bytes <= sizes_->number;
    const ByteRange packet{isInline_
                               ? PacketFields().offset + sizes_->number
                               : Number(entry, kCountInEntry + sizes_->number, sizes_->number),
                           bytes};
    if (packet.offset > fileBytes_ || fileBytes_ - packet.offset < bytes) {
        Refuse(PhotoError::Kind::kBroken, "the file is cut off within its metadata packet");
        return;
    }
    NotePacket(packet);
    const ByteRange header{0, sizes_->firstOffsetAt + sizes_->number};
    if (!isInline_ && (Overlap(packet, header) || Overlap(packet, directory_))) {
        Refuse(PhotoError::Kind::kBroken,
               "its structure is damaged: its metadata lies over its directory");
    }
}

/// Count and offset of the packet in its entry.
ByteRange TiffFile::PacketFields() const
{
    return {directory_.offset + sizes_->entryCount + *packetEntry_ * sizes_->entry + kCountInEntry,
            2 * sizes_->number};
}

std::string TiffFile::NumberPair(std::uint64_t count, std::uint64_t offset) const
{
    return NumberBytes(count, sizes_->number, order_) + NumberBytes(offset, sizes_->number, order_);
}

std::size_t TiffFile::PacketRoomBytes() const noexcept
{
    return Packets().empty() || isInline_ ? 0 : static_cast<std::size_t>(Packets().front().bytes);
}

std::string TiffFile::GrownDirectory(std::uint64_t packetBytes, std::uint64_t offset) const
{
    // Entries stand in the order of their tags.
    const std::uint64_t count = entries_.size() / sizes_->entry;
    std::uint64_t place = 0;
    while (place < count && Number(Entry(place), 0, 2) < kTagPacket) {
        ++place;
    }
    std::string entries = entries_;
    entries.insert(static_cast<std::size_t>(place * sizes_->entry),
                   NumberBytes(kTagPacket, 2, order_) + NumberBytes(kTypeByte, 2, order_) +
                       NumberPair(packetBytes, offset));
    return NumberBytes(count + 1, sizes_->entryCount, order_) + entries + nextDirectory_;
}

SavePlan TiffFile::PlanPlace(const PacketParts& packet) const
{
    const std::size_t bytes = packet.main.size();
    if (!Packets().empty() && !isInline_ && Packets().front().bytes == bytes) {
        return {{Packets().front(), packet.main}};
    }
    if (bytes <= sizes_->number) {
        throw PhotoError(PhotoError::Kind::kRefused, "the metadata is too short for a TIFF file");
    }
    if (isCut_) {
        // What is missing would be found where the packet is.
        throw PhotoError(PhotoError::Kind::kRefused,
                         "it is cut off, and its metadata has no room but behind its end");
    }
    SavePlan plan;
    // What is appended begins at an even byte, as the format wants it.
    std::string appended(fileBytes_ & 1, '\0');
    std::uint64_t end = 0;
    if (packetEntry_ && Packets().front().End() == fileBytes_ && !isInline_) {
        plan.push_back({PacketFields(), NumberPair(bytes, Packets().front().offset)});
        plan.push_back({Packets().front(), packet.main});
        end = Packets().front().offset + bytes;
    } else if (packetEntry_) {
        const std::uint64_t offset = fileBytes_ + appended.size();
        plan.push_back({PacketFields(), NumberPair(bytes, offset)});
        plan.push_back({{fileBytes_, 0}, appended + packet.main});
        end = offset + bytes;
    } else {
        const std::uint64_t directory = fileBytes_ + appended.size();
        const std::uint64_t offset = directory + directory_.bytes + sizes_->entry;
        appended += GrownDirectory(bytes, offset) + packet.main;
        plan.push_back({{sizes_->firstOffsetAt, sizes_->number},
                        NumberBytes(directory, sizes_->number, order_)});
        plan.push_back({{fileBytes_, 0}, std::move(appended)});
        end = offset + bytes;
    }
    if (!IsBig() && end > std::numeric_limits<std::uint32_t>::max()) {
        throw PhotoError(PhotoError::Kind::kRefused,
                         "the file would be larger than a TIFF file can be");
    }
    SortPlan(plan);
    return plan;
}

std::vector<ByteRange> TiffFile::Changeable() const
{
    std::vector<ByteRange> ranges = {{sizes_->firstOffsetAt, sizes_->number}};
    if (packetEntry_) {
        ranges.push_back(PacketFields());
    }
    if (!Packets().empty() && !isInline_) {
        ranges.push_back(Packets().front());
    }
    SortRanges(ranges);
    return ranges;
}

std::string TiffFile::OtherContent() const
{
    std::string content;
    for (std::uint64_t number = 0; number < entries_.size() / sizes_->entry; ++number) {
        if (number != packetEntry_) {
            content += Entry(number);
        }
    }
    return content + nextDirectory_;
}

}  // namespace

std::unique_ptr<PhotoFormat> ReadTiff(ByteSource& source)
{
    return std::make_unique<TiffFile>(source);
}

}  // namespace kivxmp::photo
