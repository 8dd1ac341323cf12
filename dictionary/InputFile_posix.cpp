#include "dictionary/InputFile.h"

#include "dictionary/Utf8.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <utility>

namespace morvish_private {

bool InputFile::Open(std::u16string_view path)
{
    Close();
    std::string name;
    if (!ConvertUtf16(path, name) || name.find('\0') != std::string::npos)
        return false;

    // Without O_NONBLOCK opening a pipe would wait for a writer.
    int descriptor;
    do {
        descriptor = ::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    } while (descriptor == -1 && errno == EINTR);
    if (descriptor == -1)
        return false;

    struct stat status;
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        ::close(descriptor);
        return false;
    }
    handle_ = descriptor;
    return true;
}

std::size_t InputFile::Read(char* buffer, std::size_t capacityBytes)
{
    if (!IsOpen())
        return 0;
    ssize_t count;
    do {
        count = ::read(static_cast<int>(handle_), buffer, capacityBytes);
    } while (count == -1 && errno == EINTR);
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

bool InputFile::Seek(std::int64_t offsetBytes)
{
    return IsOpen() && offsetBytes >= 0 &&
           ::lseek(static_cast<int>(handle_), static_cast<off_t>(offsetBytes), SEEK_SET) != -1;
}

std::int64_t InputFile::Size() const
{
    struct stat status;
    if (!IsOpen() || ::fstat(static_cast<int>(handle_), &status) != 0)
        return -1;
    return status.st_size;
}

bool InputFile::Close()
{
    if (!IsOpen())
        return false;
    return ::close(static_cast<int>(std::exchange(handle_, kClosed))) == 0;
}

}  // namespace morvish_private
