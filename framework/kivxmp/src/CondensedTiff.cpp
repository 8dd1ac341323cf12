#include "framework/kivxmp/src/CondensedTiff.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <vector>

#include "framework/kivxmp/src/ByteNumbers.h"
#include "framework/kivxmp/src/MetadataBlocks.h"
#include "framework/kivxmp/src/TagValue.h"
#include "framework/kivxmp/src/TiffNumbers.h"

namespace kivxmp::photo {

namespace {

using namespace std::string_view_literals;
using namespace tiff;

constexpr std::uint64_t kHeaderBytes = 8;
constexpr std::size_t kCountBytes = 2;
constexpr std::size_t kEntryBytes = 2 + 2 + 4 + 4;  // tag, type, count, value or offset
constexpr std::size_t kNextBytes = 4;
// A directory has some dozens of entries. Exiv2 reads no longer ones.
constexpr std::uint64_t kMaxEntries = 256;
constexpr std::size_t kStreamBytesLimit = std::size_t{1} << 20;

/// Besides the image's parts, further directories and the packet: profiles, interoperability,
/// makers' private data.
constexpr std::uint16_t kLeftOut[] = {
    kTagStripPlaces, kTagStripSizes, kTagTilePlaces, kTagTileSizes, kTagFurther, kTagJpegPlace,
    kTagJpegSize,    kTagPacket,     34675,          40965,         50740};

/// Maker notes that are a directory behind a header, and what of it is of use: serial numbers, the
/// lens, the firmware, the owner.
struct MakerRow {
    std::string_view make;
    std::string_view header;
    std::size_t versionBytes;  // behind the header, of any value
    bool hasOwnHeader;         // then comes a TIFF header, from which offsets count
    std::uint16_t tags[4];
};
constexpr MakerRow kMakers[] = {
    {"Canon"sv, ""sv, 0, false, {7, 9, 12, 149}},
    {"Panasonic"sv, "Panasonic\0\0\0"sv, 0, false, {81, 82}},
    {"NIKON"sv, "Nikon\0"sv, 4, true, {29, 132}},
};

struct Entry {
    std::uint16_t tag = 0;
    std::uint16_t type = 0;
    std::uint64_t count = 0;
    std::string value;  // in the byte order of the file
};
using Directory = std::vector<Entry>;

void SortByTag(Directory& directory)
{
    std::stable_sort(directory.begin(), directory.end(),
                     [](const Entry& left, const Entry& right) { return left.tag < right.tag; });
}

class Condenser {
public:
    explicit Condenser(ByteSource& source) : source_(source) {}

    CondensedTiff Run();

private:
    std::optional<std::string> Read(std::uint64_t offset, std::uint64_t bytes);
    std::uint64_t Number(std::string_view bytes, std::uint64_t at, std::size_t count) const
    {
        return GetNumber(bytes, at, count, order_);
    }
    /// Offsets in there count from `base_`.
    Directory ReadDirectory(std::uint64_t offset);
    void ReadEntry(std::string_view bytes, Directory& directory);
    /// The directory that the entry of that tag leads to; the entry goes.
    Directory TakeSubdirectory(Directory& directory, std::uint16_t tag);
    void ReadMakerNote(std::string_view make, Directory& exif);
    std::string DirectoryBytes(const Directory& directory, std::size_t at, ByteOrder order) const;
    /// The note as it is to stand at `at`.
    std::string MakerNoteBytes(std::size_t at) const;

