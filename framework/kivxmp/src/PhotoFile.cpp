#include <kivxmp/PhotoFile.h>

#include <kivcore/Dir.h>
#include <kivcore/FileReplacement.h>

#include <algorithm>
#include <exception>
#include <tuple>
#include <utility>

#include "framework/kivxmp/src/Encoding.h"
#include "framework/kivxmp/src/PacketDigest.h"
#include "framework/kivxmp/src/PhotoOrigin.h"
#include "framework/kivxmp/src/PhotoPackets.h"

namespace kivxmp {

using kivcore::UString;
using kivcore::filesupport::File;
using kivcore::filesupport::FileError;
using kivcore::filesupport::FileIdentity;
using kivcore::filesupport::InputFile;
using kivcore::filesupport::OutputFile;
using kivcore::filesupport::PathToUTF8;
using kivcore::filesupport::ReplaceOptions;
using kivcore::filesupport::ReplaceWholeFile;
using photo::ByteRange;
using photo::ByteSource;
using photo::FileSource;
using photo::MemorySource;
using photo::PhotoError;
using photo::PhotoFormat;

namespace {

KivXmpCode CodeOf(FileError::Kind kind, FileUse use)
{
    switch (kind) {
        case FileError::Kind::kNotFound:
            return kKivXmpFileNotFound;
        case FileError::Kind::kChanged:
            return kKivXmpFileChanged;
        case FileError::Kind::kTooLarge:
            return kKivXmpTooBig;
        default:
            return use == FileUse::kRead ? kKivXmpFileUnreadable : kKivXmpFileUnwritable;
    }
}

KivXmpCode CodeOf(PhotoError::Kind kind)
{
    switch (kind) {
        case PhotoError::Kind::kBroken:
            return kKivXmpFileBroken;
        case PhotoError::Kind::kRefused:
            return kKivXmpFileUnsupported;
        default:
            return kKivXmpInternal;
    }
}

std::vector<const Node*> Pointers(const std::vector<Node>& nodes)
{
    std::vector<const Node*> pointers;
    pointers.reserve(nodes.size());
    for (const Node& node : nodes) {
        pointers.push_back(&node);
    }
    return pointers;
}

bool SameNode(const Node& left, const Node& right);

/// Where order means nothing: properties, fields, qualifiers. One that stood as an attribute is
/// written behind the attributes that stay, as an element, once it was changed.
bool SameNamed(std::vector<const Node*> left, std::vector<const Node*> right)
{
    const auto nameOf = [](const Node* node) {
        return std::tie(node->LocalName(), node->NamespaceUri());
    };
    const auto isSameName = [&](const Node* one, const Node* other) {
        return nameOf(one) == nameOf(other);
    };
    // As a rule they stand in one order already.
    if (!std::equal(left.begin(), left.end(), right.begin(), right.end(), isSameName)) {
        for (std::vector<const Node*>* const nodes : {&left, &right}) {
            std::stable_sort(nodes->begin(), nodes->end(), [&](const Node* one, const Node* other) {
                return nameOf(one) < nameOf(other);
            });
        }
    }
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](const Node* one, const Node* other) { return SameNode(*one, *other); });
}

bool SameNode(const Node& left, const Node& right)
{
    if (left.Form() != right.Form() || left.LocalName() != right.LocalName() ||
        left.NamespaceUri() != right.NamespaceUri() || left.Value() != right.Value() ||
        !SameNamed(Pointers(left.Qualifiers()), Pointers(right.Qualifiers()))) {
        return false;
    }
    if (left.Form() == NodeForm::kStruct) {
        return SameNamed(Pointers(left.Children()), Pointers(right.Children()));
    }
    return std::equal(left.Children().begin(), left.Children().end(), right.Children().begin(),
                      right.Children().end(), SameNode);
}

bool SameTree(const __XMPMeta__& left, const __XMPMeta__& right)
{
    return SameNamed(left.Properties(), right.Properties());
}

/// As kivcore does before it replaces a file, but with a code of its own.
void RefuseReadOnly(const UString& path)
{
    try {
        kivcore::filesupport::CheckReplaceable(path);
    } catch (const FileError& error) {
        if (error.GetKind() == FileError::Kind::kRefused) {
            throw XMP_Error(kKivXmpFileReadOnly, error.what());
        }
        throw;
    }
}

/// Keeps a slip of the hand from costing a photo.
void RefusePhoto(const UString& path)
{
    if (!File(path).Exists()) {
        return;
    }
    InputFile file(path);
    FileSource source(file);
    if (photo::RecogniseFormat(source) != nullptr) {
        throw PhotoError(PhotoError::Kind::kRefused,
                         "the file is a photo; a packet is not written in its place");
    }
}

