#include "framework/kivmetadataui/src/ToolkitLoader.h"

#include <dlfcn.h>

#include <stdexcept>
#include <string>

#include "framework/kivmetadataui/src/Texts.h"

namespace kivmetadataui {

namespace {

[[noreturn]] void Fail(const char* reason)
{
    throw std::runtime_error(Narrow(
        DialogText("$$$/Kiv/Dialog/Failure/Toolkit=The dialog's toolkit cannot be opened: ^0",
                   {Widen(reason == nullptr ? "" : reason)})));
}

/// The folder of this library, with a slash at its end.
std::string OwnFolder()
{
    static const char anchor = 0;
    Dl_info info{};
    if (dladdr(&anchor, &info) == 0 || info.dli_fname == nullptr) {
        Fail(dlerror());
    }
    const std::string file = info.dli_fname;
    return file.substr(0, file.rfind('/') + 1);
}

}  // namespace

ToolkitModule& OpenToolkitModule()
{
    const std::string file = OwnFolder() + "kivtoolkit.so";
    // Its symbols stay its own, and it stays: toolkits do not survive being unloaded.
    void* const handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (handle == nullptr) {
        Fail(dlerror());
    }
    void* const symbol = dlsym(handle, "KivToolkitOpen");
    ToolkitModule* const module =
        symbol == nullptr ? nullptr
                          : reinterpret_cast<ToolkitOpenFunction>(symbol)(kToolkitVersion);
    dlclose(handle);
    if (module == nullptr) {
        Fail((file + ": version").c_str());
    }
    return *module;
}

}  // namespace kivmetadataui
