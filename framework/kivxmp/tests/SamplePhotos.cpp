#include "framework/kivxmp/tests/SamplePhotos.h"

#include "framework/kivxmp/tests/JpegBuilder.h"
#include "framework/kivxmp/tests/PhotoBuilders.h"

namespace kivxmp::test {

const std::array<SamplePhoto, kSampleCount> kSamplePhotos = {{
    {"p.jpg", "JPEG",
     [](std::string_view packet) {
         Jpeg jpeg;
         jpeg.Exif();
         return (packet.empty() ? jpeg : jpeg.Xmp(packet)).Scan().Bytes();
     }},
    {"p.png", "PNG",
     [](std::string_view packet) {
         Png png;
         return (packet.empty() ? png : png.Xmp(packet)).Image().Bytes();
     }},
    {"p.webp", "WebP",
     [](std::string_view packet) {
         Webp webp;
         webp.Extended(packet.empty() ? 0 : 4).Image();
         return (packet.empty() ? webp : webp.Xmp(packet)).Bytes();
     }},
    {"p.tif", "TIFF",
     [](std::string_view packet) {
         Tiff tiff({true, false});
         tiff.Image();
         return (packet.empty() ? tiff : tiff.Xmp(packet)).Bytes();
     }},
    {"p.tiff", "BigTIFF",
     [](std::string_view packet) {
         Tiff tiff({false, true});
         tiff.Image();
         return (packet.empty() ? tiff : tiff.Xmp(packet)).Bytes();
     }},
    {"p.dng", "DNG",
     [](std::string_view packet) {
         Tiff tiff;
         tiff.Image();
         return (packet.empty() ? tiff : tiff.Xmp(packet))
             .Entry(50706, 1, 4, std::string_view("\1\4\0\0", 4))
             .Bytes();
     }},
}};

const std::array<SavedSample, kSampleCount + 2> kSavedSamples = [] {
    std::array<SavedSample, kSampleCount + 2> samples;
    for (std::size_t i = 0; i < kSampleCount; ++i) {
        const SamplePhoto& row = kSamplePhotos[i];
        samples[i] = {row.name, row.build(SmallPacket("t")), row.name};
    }
    samples[kSampleCount] = {"p.xmp", SmallPacket("t"), "p.xmp"};
    samples[kSampleCount + 1] = {"p.gif", "GIF89athe rest is not looked at", "p.gif.xmp"};
    return samples;
}();

}  // namespace kivxmp::test
