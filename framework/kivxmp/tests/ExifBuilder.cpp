#include "framework/kivxmp/tests/ExifBuilder.h"

namespace kivxmp::test {

using photo::ByteOrder;
using photo::NumberBytes;

namespace {

using namespace std::string_literals;

constexpr std::uint16_t kTypeByte = 1;
constexpr std::uint16_t kTypeAscii = 2;
constexpr std::uint16_t kTypeShort = 3;
constexpr std::uint16_t kTypeLong = 4;
constexpr std::uint16_t kTypeRatio = 5;
constexpr std::uint16_t kTypeUndefined = 7;

}  // namespace

ExifStream& ExifStream::Entry(Directory directory, std::uint16_t tag, std::uint16_t type,
                              std::uint32_t count, std::string_view value)
{
    directories_[directory][tag] = {type, count, std::string(value)};
    return *this;
}

ExifStream& ExifStream::Ascii(Directory directory, std::uint16_t tag, std::string_view text)
{
    const std::string bytes = std::string(text) + '\0';
    return Entry(directory, tag, kTypeAscii, static_cast<std::uint32_t>(bytes.size()), bytes);
}

ExifStream& ExifStream::Byte(Directory directory, std::uint16_t tag, std::string_view bytes)
{
    return Entry(directory, tag, kTypeByte, static_cast<std::uint32_t>(bytes.size()), bytes);
}

ExifStream& ExifStream::Undefined(Directory directory, std::uint16_t tag, std::string_view bytes)
{
    return Entry(directory, tag, kTypeUndefined, static_cast<std::uint32_t>(bytes.size()), bytes);
}

ExifStream& ExifStream::Short(Directory directory, std::uint16_t tag,
                              std::initializer_list<std::uint16_t> values)
{
    std::string bytes;
    for (const std::uint16_t value : values) {
        bytes += NumberBytes(value, 2, order_);
    }
    return Entry(directory, tag, kTypeShort, static_cast<std::uint32_t>(values.size()), bytes);
}

ExifStream& ExifStream::Long(Directory directory, std::uint16_t tag,
                             std::initializer_list<std::uint32_t> values)
{
    std::string bytes;
    for (const std::uint32_t value : values) {
        bytes += NumberBytes(value, 4, order_);
    }
    return Entry(directory, tag, kTypeLong, static_cast<std::uint32_t>(values.size()), bytes);
}

ExifStream& ExifStream::Ratio(Directory directory, std::uint16_t tag,
                              std::initializer_list<std::pair<std::uint32_t, std::uint32_t>> values)
{
    std::string bytes;
    for (const auto& [numerator, denominator] : values) {
        bytes += NumberBytes(numerator, 4, order_) + NumberBytes(denominator, 4, order_);
    }
    return Entry(directory, tag, kTypeRatio, static_cast<std::uint32_t>(values.size()), bytes);
}

void ExifStream::AppendDirectory(const Entries& entries, std::string& stream) const
{
    std::string head = NumberBytes(entries.size(), 2, order_);
    std::string values;
    const std::size_t valuesAt = stream.size() + 2 + 12 * entries.size() + 4;
    for (const auto& [tag, value] : entries) {
        head += NumberBytes(tag, 2, order_) + NumberBytes(value.type, 2, order_) +
                NumberBytes(value.count, 4, order_);
        if (value.bytes.size() <= 4) {
            head += value.bytes + std::string(4 - value.bytes.size(), '\0');
        } else {
            head += NumberBytes(valuesAt + values.size(), 4, order_);
            values += value.bytes + std::string(value.bytes.size() & 1, '\0');
        }
    }
    stream += head + std::string(4, '\0') + values;
}

std::string ExifStream::Bytes(std::size_t gap) const
{
    std::string stream = order_ == ByteOrder::kBig ? "MM\0*"s : "II*\0"s;
    stream += std::string(4 + gap, '\0');
    Entries first = directories_[kImage];
    constexpr std::uint16_t kTagExif = 34665;
    constexpr std::uint16_t kTagGps = 34853;
    for (const auto& [directory, tag] : {std::pair(kPhoto, kTagExif), std::pair(kGps, kTagGps)}) {
        if (!directories_[directory].empty()) {
            first[tag] = {kTypeLong, 1, NumberBytes(stream.size(), 4, order_)};
            AppendDirectory(directories_[directory], stream);
        }
    }
    stream.replace(4, 4, NumberBytes(stream.size(), 4, order_));
    AppendDirectory(first, stream);
    return stream;
}

std::string ExifSegment(const ExifStream& stream)
{
    return "Exif\0\0"s + stream.Bytes();
}

Iim& Iim::Add(unsigned record, unsigned number, std::string_view value)
{
    bytes_ += '\x1C';
    bytes_ += static_cast<char>(record);
    bytes_ += static_cast<char>(number);
    if (value.size() < 0x8000) {
        bytes_ += NumberBytes(value.size(), 2, ByteOrder::kBig);
    } else {
        bytes_ += "\x80\x04"s + NumberBytes(value.size(), 4, ByteOrder::kBig);
    }
    bytes_ += value;
    return *this;
}

std::string ImageResource(unsigned number, std::string_view content, std::string_view name)
{
    std::string resource = "8BIM" + NumberBytes(number, 2, ByteOrder::kBig);
    resource += static_cast<char>(name.size());
    resource += name;
    resource.append((name.size() + 1) & 1, '\0');
    resource += NumberBytes(content.size(), 4, ByteOrder::kBig);
    resource += content;
    resource.append(content.size() & 1, '\0');
    return resource;
}

std::string ResourcesSegment(std::string_view resources)
{
    return "Photoshop 3.0\0"s.append(resources);
}

}  // namespace kivxmp::test
