#include "framework/kivtoolkit/src/SystemWindow.h"

#include "framework/kivtoolkit/src/Texts.h"

#include <wx/app.h>
#include <wx/dialog.h>
#include <wx/evtloop.h>
#include <wx/msw/private.h>

#include <dwmapi.h>

#include <map>
#include <stdexcept>
#include <utility>

namespace kivtoolkit {

namespace {

constexpr int kIdleTurns = 3;
constexpr int kMostTurns = 2000;
constexpr UINT kTurnMilliseconds = 10;
constexpr int kMostPaintTurns = 500;
constexpr wchar_t kHoldProperty[] = L"kivtoolkit.hold";
// Of the desktop's window manager; its headers are older.
constexpr DWORD kDarkCaption = 20;

HWND HandleOf(const wxWindow& window)
{
    return static_cast<HWND>(window.GetHandle());
}

// The top level window that a dialog over `host` belongs to; null where there is none, and for the
// desktop, which is nobody's to disable.
HWND OwnerFor(HWND host)
{
    HWND owner = host != nullptr && IsWindow(host) != FALSE ? GetAncestor(host, GA_ROOT) : nullptr;
    return owner != GetDesktopWindow() && owner != GetShellWindow() ? owner : nullptr;
}

bool IsAnythingUnpainted(HWND window)
{
    if (IsWindowVisible(window) == FALSE) {
        return false;
    }
    if (GetUpdateRect(window, nullptr, FALSE) != FALSE) {
        return true;
    }
    for (HWND child = GetWindow(window, GW_CHILD); child != nullptr;
         child = GetWindow(child, GW_HWNDNEXT)) {
        if (IsAnythingUnpainted(child)) {
            return true;
        }
    }
    return false;
}

// One wait for painting. It deletes itself when it is over.
class PaintWait {
public:
    PaintWait(HWND window, std::function<void()> callback)
        : window_(window), callback_(std::move(callback))
    {
        RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN);
        timer_ = SetTimer(nullptr, 0, kTurnMilliseconds, OnTimer);
        All()[timer_] = this;
    }
    PaintWait(const PaintWait&) = delete;
    PaintWait& operator=(const PaintWait&) = delete;

    // Ends the wait without a call.
    void Stop()
    {
        KillTimer(nullptr, timer_);
        All().erase(timer_);
        delete this;
    }

private:
    ~PaintWait() = default;

    static std::map<UINT_PTR, PaintWait*>& All()
    {
        static auto& all = *new std::map<UINT_PTR, PaintWait*>;
        return all;
    }

    void Turn()
    {
        // Timers come behind painting, so nearly always there is nothing left.
        if (++turns_ < kMostPaintTurns && IsAnythingUnpainted(window_)) {
            UpdateWindow(window_);
            return;
        }
        if (--idleTurns_ > 0 && turns_ < kMostPaintTurns) {
            return;
        }
        const std::function<void()> callback = std::move(callback_);
        Stop();
        callback();
    }

    static void CALLBACK OnTimer(HWND, UINT, UINT_PTR timer, DWORD)
    {
        const auto found = All().find(timer);
        if (found != All().end()) {
            found->second->Turn();
        }
    }

    HWND window_;
    std::function<void()> callback_;
    UINT_PTR timer_ = 0;
    int turns_ = 0;
    int idleTurns_ = kIdleTurns;
};

}  // namespace

bool ConfirmingButtonStandsLast()
{
    return false;
}

long DialogStyle()
{
    // Without the toolkit's own bit for a border that resizes, which comes with a bright grip.
    return wxCAPTION | wxSYSTEM_MENU | wxCLOSE_BOX | wxMAXIMIZE_BOX | wxDIALOG_NO_PARENT;
}

