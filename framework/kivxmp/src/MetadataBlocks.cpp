#include "framework/kivxmp/src/MetadataBlocks.h"

#include <algorithm>
#include <utility>

#include "framework/kivxmp/src/ByteNumbers.h"
#include "framework/kivxmp/src/CondensedTiff.h"
#include "framework/kivxmp/src/PngText.h"

#include <kivcore/Trace.h>

namespace kivxmp::photo {

namespace {

using namespace std::string_view_literals;

// In front of the TIFF stream in a JPEG segment; some writers put it into other formats, too.
constexpr std::string_view kExifSignature = "Exif\0"sv;
constexpr std::size_t kExifSignatureBytes = 6;  // the last byte is a filler

constexpr std::size_t kResourceHeadBytes = 4 + 2;  // signature and number
constexpr std::uint64_t kResourceIim = 0x0404;
// Of all blocks together.
constexpr std::size_t kResourcesBytesLimit = std::size_t{4} << 20;

/// Nothing for what is too large, or is not there.
std::string ReadBlock(ByteSource& source, const ByteRange& range)
{
    if (range.bytes > kBlockBytesLimit) {
        return {};
    }
    std::string bytes(static_cast<std::size_t>(range.bytes), '\0');
    bytes.resize(source.ReadAt(range.offset, bytes.data(), bytes.size()));
    return bytes;
}

std::string SoundExif(std::string_view stream)
{
    if (stream.starts_with(kExifSignature)) {
        stream.remove_prefix(std::min(kExifSignatureBytes, stream.size()));
    }
    MemorySource source(stream);
    std::string sound = CondenseTiff(source).stream;
    if (sound.empty()) {
        static constinit kivcore::debug::TraceSite site("kivxmp", 1);
        site.Report("Exif data cannot be read: they hold no directory");
    }
    return sound;
}

constexpr std::size_t Even(std::size_t bytes)
{
    return bytes + (bytes & 1);
}

}  // namespace

std::string CollectIim(std::string_view resources)
{
    std::string iim;
    // Signature, number, name (its length and itself, together even), length, content (even).
    while (resources.size() > kResourceHeadBytes && resources.starts_with("8BIM")) {
        const std::uint64_t number = GetNumber(resources, 4, 2, ByteOrder::kBig);
        const std::size_t nameBytes =
            Even(1 + std::size_t{static_cast<unsigned char>(resources[kResourceHeadBytes])});
        const std::size_t lengthAt = kResourceHeadBytes + nameBytes;
        if (!HasBytes(resources, lengthAt, 4)) {
            break;
        }
        const std::uint64_t bytes = GetNumber(resources, lengthAt, 4, ByteOrder::kBig);
        resources.remove_prefix(lengthAt + 4);
        if (bytes > resources.size()) {
            break;
        }
        if (number == kResourceIim) {
            iim += resources.substr(0, static_cast<std::size_t>(bytes));
        }
        resources.remove_prefix(std::min(Even(static_cast<std::size_t>(bytes)), resources.size()));
    }
    return iim;
}

MetadataBlocks ReadMetadataBlocks(const PhotoFormat& photo, ByteSource& source)
{
    MetadataBlocks blocks;
    std::string resources;
    for (const MetadataBlock& block : photo.Blocks()) {
        if (resources.size() > kResourcesBytesLimit) {
            break;
        }
        if (block.kind == MetadataBlock::Kind::kImageResources) {
            // What one segment has no room for goes on in the next.
            resources += ReadBlock(source, block.range);
        } else if (block.kind == MetadataBlock::Kind::kProfile ||
                   block.kind == MetadataBlock::Kind::kPackedProfile) {
            const std::string profile =
                ReadProfile(ReadBlock(source, block.range),
                            block.kind == MetadataBlock::Kind::kPackedProfile, kBlockBytesLimit);
            if (profile.starts_with("8BIM")) {
                resources += profile;
            } else if (profile.starts_with('\x1C') && blocks.iim.empty()) {
                blocks.iim = profile;  // without the resources around it
            } else if (profile.starts_with(kExifSignature) && blocks.exif.empty()) {
                blocks.exif = SoundExif(profile);
            }
        } else if (!blocks.exif.empty()) {
            continue;
        } else if (block.kind == MetadataBlock::Kind::kTiff) {
            CondensedTiff condensed = CondenseTiff(source);
            blocks.exif = std::move(condensed.stream);
            blocks.iim = std::move(condensed.iim);
            resources = std::move(condensed.imageResources);
        } else {
            blocks.exif = SoundExif(ReadBlock(source, block.range));
        }
    }
    if (blocks.iim.empty()) {
        blocks.iim = CollectIim(resources);
    }
    return blocks;
}

}  // namespace kivxmp::photo
