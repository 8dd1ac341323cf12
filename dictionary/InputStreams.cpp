#include "dictionary/InputStreams.h"

#include <cstdint>

namespace morvish_private {

namespace {

constexpr std::size_t kBlockBytes = 32 * 1024;

}  // namespace

bool FileBuffer::Open(std::u16string_view path)
{
    setg(nullptr, nullptr, nullptr);
    blockEnd_ = 0;
    return file_.Open(path);
}

bool FileBuffer::Close()
{
    setg(nullptr, nullptr, nullptr);
    blockEnd_ = 0;
    return file_.Close();
}

FileBuffer::int_type FileBuffer::underflow()
{
    if (gptr() != egptr())
        return traits_type::to_int_type(*gptr());
    if (!block_)
        block_ = std::make_unique<char[]>(kBlockBytes);
    const std::size_t count = file_.Read(block_.get(), kBlockBytes);
    setg(block_.get(), block_.get(), block_.get() + count);
    blockEnd_ += static_cast<off_type>(count);
    return count == 0 ? traits_type::eof() : traits_type::to_int_type(*gptr());
}

FileBuffer::pos_type FileBuffer::seekoff(off_type offset, std::ios_base::seekdir from,
                                         std::ios_base::openmode which)
{
    off_type base = 0;
    if (from == std::ios_base::cur)
        base = blockEnd_ - (egptr() - gptr());
    else if (from == std::ios_base::end)
        base = file_.Size();
    if (!file_.IsOpen() || base < 0 || (offset > 0 && offset > INT64_MAX - base))
        return pos_type(off_type(-1));
    return seekpos(pos_type(base + offset), which);
}

FileBuffer::pos_type FileBuffer::seekpos(pos_type position, std::ios_base::openmode which)
{
    const off_type target = position;
    if (!file_.IsOpen() || target < 0 || (which & std::ios_base::in) == 0)
        return pos_type(off_type(-1));
    const off_type blockStart = blockEnd_ - (egptr() - eback());
    if (target >= blockStart && target <= blockEnd_) {
        setg(eback(), eback() + (target - blockStart), egptr());
        return position;
    }
    if (!file_.Seek(target))
        return pos_type(off_type(-1));
    setg(nullptr, nullptr, nullptr);
    blockEnd_ = target;
    return position;
}

MemoryBuffer::MemoryBuffer(const void* block, std::size_t sizeBytes)
{
    // The get area is typed for writing, but nothing here or in std::istream writes through it.
    char* const start = const_cast<char*>(static_cast<const char*>(block));
    setg(start, start, start + sizeBytes);
}

MemoryBuffer::pos_type MemoryBuffer::seekoff(off_type offset, std::ios_base::seekdir from,
                                             std::ios_base::openmode which)
{
    off_type base = 0;
    if (from == std::ios_base::cur)
        base = gptr() - eback();
    else if (from == std::ios_base::end)
        base = egptr() - eback();
    if (offset > 0 && offset > INT64_MAX - base)
        return pos_type(off_type(-1));
    return seekpos(pos_type(base + offset), which);
}

MemoryBuffer::pos_type MemoryBuffer::seekpos(pos_type position, std::ios_base::openmode which)
{
    const off_type target = position;
    if (target < 0 || target > egptr() - eback() || (which & std::ios_base::in) == 0)
        return pos_type(off_type(-1));
    setg(eback(), eback() + target, egptr());
    return position;
}

}  // namespace morvish_private

namespace morvish {

basic_ifstream<char>::basic_ifstream(std::u16string_view path, std::ios_base::openmode mode)
    : std::istream(nullptr)
{
    rdbuf(&buffer_);
    if ((mode & std::ios_base::in) == 0 || !buffer_.Open(path))
        setstate(std::ios_base::failbit);
}

void basic_ifstream<char>::close()
{
    if (!buffer_.Close())
        setstate(std::ios_base::failbit);
}

basic_irstream<char>::basic_irstream(const void* block, std::size_t sizeBytes)
    : std::istream(nullptr), buffer_(block, sizeBytes)
{
    rdbuf(&buffer_);
}

}  // namespace morvish
