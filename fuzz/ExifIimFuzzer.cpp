// Photos of all formats: their Exif and IIM data are found, made sound, decoded and mapped, as they
// are when a photo is asked for derived properties.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "framework/kivxmp/src/CondensedTiff.h"
#include "framework/kivxmp/src/ExifIimReader.h"
#include "framework/kivxmp/src/IimBlock.h"
#include "framework/kivxmp/src/MetadataBlocks.h"
#include "framework/kivxmp/src/PhotoFormat.h"
#include "framework/kivxmp/src/TagMapping.h"
#include "framework/kivxmp/src/TagValue.h"

namespace {

using namespace kivxmp::photo;

void Require(bool holds)
{
    if (!holds) {
        __builtin_trap();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view file(reinterpret_cast<const char*>(data), size);
    MemorySource source(file);
    const FormatRow* const row = RecogniseFormat(source);
    if (row == nullptr || row->read == nullptr) {
        return 0;
    }
    const MetadataBlocks blocks = ReadMetadataBlocks(*row->read(source), source);
    Require(blocks.iim.size() <= size);

    // Sound streams stay as they are.
    MemorySource stream(blocks.exif);
    Require(CondenseTiff(stream).stream == blocks.exif);
    const std::string iim = SoundIim(blocks.iim);
    Require(SoundIim(iim) == iim);

    MapTags(ReadExifTags(blocks.exif, IsMappedTag), ReadIimTags(iim, IsMappedTag));
    return 0;
}
