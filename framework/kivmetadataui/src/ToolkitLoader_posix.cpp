#include "framework/kivmetadataui/src/ToolkitLoader.h"

#include <dlfcn.h>
#include <link.h>

#include <stdexcept>
#include <string>
#include <string_view>

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

/// Another generation of the module's GTK in the process. Loading a second one would already
/// disturb the first: both keep their resources under the same names.
bool HasOtherGtk()
{
    bool found = false;
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* data) {
            const std::string_view name = info->dlpi_name != nullptr ? info->dlpi_name : "";
            for (const std::string_view other : {"/libgtk-4.so", "/libgtk-x11-2.0.so"}) {
                if (name.find(other) != std::string_view::npos) {
                    *static_cast<bool*>(data) = true;
                }
            }
            return 0;
        },
        &found);
    // By this symbol GTK 3 itself knows a GTK 2 that is linked into a program.
    return found || dlsym(RTLD_DEFAULT, "gtk_progress_get_type") != nullptr;
}

}  // namespace

ToolkitModule& OpenToolkitModule()
{
    if (HasOtherGtk()) {
        throw std::runtime_error(Narrow(DialogText(
            "$$$/Kiv/Dialog/Failure/OtherGtk=This program uses another version of GTK, so that no "
            "dialog can be shown.")));
    }
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
