// What a file format knows about the XMP packet in its files: where it lies, whether a save could
// place another one, and which bytes such a save replaces. One implementation for each format; the
// reading and the saving of a file know no format by name.

#pragma once

#include "framework/kivxmp/src/ByteSource.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kivxmp::photo {

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

/// A range of the original (empty: a place between two bytes) and what stands there afterwards.
struct Patch {
    ByteRange replaced;
    std::string fresh;
};

/// What a save changes: patches in file order that do not overlap. Everything between them is
/// copied.
using SavePlan = std::vector<Patch>;

/// A file as its format sees it, read once and then fixed. Holds no reference to the source.
class PhotoFormat {
public:
    virtual ~PhotoFormat();

    /// Bytes of the main packets, in file order. The first one counts.
    virtual const std::vector<ByteRange>& Packets() const noexcept = 0;

    /// Why saving is impossible (kBroken or kRefused); nothing if it is possible.
    virtual const std::optional<PhotoError>& Refusal() const noexcept = 0;

    /// Longest packet that the place takes.
    virtual std::size_t PacketLimitBytes() const noexcept = 0;

    /// What to change so that the file holds `packet`. Throws PhotoError
    /// (the Refusal() first of all) if the packet is too long or a pointer cannot be corrected.
    virtual SavePlan Plan(std::string_view packet) const = 0;

    /// The bytes that belong to the packet or point past it (lengths, checksums, offsets), in file
    /// order and not overlapping. All other bytes survive a save.
    virtual std::vector<ByteRange> Changeable() const = 0;

    /// Where the pointers among the changeable bytes point, in a fixed order, as positions in the
    /// file. A save keeps what they point to.
    virtual std::vector<std::uint64_t> PointerTargets() const = 0;
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

/// Puts out the original with `plan` applied: `copy` is given the ranges to copy, `write` the fresh
/// bytes, in order.
void ApplyPlan(const SavePlan& plan, std::uint64_t originalBytes,
               const std::function<void(ByteRange range)>& copy,
               const std::function<void(std::string_view bytes)>& write);

/// Throws PhotoError kFailed unless `written` holds the same bytes as `original` outside of what
/// their formats call changeable, and all pointers point to the same ones of them.
void CheckKeptBytes(ByteSource& original, const PhotoFormat& originalFormat, ByteSource& written,
                    const PhotoFormat& writtenFormat);

}  // namespace kivxmp::photo
