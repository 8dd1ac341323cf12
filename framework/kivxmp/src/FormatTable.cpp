// Which formats are known, and which of them hold packets that we read. A further format is a
// file of its own and its name here.

#include <array>

#include "framework/kivxmp/src/JpegFile.h"
#include "framework/kivxmp/src/PhotoFormat.h"
#include "framework/kivxmp/src/PngFile.h"
#include "framework/kivxmp/src/TiffFile.h"
#include "framework/kivxmp/src/WebpFile.h"

namespace kivxmp::photo {

namespace {

using namespace std::string_view_literals;

// Raw formats that are TIFF inside go by that name. The rows without a reader are there to tell a
// photo that has a sidecar from a file that is no photo.
constexpr FormatRow kFormatRows[] = {
    {"JPEG", 0, "\xFF\xD8"sv, ReadJpeg, " jpg jpeg jpe jfif "sv},
    {"PNG", 0, "\x89PNG\r\n\x1A\n"sv, ReadPng, " png "sv},
    {"WebP", 8, "WEBP"sv, ReadWebp, " webp "sv},
    {"TIFF", 0, "II*\0"sv, ReadTiff, " tif tiff dng nef nrw cr2 arw sr2 srf pef srw 3fr iiq "sv},
    {"TIFF", 0, "MM\0*"sv, ReadTiff, ""sv},
    {"BigTIFF", 0, "II+\0"sv, ReadTiff, " btf tf8 "sv},
    {"BigTIFF", 0, "MM\0+"sv, ReadTiff, ""sv},
    {"ISO media", 4, "ftyp"sv, nullptr, " heic heif hif avif cr3 mp4 m4v mov "sv},
    {"JPEG XL", 0, "\xFF\x0A"sv, nullptr, " jxl "sv},
    {"JPEG XL", 4, "JXL "sv, nullptr, ""sv},
    {"JPEG 2000", 4, "jP  "sv, nullptr, " jp2 jpx jpf "sv},
    {"JPEG 2000", 0, "\xFF\x4F\xFF\x51"sv, nullptr, " j2k j2c "sv},
    {"GIF", 0, "GIF8"sv, nullptr, " gif "sv},
    {"Photoshop", 0, "8BPS"sv, nullptr, " psd psb "sv},
    {"Fujifilm raw", 0, "FUJIFILMCCD-RAW"sv, nullptr, " raf "sv},
    {"Canon raw", 6, "HEAPCCDR"sv, nullptr, " crw "sv},
    {"Olympus raw", 0, "IIRO"sv, nullptr, " orf "sv},
    {"Olympus raw", 0, "IIRS"sv, nullptr, ""sv},
    {"Olympus raw", 0, "MMOR"sv, nullptr, ""sv},
    {"Panasonic raw", 0, "IIU\0"sv, nullptr, " rw2 "sv},
    {"Minolta raw", 0, "\0MRM"sv, nullptr, " mrw "sv},
    {"Sigma raw", 0, "FOVb"sv, nullptr, " x3f "sv},
    {"OpenEXR", 0, "\x76\x2F\x31\x01"sv, nullptr, " exr "sv},
    {"AVI", 8, "AVI "sv, nullptr, " avi "sv},
    {"PDF", 0, "%PDF-"sv, nullptr, " pdf "sv},
};

constexpr std::size_t kHeadBytes = 16;

constexpr bool SignaturesLieInTheHead()
{
    for (const FormatRow& row : kFormatRows) {
        if (row.signatureAt + row.signature.size() > kHeadBytes) {
            return false;
        }
    }
    return true;
}
static_assert(SignaturesLieInTheHead());

}  // namespace

const FormatRow* RecogniseFormat(ByteSource& source)
{
    std::array<char, kHeadBytes> buffer{};
    const std::size_t bytes = source.ReadAt(0, buffer.data(), buffer.size());
    const std::string_view head(buffer.data(), bytes);
    for (const FormatRow& row : kFormatRows) {
        if (head.size() >= row.signatureAt &&
            head.substr(row.signatureAt).starts_with(row.signature)) {
            return &row;
        }
    }
    return nullptr;
}

const FormatRow* FormatOfExtension(std::string_view extension)
{
    const std::string wanted = " " + std::string(extension) + " ";
    for (const FormatRow& row : kFormatRows) {
        if (!extension.empty() && row.extensions.find(wanted) != std::string_view::npos) {
            return &row;
        }
    }
    return nullptr;
}

}  // namespace kivxmp::photo
