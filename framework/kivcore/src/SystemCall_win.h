// What all of kivcore's Windows sources need of the system's calls.

#pragma once

#include <utility>

#include <windows.h>

#include "framework/kivcore/src/FileFault.h"
#include "framework/kivcore/src/SystemError.h"

namespace kivcore::filesupport {

// Numbers that some compilers' headers lack, by the system's own names.
inline constexpr int kErrorVirusInfected = 225;
inline constexpr int kErrorDirectoryNotSupported = 336;
inline constexpr int kErrorDiskQuotaExceeded = 1295;

inline constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// Closes what it holds.
class Handle {
public:
    Handle() = default;
    explicit Handle(HANDLE handle) : handle_(handle) {}
    Handle(Handle&& other) noexcept : handle_(other.Release()) {}
    Handle& operator=(Handle&& other) noexcept
    {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~Handle() { Close(); }

    HANDLE Get() const { return handle_; }
    bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
    HANDLE Release() { return std::exchange(handle_, INVALID_HANDLE_VALUE); }
    /// Leaves the last error as it was.
    void Close()
    {
        if (IsOpen()) {
            const DWORD error = GetLastError();
            CloseHandle(Release());
            SetLastError(error);
        }
    }

private:
    HANDLE handle_ = INVALID_HANDLE_VALUE;
};

/// Of the call that failed just now; never 0.
inline int LastError()
{
    const DWORD error = GetLastError();
    return static_cast<int>(error != ERROR_SUCCESS ? error : ERROR_GEN_FAILURE);
}

/// There is no file of that name; the system tells apart whether there is its folder.
inline bool IsMissing(int error)
{
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

/// Carries a system call out, which answers whether it succeeded, unless the fault switch answers
/// for it. Where the switch ends the process, it does so behind the call. Returns 0 or the error.
template <class Call>
int Attempt(FileStep step, const Call& call)
{
    const int fault = TakeFault(step);
    if (fault != 0 && fault != kKillProcess) {
        return fault;
    }
    const int error = call() ? 0 : LastError();
    if (fault == kKillProcess) {
        KillProcess();
    }
    return error;
}

}  // namespace kivcore::filesupport
