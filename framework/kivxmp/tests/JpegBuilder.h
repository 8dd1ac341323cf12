// Builds JPEG files for tests, segment by segment: Jpeg().App0().Exif().Xmp(packet).Scan().Bytes().

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kivxmp::test {

/// A minimal packet of exactly `bytes` bytes with `title` as dc:title. Requires some 500 bytes.
std::string PacketOfSize(std::size_t bytes, std::string_view title);

/// A packet with `title` as dc:title, one keyword and an unknown property, without padding.
std::string SmallPacket(std::string_view title);

class Jpeg {
public:
    Jpeg() : bytes_("\xFF\xD8") {}

    Jpeg& App0();
    Jpeg& Exif();
    Jpeg& Comment(std::string_view text);
    Jpeg& Xmp(std::string_view packet);
    /// A piece of an extended part; `digest` is filled up with zeros in front.
    Jpeg& Extended(std::string_view digest, std::size_t wholeBytes, std::size_t at,
                   std::string_view piece);
    Jpeg& Profile(std::size_t bytes);
    /// `count` times the byte that may stand before any marker.
    Jpeg& Fill(std::size_t count);
    /// A marker without a segment.
    Jpeg& Standalone(unsigned char marker);
    Jpeg& Segment(unsigned char marker, std::string_view payload);
    /// Any bytes.
    Jpeg& Raw(std::string_view bytes);
    /// The index of the pictures that Picture() adds; to be called before Scan(), and completed by
    /// Bytes().
    Jpeg& Index(bool bigEndian);
    /// Tables, frame, scan with some bytes of data, end of image.
    Jpeg& Scan();
    /// Bytes behind the end of the image.
    Jpeg& Trailer(std::string_view bytes) { return Raw(bytes); }
    /// A further picture, behind the end of the first.
    Jpeg& Picture(std::string_view bytes);

    std::size_t Size() const { return bytes_.size(); }
    std::string Bytes() const;

private:
    std::string bytes_;
    std::size_t indexAt_ = 0;
    bool indexBigEndian_ = false;
    std::size_t firstPictureEnd_ = 0;
    std::vector<std::pair<std::size_t, std::size_t>> pictures_;  // offset, length
};

/// What the index of such a file says, read anew: for each picture the bytes it points to.
std::vector<std::string> PicturesByIndex(std::string_view file);

}  // namespace kivxmp::test
