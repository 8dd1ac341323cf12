// Photos for benchmarks, made from nothing: any format that kivxmp writes, any size, a packet as
// editors leave it.

#pragma once

#include <kivxmp/XMPMeta.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace bench {

/// Names of formats, which are their files' extensions too.
inline constexpr std::array kPhotoFormats = {"jpg", "png", "webp", "tif", "dng"};

/// A packet of about `bytes` bytes as a raw converter leaves it: its settings as attributes, texts,
/// keywords, and a history of as many steps as there is room for; then 2,048 bytes of padding.
std::string PacketOfEditor(std::size_t bytes);

enum class ImageData {
    kReal,   ///< bytes that do not repeat
    kSparse  ///< a hole in the file, which reads as zeros and takes no room
};

/// Makes the file `folder`/`name`.`format` of about `photoBytes` bytes with a packet of about
/// `packetBytes` bytes in it, and returns its path. Its structure is right, its image is noise. A
/// packet that is too long for a JPEG file's segment goes into an extended part. PNG image data is
/// cut into chunks of 8 KiB, as common writers do it, but a hole is one chunk.
std::filesystem::path MakePhoto(const std::filesystem::path& folder, const std::string& name,
                                std::string_view format, std::uint64_t photoBytes,
                                std::size_t packetBytes, ImageData data = ImageData::kReal);

/// The text of the extended part of the packet in a JPEG file; empty where there is none.
std::string ExtendedPart(const std::filesystem::path& path);

/// As kivxmp::OpenPhoto.
std::unique_ptr<__XMPMeta__> OpenPhoto(const std::filesystem::path& path);

/// The folder for photos: what the environment's KIV_BENCH_PHOTOS names, or the current one; and
/// the name of its file system, where that is known.
std::filesystem::path PhotoFolder();
std::string FileSystemOf(const std::filesystem::path& folder);

}  // namespace bench
