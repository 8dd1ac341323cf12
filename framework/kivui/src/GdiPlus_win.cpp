#include <kivui/GdiPlus.h>

#include <stdexcept>
#include <string>

// GDI+ wants the system's types in place before its own header.
#include <windows.h>

#include <objidl.h>

#include <gdiplus.h>

namespace kivui::utility {

namespace {

void Require(Gdiplus::Status status)
{
    if (status != Gdiplus::Ok) {
        throw std::runtime_error("GDI+ cannot be started: status " + std::to_string(status));
    }
}

}  // namespace

// One start. By itself GDI+ runs a thread for its messages; told not to, it is hooked into the
// message loop of the calling thread instead, so that the host gets no thread from us.
struct StartupShutdownGdiPlus::State {
    State()
    {
        Gdiplus::GdiplusStartupInput input;
        input.SuppressBackgroundThread = TRUE;
        Require(Gdiplus::GdiplusStartup(&token, &input, &hooks));
        const Gdiplus::Status status = hooks.NotificationHook(&hookToken);
        if (status != Gdiplus::Ok) {
            Gdiplus::GdiplusShutdown(token);
        }
        Require(status);
    }
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State()
    {
        hooks.NotificationUnhook(hookToken);
        Gdiplus::GdiplusShutdown(token);
    }

    ULONG_PTR token = 0;
    ULONG_PTR hookToken = 0;
    Gdiplus::GdiplusStartupOutput hooks{};
};

StartupShutdownGdiPlus::StartupShutdownGdiPlus() : state_(std::make_unique<State>()) {}

StartupShutdownGdiPlus::~StartupShutdownGdiPlus() = default;

}  // namespace kivui::utility
