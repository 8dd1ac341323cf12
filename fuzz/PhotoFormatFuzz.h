// Reads any bytes as a photo of one format and puts a packet into it. Where that is not refused,
// the copy must pass the check of a save and hold the packet.

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "framework/kivxmp/src/PacketDigest.h"
#include "framework/kivxmp/src/PhotoFormat.h"

namespace kivxmp::fuzz {

using PhotoReader = std::unique_ptr<photo::PhotoFormat> (*)(photo::ByteSource& source);

inline void Require(bool holds)
{
    if (!holds) {
        __builtin_trap();
    }
}

/// The first two bytes choose the length of the packet, the others are the file.
inline int FuzzPhotoFormat(const std::uint8_t* data, std::size_t size, PhotoReader read)
{
    if (size < 2) {
        return 0;
    }
    const std::size_t packetBytes = static_cast<std::size_t>(data[0] << 8 | data[1]);
    const std::string_view file(reinterpret_cast<const char*>(data) + 2, size - 2);
    photo::MemorySource source(file);
    const photo::FormatRow* const row = photo::RecogniseFormat(source);
    if (row == nullptr || row->read != read) {
        return 0;
    }
    const std::unique_ptr<photo::PhotoFormat> format = read(source);
    static_cast<void>(format->NameOf(row->name, "tif"));
    for (std::size_t number = 0; number < format->Packets().size(); ++number) {
        try {
            const std::string text = format->ReadPacket(number, source);
            // Half of the files have the extended part that they begin their packet with.
            constexpr std::size_t kDigestBytes = photo::kDigestCharacters;
            if (text.size() >= kDigestBytes) {
                format->TakeExtended(std::string_view(text).substr(0, kDigestBytes), source);
            }
        } catch (const photo::PhotoError&) {
            return 0;
        }
    }

    photo::PacketParts packet{std::string(packetBytes, 'p'), {}};
    if (format->TakesExtended() && packetBytes % 2 == 1) {
        packet.extended = std::string(packetBytes * 3, 'e');
        format->TakeExtended(photo::PacketDigest(packet.extended), source);
    }
    std::string saved;
    photo::SavePlan plan;
    try {
        plan = format->Plan(packet);
    } catch (const photo::PhotoError&) {
        return 0;
    }
    photo::ApplyPlan(
        plan, file.size(),
        [&](photo::ByteRange range) { saved += file.substr(range.offset, range.bytes); },
        [&](std::string_view fresh) { saved += fresh; });
    photo::MemorySource copy(saved);
    const std::unique_ptr<photo::PhotoFormat> copyFormat = read(copy);
    if (!packet.extended.empty()) {
        Require(copyFormat->TakeExtended(photo::PacketDigest(packet.extended), copy) ==
                packet.extended);
    }
    photo::CheckCopy(source, *format, plan, copy, *copyFormat);
    Require(!copyFormat->Refusal() && copyFormat->Packets().size() == 1 &&
            copyFormat->ReadPacket(0, copy) == packet.main);
    return 0;
}

}  // namespace kivxmp::fuzz
