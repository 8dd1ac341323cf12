// What the tests of binary images share: images written field by field, and ways to load them.

#pragma once

#include "dictionary/ByteOrder.h"
#include "dictionary/InputStreams.h"
#include "dictionary/tests/TestSupport.h"

#include <cstdint>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace dictionary_test {

using morvish_private::ByteOrder;

/// Puts numbers and units of one byte order behind each other.
class Bytes {
public:
    explicit Bytes(ByteOrder order) : order_(order) {}

    Bytes& Put8(std::uint32_t value)
    {
        text += static_cast<char>(value);
        return *this;
    }
    Bytes& Put16(std::uint32_t value)
    {
        const std::uint32_t first = order_ == ByteOrder::kLittle ? value : value >> 8;
        const std::uint32_t second = order_ == ByteOrder::kLittle ? value >> 8 : value;
        return Put8(first & 0xFF).Put8(second & 0xFF);
    }
    Bytes& Put32(std::uint32_t value)
    {
        const std::uint32_t low = value & 0xFFFF;
        const std::uint32_t high = value >> 16;
        return order_ == ByteOrder::kLittle ? Put16(low).Put16(high) : Put16(high).Put16(low);
    }
    Bytes& Put(std::string_view bytes)
    {
        text += bytes;
        return *this;
    }
    Bytes& PutUnits(std::u16string_view units)
    {
        for (const char16_t unit : units)
            Put16(unit);
        return *this;
    }

    std::string text;

private:
    ByteOrder order_;
};

struct Range {
    std::uint32_t offset;
    std::uint32_t length;
};

struct Group {
    std::uint32_t bucket;
    std::uint32_t size;
};

/// An image as its fields. As it stands: "/A" and "/B", which share one value, and "a".
struct Image {
    std::uint32_t major = 2;
    std::uint32_t minor = 7;
    std::uint32_t storeFlag = 0;
    ByteOrder order = ByteOrder::kLittle;
    std::optional<std::uint32_t> headerLength;  // where it is not the text's
    std::string header = "en_US";
    std::uint32_t identifier = 0;
    char layout = 'Y';
    std::uint32_t count = 3;
    std::uint32_t secondCount = 3;
    std::uint32_t groupCount = 3;
    std::optional<std::uint32_t> keyPoolBytes;
    std::optional<std::uint32_t> valuePoolBytes;
    std::vector<Range> keys = {{0, 1}, {1, 2}, {3, 2}};
    std::vector<Range> values = {{0, 1}, {1, 2}, {1, 2}};
    std::string keyPool = "a/A/B";
    std::u16string valuePool = u"x5\u00B0";
    std::vector<Group> groups = {{97, 1}, {548, 1}, {549, 1}};

    std::string StoreBytes() const
    {
        const bool hasKeys = layout != 'N';
        Bytes out(order);
        out.Put32(identifier).Put8(static_cast<unsigned char>(layout));
        out.Put32(count).Put32(secondCount).Put32(groupCount);
        if (hasKeys)
            out.Put32(keyPoolBytes.value_or(static_cast<std::uint32_t>(keyPool.size())));
        out.Put32(valuePoolBytes.value_or(static_cast<std::uint32_t>(2 * valuePool.size())));
        for (const Range& range : hasKeys ? keys : std::vector<Range>())
            out.Put32(range.offset);
        for (const Range& range : hasKeys ? keys : std::vector<Range>())
            out.Put16(range.length);
        for (const Range& range : values)
            out.Put32(range.offset);
        for (const Range& range : values)
            out.Put16(range.length);
        if (hasKeys)
            out.Put(keyPool);
        out.PutUnits(valuePool);
        for (const Group& group : hasKeys ? groups : std::vector<Group>())
            out.Put16(group.bucket);
        for (const Group& group : hasKeys ? groups : std::vector<Group>())
            out.Put32(group.size);
        return out.text;
    }

    std::string Text() const
    {
        Bytes out(order);
        out.Put("Pemtext Binary Format").Put8(major).Put8(minor).Put8(storeFlag);
        if (minor >= 1 && minor < 128)
            out.Put8(order == ByteOrder::kBig ? 1 : 0);
        out.Put32(headerLength.value_or(static_cast<std::uint32_t>(header.size()))).Put(header);
        return out.text + StoreBytes();
    }
};

/// The three entries of Image.
inline const Entries kImageEntries = {{"a", u"x"}, {"/A", u"5\u00B0"}, {"/B", u"5\u00B0"}};

enum class From { kMemory, kOwnStream, kForeignStream };

inline constexpr From kAllSources[] = {From::kMemory, From::kOwnStream, From::kForeignStream};

/// Loads `bytes` from a block of exactly their size, or a stream.
inline void LoadFrom(From from, morvish::Dictionary& dictionary, const std::string& bytes)
{
    const ExactBlock block(bytes);
    morvish::basic_irstream<char> own(block.Start(), block.Size());
    std::istringstream foreign(bytes);
    if (from == From::kMemory)
        dictionary.LoadFromMemory(block.Start(), block.Size());
    else
        dictionary.LoadFromStream(from == From::kOwnStream ? static_cast<std::istream*>(&own)
                                                           : &foreign);
}

/// The image that the dictionary writes.
inline std::string Written(const morvish::Dictionary& dictionary,
                           ByteOrder order = ByteOrder::kLittle)
{
    std::ostringstream out;
    dictionary.Serialize(out, 0, dictionary.StoreFlag() != 0, order);
    return out.str();
}

}  // namespace dictionary_test