bool IsUtf8(std::string_view packet)
{
    const Encoding encoding = DetectEncoding(packet);
    return encoding == Encoding::kUtf8 || encoding == Encoding::kAscii;
}

/// One save: what is put together before the file is touched, and what is found out about the copy.
class Save {
public:
    Save(const __XMPMeta__& meta, const PhotoOrigin& origin) : meta_(meta), origin_(origin)
    {
        if (origin.refusal) {
            throw PhotoError(*origin.refusal);
        }
        if (origin.identity) {
            RefuseReadOnly(origin.info.packetPath);
            file_.emplace(origin.info.packetPath);
            source_ = std::make_unique<FileSource>(*file_);
        } else {
            source_ = std::make_unique<MemorySource>(std::string_view());
        }
        const std::size_t limit = origin.format->PacketLimitBytes();
        packet_ = SplitPacket(meta, *origin.format);
        if (packet_.main.size() > limit) {
            throw XMP_Error(kKivXmpFileNoPlace, origin.packetPathUTF8 + ": the metadata takes " +
                                                    std::to_string(packet_.main.size()) +
                                                    " bytes, and a " + origin.info.format +
                                                    " file has room for " + std::to_string(limit) +
                                                    "; nothing was written");
        }
        RefuseUnsuited(origin);
        if (!packet_.extended.empty()) {
            // Pieces of the same part that nobody named until now would be in its way.
            extendedThere_ =
                origin.format->TakeExtended(photo::PacketDigest(packet_.extended), *source_)
                    .value_or(std::string());
        }
        plan_ = origin.format->Plan(packet_);
    }

    /// True if the file holds this packet already, and no other one. An edit cannot lead there, a
    /// packet that was put in place of the file's own can.
    bool IsThere() const
    {
        const PhotoFormat& format = *origin_.format;
        return file_ && file_->Identity() == origin_.identity && format.Packets().size() == 1 &&
               format.ReadPacket(0, *source_) == packet_.main && extendedThere_ == packet_.extended;
    }

    FileIdentity Run()
    {
        ReplaceOptions options;
        options.expected = origin_.identity;
        options.compare = [this](InputFile& written) { Check(written); };
        const FileIdentity identity = ReplaceWholeFile(
            origin_.info.packetPath, [this](OutputFile& out) { Write(out); }, options);
        if (!writtenObject_) {
            // A benchmark has switched the checks off.
            InputFile written(origin_.info.packetPath);
            FileSource copy(written);
            ReadFormat(copy);
            ReadObject(copy);
        }
        return identity;
    }

    std::unique_ptr<PhotoFormat> TakeFormat() { return std::move(writtenFormat_); }
    std::unique_ptr<__XMPMeta__> TakeObject() { return std::move(writtenObject_); }

private:
    /// A packet that comes from elsewhere may be one that no photo should have.
    void RefuseUnsuited(const PhotoOrigin& origin) const
    {
        if (origin.info.place != PacketPlace::kEmbedded) {
            return;
        }
        // A photo that has such a packet already keeps its encoding.
        if (!IsUtf8(packet_.main) &&
            (origin.format->Packets().empty() || IsUtf8(origin.format->ReadPacket(0, *source_)))) {
            throw PhotoError(PhotoError::Kind::kRefused,
                             "a photo takes a packet in UTF-8 only, and this one is in another "
                             "encoding");
        }
        if (origin.format->TakesExtended() && NamesExtended(meta_)) {
            throw PhotoError(PhotoError::Kind::kRefused,
                             "the packet tells of an extended part that does not come with it");
        }
    }

    void Write(OutputFile& out)
    {
        photo::ApplyPlan(
            plan_, source_->SizeBytes(),
            [&](ByteRange range) { out.CopyFrom(*file_, range.offset, range.bytes); },
            [&](std::string_view fresh) { out.Write(fresh.data(), fresh.size()); });
    }

    void ReadFormat(FileSource& copy)
    {
        writtenFormat_ = origin_.read(copy);
        if (!packet_.extended.empty()) {
            writtenFormat_->TakeExtended(photo::PacketDigest(packet_.extended), copy);
        }
    }

    void ReadObject(FileSource& copy)
    {
        PhotoObject object = ReadPackets(copy, *writtenFormat_);
        if (writtenFormat_->Refusal() || object.refusal || writtenFormat_->Packets().size() != 1 ||
            (object.meta->SourceBytes() != packet_.main &&
             writtenFormat_->ReadPacket(0, copy) != packet_.main)) {
            throw PhotoError(PhotoError::Kind::kFailed,
                             "the copy was not put in place: its packet is not where it should be");
        }
        writtenObject_ = std::move(object.meta);
    }