void DressDialog(wxTopLevelWindow& window, bool isDark)
{
    HWND handle = HandleOf(window);
    SetWindowLongPtrW(handle, GWL_STYLE, GetWindowLongPtrW(handle, GWL_STYLE) | WS_THICKFRAME);
    SetWindowPos(handle, nullptr, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
    const BOOL dark = isDark ? TRUE : FALSE;
    DwmSetWindowAttribute(handle, kDarkCaption, &dark, sizeof dark);  // where it is known
}

void LayOverSiblings(wxWindow& window)
{
    for (HWND sibling = GetWindow(HandleOf(window), GW_HWNDFIRST); sibling != nullptr;
         sibling = GetWindow(sibling, GW_HWNDNEXT)) {
        SetWindowLongPtrW(sibling, GWL_STYLE,
                          GetWindowLongPtrW(sibling, GWL_STYLE) | WS_CLIPSIBLINGS);
    }
    window.Raise();
}

bool AttachToHost(wxTopLevelWindow& window, HWND host)
{
    HWND owner = OwnerFor(host);
    if (owner == nullptr || owner == HandleOf(window)) {
        return false;
    }
    SetWindowLongPtrW(HandleOf(window), GWLP_HWNDPARENT, reinterpret_cast<LONG_PTR>(owner));
    return GetWindow(HandleOf(window), GW_OWNER) == owner;
}

std::optional<wxRect> RectOfHost(HWND host)
{
    HWND owner = OwnerFor(host);
    RECT rect = {};
    if (owner == nullptr || IsIconic(owner) != FALSE || GetWindowRect(owner, &rect) == FALSE) {
        return std::nullopt;
    }
    return wxRect(wxPoint(rect.left, rect.top),
                  wxSize(rect.right - rect.left, rect.bottom - rect.top));
}

struct HostHold::State {
    HWND window = nullptr;
    HWND owner = nullptr;
    HWND focus = nullptr;  // before the dialog
    bool isDisabledByUs = false;
    WNDPROC before = nullptr;
    std::function<void()> lost;

    static LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        auto* state = static_cast<State*>(GetPropW(window, kHoldProperty));
        if (state == nullptr) {
            return DefWindowProcW(window, message, wParam, lParam);
        }
        const WNDPROC before = state->before;
        if (message == WM_DPICHANGED) {
            return 0;  // the scale stays what it was when the dialog opened
        }
        if (message == WM_DESTROY) {
            // Not by us, who let go before.
            state->LetGo();
            state->window = nullptr;
            const std::function<void()> lost = state->lost;
            lost();
        }
        return CallWindowProcW(before, window, message, wParam, lParam);
    }

    void LetGo() noexcept
    {
        if (window != nullptr) {
            SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(before));
            RemovePropW(window, kHoldProperty);
        }
    }
};

HostHold::HostHold(wxTopLevelWindow& window, const std::function<void()>& lost)
    : state_(std::make_unique<State>())
{
    state_->window = HandleOf(window);
    state_->owner = GetWindow(state_->window, GW_OWNER);
    state_->focus = GetFocus();
    state_->lost = lost;
    SetPropW(state_->window, kHoldProperty, state_.get());
    state_->before = reinterpret_cast<WNDPROC>(SetWindowLongPtrW(
        state_->window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&State::OnMessage)));
    if (state_->owner != nullptr) {
        state_->isDisabledByUs = EnableWindow(state_->owner, FALSE) == FALSE;
    }
}

void HostHold::Release() noexcept
{
    if (std::exchange(state_->isDisabledByUs, false) && IsWindow(state_->owner) != FALSE) {
        EnableWindow(state_->owner, TRUE);
    }
}

HostHold::~HostHold()
{
    Release();
    state_->LetGo();
    // Only where the user has not gone elsewhere meanwhile.
    HWND active = GetActiveWindow();
    const bool isBack = active == nullptr || active == state_->owner || active == state_->window;
    if (state_->owner == nullptr || !isBack || IsWindow(state_->owner) == FALSE) {
        return;
    }
    SetActiveWindow(state_->owner);
    if (state_->focus != nullptr && GetAncestor(state_->focus, GA_ROOT) == state_->owner) {
        SetFocus(state_->focus);
    }
}

// Menus and tooltips stay the system's own: darkening them is a matter of the whole process.
DarkSide::DarkSide(bool) {}

DarkSide::~DarkSide() = default;

std::function<void()> CallWhenPainted(wxWindow& window, std::function<void()> callback)
{
    // What stops the wait must not touch one that is over.
    auto wait = std::make_shared<PaintWait*>(nullptr);
    *wait = new PaintWait(HandleOf(window), [wait, callback = std::move(callback)] {
        *wait = nullptr;
        callback();
    });
    return [wait] {
        if (*wait != nullptr) {
            std::exchange(*wait, nullptr)->Stop();
        }
    };
}

void HandleWaitingEvents()
{
    wxEventLoopBase* loop = wxEventLoopBase::GetActive();
    for (int turn = 0; turn < kMostTurns && loop != nullptr; ++turn) {
        wxTheApp->ProcessPendingEvents();
        if (!loop->Pending() || !loop->Dispatch()) {
            return;
        }
    }
}

}  // namespace kivtoolkit
