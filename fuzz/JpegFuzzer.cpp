// Reads any bytes as a JPEG file and puts a packet into it. Where that is not refused, the result
// must differ in nothing but the packet and what points past it.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "framework/kivxmp/src/JpegFile.h"

using namespace kivxmp::photo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2) {
        return 0;
    }
    // The first two bytes choose the length of the packet, the others are the file.
    const std::string packet(static_cast<std::size_t>(data[0] << 8 | data[1]), 'p');
    const std::string_view file(reinterpret_cast<const char*>(data) + 2, size - 2);
    MemorySource source(file);
    const FormatRow* row = RecogniseFormat(source);
    if (row == nullptr || row->read != ReadJpeg) {
        return 0;
    }
    const std::unique_ptr<PhotoFormat> format = ReadJpeg(source);
    for (const ByteRange& range : format->Packets()) {
        ReadRange(source, range);
    }

    std::string saved;
    try {
        ApplyPlan(
            format->Plan(packet), file.size(),
            [&](ByteRange range) { saved += file.substr(range.offset, range.bytes); },
            [&](std::string_view fresh) { saved += fresh; });
    } catch (const PhotoError&) {
        return 0;
    }
    MemorySource copy(saved);
    const std::unique_ptr<PhotoFormat> copyFormat = ReadJpeg(copy);
    CheckKeptBytes(source, *format, copy, *copyFormat);
    if (copyFormat->Refusal() || copyFormat->Packets().size() != 1 ||
        ReadRange(copy, copyFormat->Packets().front()) != packet) {
        __builtin_trap();
    }
    return 0;
}
