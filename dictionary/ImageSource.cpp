#include "dictionary/ImageSource.h"

#include <cstring>

namespace morvish_private {

MemoryImageSource::MemoryImageSource(const void* start, std::size_t sizeBytes)
    : position_(static_cast<const unsigned char*>(start)), leftBytes_(sizeBytes)
{
}

bool MemoryImageSource::Read(void* target, std::size_t sizeBytes)
{
    if (sizeBytes > leftBytes_)
        return false;
    if (sizeBytes > 0)
        std::memcpy(target, position_, sizeBytes);
    position_ += sizeBytes;
    leftBytes_ -= sizeBytes;
    return true;
}

const unsigned char* MemoryImageSource::View(std::size_t sizeBytes,
                                             std::unique_ptr<unsigned char[]>& /*buffer*/)
{
    if (sizeBytes > leftBytes_)
        return nullptr;
    const unsigned char* const start = position_;
    position_ += sizeBytes;
    leftBytes_ -= sizeBytes;
    return start;
}

StreamImageSource::StreamImageSource(std::istream& stream) : stream_(stream)
{
    const std::streamoff start = stream.tellg();
    stream.seekg(0, std::ios_base::end);
    const std::streamoff end = stream.tellg();
    stream.seekg(start);
    if (stream.good() && start >= 0 && end > start)
        leftBytes_ = static_cast<std::uint64_t>(end - start);
}

bool StreamImageSource::Read(void* target, std::size_t sizeBytes)
{
    if (sizeBytes > leftBytes_)
        return false;
    if (!stream_.read(static_cast<char*>(target), static_cast<std::streamsize>(sizeBytes)))
        return false;
    leftBytes_ -= sizeBytes;
    return true;
}

const unsigned char* StreamImageSource::View(std::size_t sizeBytes,
                                             std::unique_ptr<unsigned char[]>& buffer)
{
    if (sizeBytes > leftBytes_)
        return nullptr;
    buffer = std::make_unique_for_overwrite<unsigned char[]>(sizeBytes);
    return Read(buffer.get(), sizeBytes) ? buffer.get() : nullptr;
}

}  // namespace morvish_private
