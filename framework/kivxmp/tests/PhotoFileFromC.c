/* The C interface to files, used from C: opens the photo at `path`, sets its title, saves it twice,
 * and writes the packet to `packetPath`. Returns 0, or the line of the first surprise. */

#include <kivxmp/kivxmp_file.h>

#include <string.h>

#define EXPECT(condition)    \
    do {                     \
        if (!(condition)) {  \
            return __LINE__; \
        }                    \
    } while (0)

int KivXmpTryPhotoFromC(const char* path, const char* packetPath)
{
    __XMPMeta__* meta = NULL;
    __XMPMeta__* packet = NULL;
    KivXmpPhotoInfo info;
    KivXmpOpenOptions options = {kKivXmpPlaceEmbedded, kKivXmpSidecarAuto};
    char* text = NULL;
    int written = 7;

    EXPECT(KivXmpOpenPhoto(NULL, NULL, &meta) == kKivXmpBadArgument);
    EXPECT(KivXmpOpenPhoto(path, NULL, NULL) == kKivXmpBadArgument);
    EXPECT(KivXmpOpenPhoto("/nonexistent/p.jpg", NULL, &meta) == kKivXmpFileNotFound);
    EXPECT(meta == NULL && strstr(KivXmpLastErrorText(), "/nonexistent/p.jpg: ") != NULL);

    EXPECT(KivXmpOpenPhoto(path, &options, &meta) == kKivXmpOk);
    EXPECT(strcmp(KivXmpLastErrorText(), "") == 0);
    EXPECT(KivXmpGetPhotoInfo(meta, &info) == kKivXmpOk);
    EXPECT(strcmp(info.format, "JPEG") == 0 && strcmp(info.packetPath, path) == 0);
    EXPECT(info.place == kKivXmpPlaceEmbedded && info.packetFound == 1 && info.canSave == 1);
    EXPECT(info.packetOffset > 0 && info.packetBytes > 0);
    EXPECT(strcmp(info.reason, "") == 0 && strcmp(info.note, "") == 0);

    EXPECT(KivXmpSavePhoto(meta, &written) == kKivXmpOk && written == 0);
    EXPECT(KivXmpSetText(meta, "dc:title[@x-default]", "from C") == kKivXmpOk);
    EXPECT(KivXmpSavePhoto(meta, &written) == kKivXmpOk && written == 1);
    EXPECT(KivXmpSetText(meta, "dc:title[@de]", "aus C") == kKivXmpOk);
    EXPECT(KivXmpSavePhoto(meta, NULL) == kKivXmpOk);
    EXPECT(KivXmpWritePacket(meta, packetPath) == kKivXmpOk);
    EXPECT(KivXmpWritePacket(meta, path) == kKivXmpFileUnsupported);
    EXPECT(KivXmpWritePacket(meta, NULL) == kKivXmpBadArgument);
    KivXmpRelease(meta);

    EXPECT(KivXmpOpenPhoto(packetPath, NULL, &meta) == kKivXmpOk);
    EXPECT(KivXmpGetText(meta, "dc:title[@de]", &text) == kKivXmpOk && strcmp(text, "aus C") == 0);
    KivXmpFree(text);

    /* The packet by itself, and back into the photo in place of another one. */
    EXPECT(KivXmpOpenPhoto(path, NULL, &packet) == kKivXmpOk);
    EXPECT(KivXmpRemove(packet, "dc:title") == kKivXmpOk);
    EXPECT(KivXmpSavePhoto(packet, &written) == kKivXmpOk && written == 1);
    EXPECT(KivXmpReplacePacket(packet, NULL) == kKivXmpBadArgument);
    EXPECT(KivXmpReplacePacket(packet, meta) == kKivXmpOk);
    EXPECT(KivXmpIsChanged(packet, &written) == kKivXmpOk && written == 1);
    EXPECT(KivXmpSavePhoto(packet, &written) == kKivXmpOk && written == 1);
    EXPECT(KivXmpReplacePacket(packet, meta) == kKivXmpOk);
    EXPECT(KivXmpSavePhoto(packet, &written) == kKivXmpOk && written == 0);
    EXPECT(KivXmpGetText(packet, "dc:title[@de]", &text) == kKivXmpOk);
    EXPECT(strcmp(text, "aus C") == 0);
    KivXmpFree(text);
    KivXmpRelease(packet);
    KivXmpRelease(meta);

    EXPECT(KivXmpCreate(&meta) == kKivXmpOk);
    memset(&info, 0xFF, sizeof info);
    EXPECT(KivXmpGetPhotoInfo(meta, &info) == kKivXmpBadArgument);
    EXPECT(strcmp(info.reason, "") == 0 && info.canSave == 0);
    EXPECT(KivXmpSavePhoto(meta, &written) == kKivXmpBadArgument && written == 0);
    EXPECT(KivXmpWritePacket(meta, packetPath) == kKivXmpNoPacket);
    EXPECT(KivXmpSavePhoto(NULL, &written) == kKivXmpBadArgument);
    EXPECT(KivXmpGetPhotoInfo(NULL, &info) == kKivXmpBadArgument);
    EXPECT(KivXmpGetPhotoInfo(meta, NULL) == kKivXmpBadArgument);
    KivXmpRelease(meta);
    return 0;
}

