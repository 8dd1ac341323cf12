// Lays a store image out and writes it (StoreTables.cpp tells its form).

#pragma once

#include "dictionary/ByteSink.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace morvish_private {

/// An entry as it is written. The texts belong to the store.
struct WrittenEntry {
    std::string_view key;
    std::u16string_view value;
};

class StoreImageWriter {
public:
    enum class Keys { kWrite, kLeaveOut };

    /// @param entries  with keys: bucket by bucket
    /// Throws std::length_error if a text, a pool or the number of entries is too large for its
    /// field.
    StoreImageWriter(std::vector<WrittenEntry> entries, Keys keys);

    void Write(ByteSink& sink) const;

private:
    void PlaceValues();
    void CountGroups();

    struct Group {
        std::uint16_t bucket;
        std::uint32_t size;
    };

    std::vector<WrittenEntry> entries_;
    bool hasKeys_;
    std::uint32_t keyPoolBytes_ = 0;
    std::vector<std::uint32_t> valueOffsets_;  // in units
    std::vector<std::uint32_t> pooledValues_;  // the entries whose values make the pool
    std::uint32_t valuePoolUnits_ = 0;
    std::vector<Group> groups_;
};

}  // namespace morvish_private
