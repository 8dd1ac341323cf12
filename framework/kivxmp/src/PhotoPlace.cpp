#include "framework/kivxmp/src/PhotoPlace.h"

#include <utility>

#include "framework/kivxmp/src/SidecarFile.h"

#include <kivcore/Dir.h>
#include <kivcore/StringConversion.h>

namespace kivxmp {

using kivcore::UString;
using kivcore::filesupport::File;
using photo::ByteSource;
using photo::FormatRow;
using photo::PhotoError;
using photo::PhotoFormat;

namespace {

std::unique_ptr<PhotoFormat> ReadSidecar(ByteSource& source)
{
    return photo::MakeSidecarFormat(source.SizeBytes());
}

UString SidecarOf(const UString& photoPath, SidecarName name)
{
    const UString full = photo::FullSidecarName(photoPath);
    const UString brief = photo::ShortSidecarName(photoPath);
    if (name != SidecarName::kAuto) {
        return name == SidecarName::kFull ? full : brief;
    }
    return !File(full).Exists() && File(brief).Exists() ? brief : full;
}

void CheckIsPhoto(const ByteSource& source, const std::string& extension, bool mayBeForeign)
{
    const FormatRow* const promised = photo::FormatOfExtension(extension);
    const bool isEmpty = source.SizeBytes() == 0;
    if (promised != nullptr) {
        throw PhotoError(
            PhotoError::Kind::kBroken,
            isEmpty ? "the file is empty"
                    : std::string("the file is no ") + promised->name + " file and no other photo");
    }
    if (!mayBeForeign) {
        throw PhotoError(PhotoError::Kind::kRefused,
                         isEmpty ? "the file is empty" : "the file is no photo of a known format");
    }
}

}  // namespace

PhotoPlaces PlacesOfSidecar(const UString& path)
{
    PhotoPlaces places;
    places.format = "sidecar";
    places.packet = {PacketPlace::kSidecar, path, ReadSidecar, nullptr};
    return places;
}

PhotoPlaces FindPlaces(const UString& path, ByteSource& source, const OpenOptions& options)
{
    Place sidecar{PacketPlace::kSidecar, SidecarOf(path, options.sidecar), ReadSidecar, nullptr};
    const bool sidecarExists = File(sidecar.path).Exists();
    const std::string extension = kivcore::string::UTF16to8(photo::LowerExtension(path));
    const FormatRow* const row = photo::RecogniseFormat(source);
    if (row == nullptr && options.place != PacketPlace::kSidecar) {
        CheckIsPhoto(source, extension, sidecarExists && options.place != PacketPlace::kEmbedded);
    }
    PhotoPlaces places;
    places.isPhoto = row != nullptr;
    places.format = row != nullptr ? row->name : "unknown";
    Place embedded{PacketPlace::kEmbedded, path, row != nullptr ? row->read : nullptr, nullptr};
    bool isWritten = false;
    if (embedded.read != nullptr) {
        embedded.content = embedded.read(source);
        const char* const own = embedded.content->NameOf(row->name, extension);
        isWritten = own != nullptr;
        places.format = isWritten ? own : places.format;
    }
    if (options.place == PacketPlace::kEmbedded && !isWritten) {
        throw PhotoError(PhotoError::Kind::kRefused,
                         embedded.read == nullptr
                             ? "metadata is not written into " + places.format + " files"
                             : "metadata is not written into raw files, and one with " +
                                   places.format + " content under this name is a raw file");
    }
    if (isWritten && options.place != PacketPlace::kSidecar) {
        places.packet = std::move(embedded);
        if (sidecarExists) {
            places.other = std::move(sidecar);
        }
        return places;
    }
    places.packet = std::move(sidecar);
    if (embedded.read != nullptr) {
        places.other = std::move(embedded);
    } else if (places.isPhoto) {
        places.note =
            "packets embedded in " + places.format + " files are not read yet; the sidecar counts";
    }
    return places;
}

}  // namespace kivxmp
