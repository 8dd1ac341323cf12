// XMP objects from photos and sidecars, and back into them.
//
// An object that was opened from a file remembers the file, the packet's place in it, and the state
// in which the file was read. Saving replaces the file as <kivcore/FileReplacement.h> describes:
// nothing but the packet and what points to it changes, and the new file takes the old one's place
// only after it was read back and compared.
//
// All functions throw XMP_Error, whose text names the file.

#pragma once

#include <kivcore/UString.h>
#include <kivxmp/Export.h>
#include <kivxmp/XMPMeta.h>

#include <cstdint>
#include <memory>
#include <string>

namespace kivxmp {

/// Where the packet of a photo is kept. The numbers are those of the C interface.
enum class PacketPlace {
    kAuto = 0,      ///< in the photo where its format is written, else beside it
    kEmbedded = 1,  ///< in the photo
    kSidecar = 2    ///< in a file beside it
};

/// Which name a sidecar has. The numbers are those of the C interface.
enum class SidecarName {
    kAuto = 0,  ///< the one that is there; of both, or for a new one, the full one
    kFull = 1,  ///< NAME.EXT.xmp
    kShort = 2  ///< NAME.xmp, which photos of one name and several formats share
};

struct OpenOptions {
    PacketPlace place = PacketPlace::kAuto;
    SidecarName sidecar = SidecarName::kAuto;
};

/// What was found in a file, and what can be done with it.
struct PhotoInfo {
    std::string format;                          ///< "JPEG", "PNG", "sidecar" ...
    PacketPlace place = PacketPlace::kEmbedded;  ///< never kAuto
    kivcore::UString packetPath;                 ///< the photo or its sidecar, which may be missing
    bool packetFound = false;
    std::uint64_t packetOffset = 0;  ///< in bytes; 0 without a packet
    std::uint64_t packetBytes = 0;   ///< likewise
    bool canSave = false;
    std::string reason;  ///< why not: a sentence without the file's name; empty if it can
    std::string note;    ///< what else its user should know; mostly empty
};

/// Reads the packet of the photo at `path`; a file named .xmp is a sidecar itself. An object
/// without properties if there is none yet. What other places tell besides is derived from them:
/// <kivxmp/Derived.h>. A sidecar beside a photo that cannot be read is told in the note; if it is
/// the place for the packet, the object has no properties and cannot be saved. What a killed save
/// left beside the file is cleared away first. Of a photo only the part before its image data is
/// read.
KIVXMP_API std::unique_ptr<__XMPMeta__> OpenPhoto(const kivcore::UString& path,
                                                  const OpenOptions& options = {});

/// About the file that `meta` (or what it is a clone of) was opened from, as of then or the last
/// save. Throws kKivXmpBadArgument for an object that was not opened from a file.
KIVXMP_API PhotoInfo GetPhotoInfo(const __XMPMeta__& meta);

enum class SaveResult { kSaved, kNothingToSave };

/// Puts the packet of `meta` into the file it comes from. Nothing is written, and the file not even
/// looked at, if nothing in the object was changed; nothing is written if the file holds that
/// packet already. The file must be in the state in which it was read or last saved. Afterwards the
/// object is unchanged against the new file and can be edited and saved again; pointers to its
/// nodes are no longer valid. After a failure file and object are as they were.
KIVXMP_API SaveResult SavePhoto(__XMPMeta__& meta);

/// Writes the packet of `meta` alone to the file at `path`, in place of one that is there (which
/// must be no photo). Throws kKivXmpNoPacket where there is none: an object without properties that
/// was read from no packet.
KIVXMP_API void WritePacket(const __XMPMeta__& meta, const kivcore::UString& path);

}  // namespace kivxmp
