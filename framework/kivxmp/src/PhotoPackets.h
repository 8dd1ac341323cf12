// The packets of a photo as one object, and one object as the packets of a photo. A photo may hold
// several packets, and a packet a second part that the first one's place has no room for.

#pragma once

#include <memory>
#include <optional>

#include <kivxmp/XMPMeta.h>

#include "framework/kivxmp/src/PhotoFormat.h"

namespace kivxmp {

struct PhotoObject {
    std::unique_ptr<__XMPMeta__> meta;
    /// Why the object must not be saved: it is not all that the packets hold.
    std::optional<photo::PhotoError> refusal;
};

/// The first packet, with what only later ones hold behind it; an object without properties where
/// there is none. The extended parts that packets name belong to them afterwards.
/// Throws XMP_Error, PhotoError, FileError.
PhotoObject ReadPackets(photo::ByteSource& source, photo::PhotoFormat& format);

/// True if the object names an extended part that is not in it.
bool NamesExtended(const __XMPMeta__& meta);

/// The object as its place takes it. If it takes it not, `main` is longer than the format's limit.
/// Throws XMP_Error.
photo::PacketParts SplitPacket(const __XMPMeta__& meta, const photo::PhotoFormat& format);

}  // namespace kivxmp
