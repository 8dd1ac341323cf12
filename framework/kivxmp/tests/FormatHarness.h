// What the tests of all photo formats do with a file in memory.

#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "framework/kivxmp/src/PhotoFormat.h"

namespace kivxmp::test {

/// Remembers how much of a file was read.
class WatchedSource final : public photo::ByteSource {
public:
    explicit WatchedSource(std::string_view bytes) : memory_(bytes) {}
    std::uint64_t SizeBytes() const noexcept override { return memory_.SizeBytes(); }
    std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t bytes) override
    {
        const std::size_t got = memory_.ReadAt(offset, buffer, bytes);
        total += got;
        return got;
    }

    std::size_t total = 0;

private:
    photo::MemorySource memory_;
};

class FormatHarness {
public:
    using Reader = std::unique_ptr<photo::PhotoFormat> (*)(photo::ByteSource& source);

    explicit FormatHarness(Reader reader) : reader_(reader) {}

    /// `digest` names the extended part that belongs to the packet; "" for none.
    std::unique_ptr<photo::PhotoFormat> Read(std::string_view bytes,
                                             const std::string& digest = "") const;
    /// The file with `packet` in it, checked as a save does, or the reason why that is refused.
    std::string Save(std::string_view bytes, const photo::PacketParts& packet,
                     const std::string& digest = "") const;
    std::string Save(std::string_view bytes, std::string_view packet) const
    {
        return Save(bytes, photo::PacketParts{std::string(packet), ""});
    }
    /// The counting packet of a file: "-" where there is none.
    std::string Packet(std::string_view bytes) const;
    /// "" where there is none.
    std::string Refusal(std::string_view bytes) const;

    /// Expects that a save of `packet` into `bytes` would not pass with any byte of it wrong, or
    /// with any part of it missing.
    void ExpectEveryByteIsChecked(std::string_view bytes, std::string_view packet) const;

private:
    Reader reader_;
};

}  // namespace kivxmp::test
