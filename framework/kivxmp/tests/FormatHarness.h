// What the tests of all photo formats do with a file in memory.

#pragma once

#include <cstddef>
#include <memory>
#include <span>
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

/// A file, the packet that is found in it, and the file with the packet "new".
struct PlaceCase {
    const char* name;
    std::string before;
    std::string packet;
    std::string after;
};

/// A file that is not saved, the packet that is shown all the same ("-" for none), and the reason.
struct RefusalCase {
    const char* name;
    std::string bytes;
    const char* packet;
    const char* reason;
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

    /// Expects that each file is read and saved as its row says, and that saving again, or another
    /// packet in between, gives the same file.
    void ExpectPlaces(std::span<const PlaceCase> rows) const;
    /// Expects that each file is refused as its row says, whatever `packet` is to be saved.
    void ExpectRefusals(std::span<const RefusalCase> rows, std::string_view packet) const;

    /// Expects that a save of `packet` into `bytes` would not pass with any byte of it wrong, or
    /// with any part of it missing.
    void ExpectEveryByteIsChecked(std::string_view bytes, std::string_view packet) const;

private:
    Reader reader_;
};

}  // namespace kivxmp::test
