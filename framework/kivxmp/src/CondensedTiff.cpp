#include "framework/kivxmp/src/CondensedTiff.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <vector>

#include "framework/kivxmp/src/ByteNumbers.h"
#include "framework/kivxmp/src/MetadataBlocks.h"
#include "framework/kivxmp/src/TagValue.h"

namespace kivxmp::photo {

namespace {

constexpr std::uint64_t kHeaderBytes = 8;
constexpr std::size_t kCountBytes = 2;
constexpr std::size_t kEntryBytes = 2 + 2 + 4 + 4;  // tag, type, count, value or offset
constexpr std::size_t kNextBytes = 4;
// A directory has some dozens of entries.
constexpr std::uint64_t kMaxEntries = 1024;
constexpr std::size_t kStreamBytesLimit = std::size_t{1} << 20;

constexpr std::uint16_t kTypeLong = 4;
constexpr std::uint16_t kTagIim = 33723;
constexpr std::uint16_t kTagImageResources = 34377;
constexpr std::uint16_t kTagExif = 34665;
constexpr std::uint16_t kTagGps = 34853;

/// Strips and tiles, previews, further directories, the packet, maker notes, makers' private data.
constexpr std::uint16_t kLeftOut[] = {273, 279, 324,   325,   330,   513,
                                      514, 700, 34675, 37500, 40965, 50740};

/// Bytes of one value, by type.
constexpr std::uint64_t kTypeBytes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4};

struct Entry {
    std::uint16_t tag = 0;
    std::uint16_t type = 0;
    std::uint64_t count = 0;
    std::string value;  // in the byte order of the file
};
using Directory = std::vector<Entry>;

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
    Directory ReadDirectory(std::uint64_t offset);
    void ReadEntry(std::string_view bytes, Directory& directory);
    /// The directory that the entry of that tag leads to; the entry goes.
    Directory TakeSubdirectory(Directory& directory, std::uint16_t tag);
    void AppendDirectory(const Directory& directory);

    ByteSource& source_;
    ByteOrder order_ = ByteOrder::kLittle;
    CondensedTiff result_;
    std::size_t valueBytes_ = 0;
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
    if (entry.type >= std::size(kTypeBytes) || kTypeBytes[entry.type] == 0 || entry.count == 0 ||
        std::find(std::begin(kLeftOut), std::end(kLeftOut), entry.tag) != std::end(kLeftOut)) {
        return;
    }
    const std::uint64_t valueBytes = entry.count * kTypeBytes[entry.type];
    if (valueBytes > (isForeign ? kBlockBytesLimit : kTagBytesLimit)) {
        return;
    }
    std::optional<std::string> value =
        valueBytes <= 4 ? std::string(bytes.substr(8, static_cast<std::size_t>(valueBytes)))
                        : Read(Number(bytes, 8, 4), valueBytes);
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

/// The next directory's offset is 0. Values stand behind the directory, at even bytes.
void Condenser::AppendDirectory(const Directory& directory)
{
    std::string& stream = result_.stream;
    std::string entries = NumberBytes(directory.size(), kCountBytes, order_);
    std::string values;
    const std::size_t valuesAt =
        stream.size() + kCountBytes + directory.size() * kEntryBytes + kNextBytes;
    for (const Entry& entry : directory) {
        entries += NumberBytes(entry.tag, 2, order_) + NumberBytes(entry.type, 2, order_) +
                   NumberBytes(entry.count, 4, order_);
        if (entry.value.size() <= 4) {
            entries += entry.value + std::string(4 - entry.value.size(), '\0');
            continue;
        }
        entries += NumberBytes(valuesAt + values.size(), 4, order_);
        values += entry.value;
        values.append(values.size() & 1, '\0');
    }
    stream += entries + std::string(kNextBytes, '\0') + values;
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
    if (first.empty() && exif.empty() && gps.empty()) {
        return std::move(result_);
    }
    // The subdirectories lie in front of the directory that names them.
    result_.stream = head->substr(0, 4) + std::string(4, '\0');
    for (const auto& [tag, directory] :
         {std::pair<std::uint16_t, const Directory&>(kTagExif, exif),
          std::pair<std::uint16_t, const Directory&>(kTagGps, gps)}) {
        if (!directory.empty()) {
            first.push_back({tag, kTypeLong, 1, NumberBytes(result_.stream.size(), 4, order_)});
            AppendDirectory(directory);
        }
    }
    std::stable_sort(first.begin(), first.end(),
                     [](const Entry& left, const Entry& right) { return left.tag < right.tag; });
    result_.stream.replace(4, 4, NumberBytes(result_.stream.size(), 4, order_));
    AppendDirectory(first);
    return std::move(result_);
}

}  // namespace

CondensedTiff CondenseTiff(ByteSource& source)
{
    return Condenser(source).Run();
}

}  // namespace kivxmp::photo
