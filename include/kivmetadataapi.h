/* kivmetadataapi: a modal metadata dialog for host programs, behind five C functions.
 *
 * Common rules
 * - All functions are called from the thread that runs the host's user interface. The library
 *   creates no threads.
 * - Nothing is thrown; a failure is a false result. <kivcore/LastFailure.h> tells its reason.
 * - Texts handed over are 8-bit and end in NUL; the library copies what it keeps, so they may be
 *   freed when the call has returned.
 * - Yes-or-no fields are one byte: 0 is no, anything else is yes.
 * - The layouts below are a binary interface, the same on every 64-bit platform.
 *
 * A minimal host:
 *
 *     MetadataAPIInitParams start = {0};
 *     start.clientName = "Darkroom";
 *     start.clientVersion = "2.1";
 *     start.clientInternalVersion = "2.1.0";
 *     start.clientBuildNumber = "417";
 *     if (MetadataAPIInitialize(&start)) {
 *         MetadataDialogRequest request = {0};
 *         request.text = "holiday.jpg";
 *         request.brightnessPercent = 50;
 *         if (DoMetadataDialog(meta, &request)) {
 *             ... save the object (<kivxmp/kivxmp.h>) ...
 *         }
 *     }
 *     MetadataAPITerminate();
 */

#ifndef KIVMETADATAAPI_H
#define KIVMETADATAAPI_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#if defined(KIVMETADATAAPI_BUILD) && defined(_WIN32)
#define KIVMETADATAAPI __declspec(dllexport)
#elif defined(_WIN32)
#define KIVMETADATAAPI __declspec(dllimport)
#else
#define KIVMETADATAAPI __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The system's handles. On Windows these are the system's own types, declared alike; elsewhere
 * they are opaque pointers, and a HWND that is not null is the X11 window's number. */
struct HINSTANCE__;
typedef struct HINSTANCE__* HINSTANCE;
struct HWND__;
typedef struct HWND__* HWND;

/* An XMP object. <kivxmp/kivxmp.h> makes, reads, changes and saves them; they do not depend on
 * this library's life: a host may make one before it initializes and save it after it has
 * terminated. */
typedef struct __XMPMeta__ __XMPMeta__;

/* What a host tells about itself at start-up. Fill it with zeros first. */
typedef struct MetadataAPIInitParams {
    const char* clientName;            /*  0: the host's name. Required. Also names the folder of
                                               the user's preferences. */
    const char* clientVersion;         /*  8: the host's version text. Required. */
    const char* clientInternalVersion; /* 16: the host's internal version text. Required. */
    const char* clientBuildNumber;     /* 24: the host's build number text. Required. */
    const char* language;              /* 32: language of the texts shown, as "de_DE" or BCP 47
                                               "de-DE"; null is "en_US". */
    void* reserved;                    /* 40: never read. */
    HINSTANCE instanceHandle;          /* 48: the host's module instance; may be null. */
    uint8_t startGdiPlus;              /* 56: start GDI+ for the lifetime of the library. Counts
                                               only where the host has no UI node manager of its
                                               own; nothing to do outside Windows. */
    float uiScaleFactor;               /* 60: scale of the user interface, 1 is 96 pixels an inch.
                                               0 or less keeps the scale of the round before, 1 at
                                               first. */
    uint8_t loadCustomDefinitions;     /* 64: also fill the list of GetGlobalKIVMetadataVector. */
} MetadataAPIInitParams;

/* What a host asks of one dialog. Fill it with zeros first. */
typedef struct MetadataDialogRequest {
    const char* text;           /*  0: the dialog's title in UTF-8, as a rule the photo's file name;
                                        may be null. */
    HWND parentWindow;          /*  8: the window that owns the dialog; may be null. */
    uint32_t brightnessPercent; /* 16: brightness of the user interface: 0 black to 100 white. */
    uint8_t flags;              /* 20: kMetadataDialogReadOnly, kMetadataDialogPlain; other bits
                                        are ignored. */
} MetadataDialogRequest;

/* Bits of MetadataDialogRequest.flags. */
enum {
    kMetadataDialogReadOnly = 1, /* texts can be selected and copied, OK is off */
    kMetadataDialogPlain = 2     /* the camera view and the list of all properties are left out */
};

/* One custom item that the dialog's views show. The texts belong to the library and stay valid
 * until the last MetadataAPITerminate. */
typedef struct KIVMetadataRecord {
    const char* viewText;    /*  0: name of the view that shows the item. */
    const char* itemText;    /*  8: namespace URI of the item's property. */
    const char* itemKeyText; /* 16: name of the item's property. */
    const uint16_t* label;   /* 24: what the user reads, in the application's language: UTF-16,
                                     ends in a 0 unit. */
    uint8_t propertyFlag;    /* 32: 1 if the user may edit the property, else 0. */
} KIVMetadataRecord;

