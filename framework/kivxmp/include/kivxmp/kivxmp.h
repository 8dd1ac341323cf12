/* kivxmp: XMP objects for hosts, in plain C. Reading and saving files: <kivxmp/kivxmp_file.h>.
 *
 * Common rules
 * - An object belongs to the caller, who ends it with KivXmpRelease. It needs no initialized
 *   library and does not depend on one. An object is used from one thread at a time, together with
 *   its clones.
 * - Nothing is thrown. A function returns kKivXmpOk or what went wrong; KivXmpLastErrorText then
 *   tells it in words. After a failure the object is as it was, and outputs are null or 0.
 * - Texts are UTF-8 and end in NUL. What a function hands out in a `char**` or `void**` belongs to
 *   the caller, who gives it back with KivXmpFree.
 * - A null object, path or output gives kKivXmpBadArgument.
 *
 * Paths
 *     dc:format                          a property
 *     dc:subject[2]                      an item of a list, from 1
 *     dc:title[@de]                      the item of that language, letter case ignored
 *     Iptc4xmpExt:LocationShown[1]/Iptc4xmpExt:City      a field of a structure
 *     dc:creator[1]/?ex:role             a qualifier
 *     {http://example.org/}name          a name without a prefix, wherever a name may stand
 * Prefixes are those of the well-known namespaces, then those the packet declares.
 */

#ifndef KIVXMP_KIVXMP_H
#define KIVXMP_KIVXMP_H

#include <stddef.h>

#include <kivxmp/Export.h>

