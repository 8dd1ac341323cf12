// Builds PNG, WebP and TIFF files for tests, part by part: Png().Xmp(packet).Image().Bytes().

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kivxmp::test {

/// By zlib.
std::string Packed(std::string_view text);

class Png {
public:
    /// The signature and the header of an image of 2 by 1 pixels.
    Png();

    Png& Chunk(std::string_view type, std::string_view content);
    Png& Xmp(std::string_view packet);
    /// Compressed, as some editors write it; `language` and `keyword` stand in front of the text.
    Png& PackedXmp(std::string_view packet, std::string_view language = "",
                   std::string_view keyword = "");
    /// Image data and the end.
    Png& Image();
    Png& Raw(std::string_view bytes);

    std::size_t Size() const { return bytes_.size(); }
    const std::string& Bytes() const { return bytes_; }

private:
    std::string bytes_;
};

class Webp {
public:
    Webp& Chunk(std::string_view name, std::string_view content);
    /// The header of 32 by 20 pixels.
    Webp& Extended(unsigned char flags);
    /// 32 by 20 pixels, lossy.
    Webp& Image();
    /// 32 by 20 pixels, lossless.
    Webp& LosslessImage(bool hasAlpha);
    Webp& Xmp(std::string_view packet) { return Chunk("XMP ", packet); }
    /// Bytes behind the RIFF file.
    Webp& Trailer(std::string_view bytes);

    std::size_t Size() const { return 12 + chunks_.size(); }
    std::string Bytes() const;

private:
    std::string chunks_;
    std::string trailer_;
};

struct TiffLayout {
    bool bigEndian = false;
    bool isBig = false;
};

class Tiff {
public:
    explicit Tiff(TiffLayout layout = {}) : layout_(layout) {}

    /// An entry of the first directory with its value's bytes; those that do not fit stand behind
    /// all directories.
    Tiff& Entry(std::uint16_t tag, std::uint16_t type, std::uint64_t count, std::string_view value);
    /// Width, height and a strip of image data.
    Tiff& Image();
    Tiff& Xmp(std::string_view packet) { return Entry(700, 1, packet.size(), packet); }
    /// A second directory, of one entry.
    Tiff& Second();

    std::string Number(std::uint64_t value, std::size_t bytes) const;
    std::string Bytes() const;

private:
    struct Row {
        std::uint16_t tag;
        std::uint16_t type;
        std::uint64_t count;
        std::string value;
    };
    std::string Directory(const std::vector<Row>& rows, std::uint64_t next, std::uint64_t valuesAt,
                          std::string& values) const;

    TiffLayout layout_;
    std::vector<Row> rows_;
    bool hasSecond_ = false;
};

}  // namespace kivxmp::test
