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
 * properties if there is no packet yet. Of a photo only the part before its image data is read.
 * `options` may be null: all Auto;
 * other numbers than those above give kKivXmpBadArgument. Fails with a code from
 * kKivXmpFileNotFound on for the file, with one below for the packet. */
KIVXMP_API KivXmpCode KivXmpOpenPhoto(const char* path, const KivXmpOpenOptions* options,
                                      __XMPMeta__** meta);

/* Tells what was found in the file that the object was opened from, or left there by its last
 * save. kKivXmpBadArgument for an object that was not opened from a file. */
KIVXMP_API KivXmpCode KivXmpGetPhotoInfo(const __XMPMeta__* meta, KivXmpPhotoInfo* info);

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
