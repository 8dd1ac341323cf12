#include "tests/SharedLibrary.h"

#include <filesystem>
#include <stdexcept>

#include <windows.h>

namespace kivtests {

// The way of a host that lies in another folder: what the library is linked to is looked for beside
// the library.
SharedLibrary::SharedLibrary(const std::string& path)
    : handle_(LoadLibraryExW(
          std::filesystem::path(std::u8string(path.begin(), path.end())).make_preferred().c_str(),
          nullptr, LOAD_WITH_ALTERED_SEARCH_PATH))
{
    if (handle_ == nullptr) {
        throw std::runtime_error(path + ": Windows error " + std::to_string(GetLastError()));
    }
}

SharedLibrary::~SharedLibrary()
{
    FreeLibrary(static_cast<HMODULE>(handle_));
}

void* SharedLibrary::Find(const char* name) const
{
    const FARPROC address = GetProcAddress(static_cast<HMODULE>(handle_), name);
    if (address == nullptr) {
        throw std::runtime_error(std::string("no function ") + name);
    }
    return reinterpret_cast<void*>(address);
}

}  // namespace kivtests
