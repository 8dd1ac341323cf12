// The nodes of the bucket chains: the base, and the key that is a run of bytes.

#pragma once

#include "dictionary/ByteOrder.h"

#include <cstdint>
#include <ostream>
#include <string_view>

namespace morvish_private {

/// A node of a bucket chain. The order of the virtual functions is fixed.
class HashItem {
public:
    /// Writes the bytes as they are (`raw`), or the text form. `order` is that of a value's units;
    /// a key in text form is always little-endian.
    virtual void Write(std::ostream& out, bool raw, ByteOrder order) const = 0;

    /// Write() in text form.
    virtual void WriteText(std::ostream& out, ByteOrder order) const;

    /// Write() of the bytes as they are.
    virtual void WriteRaw(std::ostream& out, ByteOrder order) const;

    virtual ~HashItem() = default;

    /// The bucket of this node among `bucketCount`.
    virtual std::uint32_t Hash(std::uint32_t bucketCount) const = 0;

    virtual bool Equals(const HashItem& other) const = 0;

    HashItem* next = nullptr;  // owned by the chain; null at its end
    HashItem* previous =
        nullptr;  // null at the chain's head; makes unlinking independent of length

protected:
    HashItem() = default;
    HashItem(const HashItem&) {}  // a copy stands in no chain
    HashItem& operator=(const HashItem&) = delete;
};

/// A key: any bytes, also none.
class ByteRunKey : public HashItem {
public:
    enum class Bytes : std::uint8_t { kBorrow = 0, kCopy = 1 };

    /// Borrowed bytes must outlive the key. Throws std::length_error for a key of 4 GiB or more.
    ByteRunKey(std::string_view key, Bytes bytes);

    /// The copy always owns its bytes.
    ByteRunKey(const ByteRunKey& other);

    ByteRunKey& operator=(const ByteRunKey&) = delete;

    void Write(std::ostream& out, bool raw, ByteOrder order) const override;
    ~ByteRunKey() override;
    std::uint32_t Hash(std::uint32_t bucketCount) const override;

    /// True for a key of the same bytes; `other` must be a key too.
    bool Equals(const HashItem& other) const override;

    std::string_view View() const { return {bytes_, lengthBytes_}; }
    bool OwnsBytes() const { return ownsBytes_; }

private:
    const char* bytes_;
    std::uint32_t lengthBytes_;
    bool ownsBytes_;
};

/// Writes one UTF-16 unit.
void WriteUnit(std::ostream& out, char16_t unit, ByteOrder order);

}  // namespace morvish_private
