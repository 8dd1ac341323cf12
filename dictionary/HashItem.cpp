#include "dictionary/HashItem.h"

#include "dictionary/KeyHash.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <stdexcept>

namespace morvish_private {

namespace {

const char* CopyBytes(std::string_view key)
{
    char* const bytes = new char[key.size()];
    std::copy(key.begin(), key.end(), bytes);
    return bytes;
}

}  // namespace

void WriteUnit(std::ostream& out, char16_t unit, ByteOrder order)
{
    const char low = static_cast<char>(unit & 0xFF);
    const char high = static_cast<char>(unit >> 8);
    out.put(order == ByteOrder::kLittle ? low : high);
    out.put(order == ByteOrder::kLittle ? high : low);
}

void HashItem::WriteText(std::ostream& out, ByteOrder order) const
{
    Write(out, /*raw=*/false, order);
}

void HashItem::WriteRaw(std::ostream& out, ByteOrder order) const
{
    Write(out, /*raw=*/true, order);
}

ByteRunKey::ByteRunKey(std::string_view key, Bytes bytes)
    : bytes_(key.data()),
      lengthBytes_(static_cast<std::uint32_t>(key.size())),
      ownsBytes_(bytes == Bytes::kCopy)
{
    if (key.size() > std::numeric_limits<std::uint32_t>::max())
        throw std::length_error("dictionary: key longer than 4 GiB");
    if (ownsBytes_)
        bytes_ = CopyBytes(key);
}

ByteRunKey::ByteRunKey(const ByteRunKey& other)
    : HashItem(other),
      bytes_(CopyBytes(other.View())),
      lengthBytes_(other.lengthBytes_),
      ownsBytes_(true)
{
}

ByteRunKey::~ByteRunKey()
{
    if (ownsBytes_)
        delete[] bytes_;
}

void ByteRunKey::Write(std::ostream& out, bool raw, ByteOrder /*order*/) const
{
    if (raw) {
        out.write(bytes_, static_cast<std::streamsize>(lengthBytes_));
        return;
    }
    WriteUnit(out, u'"', ByteOrder::kLittle);
    for (const char byte : View())
        WriteUnit(out, static_cast<unsigned char>(byte), ByteOrder::kLittle);
    WriteUnit(out, u'=', ByteOrder::kLittle);
}

std::uint32_t ByteRunKey::Hash(std::uint32_t bucketCount) const
{
    return BucketHash(View(), bucketCount);
}

bool ByteRunKey::Equals(const HashItem& other) const
{
    return View() == static_cast<const ByteRunKey&>(other).View();
}

}  // namespace morvish_private
