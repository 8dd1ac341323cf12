#include "framework/kivmetadataui/src/ToolkitLoader.h"

#include <windows.h>

#include <stdexcept>
#include <string>

#include "framework/kivmetadataui/src/Texts.h"

namespace kivmetadataui {

namespace {

using kivcore::UString;

[[noreturn]] void Fail(const UString& reason)
{
    throw std::runtime_error(Narrow(DialogText(
        "$$$/Kiv/Dialog/Failure/Toolkit=The dialog's toolkit cannot be opened: ^0", {reason})));
}

[[noreturn]] void Fail(const UString& file, DWORD error)
{
    Fail(file + u": " + Widen(std::to_string(error)));
}

UString FromSystem(const std::wstring& text)
{
    return {text.begin(), text.end()};
}

/// The folder of this library, with a backslash at its end.
std::wstring OwnFolder()
{
    static const char anchor = 0;
    HMODULE module = nullptr;
    if (GetModuleHandleExW(
            GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
            reinterpret_cast<LPCWSTR>(&anchor), &module) == 0) {
        Fail(u"kivmetadataui", GetLastError());
    }
    constexpr DWORD kLongestPath = 32768;
    std::wstring file(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length =
            GetModuleFileNameW(module, file.data(), static_cast<DWORD>(file.size()));
        if (length == 0) {
            Fail(u"kivmetadataui", GetLastError());
        }
        if (length < file.size() || file.size() >= kLongestPath) {
            file.resize(length);
            break;
        }
        file.resize(file.size() * 2);
    }
    return file.substr(0, file.rfind(L'\\') + 1);
}

}  // namespace

ToolkitModule& OpenToolkitModule()
{
    // By its full path, and what it needs is looked for beside it first: neither the host's folder
    // nor the working folder nor PATH has a say.
    const std::wstring file = OwnFolder() + L"kivtoolkit.dll";
    const HMODULE handle = LoadLibraryExW(file.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (handle == nullptr) {
        Fail(FromSystem(file), GetLastError());
    }
    // Toolkits do not survive being unloaded: it stays.
    HMODULE pinned = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<LPCWSTR>(handle), &pinned);
    const FARPROC symbol = GetProcAddress(handle, "KivToolkitOpen");
    ToolkitModule* const module = symbol == nullptr
                                      ? nullptr
                                      : reinterpret_cast<ToolkitOpenFunction>(
                                            reinterpret_cast<void*>(symbol))(kToolkitVersion);
    FreeLibrary(handle);
    if (module == nullptr) {
        Fail(FromSystem(file) + u": version");
    }
    return *module;
}

}  // namespace kivmetadataui
