// A file opened for reading by its UTF-16 path. Others may read and write it meanwhile.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace morvish_private {

class InputFile {
public:
    InputFile() = default;
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;
    ~InputFile() { Close(); }

    /// Closes what was open. Only a regular file is opened: readers seek, and a pipe would block.
    /// @return false if there is no such file, it may not be read, or the path is no valid UTF-16
    bool Open(std::u16string_view path);

    bool IsOpen() const { return handle_ != kClosed; }

    /// @return the number of bytes read, 0 at the end of the file and after a failure
    std::size_t Read(char* buffer, std::size_t capacityBytes);

    /// Places the next read `offsetBytes` from the start of the file.
    bool Seek(std::int64_t offsetBytes);

    /// @return the size in bytes, -1 if it is not to be had
    std::int64_t Size() const;

    /// @return false if nothing was open or the system reports a failure; it is closed in any case
    bool Close();

private:
    static constexpr std::intptr_t kClosed = -1;

    std::intptr_t handle_ = kClosed;  // the system's descriptor or handle
};

}  // namespace morvish_private
