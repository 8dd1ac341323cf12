#include "dictionary/ByteSink.h"

#include <cstddef>

namespace morvish_private {

namespace {

constexpr std::size_t kBlockBytes = 64 * 1024;

}  // namespace

void ByteSink::Put16(std::uint16_t value)
{
    const char low = static_cast<char>(value & 0xFF);
    const char high = static_cast<char>(value >> 8);
    const char bytes[] = {order_ == ByteOrder::kLittle ? low : high,
                          order_ == ByteOrder::kLittle ? high : low};
    Put({bytes, sizeof bytes});
}

void ByteSink::Put32(std::uint32_t value)
{
    const auto low = static_cast<std::uint16_t>(value & 0xFFFF);
    const auto high = static_cast<std::uint16_t>(value >> 16);
    Put16(order_ == ByteOrder::kLittle ? low : high);
    Put16(order_ == ByteOrder::kLittle ? high : low);
}

void ByteSink::Put(std::string_view bytes)
{
    buffer_ += bytes;
    if (buffer_.size() >= kBlockBytes)
        Flush();
}

void ByteSink::PutUnits(std::u16string_view units)
{
    for (const char16_t unit : units)
        Put16(unit);
}

void ByteSink::Flush()
{
    if (out_.write(buffer_.data(), static_cast<std::streamsize>(buffer_.size())))
        writtenBytes_ += buffer_.size();
    buffer_.clear();
}

}  // namespace morvish_private