/* Brings the library and its framework up.
 *
 * Calls nest: the first one counts, later ones leave the framework as it is, and each call needs
 * one MetadataAPITerminate, also a call that returned false (only a null `params` needs none).
 * Returns false for null, when one of the four required texts is null, and when the framework or
 * the custom definitions could not be brought up. `params` is not kept. */
KIVMETADATAAPI bool MetadataAPIInitialize(const MetadataAPIInitParams* params);

/* Undoes one MetadataAPIInitialize; the last one takes the framework down, drops the list of
 * custom items and cancels a dialog that is still open. Must not be called more often than
 * MetadataAPIInitialize: after one call too many the framework does not come up again when
 * initialize and terminate are called in pairs. */
KIVMETADATAAPI void MetadataAPITerminate(void);

/* Shows the metadata of `meta` in a modal dialog and returns when it is closed.
 *
 * Returns true if the user confirmed; `meta` then holds the changes. Returns false, and leaves
 * `meta` as it was, if the user cancelled and on any failure: a null `meta`, a library that is not
 * up, a dialog that is already open, no display. A null `request` counts as a record of zeros.
 * `meta` stays the host's and must live until the call returns; saving it is the host's part. */
KIVMETADATAAPI bool DoMetadataDialog(__XMPMeta__* meta, const MetadataDialogRequest* request);

/* The custom items as an array of KIVMetadataRecord, or null if there are none. Filled by a
 * MetadataAPIInitialize with loadCustomDefinitions set; valid until the last MetadataAPITerminate.
 * The array belongs to the library. */
KIVMETADATAAPI const void* GetGlobalKIVMetadataVector(void);

/* The number of records in that array. */
KIVMETADATAAPI size_t GetGlobalKIVMetadataVectorSize(void);

#ifdef __cplusplus
#define KIV_ASSERT_LAYOUT(condition) static_assert(condition, "binary interface")
#else
#define KIV_ASSERT_LAYOUT(condition) _Static_assert(condition, "binary interface")
#endif
KIV_ASSERT_LAYOUT(sizeof(void*) == 8);
KIV_ASSERT_LAYOUT(offsetof(MetadataAPIInitParams, clientName) == 0);
KIV_ASSERT_LAYOUT(offsetof(MetadataAPIInitParams, clientVersion) == 8);
KIV_ASSERT_LAYOUT(offsetof(MetadataAPIInitParams, clientInternalVersion) == 16);
KIV_ASSERT_LAYOUT(offsetof(MetadataAPIInitParams, clientBuildNumber) == 24);
KIV_ASSERT_LAYOUT(offsetof(MetadataAPIInitParams, language) == 32);
KIV_ASSERT_LAYOUT(offsetof(MetadataAPIInitParams, reserved) == 40);
KIV_ASSERT_LAYOUT(offsetof(MetadataAPIInitParams, instanceHandle) == 48);
KIV_ASSERT_LAYOUT(offsetof(MetadataAPIInitParams, startGdiPlus) == 56);
KIV_ASSERT_LAYOUT(offsetof(MetadataAPIInitParams, uiScaleFactor) == 60);
KIV_ASSERT_LAYOUT(offsetof(MetadataAPIInitParams, loadCustomDefinitions) == 64);
KIV_ASSERT_LAYOUT(sizeof(MetadataAPIInitParams) == 72);
KIV_ASSERT_LAYOUT(offsetof(MetadataDialogRequest, text) == 0);
KIV_ASSERT_LAYOUT(offsetof(MetadataDialogRequest, parentWindow) == 8);
KIV_ASSERT_LAYOUT(offsetof(MetadataDialogRequest, brightnessPercent) == 16);
KIV_ASSERT_LAYOUT(offsetof(MetadataDialogRequest, flags) == 20);
KIV_ASSERT_LAYOUT(sizeof(MetadataDialogRequest) == 24);
KIV_ASSERT_LAYOUT(offsetof(KIVMetadataRecord, viewText) == 0);
KIV_ASSERT_LAYOUT(offsetof(KIVMetadataRecord, itemText) == 8);
KIV_ASSERT_LAYOUT(offsetof(KIVMetadataRecord, itemKeyText) == 16);
KIV_ASSERT_LAYOUT(offsetof(KIVMetadataRecord, label) == 24);
KIV_ASSERT_LAYOUT(offsetof(KIVMetadataRecord, propertyFlag) == 32);
KIV_ASSERT_LAYOUT(sizeof(KIVMetadataRecord) == 40);
#undef KIV_ASSERT_LAYOUT

#ifdef __cplusplus
}
#endif

#endif
