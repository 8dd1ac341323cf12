// The engine's own input streams: a file named by a UTF-16 path, and a block of memory (a
// resource). Both are ordinary std::istreams; readers recognise them and fetch their bytes without
// the per-character bookkeeping that a foreign stream needs.

#pragma once

#include <cstddef>
#include <istream>
#include <memory>
#include <streambuf>
#include <string_view>

#include "dictionary/InputFile.h"

namespace morvish_private {

/// Reads and seeks in a file. Throws nothing but std::bad_alloc at the first read.
class FileBuffer : public std::streambuf {
public:
    bool Open(std::u16string_view path);
    bool IsOpen() const { return file_.IsOpen(); }
    bool Close();

protected:
    int_type underflow() override;
    pos_type seekoff(off_type offset, std::ios_base::seekdir from,
                     std::ios_base::openmode which) override;
    pos_type seekpos(pos_type position, std::ios_base::openmode which) override;

private:
    InputFile file_;
    std::unique_ptr<char[]> block_;
    off_type blockEnd_ = 0;  // the file offset of egptr()
};

/// Reads and seeks in memory that it does not own.
class MemoryBuffer : public std::streambuf {
public:
    MemoryBuffer(const void* block, std::size_t sizeBytes);

protected:
    pos_type seekoff(off_type offset, std::ios_base::seekdir from,
                     std::ios_base::openmode which) override;
    pos_type seekpos(pos_type position, std::ios_base::openmode which) override;
};

}  // namespace morvish_private

namespace morvish {

template <typename CharT>
class basic_ifstream;

template <typename CharT>
class basic_irstream;

/// A binary file stream, shared for reading and writing by others.
template <>
class basic_ifstream<char> : public std::istream {
public:
    /// Sets the fail bit if the file cannot be opened.
    explicit basic_ifstream(std::u16string_view path,
                            std::ios_base::openmode mode = std::ios_base::in |
                                                           std::ios_base::binary);

    bool is_open() const { return buffer_.IsOpen(); }

    /// Sets the fail bit if nothing was open or the system reports a failure.
    void close();

private:
    morvish_private::FileBuffer buffer_;
};

/// A stream over a block that must outlive it.
template <>
class basic_irstream<char> : public std::istream {
public:
    basic_irstream(const void* block, std::size_t sizeBytes);

private:
    morvish_private::MemoryBuffer buffer_;
};

}  // namespace morvish
