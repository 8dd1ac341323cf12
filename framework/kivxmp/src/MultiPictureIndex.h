// The index of a multi-picture file (CIPA DC-007): an APP2 segment of the first picture that tells
// where the further ones lie behind its end. Their offsets count from the index itself, so a packet
// that grows between the two moves them.

#pragma once

#include "framework/kivxmp/src/ByteNumbers.h"
#include "framework/kivxmp/src/ByteSource.h"
#include "framework/kivxmp/src/SavePlan.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivxmp::photo {

class MultiPictureIndex {
public:
    /// `bytes` is the index from its byte-order mark on, up to the end of its segment; `base` the
    /// file position of that mark. Nothing if it cannot be followed.
    static std::optional<MultiPictureIndex> Read(std::string_view bytes, std::uint64_t base);

    /// Offsets of all pictures, and the length of the one that begins the file.
    std::vector<ByteRange> Fields() const;
    /// Where they point: the beginning of each picture that has an offset, the end of the first.
    std::vector<std::uint64_t> Targets() const;

    /// The fields (as Fields() lists them) as they must be after `plan`; nothing where a picture
    /// would lose its place, or would not fit into 32 bits.
    std::optional<std::vector<std::string>> Corrected(const SavePlan& plan) const;

private:
    enum class Meaning { kPictureOffset, kFirstPictureLength };
    struct Field {
        Meaning meaning;
        std::uint64_t position;  // in the file
        std::uint32_t value;
    };

    std::uint64_t base_ = 0;
    ByteOrder order_ = ByteOrder::kLittle;
    std::vector<Field> fields_;  // in file order
};

}  // namespace kivxmp::photo