/* A photo without a packet at `path`, and a sidecar with dc:title, dc:subject and my:odd beside it.
 * Returns 0, or the line of the first surprise. */
int KivXmpTryDerivedFromC(const char* path)
{
    __XMPMeta__* meta = NULL;
    __XMPMeta__* derived = NULL;
    KivXmpSource source = kKivXmpFromIim;
    char* text = NULL;
    int number = 7;

    EXPECT(KivXmpOpenPhoto(path, NULL, &meta) == kKivXmpOk);
    EXPECT(KivXmpGetSource(meta, "dc:title[@x-default]", &source, &text) == kKivXmpOk);
    EXPECT(source == kKivXmpFromSidecar && strcmp(text, "p.jpg.xmp") == 0);
    KivXmpFree(text);
    EXPECT(KivXmpGetSource(meta, "dc:creator", &source, &text) == kKivXmpNotFound);
    EXPECT(source == kKivXmpFromPacket && text == NULL);
    EXPECT(strcmp(KivXmpLastErrorText(), "dc:creator: nobody tells this property") == 0);
    EXPECT(KivXmpGetSource(meta, "dc:", &source, NULL) == kKivXmpBadPath);
    EXPECT(KivXmpGetSource(meta, NULL, &source, NULL) == kKivXmpBadArgument);
    EXPECT(KivXmpGetSource(NULL, "dc:title", &source, NULL) == kKivXmpBadArgument);
    EXPECT(KivXmpGetSource(meta, "dc:title", NULL, &text) == kKivXmpBadArgument && text == NULL);

    /* What is derived is not read from the packet. */
    EXPECT(KivXmpGetText(meta, "dc:subject[1]", &text) == kKivXmpNotFound);
    EXPECT(KivXmpGetDerived(meta, &derived) == kKivXmpOk);
    EXPECT(KivXmpGetText(derived, "dc:subject[1]", &text) == kKivXmpOk);
    EXPECT(strcmp(text, "sea") == 0);
    KivXmpFree(text);
    KivXmpRelease(derived);
    EXPECT(KivXmpGetDerived(meta, NULL) == kKivXmpBadArgument);
    EXPECT(KivXmpGetDerived(NULL, &derived) == kKivXmpBadArgument && derived == NULL);

    /* A change copies it all; taken back it leaves nothing. */
    EXPECT(KivXmpSetText(meta, "dc:subject", "a text") == kKivXmpWrongForm);
    EXPECT(KivXmpRemove(meta, "dc:subject") == kKivXmpNotFound);
    EXPECT(KivXmpSetText(meta, "dc:title[@de]", "daneben") == kKivXmpOk);
    EXPECT(KivXmpGetText(meta, "dc:title[@x-default]", &text) == kKivXmpOk);
    EXPECT(strcmp(text, "beside") == 0);
    KivXmpFree(text);
    EXPECT(KivXmpGetSource(meta, "dc:title", &source, &text) == kKivXmpOk);
    EXPECT(source == kKivXmpFromPacket && strcmp(text, "") == 0);
    KivXmpFree(text);
    EXPECT(KivXmpIsChanged(meta, &number) == kKivXmpOk && number == 1);
    EXPECT(KivXmpRemove(meta, "dc:title[@de]") == kKivXmpOk);
    EXPECT(KivXmpIsChanged(meta, &number) == kKivXmpOk && number == 0);
    EXPECT(KivXmpSavePhoto(meta, &number) == kKivXmpOk && number == 0);
    KivXmpRelease(meta);
    return 0;
}
