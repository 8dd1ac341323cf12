/* kivxmp: XMP objects from photos and sidecars, and back into them, in plain C.
 *
 * The common rules are those of <kivxmp/kivxmp.h>. File names are UTF-8; elsewhere than on Windows
 * they may be any bytes.
 *
 * An object that was opened from a file remembers the file, the packet's place in it and the state
 * in which the file was read. Saving changes nothing in a file but the packet and what points to
 * it. The new file is written beside the old one, flushed, read back and compared, and then takes
 * its place in one step; at every moment one of the two is there, whole. Clones share this memory:
 * after one was saved, the others can be saved in its place.
 *
 * What the packet lacks may stand elsewhere: in the packet of the place that does not count (a
 * sidecar beside a photo with a packet of its own, or the photo beside its sidecar), in the photo's
 * Exif data, in its IIM data; in this order. Such properties are derived. The functions of
 * <kivxmp/kivxmp.h> that read do not see them; KivXmpGetDerived hands them out. They are not saved,
 * and one that the packet holds, in whatever form, hides the derived one. The functions that set
 * something at or below a derived property copy all of it into the packet first; what sets it back
 * to what is derived takes it out again. One that is only derived cannot be removed.
 */

#ifndef KIVXMP_KIVXMP_FILE_H
#define KIVXMP_KIVXMP_FILE_H

#include <kivxmp/Export.h>
#include <kivxmp/kivxmp.h>

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Where the packet of a photo is kept. The numbers stay as they are. */
typedef enum KivXmpPlace {
    kKivXmpPlaceAuto = 0,     /* in the photo where its format is written, else beside it */
    kKivXmpPlaceEmbedded = 1, /* in the photo */
    kKivXmpPlaceSidecar = 2   /* in a file beside it */
} KivXmpPlace;

/* Which name a sidecar has. The numbers stay as they are. */
typedef enum KivXmpSidecar {
    kKivXmpSidecarAuto = 0, /* the one that is there; of both, or for a new one, the full one */
    kKivXmpSidecarFull = 1, /* NAME.EXT.xmp */
    kKivXmpSidecarShort = 2 /* NAME.xmp, which photos of one name and several formats share */
} KivXmpSidecar;

typedef struct KivXmpOpenOptions {
    int place;   /* KivXmpPlace */
    int sidecar; /* KivXmpSidecar */
} KivXmpOpenOptions;

/* What was found in a file, and what can be done with it. Texts are never null, and valid until
 * the object (of its clones the last one) is saved or released. */
typedef struct KivXmpPhotoInfo {
    const char* format;     /* "JPEG", "PNG", "sidecar" ... */
    KivXmpPlace place;      /* never kKivXmpPlaceAuto */
    const char* packetPath; /* the photo or its sidecar, which may be missing */
    uint64_t packetOffset;  /* where the packet lies in that file, in bytes; 0 without a packet */
    uint64_t packetBytes;   /* its length; 0 without a packet */
    int packetFound;        /* 1 or 0 */
    int canSave;            /* 1 or 0 */
    const char* reason;     /* why not: a sentence without the file's name; empty if it can */
    const char* note;       /* what else its user should know; mostly empty */
} KivXmpPhotoInfo;

/* Reads the packet of the photo at `path`; a file named .xmp is a sidecar itself. The object has no
 * properties if there is no packet yet. A sidecar beside a photo that cannot be read is told in the
 * note; if it is the place for the packet, the object has no properties and cannot be saved. Of a
 * photo only the part before its image data is read.
 * `options` may be null: all Auto;
 * other numbers than those above give kKivXmpBadArgument. Fails with a code from
 * kKivXmpFileNotFound on for the file, with one below for the packet. */
KIVXMP_API KivXmpCode KivXmpOpenPhoto(const char* path, const KivXmpOpenOptions* options,
                                      __XMPMeta__** meta);

/* Tells what was found in the file that the object was opened from, or left there by its last
 * save. kKivXmpBadArgument for an object that was not opened from a file. */
KIVXMP_API KivXmpCode KivXmpGetPhotoInfo(const __XMPMeta__* meta, KivXmpPhotoInfo* info);

/* Where a property comes from. The numbers stay as they are. */
typedef enum KivXmpSource {
    kKivXmpFromPacket = 0, /* the packet: it is not derived */
    kKivXmpFromExif = 1,   /* the photo's Exif data; the detail is a tag: "Exif.Photo.FNumber" */
    kKivXmpFromIim = 2,    /* the photo's IIM data; the detail is a tag: "Iptc.Application2.City" */
    kKivXmpFromSidecar = 3, /* a sidecar; the detail is its name */
    kKivXmpFromEmbedded = 4 /* the packet in the photo; the detail is the photo's name */
} KivXmpSource;

/* Tells where the property that `path` begins with comes from. `*detail` (`detail` may be null)
 * belongs to the caller; it is empty for kKivXmpFromPacket. kKivXmpNotFound if neither the packet
 * nor another source has the property. */
KIVXMP_API KivXmpCode KivXmpGetSource(const __XMPMeta__* meta, const char* path,
                                      KivXmpSource* source, char** detail);

/* Makes an object of all derived properties that the packet lacks, to be looked at; without
 * properties if there are none. It does not follow later changes of `meta`. */
KIVXMP_API KivXmpCode KivXmpGetDerived(const __XMPMeta__* meta, __XMPMeta__** derived);

/* Puts the object's packet into the file it comes from, and stores 1 in `*written` (which may be
 * null). If nothing in the object was changed, or the file holds that packet already, nothing is
 * written and `*written` is 0.
 * kKivXmpFileChanged if the file is not in the state in which it was read or last saved. After a
 * failure file and object are as they were. */
KIVXMP_API KivXmpCode KivXmpSavePhoto(__XMPMeta__* meta, int* written);

/* Writes the object's packet alone to the file at `path`, in place of one that is there (which must
 * be no photo: kKivXmpFileUnsupported).
 * kKivXmpNoPacket for an object without properties that was read from no packet. */
KIVXMP_API KivXmpCode KivXmpWritePacket(const __XMPMeta__* meta, const char* path);

#ifdef __cplusplus
}
#endif

#endif
