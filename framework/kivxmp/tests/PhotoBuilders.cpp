#include "framework/kivxmp/tests/PhotoBuilders.h"

#include <zlib.h>

#include <stdexcept>

#include "framework/kivxmp/src/ByteNumbers.h"

namespace kivxmp::test {

using photo::ByteOrder;
using photo::NumberBytes;
using namespace std::string_view_literals;

std::string Packed(std::string_view text)
{
    uLongf bytes = compressBound(static_cast<uLong>(text.size()));
    std::string packed(bytes, '\0');
    if (compress(reinterpret_cast<Bytef*>(packed.data()), &bytes,
                 reinterpret_cast<const Bytef*>(text.data()),
                 static_cast<uLong>(text.size())) != Z_OK) {
        throw std::runtime_error("cannot compress");
    }
    packed.resize(bytes);
    return packed;
}

Png::Png() : bytes_("\x89PNG\r\n\x1A\n")
{
    Chunk("IHDR", "\0\0\0\x02\0\0\0\x01\x08\0\0\0\0"sv);
}

Png& Png::Raw(std::string_view bytes)
{
    bytes_ += bytes;
    return *this;
}

Png& Png::Chunk(std::string_view type, std::string_view content)
{
    const std::string checked = std::string(type) + std::string(content);
    const uLong sum =
        crc32(0, reinterpret_cast<const Bytef*>(checked.data()), static_cast<uInt>(checked.size()));
    return Raw(NumberBytes(content.size(), 4, ByteOrder::kBig))
        .Raw(checked)
        .Raw(NumberBytes(sum, 4, ByteOrder::kBig));
}

Png& Png::Xmp(std::string_view packet)
{
    return Chunk("iTXt", std::string("XML:com.adobe.xmp\0\0\0\0\0"sv) + std::string(packet));
}

Png& Png::PackedXmp(std::string_view packet, std::string_view language, std::string_view keyword)
{
    std::string content("XML:com.adobe.xmp\0\x01\0"sv);
    content += language;
    content += '\0';
    content += keyword;
    content += '\0';
    return Chunk("iTXt", content + Packed(packet));
}

Png& Png::Image()
{
    return Chunk("IDAT", Packed("\0\x10\x20"sv)).Chunk("IEND", "");
}

Webp& Webp::Chunk(std::string_view name, std::string_view content)
{
    chunks_ += name;
    chunks_ += NumberBytes(content.size(), 4, ByteOrder::kLittle);
    chunks_ += content;
    chunks_.append(content.size() & 1, '\0');
    return *this;
}

Webp& Webp::Extended(unsigned char flags)
{
    return Chunk(
        "VP8X", std::string(1, static_cast<char>(flags)) + std::string("\0\0\0\x1F\0\0\x13\0\0"sv));
}

Webp& Webp::Image()
{
    return Chunk("VP8 ", "\x10\x02\x00\x9D\x01\x2A\x20\x00\x14\x00pixels"sv);
}

Webp& Webp::LosslessImage(bool hasAlpha)
{
    const std::uint64_t bits = 31 | 19u << 14 | (hasAlpha ? 1u << 28 : 0u);
    return Chunk("VP8L", "\x2F" + NumberBytes(bits, 4, ByteOrder::kLittle) + "pixels");
}

Webp& Webp::Trailer(std::string_view bytes)
{
    trailer_ += bytes;
    return *this;
}

std::string Webp::Bytes() const
{
    return "RIFF" + NumberBytes(chunks_.size() + 4, 4, ByteOrder::kLittle) + "WEBP" + chunks_ +
           trailer_;
}

std::string Tiff::Number(std::uint64_t value, std::size_t bytes) const
{
    return NumberBytes(value, bytes, layout_.bigEndian ? ByteOrder::kBig : ByteOrder::kLittle);
}

Tiff& Tiff::Entry(std::uint16_t tag, std::uint16_t type, std::uint64_t count,
                  std::string_view value)
{
    rows_.push_back({tag, type, count, std::string(value)});
    return *this;
}

Tiff& Tiff::Image()
{
    return Entry(256, 3, 1, Number(2, 2)).Entry(257, 3, 1, Number(1, 2));
}

Tiff& Tiff::Second()
{
    hasSecond_ = true;
    return *this;
}

std::string Tiff::Directory(const std::vector<Row>& rows, std::uint64_t next,
                            std::uint64_t valuesAt, std::string& values) const
{
    const std::size_t number = layout_.isBig ? 8 : 4;
    std::string bytes = Number(rows.size(), layout_.isBig ? 8 : 2);
    for (const Row& row : rows) {
        bytes += Number(row.tag, 2) + Number(row.type, 2) + Number(row.count, number);
        if (row.value.size() <= number) {
            bytes += row.value + std::string(number - row.value.size(), '\0');
        } else {
            bytes += Number(valuesAt + values.size(), number);
            values += row.value;
            values.append(values.size() & 1, '\0');
        }
    }
    return bytes + Number(next, number);
}

std::string Tiff::Bytes() const
{
    const std::size_t number = layout_.isBig ? 8 : 4;
    const std::size_t headerBytes = layout_.isBig ? 16 : 8;
    const auto directoryBytes = [&](std::size_t rows) {
        return (layout_.isBig ? 8 : 2) + rows * (4 + 2 * number) + number;
    };
    std::string bytes = layout_.bigEndian ? "MM" : "II";
    bytes += Number(layout_.isBig ? 43 : 42, 2);
    bytes += layout_.isBig ? Number(8, 2) + Number(0, 2) : "";
    bytes += Number(headerBytes, number);
    const std::size_t second = headerBytes + directoryBytes(rows_.size());
    const std::vector<Row> rows = {{254, 4, 1, Number(1, 4)}};
    const std::size_t valuesAt = second + (hasSecond_ ? directoryBytes(rows.size()) : 0);
    std::string values;
    bytes += Directory(rows_, hasSecond_ ? second : 0, valuesAt, values);
    if (hasSecond_) {
        bytes += Directory(rows, 0, valuesAt, values);
    }
    return bytes + values;
}

}  // namespace kivxmp::test
