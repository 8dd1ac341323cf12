// Builds Exif and IIM data for tests, tag by tag:
// ExifStream(ByteOrder::kBig).Ascii(kImage, 271, "Kivo").Bytes().

#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "framework/kivxmp/src/ByteNumbers.h"

namespace kivxmp::test {

/// A TIFF stream, and thus also a TIFF file. Directories are written in the order Exif, GPS, first.
class ExifStream {
public:
    enum Directory { kImage, kPhoto, kGps };

    explicit ExifStream(photo::ByteOrder order = photo::ByteOrder::kLittle) : order_(order) {}

    /// With the zero at its end.
    ExifStream& Ascii(Directory directory, std::uint16_t tag, std::string_view text);
    ExifStream& Byte(Directory directory, std::uint16_t tag, std::string_view bytes);
    ExifStream& Undefined(Directory directory, std::uint16_t tag, std::string_view bytes);
    ExifStream& Short(Directory directory, std::uint16_t tag,
                      std::initializer_list<std::uint16_t> values);
    ExifStream& Long(Directory directory, std::uint16_t tag,
                     std::initializer_list<std::uint32_t> values);
    /// Numerator, denominator.
    ExifStream& Ratio(Directory directory, std::uint16_t tag,
                      std::initializer_list<std::pair<std::uint32_t, std::uint32_t>> values);
    /// Any entry; `count` may lie.
    ExifStream& Entry(Directory directory, std::uint16_t tag, std::uint16_t type,
                      std::uint32_t count, std::string_view value);

    /// With `gap` bytes between the header and the directories.
    std::string Bytes(std::size_t gap = 0) const;

private:
    struct Value {
        std::uint16_t type = 0;
        std::uint32_t count = 0;
        std::string bytes;
    };
    using Entries = std::map<std::uint16_t, Value>;
    void AppendDirectory(const Entries& entries, std::string& stream) const;

    photo::ByteOrder order_;
    Entries directories_[3];
};

/// "Exif", two zeros, and the stream: what a JPEG segment APP1 holds.
std::string ExifSegment(const ExifStream& stream);

class Iim {
public:
    Iim& Add(unsigned record, unsigned number, std::string_view value);
    Iim& Utf8() { return Add(1, 90, "\x1B%G"); }
    const std::string& Bytes() const { return bytes_; }

private:
    std::string bytes_;
};

/// One of Photoshop's image resources.
std::string ImageResource(unsigned number, std::string_view content, std::string_view name = "");

/// What a JPEG segment APP13 holds.
std::string ResourcesSegment(std::string_view resources);

}  // namespace kivxmp::test
