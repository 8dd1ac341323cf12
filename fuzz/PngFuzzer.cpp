// Photos of one format: fuzz/PhotoFormatFuzz.h.

#include "framework/kivxmp/src/PngFile.h"
#include "fuzz/PhotoFormatFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    return kivxmp::fuzz::FuzzPhotoFormat(data, size, kivxmp::photo::ReadPng);
}
