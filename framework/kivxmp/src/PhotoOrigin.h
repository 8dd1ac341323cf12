// What an XMP object remembers of the file it was opened from.

#pragma once

#include <kivcore/FileStream.h>
#include <kivcore/UString.h>
#include <kivxmp/PhotoFile.h>
#include <kivxmp/XMPMeta.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "framework/kivxmp/src/DerivedSet.h"
#include "framework/kivxmp/src/PhotoFormat.h"

namespace kivxmp {

class PhotoOrigin final : public Origin {
public:
    using Reader = std::unique_ptr<photo::PhotoFormat> (*)(photo::ByteSource& source);

    const Node* FindDerived(std::string_view uri, std::string_view local) override;

    /// Takes over what the file looks like now.
    void Note(std::unique_ptr<photo::PhotoFormat> newFormat,
              const std::optional<kivcore::filesupport::FileIdentity>& newIdentity);

    PhotoInfo info;
    std::string packetPathUTF8;
    Reader read = nullptr;
    std::unique_ptr<photo::PhotoFormat> format;
    /// The state of the file; nothing if it is to be made.
    std::optional<kivcore::filesupport::FileIdentity> identity;
    /// Why the place cannot be written, whatever the file's permissions.
    std::optional<photo::PhotoError> refusal;
    DerivedSet derived;
};

/// Belongs to the object. Throws kKivXmpBadArgument for one that was not opened from a file.
PhotoOrigin& RequirePhotoOrigin(const __XMPMeta__& meta);

/// Inside a catch block: throws an XMP_Error that names the file for what files and formats throw,
/// and anything else as it is.
enum class FileUse { kRead, kWrite };
[[noreturn]] void ThrowAsXMPError(const kivcore::UString& path, FileUse use);

}  // namespace kivxmp