    ByteSource& source_;
    ByteOrder order_ = ByteOrder::kLittle;
    std::uint64_t base_ = 0;
    CondensedTiff result_;
    std::size_t valueBytes_ = 0;
    ByteRange makerNote_;
    std::string makerNoteHead_;
    Directory makerNoteEntries_;
    ByteOrder makerNoteOrder_ = ByteOrder::kLittle;
    bool makerNoteHasOwnHeader_ = false;
};

std::optional<std::string> Condenser::Read(std::uint64_t offset, std::uint64_t bytes)
{
    const std::uint64_t size = source_.SizeBytes();
    if (offset > size || size - offset < bytes) {
        return std::nullopt;
    }
    std::string buffer(static_cast<std::size_t>(bytes), '\0');
    if (source_.ReadAt(offset, buffer.data(), buffer.size()) != buffer.size()) {
        return std::nullopt;
    }
    return buffer;
}

void Condenser::ReadEntry(std::string_view bytes, Directory& directory)
{
    Entry entry;
    entry.tag = static_cast<std::uint16_t>(Number(bytes, 0, 2));
    entry.type = static_cast<std::uint16_t>(Number(bytes, 2, 2));
    entry.count = Number(bytes, 4, 4);
    const bool isForeign = entry.tag == kTagIim || entry.tag == kTagImageResources;
    const std::size_t typeBytes = TypeBytes(entry.type);
    if (entry.type > kLastClassicType || typeBytes == 0 || entry.count == 0 ||
        std::find(std::begin(kLeftOut), std::end(kLeftOut), entry.tag) != std::end(kLeftOut)) {
        return;
    }
    const std::uint64_t valueBytes = entry.count * typeBytes;
    if (entry.tag == kTagMakerNote) {
        makerNote_ = {base_ + Number(bytes, 8, 4), valueBytes};
        return;
    }
    if (valueBytes > (isForeign ? kBlockBytesLimit : kTagBytesLimit)) {
        return;
    }
    std::optional<std::string> value =
        valueBytes <= 4 ? std::string(bytes.substr(8, static_cast<std::size_t>(valueBytes)))
                        : Read(base_ + Number(bytes, 8, 4), valueBytes);
    if (!value) {
        return;
    }
    if (isForeign) {
        std::string& place = entry.tag == kTagIim ? result_.iim : result_.imageResources;
        place = place.empty() ? std::move(*value) : place;
        return;
    }
    if (valueBytes_ + value->size() > kStreamBytesLimit) {
        return;
    }
    valueBytes_ += value->size();
    entry.value = std::move(*value);
    directory.push_back(std::move(entry));
}

Directory Condenser::ReadDirectory(std::uint64_t offset)
{
    Directory directory;
    const std::optional<std::string> head = Read(offset, kCountBytes);
    if (!head) {
        return directory;
    }
    const std::uint64_t count = std::min(Number(*head, 0, kCountBytes), kMaxEntries);
    const std::optional<std::string> entries = Read(offset + kCountBytes, count * kEntryBytes);
    for (std::uint64_t number = 0; entries && number < count; ++number) {
        ReadEntry(std::string_view(*entries).substr(number * kEntryBytes, kEntryBytes), directory);
    }
    return directory;
}

Directory Condenser::TakeSubdirectory(Directory& directory, std::uint16_t tag)
{
    Directory found;
    std::erase_if(directory, [&](const Entry& entry) {
        if (entry.tag != tag) {
            return false;
        }
        if (found.empty() && entry.value.size() == 4) {
            found = ReadDirectory(Number(entry.value, 0, 4));
        }
        return true;
    });
    return found;
}

void Condenser::ReadMakerNote(std::string_view make, Directory& exif)
{
    const auto row =
        std::find_if(std::begin(kMakers), std::end(kMakers),
                     [&](const MakerRow& each) { return make.starts_with(each.make); });
    if (row == std::end(kMakers) || makerNote_.bytes == 0) {
        return;
    }
    const std::size_t headBytes = row->header.size() + row->versionBytes;
    std::optional<std::string> head = Read(makerNote_.offset, headBytes);
    if (!head || !head->starts_with(row->header)) {
        return;
    }
    const ByteOrder order = order_;
    std::uint64_t directory = makerNote_.offset + headBytes;
    if (row->hasOwnHeader) {
        const std::optional<std::string> header = Read(directory, kHeaderBytes);
        if (!header) {
            return;
        }
        base_ = directory;
        order_ = header->starts_with("MM") ? ByteOrder::kBig : ByteOrder::kLittle;
        directory += Number(*header, 4, 4);
        *head += header->substr(0, 4) + NumberBytes(kHeaderBytes, 4, order_);
    }
    makerNoteEntries_ = ReadDirectory(directory);
    makerNoteOrder_ = order_;
    order_ = order;
    base_ = 0;
    std::erase_if(makerNoteEntries_, [&](const Entry& entry) {
        return entry.tag == 0 || std::find(std::begin(row->tags), std::end(row->tags), entry.tag) ==
                                     std::end(row->tags);
    });
    if (makerNoteEntries_.empty()) {
        return;
    }
    makerNoteHead_ = std::move(*head);
    makerNoteHasOwnHeader_ = row->hasOwnHeader;
    std::string note = MakerNoteBytes(0);
    exif.push_back({kTagMakerNote, kTypeUndefined, note.size(), std::move(note)});
    SortByTag(exif);
}

std::string Condenser::MakerNoteBytes(std::size_t at) const
{
    const std::size_t directoryAt = at + makerNoteHead_.size();
    return makerNoteHead_ + DirectoryBytes(makerNoteEntries_,
                                           makerNoteHasOwnHeader_ ? kHeaderBytes : directoryAt,
                                           makerNoteOrder_);
}

/// As it is to stand at `at`. The next directory's offset is 0. Values stand behind the directory,
/// at even bytes.
std::string Condenser::DirectoryBytes(const Directory& directory, std::size_t at,
                                      ByteOrder order) const
{
    std::string entries = NumberBytes(directory.size(), kCountBytes, order);
    std::string values;
    const std::size_t valuesAt = at + kCountBytes + directory.size() * kEntryBytes + kNextBytes;
    for (const Entry& entry : directory) {
        entries += NumberBytes(entry.tag, 2, order) + NumberBytes(entry.type, 2, order) +
                   NumberBytes(entry.count, 4, order);
        if (entry.value.size() <= 4) {
            entries += entry.value + std::string(4 - entry.value.size(), '\0');
            continue;
        }
        const std::size_t valueAt = valuesAt + values.size();
        entries += NumberBytes(valueAt, 4, order);
        values += entry.tag == kTagMakerNote ? MakerNoteBytes(valueAt) : entry.value;
        values.append(values.size() & 1, '\0');
    }
    return entries + std::string(kNextBytes, '\0') + values;
}

CondensedTiff Condenser::Run()
{
    const std::optional<std::string> head = Read(0, kHeaderBytes);
    if (!head) {
        return {};
    }
    order_ = head->starts_with("MM") ? ByteOrder::kBig : ByteOrder::kLittle;
    constexpr std::uint64_t kClassicVersion = 42;
    if (Number(*head, 2, 2) != kClassicVersion) {
        return {};
    }
    Directory first = ReadDirectory(Number(*head, 4, 4));
    Directory exif = TakeSubdirectory(first, kTagExif);
    const Directory gps = TakeSubdirectory(first, kTagGps);
    // Not looked for in there, and nothing must lead on from them.
    std::erase_if(exif,
                  [](const Entry& entry) { return entry.tag == kTagExif || entry.tag == kTagGps; });
    const auto make = std::find_if(first.begin(), first.end(),
                                   [](const Entry& entry) { return entry.tag == kTagMake; });
    if (make != first.end()) {
        ReadMakerNote(make->value, exif);
    }
    if (first.empty() && exif.empty() && gps.empty()) {
        return std::move(result_);
    }
    // The subdirectories lie in front of the directory that names them.
    std::string& stream = result_.stream;
    stream = head->substr(0, 4) + std::string(4, '\0');
    for (const auto& [tag, directory] :
         {std::pair<std::uint16_t, const Directory&>(kTagExif, exif),
          std::pair<std::uint16_t, const Directory&>(kTagGps, gps)}) {
        if (!directory.empty()) {
            first.push_back({tag, kTypeLong, 1, NumberBytes(stream.size(), 4, order_)});
            stream += DirectoryBytes(directory, stream.size(), order_);
        }
    }
    SortByTag(first);
    stream.replace(4, 4, NumberBytes(stream.size(), 4, order_));
    stream += DirectoryBytes(first, stream.size(), order_);
    return std::move(result_);
}

}  // namespace

CondensedTiff CondenseTiff(ByteSource& source)
{
    return Condenser(source).Run();
}

}  // namespace kivxmp::photo
