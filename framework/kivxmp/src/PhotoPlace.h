// Where the packet of a photo is kept, and which other place may hold one besides.

#pragma once

#include <memory>
#include <optional>
#include <string>

#include "framework/kivxmp/src/PhotoOrigin.h"

#include <kivcore/UString.h>
#include <kivxmp/PhotoFile.h>

namespace kivxmp {

/// One place for a packet.
struct Place {
    PacketPlace kind = PacketPlace::kEmbedded;
    kivcore::UString path;
    PhotoOrigin::Reader read = nullptr;
    /// The file's structure, where it was read to find the place; empty otherwise.
    std::unique_ptr<photo::PhotoFormat> content = nullptr;
};

struct PhotoPlaces {
    std::string format;
    Place packet;                ///< the one that counts; a sidecar may be missing
    std::optional<Place> other;  ///< where it is there and can be read
    std::string note;
    bool isPhoto = false;  ///< of a known format
};

/// The file itself, as a sidecar.
PhotoPlaces PlacesOfSidecar(const kivcore::UString& path);

/// What the content of the photo at `path` asks for. Throws PhotoError where the options, or its
/// name, promise something else.
PhotoPlaces FindPlaces(const kivcore::UString& path, photo::ByteSource& source,
                       const OpenOptions& options);

}  // namespace kivxmp
