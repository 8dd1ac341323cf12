// Keeps the C++ runtime in the process once it is there. Loaded and unloaded again and again with
// our libraries it would leave its memory for exceptions (some 70 KB) and the thread library's
// handles behind each time: neither frees them when it goes. PlainHost_win.c holds this.

#include <windows.h>

namespace {

bool KeepRuntime() noexcept
{
    HMODULE runtime = nullptr;
    return GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN, L"libstdc++-6.dll", &runtime) != 0;
}

[[maybe_unused]] const bool kIsKept = KeepRuntime();

}  // namespace
