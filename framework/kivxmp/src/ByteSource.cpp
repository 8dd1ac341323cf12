#include "framework/kivxmp/src/ByteSource.h"

#include <algorithm>
#include <cstring>

#include "framework/kivxmp/src/PhotoFormat.h"

namespace kivxmp::photo {

ByteSource::~ByteSource() = default;

std::size_t FileSource::ReadAt(std::uint64_t offset, void* buffer, std::size_t bytes)
{
    return file_.ReadAt(offset, buffer, bytes);
}

std::size_t MemorySource::ReadAt(std::uint64_t offset, void* buffer, std::size_t bytes)
{
    if (offset >= bytes_.size()) {
        return 0;
    }
    const std::string_view rest = bytes_.substr(static_cast<std::size_t>(offset));
    const std::size_t count = std::min(bytes, rest.size());
    std::copy_n(rest.data(), count, static_cast<char*>(buffer));
    return count;
}

void SortRanges(std::vector<ByteRange>& ranges)
{
    std::sort(ranges.begin(), ranges.end(), [](const ByteRange& left, const ByteRange& right) {
        return left.offset < right.offset;
    });
}

std::string ReadRange(ByteSource& source, ByteRange range)
{
    const std::uint64_t size = source.SizeBytes();
    if (range.offset > size || size - range.offset < range.bytes) {
        throw PhotoError(PhotoError::Kind::kBroken, "the file ends within its metadata");
    }
    std::string bytes(static_cast<std::size_t>(range.bytes), '\0');
    if (source.ReadAt(range.offset, bytes.data(), bytes.size()) != bytes.size()) {
        throw PhotoError(PhotoError::Kind::kBroken, "the file ends within its metadata");
    }
    return bytes;
}

}  // namespace kivxmp::photo
