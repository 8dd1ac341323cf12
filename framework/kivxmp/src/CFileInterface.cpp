// The plain C interface to photos and sidecars: each call runs the C++ one.

#include <kivxmp/kivxmp_file.h>

#include <kivcore/Dir.h>
#include <kivxmp/Derived.h>
#include <kivxmp/PhotoFile.h>

#include "framework/kivxmp/src/CInterface.h"
#include "framework/kivxmp/src/PhotoOrigin.h"

using kivcore::filesupport::PathFromUTF8;
using kivxmp::RunGuarded;
using kivxmp::ThrowIfNull;

namespace {

constexpr KivXmpPhotoInfo kNoInfo = {"", kKivXmpPlaceEmbedded, "", 0, 0, 0, 0, "", ""};

kivxmp::OpenOptions OptionsOf(const KivXmpOpenOptions* options)
{
    if (options == nullptr) {
        return {};
    }
    if (options->place < kKivXmpPlaceAuto || options->place > kKivXmpPlaceSidecar ||
        options->sidecar < kKivXmpSidecarAuto || options->sidecar > kKivXmpSidecarShort) {
        throw XMP_Error(kKivXmpBadArgument, "options hold a number that means nothing");
    }
    return {static_cast<kivxmp::PacketPlace>(options->place),
            static_cast<kivxmp::SidecarName>(options->sidecar)};
}

}  // namespace

KivXmpCode KivXmpOpenPhoto(const char* path, const KivXmpOpenOptions* options, __XMPMeta__** meta)
{
    return RunGuarded([&] {
        ThrowIfNull(meta, "meta");
        *meta = nullptr;
        ThrowIfNull(path, "path");
        *meta = kivxmp::OpenPhoto(PathFromUTF8(path), OptionsOf(options)).release();
    });
}

KivXmpCode KivXmpGetPhotoInfo(const __XMPMeta__* meta, KivXmpPhotoInfo* info)
{
    return RunGuarded([&] {
        ThrowIfNull(info, "info");
        *info = kNoInfo;
        ThrowIfNull(meta, "meta");
        const kivxmp::PhotoOrigin& origin = kivxmp::RequirePhotoOrigin(*meta);
        info->format = origin.info.format.c_str();
        info->place = static_cast<KivXmpPlace>(origin.info.place);
        info->packetPath = origin.packetPathUTF8.c_str();
        info->packetOffset = origin.info.packetOffset;
        info->packetBytes = origin.info.packetBytes;
        info->packetFound = origin.info.packetFound ? 1 : 0;
        info->canSave = origin.info.canSave ? 1 : 0;
        info->reason = origin.info.reason.c_str();
        info->note = origin.info.note.c_str();
    });
}

KivXmpCode KivXmpGetSource(const __XMPMeta__* meta, const char* path, KivXmpSource* source,
                           char** detail)
{
    return RunGuarded([&] {
        if (detail != nullptr) {
            *detail = nullptr;
        }
        ThrowIfNull(source, "source");
        *source = kKivXmpFromPacket;
        ThrowIfNull(meta, "meta");
        ThrowIfNull(path, "path");
        const kivxmp::Path parsed = meta->ParsePath(path);
        const kivxmp::DerivedSource* const derived = kivxmp::FindDerivedSource(*meta, parsed);
        if (derived == nullptr && meta->FindProperty(parsed[0].uri, parsed[0].local) == nullptr) {
            throw XMP_Error(kKivXmpNotFound, std::string(path) + ": nobody tells this property");
        }
        if (detail != nullptr) {
            *detail = kivxmp::CopyForCaller(derived != nullptr ? derived->detail : std::string());
        }
        if (derived != nullptr) {
            *source = static_cast<KivXmpSource>(derived->from);
        }
    });
}

KivXmpCode KivXmpGetDerived(const __XMPMeta__* meta, __XMPMeta__** derived)
{
    return RunGuarded([&] {
        ThrowIfNull(derived, "derived");
        *derived = nullptr;
        ThrowIfNull(meta, "meta");
        *derived = kivxmp::DerivedProperties(*meta)->Clone().release();
    });
}

KivXmpCode KivXmpSavePhoto(__XMPMeta__* meta, int* written)
{
    return RunGuarded([&] {
        if (written != nullptr) {
            *written = 0;
        }
        ThrowIfNull(meta, "meta");
        const bool saved = kivxmp::SavePhoto(*meta) == kivxmp::SaveResult::kSaved;
        if (written != nullptr) {
            *written = saved ? 1 : 0;
        }
    });
}

KivXmpCode KivXmpWritePacket(const __XMPMeta__* meta, const char* path)
{
    return RunGuarded([&] {
        ThrowIfNull(meta, "meta");
        ThrowIfNull(path, "path");
        kivxmp::WritePacket(*meta, PathFromUTF8(path));
    });
}
