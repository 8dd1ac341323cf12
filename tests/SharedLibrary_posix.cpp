#include "tests/SharedLibrary.h"

#include <dlfcn.h>

#include <stdexcept>

namespace kivtests {

SharedLibrary::SharedLibrary(const std::string& path)
    : handle_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL))
{
    if (handle_ == nullptr) {
        throw std::runtime_error(dlerror());
    }
}

SharedLibrary::~SharedLibrary()
{
    dlclose(handle_);
}

void* SharedLibrary::Find(const char* name) const
{
    void* const address = dlsym(handle_, name);
    if (address == nullptr) {
        throw std::runtime_error(std::string("no function ") + name);
    }
    return address;
}

}  // namespace kivtests
