// The parts of a store image as they stand in it, checked.

#pragma once

#include "dictionary/ByteOrder.h"
#include "dictionary/ImageSource.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace morvish_private {

struct StoreTables {
    /// Reads a store image. Everything in it has been checked afterwards: ranges lie in their
    /// pools, groups are in order and hold the keys that they should.
    /// @return false if the image is cut short or contradicts itself
    bool Read(ImageSource& source, ByteOrder order);

    /// Entry `index` of an image with keys.
    std::string_view Key(std::uint32_t index, ByteOrder order) const;

    /// The units of an entry's value. They and the keys stand in `pool`, whoever owns it by then.
    std::u16string_view Value(std::uint32_t index, ByteOrder order) const;

    bool hasKeys = false;
    std::uint32_t count = 0;
    std::unique_ptr<char16_t[]> pool;  // the units, in the machine's order, then the keys
    std::size_t poolBytes = 0;

private:
    bool ReadCounts(ImageSource& source, ByteOrder order);
    bool ReadPools(ImageSource& source, ByteOrder order);
    bool CheckValues(ByteOrder order) const;
    bool CheckGroups(const unsigned char* groups, ByteOrder order) const;

    const char* KeyPool() const { return reinterpret_cast<const char*>(units_ + unitCount_); }

    std::uint32_t groupCount_ = 0;
    std::uint32_t keyPoolBytes_ = 0;
    std::uint32_t unitCount_ = 0;
    const char16_t* units_ = nullptr;
    std::unique_ptr<unsigned char[]> tablesBuffer_;
    std::unique_ptr<unsigned char[]> groupsBuffer_;
    // Offsets of all entries, then lengths.
    const unsigned char* keyOffsets_ = nullptr;
    const unsigned char* keyLengths_ = nullptr;
    const unsigned char* valueOffsets_ = nullptr;
    const unsigned char* valueLengths_ = nullptr;
};

}  // namespace morvish_private
