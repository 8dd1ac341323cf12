#include "dictionary/InputFile.h"

#include "dictionary/SystemPath_win.h"

#include <windows.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace morvish_private {

namespace {

HANDLE AsHandle(std::intptr_t handle)
{
    return reinterpret_cast<HANDLE>(handle);  // NOLINT(performance-no-int-to-ptr)
}

}  // namespace

static_assert(sizeof(std::intptr_t) == sizeof(HANDLE));

bool InputFile::Open(std::u16string_view path)
{
    Close();
    const std::wstring name = SystemPath(path);
    if (name.empty())
        return false;

    // Others may also delete or rename it meanwhile, as they may where names are not files.
    const HANDLE handle = CreateFileW(
        name.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return false;
    if (GetFileType(handle) != FILE_TYPE_DISK) {
        CloseHandle(handle);
        return false;
    }
    handle_ = reinterpret_cast<std::intptr_t>(handle);
    return true;
}

std::size_t InputFile::Read(char* buffer, std::size_t capacityBytes)
{
    if (!IsOpen())
        return 0;
    constexpr std::size_t kLargestRead = std::numeric_limits<DWORD>::max();
    const auto wanted = static_cast<DWORD>(std::min(capacityBytes, kLargestRead));
    DWORD count = 0;
    return ReadFile(AsHandle(handle_), buffer, wanted, &count, nullptr) != 0 ? count : 0;
}

bool InputFile::Seek(std::int64_t offsetBytes)
{
    LARGE_INTEGER offset;
    offset.QuadPart = offsetBytes;
    return IsOpen() && offsetBytes >= 0 &&
           SetFilePointerEx(AsHandle(handle_), offset, nullptr, FILE_BEGIN) != 0;
}

std::int64_t InputFile::Size() const
{
    LARGE_INTEGER size;
    if (!IsOpen() || GetFileSizeEx(AsHandle(handle_), &size) == 0)
        return -1;
    return size.QuadPart;
}

bool InputFile::Close()
{
    if (!IsOpen())
        return false;
    return CloseHandle(AsHandle(std::exchange(handle_, kClosed))) != 0;
}

}  // namespace morvish_private