#ifdef __cplusplus
extern "C" {
#endif

/* An XMP object. */
typedef struct __XMPMeta__ __XMPMeta__;

/* What went wrong. The numbers stay as they are. */
typedef enum KivXmpCode {
    kKivXmpOk = 0,
    kKivXmpBadArgument = 1,   /* a null pointer, or a number that means nothing */
    kKivXmpBadPath = 2,       /* not a path, or a prefix that nobody declares */
    kKivXmpNotFound = 3,      /* nothing stands at the path */
    kKivXmpWrongForm = 4,     /* it is there, but not of the form that the call is for */
    kKivXmpBadValue = 5,      /* the value cannot stand in a packet */
    kKivXmpMalformed = 6,     /* the packet is not well-formed XML */
    kKivXmpNoPacket = 7,      /* XML, but no XMP */
    kKivXmpBadEncoding = 8,   /* broken or unknown encoding */
    kKivXmpTooBig = 9,        /* above 64 MiB */
    kKivXmpTooDeep = 10,      /* nested deeper than 256 */
    kKivXmpTooManyNodes = 11, /* above 1,000,000 nodes */
    kKivXmpEntities = 12,     /* entities that multiply, or that lie outside the packet */
    kKivXmpNotEditable = 13,  /* the packet builds this place from entities */
    kKivXmpOutOfMemory = 14,
    kKivXmpInternal = 15,

    kKivXmpFileNotFound = 32,    /* no such file */
    kKivXmpFileUnreadable = 33,  /* the system refuses to read it */
    kKivXmpFileUnwritable = 34,  /* the system refuses to write it: full disk, permissions */
    kKivXmpFileReadOnly = 35,    /* the file is marked as read-only */
    kKivXmpFileChanged = 36,     /* another program changed the file since it was read */
    kKivXmpFileBroken = 37,      /* the file's structure is broken before the packet's place */
    kKivXmpFileUnsupported = 38, /* a format, or a way of keeping packets, that is not written */
    kKivXmpFileNoPlace = 39      /* the packet is too big for its place */
} KivXmpCode;

/* What a node of the packet's tree is. The numbers stay as they are. */
typedef enum KivXmpForm {
    kKivXmpSimple = 0, /* a text */
    kKivXmpUri = 1,    /* a URI, written as a resource */
    kKivXmpStruct = 2, /* fields, in order */
    kKivXmpBag = 3,    /* a list without order */
    kKivXmpSeq = 4,    /* a list with order */
    kKivXmpAlt = 5,    /* alternatives, as a rule by language */
    kKivXmpRaw = 6     /* RDF that XMP does not allow; its value is its source text */
} KivXmpForm;

/* Why the calling thread's last call failed, in words; empty after a success. Valid until the
 * thread's next call. Never null. */
KIVXMP_API const char* KivXmpLastErrorText(void);

/* Gives back what a function of this header handed out; null is ignored. */
KIVXMP_API void KivXmpFree(void* block);

/* Makes an object without properties. */
KIVXMP_API KivXmpCode KivXmpCreate(__XMPMeta__** meta);

/* Makes an object from a packet: `size` bytes of UTF-8, UTF-16 or UTF-32, with or without the
 * xpacket wrapper. The bytes are copied. */
KIVXMP_API KivXmpCode KivXmpParse(const void* bytes, size_t size, __XMPMeta__** meta);

/* Makes a copy that is changed on its own. Cheap: both share what neither changes. */
KIVXMP_API KivXmpCode KivXmpClone(const __XMPMeta__* meta, __XMPMeta__** clone);

/* Makes `meta` hold what `other` holds, down to the bytes of its packet, in place of all that it
 * held. The file that `meta` was opened from stays: KivXmpSavePhoto then puts that packet there,
 * byte for byte where it fits; in a place that is longer spaces follow it. `other` stays as it is;
 * the two are clones from then on. */
KIVXMP_API KivXmpCode KivXmpReplacePacket(__XMPMeta__* meta, const __XMPMeta__* other);

/* Ends an object; null is ignored. */
KIVXMP_API void KivXmpRelease(__XMPMeta__* meta);

/* Hands out the packet: the very bytes it was parsed from if nothing was changed. A changed one
 * keeps its length while it fits; else, and for a new object, it gets 2,048 bytes of padding, less
 * where it would then be longer than `maxBytes` (0: no limit). The packet itself may still be
 * longer than `maxBytes`. `*size` excludes the NUL that follows the bytes. */
KIVXMP_API KivXmpCode KivXmpSerialize(const __XMPMeta__* meta, size_t maxBytes, void** bytes,
                                      size_t* size);

/* Stores 1 in `*changed` if the object differs from the packet it was parsed from, or if
 * KivXmpReplacePacket put other bytes in that one's place, else 0. */
KIVXMP_API KivXmpCode KivXmpIsChanged(const __XMPMeta__* meta, int* changed);

/* One node, as a walk shows it. The texts are valid during the callback. */
typedef struct KivXmpNode {
    const char* path;
    KivXmpForm form;
    const char* value;  /* text, URI or source text; empty for lists and structures */
    size_t valueLength; /* bytes */
    size_t childCount;  /* fields or items */
    int depth;          /* 0 for properties */
    int isQualifier;    /* 1 for qualifiers, xml:lang included; else 0 */
} KivXmpNode;

/* Returns 0 to go on; anything else ends the walk. Must not change the object. */
typedef int (*KivXmpVisitor)(void* context, const KivXmpNode* node);

/* Visits every node: properties in the packet's order, each followed by its qualifiers, then its
 * fields or items. Items with a language of their own in a list of alternatives are named by it. */
KIVXMP_API KivXmpCode KivXmpWalk(const __XMPMeta__* meta, KivXmpVisitor visitor, void* context);

/* Stores what stands at `path`. kKivXmpNotFound if there is nothing. */
KIVXMP_API KivXmpCode KivXmpGetForm(const __XMPMeta__* meta, const char* path, KivXmpForm* form);

/* Hands out the text or URI at `path`. kKivXmpWrongForm for lists and structures. */
KIVXMP_API KivXmpCode KivXmpGetText(const __XMPMeta__* meta, const char* path, char** text);

/* Stores the number of fields or items of the structure or list at `path`. */
KIVXMP_API KivXmpCode KivXmpCount(const __XMPMeta__* meta, const char* path, size_t* count);

/* Sets the text at `path`. What is missing on the way is made: structures for fields, a list of
 * alternatives for `[@de]`; `[n]` may be one past the last item of a list that is there. A URI
 * stays a URI. kKivXmpWrongForm if a list or structure stands at `path`; remove it first. */
KIVXMP_API KivXmpCode KivXmpSetText(__XMPMeta__* meta, const char* path, const char* text);

/* As KivXmpSetText, written as a resource. */
KIVXMP_API KivXmpCode KivXmpSetUri(__XMPMeta__* meta, const char* path, const char* uri);

/* Hands out the texts of the list at `path` as a JSON array of strings, as in ["sea", "sky"]. A
 * single text is a list of one. kKivXmpWrongForm if not all items are texts. */
KIVXMP_API KivXmpCode KivXmpGetList(const __XMPMeta__* meta, const char* path, char** json);

/* Replaces what stands at `path` by a list: form kKivXmpBag, kKivXmpSeq or kKivXmpAlt. Items that
 * were there before keep their qualifiers. */
KIVXMP_API KivXmpCode KivXmpSetList(__XMPMeta__* meta, const char* path, KivXmpForm form,
                                    const char* const* items, size_t count);

/* Removes what stands at `path`. A list or structure that loses its last part goes with it.
 * kKivXmpNotFound if there is nothing. */
KIVXMP_API KivXmpCode KivXmpRemove(__XMPMeta__* meta, const char* path);

/* Makes `prefix` known for `uri` in paths and in new properties, for the whole process.
 * kKivXmpBadValue if `prefix` is no XML name, stands for another URI already, or `uri` is empty. */
KIVXMP_API KivXmpCode KivXmpRegisterNamespace(const char* prefix, const char* uri);

#ifdef __cplusplus
}
#endif

#endif
