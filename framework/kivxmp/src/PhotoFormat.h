// What a file format knows about the XMP packet in its files: where it lies, whether a save could
// place another one, and which bytes such a save replaces. One implementation for each format; the
// reading and the saving of a file know no format by name.

#pragma once

#include "framework/kivxmp/src/ByteSource.h"
#include "framework/kivxmp/src/SavePlan.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kivxmp::photo {

/// A packet of more bytes than this is neither read nor written.
inline constexpr std::size_t kPacketBytesLimit = std::size_t{64} * 1024 * 1024;

/// What is wrong with a photo, for its user. what() is one sentence without the file's name.
class PhotoError : public std::runtime_error {
public:
    enum class Kind {
        kBroken,   ///< its structure cannot be followed up to the packet's place
        kRefused,  ///< readable, but not to be saved
        kFailed    ///< the copy is not what it should be
    };
    PhotoError(Kind kind, const std::string& message) : std::runtime_error(message), kind_(kind) {}
    Kind GetKind() const noexcept { return kind_; }

private:
    Kind kind_;
};

/// A packet as a place takes it.
struct PacketParts {
    std::string main;
    std::string extended;  ///< RDF that the main part has no room for; empty: it holds everything
};

/// What else tells of the photo besides packets. Only looked at.
struct MetadataBlock {
    enum class Kind : unsigned char {
        kExif,            ///< a TIFF stream, in front of it perhaps the signature of JPEG's segment
        kTiff,            ///< the same, and it is the whole photo
        kImageResources,  ///< Photoshop's, or a part of them; they hold IIM data
        kProfile,         ///< the content of a PNG file's text chunk (PngText.h) with one of these
        kPackedProfile,   ///< the same, packed
    };
    Kind kind = Kind::kExif;
    ByteRange range;
};

/// A file as its format sees it, read once and then fixed. Holds no reference to the source.
class PhotoFormat {
public:
    virtual ~PhotoFormat();

    /// What a file of this content is called, given what its signature says and the extension of
    /// its name (lower case, without the dot); null if packets in it are not ours to write.
    virtual const char* NameOf(const char* signatureName, std::string_view extension) const;

    /// Where the main packets lie, in file order. The first one counts.
    const std::vector<ByteRange>& Packets() const noexcept { return packets_; }

    /// The text of main packet `number`; not all formats hold it as it is.
    /// Throws PhotoError (kBroken), FileError.
    virtual std::string ReadPacket(std::size_t number, ByteSource& source) const;

    /// The extended part that a main packet names by `digest`; nothing where it is not there or not
    /// whole. Its bytes belong to the packet from now on; parts that nobody asks for are foreign
    /// bytes. Throws FileError.
    virtual std::optional<std::string> TakeExtended(std::string_view digest, ByteSource& source);

    /// Why saving is impossible (kBroken or kRefused); nothing if it is possible.
    const std::optional<PhotoError>& Refusal() const noexcept { return refusal_; }

    /// In file order, as far as the file's structure could be followed.
    const std::vector<MetadataBlock>& Blocks() const noexcept { return blocks_; }

    /// Longest main packet that the place takes.
    std::size_t PacketLimitBytes() const noexcept { return limit_.bytes; }
    /// True if what does not fit can be an extended part.
    virtual bool TakesExtended() const noexcept { return false; }
    /// Bytes that are there for the packet already: a shorter one is to be filled up to them.
    virtual std::size_t PacketRoomBytes() const noexcept { return 0; }

    /// What to change so that the file holds `packet`, and no other one besides. Throws PhotoError
    /// (the Refusal() first of all) if the packet is too long or a pointer cannot be corrected.
    SavePlan Plan(const PacketParts& packet) const;

    /// The bytes that belong to packets or point past them (lengths, checksums, offsets), in file
    /// order and not overlapping. All other bytes survive a save.
    virtual std::vector<ByteRange> Changeable() const = 0;

    /// Where the pointers among the changeable bytes point, in a fixed order, as positions in the
    /// file. A save keeps what they point to.
    virtual std::vector<std::uint64_t> PointerTargets() const { return {}; }

    /// What the changeable bytes say besides, in a form of the format's own. A save keeps it.
    virtual std::string OtherContent() const { return {}; }

protected:
    /// The longest packet, and the words in front of that number.
    struct Limit {
        std::size_t bytes = kPacketBytesLimit;
        const char* words = "the limit is";
    };
    PhotoFormat() = default;
    explicit PhotoFormat(const Limit& limit) : limit_(limit) {}

    /// The first reason counts: it lies nearest to the beginning of the file.
    void Refuse(PhotoError::Kind kind, const std::string& reason);
    /// False for one more than any photo holds; the file is refused then.
    bool NotePacket(const ByteRange& packet);
    /// More of them than any photo holds are forgotten.
    void NoteBlock(MetadataBlock::Kind kind, const ByteRange& range);

private:
    /// Plan() of a packet that is not too long, for a file that is not refused.
    virtual SavePlan PlanPlace(const PacketParts& packet) const = 0;

    Limit limit_;
    std::vector<ByteRange> packets_;
    std::vector<MetadataBlock> blocks_;
    std::optional<PhotoError> refusal_;
};

/// One format that is recognised by its content; some have several rows.
struct FormatRow {
    const char* name;
    std::size_t signatureAt;
    std::string_view signature;
    /// Null: packets in such files are not read, they have a sidecar.
    std::unique_ptr<PhotoFormat> (*read)(ByteSource& source);
    /// Extensions that promise this format: lower case, a space around each. A file with such a
    /// name and unknown content is damaged, not foreign.
    std::string_view extensions;
};

/// The format of the file, or null if its content is of no known one.
const FormatRow* RecogniseFormat(ByteSource& source);

/// The format that the extension (lower case, without the dot) promises, or null.
const FormatRow* FormatOfExtension(std::string_view extension);

/// Throws PhotoError kFailed unless `written` is `original` with `plan` applied, and the plan does
/// no harm: what it replaces and what it puts there belongs to packets and what points past them
/// (or stands behind everything else), all pointers lead to the same bytes, and what else the
/// changed bytes say is the same.
void CheckCopy(ByteSource& original, const PhotoFormat& originalFormat, const SavePlan& plan,
               ByteSource& written, const PhotoFormat& writtenFormat);

}  // namespace kivxmp::photo
