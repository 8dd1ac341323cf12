// Windows as a guest. Everything of the toolkit is this thread's or this module's own here; what it
// may touch of the process is the way in which errors are shown, and the one message that asks the
// program to end.

#include "framework/kivtoolkit/src/Guest.h"

#include "framework/kivtoolkit/src/Texts.h"

#include <wx/msw/private.h>

#include <clocale>
#include <stdexcept>
#include <string>

namespace kivtoolkit {

namespace {

// Plain data, because it outlives every static destructor.
using Handler = void (*)();
constinit Handler endingHandler = nullptr;
constinit int guardDepth = 0;
constinit HHOOK messageHook = nullptr;
constinit bool hasQuit = false;
constinit WPARAM quitCode = 0;

// The toolkit's loop drops the request with the code in it; whoever takes it off the queue passes
// here first.
LRESULT CALLBACK OnMessage(int code, WPARAM removal, LPARAM data)
{
    const MSG& message = *reinterpret_cast<const MSG*>(data);
    if (code == HC_ACTION && removal == PM_REMOVE && message.message == WM_QUIT && !hasQuit) {
        hasQuit = true;
        quitCode = message.wParam;
        if (endingHandler != nullptr) {
            endingHandler();
        }
    }
    return CallNextHookEx(messageHook, code, removal, data);
}

HINSTANCE OwnModule()
{
    static const char anchor = 0;
    HMODULE module = nullptr;
    GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        reinterpret_cast<LPCWSTR>(&anchor), &module);
    return module;
}

}  // namespace

std::shared_ptr<void> RequireDisplay()
{
    // A service has no desktop, and a used-up one gives no more windows: only trying tells.
    HWND probe = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr,
                                 OwnModule(), nullptr);
    if (probe == nullptr) {
        throw std::runtime_error(
            Utf8Text("$$$/Kiv/Dialog/Failure/NoDisplay=There is no display that a dialog could be "
                     "shown on."));
    }
    DestroyWindow(probe);
    return nullptr;
}

void PrepareToolkitStart()
{
    // Window classes belong to this module: a program with a toolkit of the same kind inside itself
    // has others of the same names.
    wxSetInstance(OwnModule());
}

bool IsToolkitOurs() noexcept
{
    return true;
}

bool IsConnectionLost() noexcept
{
    return false;
}

void SetEndingHandler(void (*handler)()) noexcept
{
    endingHandler = handler;
}

struct StartGuard::Saved {
    UINT errorMode = 0;
};

StartGuard::StartGuard() : saved_(std::make_unique<Saved>())
{
    saved_->errorMode = GetErrorMode();
}

StartGuard::~StartGuard()
{
    if (GetErrorMode() != saved_->errorMode) {
        SetErrorMode(saved_->errorMode);
    }
}

void ReleaseClipboard() {}  // native fields hand their text over when it is copied

struct GuestGuard::Saved {
    std::string locale;
    UINT errorMode = 0;
};

GuestGuard::GuestGuard() : saved_(std::make_unique<Saved>())
{
    const char* locale = std::setlocale(LC_ALL, nullptr);
    saved_->locale = locale != nullptr ? locale : "";
    saved_->errorMode = GetErrorMode();
    if (++guardDepth == 1) {
        hasQuit = false;
        messageHook = SetWindowsHookExW(WH_GETMESSAGE, OnMessage, nullptr, GetCurrentThreadId());
    }
}

void GuestGuard::Reinstall() {}

GuestGuard::~GuestGuard()
{
    if (--guardDepth == 0) {
        if (messageHook != nullptr) {
            UnhookWindowsHookEx(messageHook);
            messageHook = nullptr;
        }
        if (hasQuit) {
            hasQuit = false;
            PostQuitMessage(static_cast<int>(quitCode));
        }
    }
    if (GetErrorMode() != saved_->errorMode) {
        SetErrorMode(saved_->errorMode);
    }
    const char* locale = std::setlocale(LC_ALL, nullptr);
    if (locale == nullptr || saved_->locale != locale) {
        std::setlocale(LC_ALL, saved_->locale.c_str());
    }
}

}  // namespace kivtoolkit
