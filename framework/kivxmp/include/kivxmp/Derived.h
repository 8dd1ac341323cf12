// Derived properties: what the packet of a photo lacks, and other places tell. These are, in the
// order in which they count: the packet in the other place (a sidecar beside a photo that holds the
// packet, or the photo beside a sidecar), the photo's Exif data, its IIM data.
//
// Only whole top-level properties derive: one that the packet holds, in whatever form, hides the
// derived ones of its name. Derived properties belong to the object that was opened and its clones.
// They are no part of the packet: neither serialized nor changes. A change at or below a derived
// property copies all of it into the packet first; a change that leaves the packet's property as it
// was derived takes it out again. Removing one does nothing, for the photo goes on telling it.
//
// An object that was not opened from a photo has no derived properties. The photo's own data is
// read at the first question, and not at all if the photo was changed meanwhile.

#pragma once

#include <kivxmp/Export.h>
#include <kivxmp/XMPMeta.h>
#include <kivxmp/XMPNode.h>
#include <kivxmp/XMPPath.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kivxmp {

/// Where a derived property comes from. The numbers are those of the C interface.
enum class DerivedFrom {
    kExif = 1,      ///< the photo's Exif data
    kIim = 2,       ///< its IIM data
    kSidecar = 3,   ///< the packet of a sidecar, where the photo's own counts
    kEmbedded = 4,  ///< the photo's own packet, where its sidecar counts
};

struct DerivedSource {
    DerivedFrom from = DerivedFrom::kExif;
    /// UTF-8: the tag ("Exif.Photo.FNumber"), or the name of the sidecar or photo.
    std::string detail;
    bool operator==(const DerivedSource&) const = default;
};

/// What stands at `path` in a derived property; null where the packet holds that property, or
/// nothing is there. Valid as long as `meta` or a clone lives. Paths that are texts take prefixes
/// as the packet does; throw XMP_Error (kKivXmpBadPath).
KIVXMP_API const Node* FindDerived(const __XMPMeta__& meta, const Path& path);
KIVXMP_API const Node* FindDerived(const __XMPMeta__& meta, std::string_view path);

/// What stands at `path` in the packet; if the packet lacks the whole property, in the derived one.
/// Valid until `meta` is changed, swapped or gone.
KIVXMP_API const Node* FindWithDerived(const __XMPMeta__& meta, const Path& path);
KIVXMP_API const Node* FindWithDerived(const __XMPMeta__& meta, std::string_view path);

/// Where the derived property that `path` begins with comes from; null where the packet holds that
/// property, or nobody does. Valid as long as `meta` or a clone lives.
KIVXMP_API const DerivedSource* FindDerivedSource(const __XMPMeta__& meta, const Path& path);
KIVXMP_API const DerivedSource* FindDerivedSource(const __XMPMeta__& meta, std::string_view path);

/// All derived properties that the packet lacks, as an object of their own to look at: a copy that
/// does not follow later changes of `meta`. Never null.
KIVXMP_API std::unique_ptr<const __XMPMeta__> DerivedProperties(const __XMPMeta__& meta);

/// The packets in other places that were read besides, in the order in which they count, also those
/// that add nothing: kSidecar or kEmbedded and the name of the file.
KIVXMP_API std::vector<DerivedSource> DerivedPackets(const __XMPMeta__& meta);

}  // namespace kivxmp
