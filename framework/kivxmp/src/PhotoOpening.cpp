// Reads a photo: the packet that counts, and what its other place holds besides.

#include <kivxmp/PhotoFile.h>

#include <kivcore/Dir.h>
#include <kivcore/FileReplacement.h>

#include <exception>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "framework/kivxmp/src/PhotoOrigin.h"
#include "framework/kivxmp/src/PhotoPackets.h"
#include "framework/kivxmp/src/PhotoPlace.h"
#include "framework/kivxmp/src/SidecarFile.h"

namespace kivxmp {

using kivcore::UString;
using kivcore::filesupport::File;
using kivcore::filesupport::FileError;
using kivcore::filesupport::InputFile;
using kivcore::filesupport::PathToUTF8;
using kivcore::filesupport::RecoverReplacedFile;
using photo::ByteSource;
using photo::FileSource;
using photo::MemorySource;
using photo::PhotoError;
using photo::PhotoFormat;

namespace {

/// A file with its packets read.
struct OpenedFile {
    std::unique_ptr<PhotoFormat> format;
    std::unique_ptr<__XMPMeta__> meta;
    std::optional<PhotoError> refusal;  // what the packets have against a save
};

OpenedFile ReadPlace(Place& place, ByteSource& source)
{
    OpenedFile opened;
    opened.format = place.content ? std::move(place.content) : place.read(source);
    const std::optional<PhotoError>& refusal = opened.format->Refusal();
    if (refusal && opened.format->Packets().empty() &&
        refusal->GetKind() == PhotoError::Kind::kBroken) {
        throw PhotoError(*refusal);
    }
    PhotoObject object = ReadPackets(source, *opened.format);
    opened.meta = std::move(object.meta);
    opened.refusal = std::move(object.refusal);
    return opened;
}

/// Inside a catch block: why the file beside the one that was asked for cannot be read, without its
/// name. What is about no file goes on.
std::string WhyUnreadable(const UString& path)
{
    try {
        throw;
    } catch (const XMP_Error& error) {
        return error.Text();
    } catch (const PhotoError& error) {
        return error.what();
    } catch (const FileError& error) {
        const std::string name = PathToUTF8(path) + ": ";
        const std::string_view text = error.what();
        return std::string(text.starts_with(name) ? text.substr(name.size()) : text);
    }
}

void AddNote(PhotoInfo& info, const std::string& note)
{
    info.note += (info.note.empty() ? "" : "; ") + note;
}

/// Puts the packet of the place that counts into an object, and into `origin` what is known of it.
std::unique_ptr<__XMPMeta__> OpenCounting(Place& place, InputFile* photo, PhotoOrigin& origin)
{
    std::optional<InputFile> sidecar;
    InputFile* file = photo;
    if (place.kind == PacketPlace::kSidecar && photo == nullptr && File(place.path).Exists()) {
        file = &sidecar.emplace(place.path);
    }
    OpenedFile opened;
    if (file == nullptr) {
        MemorySource nothing({});
        opened = ReadPlace(place, nothing);
        origin.Note(std::move(opened.format), std::nullopt);
    } else {
        FileSource source(*file);
        opened = ReadPlace(place, source);
        origin.Note(std::move(opened.format), file->Identity());
    }
    if (!origin.refusal) {
        origin.refusal = opened.refusal;
    }
    if (origin.refusal) {
        origin.info.canSave = false;
        origin.info.reason = origin.refusal->what();
    } else if (file != nullptr) {
        try {
            kivcore::filesupport::CheckReplaceable(place.path);
        } catch (const FileError&) {
            origin.info.canSave = false;
            origin.info.reason = "the file is read-only";
        }
    }
    return std::move(opened.meta);
}

/// The same for a sidecar beside a photo, which is not worth less if its sidecar is broken.
std::unique_ptr<__XMPMeta__> OpenCountingSidecar(Place& place, PhotoOrigin& origin)
{
    try {
        return OpenCounting(place, nullptr, origin);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        const std::string why = WhyUnreadable(place.path);
        const std::string reason = "its sidecar cannot be read, and stays as it is: " + why;
        MemorySource nothing({});
        origin.Note(place.read(nothing), std::nullopt);
        origin.refusal.emplace(PhotoError::Kind::kRefused, reason);
        origin.info.canSave = false;
        origin.info.reason = reason;
        origin.info.note = "the sidecar " + PathToUTF8(place.path) + " cannot be read: " + why;
        return __XMPMeta__::Create();
    }
}

/// What the place has that does not count. Its failure is told in the note.
void OpenOther(Place& place, InputFile& photo, PhotoOrigin& origin)
{
    const bool isSidecar = place.kind == PacketPlace::kSidecar;
    try {
        std::optional<InputFile> sidecar;
        FileSource source(isSidecar ? sidecar.emplace(place.path) : photo);
        OpenedFile opened = ReadPlace(place, source);
        if (isSidecar) {
            AddNote(origin.info,
                    "the metadata in the photo counts, and what only the sidecar has is derived: " +
                        PathToUTF8(place.path));
        } else if (opened.meta->PropertyCount() != 0) {
            AddNote(origin.info,
                    "the sidecar counts, and what only the metadata in the photo has is derived");
        }
        origin.derived.AddPacket(std::move(opened.meta),
                                 {isSidecar ? DerivedFrom::kSidecar : DerivedFrom::kEmbedded,
                                  PathToUTF8(File(place.path).Name())});
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        const std::string what =
            isSidecar ? "the sidecar " + PathToUTF8(place.path) : "metadata embedded in the photo";
        AddNote(origin.info, what + " cannot be read: " + WhyUnreadable(place.path));
    }
}

std::unique_ptr<__XMPMeta__> Open(const UString& path, const OpenOptions& options)
{
    RecoverReplacedFile(path);
    InputFile file(path);
    const bool isSidecarItself = photo::IsSidecarName(path);
    if (!isSidecarItself) {
        RecoverReplacedFile(photo::FullSidecarName(path));
        RecoverReplacedFile(photo::ShortSidecarName(path));
    }
    FileSource source(file);
    PhotoPlaces places =
        isSidecarItself ? PlacesOfSidecar(path) : FindPlaces(path, source, options);
    const auto origin = std::make_shared<PhotoOrigin>();
    origin->info.format = places.format;
    origin->info.place = places.packet.kind;
    origin->info.packetPath = places.packet.path;
    origin->info.note = places.note;
    origin->packetPathUTF8 = PathToUTF8(places.packet.path);
    origin->read = places.packet.read;
    const bool hasOwnSidecar = !isSidecarItself && places.packet.kind == PacketPlace::kSidecar;
    std::unique_ptr<__XMPMeta__> meta = hasOwnSidecar ? OpenCountingSidecar(places.packet, *origin)
                                                      : OpenCounting(places.packet, &file, *origin);
    if (places.other) {
        OpenOther(*places.other, file, *origin);
    }
    if (places.isPhoto) {
        origin->derived.SetPhoto(path, file.Identity());
    }
    meta->SetOrigin(origin);
    return meta;
}

}  // namespace

std::unique_ptr<__XMPMeta__> OpenPhoto(const UString& path, const OpenOptions& options)
{
    try {
        return Open(path, options);
    } catch (const XMP_Error& error) {
        throw XMP_Error(error.Code(), PathToUTF8(path) + ": " + error.Text());
    } catch (const std::exception&) {
        ThrowAsXMPError(path, FileUse::kRead);
    }
}

}  // namespace kivxmp
