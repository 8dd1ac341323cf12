// Keeps the C++ runtime in the process once it is there. Loaded and unloaded again and again with
// our libraries it would leave its memory for exceptions (some 70 KB) and the thread library's
// handles behind each time: neither frees them when it goes. PlainHost_win.c holds this.

#include <exception>
#include <typeinfo>

#include <windows.h>

namespace {

bool KeepRuntime() noexcept
{
    HMODULE runtime = nullptr;
    return GetModuleHandleExW(
               GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
               reinterpret_cast<LPCWSTR>(&typeid(std::exception)), &runtime) != 0;
}

[[maybe_unused]] const bool kIsKept = KeepRuntime();

}  // namespace
