// Collects bytes for an output stream and counts what it took.

#pragma once

#include "dictionary/ByteOrder.h"

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

namespace morvish_private {

class ByteSink {
public:
    /// `out` must outlive this object. Nothing is written behind its first failure.
    ByteSink(std::ostream& out, ByteOrder order) : out_(out), order_(order) {}

    void Put8(std::uint8_t value) { Put({reinterpret_cast<const char*>(&value), 1}); }
    void Put16(std::uint16_t value);
    void Put32(std::uint32_t value);
    void Put(std::string_view bytes);
    void PutUnits(std::u16string_view units);

    /// Hands over what is left. Whatever the stream throws goes through.
    void Flush();

    /// The bytes that the stream took.
    std::uint64_t WrittenBytes() const { return writtenBytes_; }

private:
    std::ostream& out_;
    ByteOrder order_;
    std::string buffer_;
    std::uint64_t writtenBytes_ = 0;
};

}  // namespace morvish_private
