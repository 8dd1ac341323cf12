// What all of kivcore's sources for POSIX systems need of the system's calls.

#pragma once

#include <cerrno>
#include <string>
#include <utility>

#include <unistd.h>

#include <kivcore/Dir.h>

#include "framework/kivcore/src/FileFault.h"
#include "framework/kivcore/src/SystemError.h"

namespace kivcore::filesupport {

/// File names go to the system as bytes. A path with a NUL in it would be cut by the system and
/// name another file, so it is handed over as the empty path, which no file has.
inline std::string NativePath(const UString& path)
{
    std::string native = PathToUTF8(path);
    return native.find('\0') == std::string::npos ? native : std::string();
}

/// Carries a system call out (it answers -1 and sets errno where it fails) unless the fault switch
/// answers for it; again where a signal interrupted it.
template <class Call>
auto Attempt(FileStep step, const Call& call) -> decltype(call())
{
    if (const int fault = TakeFault(step)) {
        if (fault == kKillProcess) {
            KillProcess();
        }
        errno = fault;
        return -1;
    }
    for (;;) {
        const auto result = call();
        if (result != -1 || errno != EINTR) {
            return result;
        }
    }
}

/// Closes what it holds.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(other.Release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor()
    {
        if (number_ >= 0) {
            close(number_);
        }
    }
    int Get() const { return number_; }
    int Release() { return std::exchange(number_, -1); }

private:
    int number_ = -1;
};

/// True if `name` still names the open file.
bool NamesOpenFile(const std::string& name, int descriptor);

}  // namespace kivcore::filesupport