    void Check(InputFile& written)
    {
        FileSource copy(written);
        ReadFormat(copy);
        photo::CheckCopy(*source_, *origin_.format, plan_, copy, *writtenFormat_);
        ReadObject(copy);
        if (!SameTree(meta_, *writtenObject_)) {
            throw PhotoError(PhotoError::Kind::kFailed,
                             "the copy was not put in place: its packet does not read back as it "
                             "was set");
        }
        // A sidecar that is to be made has no state to compare with, but it must still be missing.
        if (!origin_.identity && File(origin_.info.packetPath).Exists()) {
            throw XMP_Error(kKivXmpFileChanged,
                            origin_.packetPathUTF8 +
                                ": was made by another program meanwhile; nothing was written");
        }
    }

    const __XMPMeta__& meta_;
    const PhotoOrigin& origin_;
    std::optional<InputFile> file_;
    std::unique_ptr<ByteSource> source_;
    photo::PacketParts packet_;
    std::string extendedThere_;  // the part of that name that the file holds already
    photo::SavePlan plan_;
    std::unique_ptr<PhotoFormat> writtenFormat_;
    std::unique_ptr<__XMPMeta__> writtenObject_;
};

}  // namespace

const Node* PhotoOrigin::FindDerived(std::string_view uri, std::string_view local)
{
    return derived.Find(uri, local).node;
}

void PhotoOrigin::Note(std::unique_ptr<PhotoFormat> newFormat,
                       const std::optional<FileIdentity>& newIdentity)
{
    format = std::move(newFormat);
    identity = newIdentity;
    refusal = format->Refusal();
    const std::vector<ByteRange>& packets = format->Packets();
    info.packetFound = !packets.empty();
    info.packetOffset = packets.empty() ? 0 : packets.front().offset;
    info.packetBytes = packets.empty() ? 0 : packets.front().bytes;
    info.canSave = true;
    info.reason.clear();
}

PhotoOrigin& RequirePhotoOrigin(const __XMPMeta__& meta)
{
    auto* const origin = dynamic_cast<PhotoOrigin*>(meta.GetOrigin().get());
    if (origin == nullptr) {
        throw XMP_Error(kKivXmpBadArgument, "the XMP object was not opened from a file");
    }
    return *origin;
}

void ThrowAsXMPError(const UString& path, FileUse use)
{
    try {
        throw;
    } catch (const FileError& error) {
        throw XMP_Error(CodeOf(error.GetKind(), use), error.what());
    } catch (const PhotoError& error) {
        throw XMP_Error(CodeOf(error.GetKind()), PathToUTF8(path) + ": " + error.what());
    }
}

PhotoInfo GetPhotoInfo(const __XMPMeta__& meta)
{
    return RequirePhotoOrigin(meta).info;
}

SaveResult SavePhoto(__XMPMeta__& meta)
{
    PhotoOrigin& origin = RequirePhotoOrigin(meta);
    if (!meta.IsChanged()) {
        return SaveResult::kNothingToSave;
    }
    try {
        Save save(meta, origin);
        if (save.IsThere()) {
            return SaveResult::kNothingToSave;
        }
        const FileIdentity identity = save.Run();
        origin.Note(save.TakeFormat(), identity);
        if (origin.info.place == PacketPlace::kEmbedded) {
            origin.derived.SetPhoto(origin.info.packetPath, identity);
        }
        const std::unique_ptr<__XMPMeta__> saved = save.TakeObject();
        saved->SetOrigin(meta.GetOrigin());
        meta.Swap(*saved);
        return SaveResult::kSaved;
    } catch (const std::exception&) {
        ThrowAsXMPError(origin.info.packetPath, FileUse::kWrite);
    }
}

void WritePacket(const __XMPMeta__& meta, const UString& path)
{
    if (meta.SourceBytes().empty() && meta.PropertyCount() == 0) {
        throw XMP_Error(kKivXmpNoPacket, "there is no metadata packet to write");
    }
    const std::string packet = meta.Serialize();
    try {
        RefusePhoto(path);
        ReplaceWholeFile(path, [&](OutputFile& out) { out.Write(packet.data(), packet.size()); },
                         {});
    } catch (const std::exception&) {
        ThrowAsXMPError(path, FileUse::kWrite);
    }
}

}  // namespace kivxmp
