// The dialog over a plain Win32 host: windows of the host's own as its owner, and input as it comes
// from the keyboard.

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <windows.h>

#include "tests/DialogFixture.h"

#include <kivmetadataui/DialogDriver.h>

namespace kivtests {
namespace {

using Clock = std::chrono::steady_clock;

// Virtual machines are slow now and then.
constexpr auto kPatience = std::chrono::seconds(30);

constexpr wchar_t kHostClass[] = L"KivTestsHost";

int paintsOfTheHost = 0;
int ticksOfTheHost = 0;

LRESULT CALLBACK HostProcedure(HWND window, UINT message, WPARAM first, LPARAM second)
{
    if (message == WM_PAINT) {
        PAINTSTRUCT paint;
        BeginPaint(window, &paint);
        FillRect(paint.hdc, &paint.rcPaint, GetSysColorBrush(COLOR_HIGHLIGHT));
        EndPaint(window, &paint);
        ++paintsOfTheHost;
        return 0;
    }
    if (message == WM_TIMER) {
        ++ticksOfTheHost;
        return 0;
    }
    return DefWindowProcW(window, message, first, second);
}

std::wstring Wide(const std::string& text)
{
    return std::filesystem::path(std::u8string(text.begin(), text.end())).wstring();
}

class WindowsHost {
public:
    WindowsHost()
    {
        WNDCLASSW type = {};
        type.lpfnWndProc = HostProcedure;
        type.hInstance = GetModuleHandleW(nullptr);
        type.lpszClassName = kHostClass;
        RegisterClassW(&type);
        paintsOfTheHost = 0;
        ticksOfTheHost = 0;
    }
    WindowsHost(const WindowsHost&) = delete;
    WindowsHost& operator=(const WindowsHost&) = delete;
    ~WindowsHost()
    {
        for (const HWND window : windows_) {
            DestroyWindow(window);
        }
        HandleMessages();
        UnregisterClassW(kHostClass, GetModuleHandleW(nullptr));
    }

    /// Visible, painted and in the foreground.
    HWND MakeWindow()
    {
        const HWND window =
            CreateWindowExW(0, kHostClass, L"Host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 50, 60, 500,
                            400, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
        windows_.push_back(window);
        SetForegroundWindow(window);
        WaitFor([window] { return GetForegroundWindow() == window && paintsOfTheHost > 0; });
        return window;
    }

    static HWND MakeChild(HWND parent)
    {
        return CreateWindowExW(0, L"BUTTON", L"Metadata", WS_CHILD | WS_VISIBLE, 10, 10, 100, 30,
                               parent, nullptr, GetModuleHandleW(nullptr), nullptr);
    }

    static void HandleMessages()
    {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
            DispatchMessageW(&message);
        }
    }

    /// Handles messages until it is so; false if it never is.
    static bool WaitFor(const std::function<bool()>& isSo)
    {
        const auto end = Clock::now() + kPatience;
        while (!isSo()) {
            if (Clock::now() > end) {
                return false;
            }
            HandleMessages();
            Sleep(10);
        }
        return true;
    }

    /// Visible windows of this thread that `owner` owns; of nobody for null, the host's left out.
    static std::vector<HWND> OwnedBy(HWND owner)
    {
        struct Search {
            HWND owner;
            std::vector<HWND> found;
        } search = {owner, {}};
        EnumThreadWindows(
            GetCurrentThreadId(),
            [](HWND window, LPARAM context) -> BOOL {
                auto& into = *reinterpret_cast<Search*>(context);
                wchar_t type[64] = {};
                GetClassNameW(window, type, 64);
                if (IsWindowVisible(window) != 0 && GetWindow(window, GW_OWNER) == into.owner &&
                    std::wstring(type) != kHostClass) {
                    into.found.push_back(window);
                }
                return TRUE;
            },
            reinterpret_cast<LPARAM>(&search));
        return search.found;
    }

private:
    std::vector<HWND> windows_;
};

MetadataDialogRequest RequestOver(HWND parent, const char* text = nullptr)
{
    MetadataDialogRequest request = {};
    request.parentWindow = parent;
    request.text = text;
    return request;
}

// Types into the window with this title once it is in the foreground, from a thread of its own, as
// the keyboard does; the last key with Ctrl held where it is Return, which else ends an edit only.
class Typist {
public:
    Typist(std::string title, std::wstring text, WORD lastKey)
        : thread_([title = Wide(title), text = std::move(text), lastKey] {
              Type(title, text, lastKey);
          })
    {
    }
    Typist(const Typist&) = delete;
    Typist& operator=(const Typist&) = delete;
    ~Typist() { thread_.join(); }

private:
    static void Type(const std::wstring& title, const std::wstring& text, WORD lastKey)
    {
        HWND window = nullptr;
        const auto end = Clock::now() + kPatience;
        while (window == nullptr || GetForegroundWindow() != window) {
            if (Clock::now() > end) {
                break;
            }
            Sleep(50);
            window = FindWindowW(nullptr, title.c_str());
        }
        Sleep(500);  // the first field takes the focus
        for (const wchar_t unit : text) {
            Press(0, unit);
        }
        Sleep(500);
        if (lastKey == VK_RETURN) {
            Hold(VK_CONTROL, true);
        }
        Press(lastKey, 0);
        if (lastKey == VK_RETURN) {
            Hold(VK_CONTROL, false);
        }
        // So that the test fails and does not stand still.
        const auto giveUp = Clock::now() + kPatience;
        while (IsWindow(window) != 0) {
            if (Clock::now() > giveUp) {
                PostMessageW(window, WM_CLOSE, 0, 0);
            }
            Sleep(100);
        }
    }

    static void Hold(WORD key, bool isDown)
    {
        INPUT input = {};
        input.type = INPUT_KEYBOARD;
        input.ki.wVk = key;
        input.ki.dwFlags = isDown ? 0 : KEYEVENTF_KEYUP;
        SendInput(1, &input, sizeof input);
        Sleep(20);
    }

    static void Press(WORD key, wchar_t unit)
    {
        INPUT input[2] = {};
        for (INPUT& each : input) {
            each.type = INPUT_KEYBOARD;
            each.ki.wVk = key;
            each.ki.wScan = unit;
            each.ki.dwFlags = key == 0 ? KEYEVENTF_UNICODE : 0;
        }
        input[1].ki.dwFlags |= KEYEVENTF_KEYUP;
        SendInput(2, input, sizeof input[0]);
        Sleep(20);
    }

    std::thread thread_;
};

class LibraryDialogWindowsTest : public DialogFixture {
protected:
    // Late enough for the window to be on the screen.
    static constexpr std::size_t kLateCallback = 30;

    // The hook counts callbacks; this gives it enough of them.
    static DialogDriver LongScript()
    {
        DialogDriver script;
        script.WaitUntilPainted();
        for (const char* const view : {"rights", "camera", "iptc", "description"}) {
            script.ChooseView(view);
        }
        script.TypeValue("dc:title[@x-default]", "Busy").WaitUntilPainted();
        return script;
    }
    static DialogDriver Busy() { return std::move(LongScript().PressOk()); }
    static DialogDriver BusyAndCancelled() { return std::move(LongScript().PressCancel()); }

    WindowsHost host;
};

TEST_F(LibraryDialogWindowsTest, TheDialogBelongsToItsOwner)
{
    const XmpObject object;
    const HWND owner = host.MakeWindow();
    Start();
    std::size_t owned = 0;
    const auto hook =
        CallbackHook::Install(kLateCallback, [&] { owned = WindowsHost::OwnedBy(owner).size(); });
    EXPECT_TRUE(Run(object, Busy(), RequestOver(owner))) << LastFailure();
    EXPECT_TRUE(hook->HasRun());
    EXPECT_EQ(owned, 1U);
    EXPECT_TRUE(WindowsHost::OwnedBy(owner).empty()) << "the dialog's window is gone";
    // Without a parent it belongs to nobody.
    std::size_t free = 0;
    CallbackHook::Install(kLateCallback, [&] {
        owned = WindowsHost::OwnedBy(owner).size();
        free = WindowsHost::OwnedBy(nullptr).size();
    });
    EXPECT_TRUE(Run(object, Busy())) << LastFailure();
    EXPECT_EQ(owned, 0U);
    EXPECT_EQ(free, 1U);
    api.terminate();
    EXPECT_TRUE(WindowsHost::OwnedBy(nullptr).empty());
    EXPECT_NE(IsWindowVisible(owner), 0);
}

TEST_F(LibraryDialogWindowsTest, TheOwnerIsDisabledMeanwhileAndGetsTheFocusBack)
{
    const XmpObject object;
    const HWND owner = host.MakeWindow();
    Start();
    for (const bool isConfirmed : {true, false}) {
        SCOPED_TRACE(isConfirmed);
        bool isEnabled = true;
        HWND foreground = owner;
        const auto hook = CallbackHook::Install(kLateCallback, [&] {
            isEnabled = IsWindowEnabled(owner) != 0;
            foreground = GetForegroundWindow();
        });
        EXPECT_EQ(Run(object, isConfirmed ? Busy() : BusyAndCancelled(), RequestOver(owner)),
                  isConfirmed);
        EXPECT_EQ(LastFailure(), "");
        EXPECT_TRUE(hook->HasRun());
        EXPECT_FALSE(isEnabled);
        EXPECT_NE(foreground, owner);
        EXPECT_NE(IsWindowEnabled(owner), 0);
        EXPECT_TRUE(WindowsHost::WaitFor([&] { return GetForegroundWindow() == owner; }));
        EXPECT_EQ(GetActiveWindow(), owner);
    }
    api.terminate();
}

TEST_F(LibraryDialogWindowsTest, AnOwnerThatTheHostHadDisabledStaysDisabled)
{
    const XmpObject object;
    const HWND owner = host.MakeWindow();
    EnableWindow(owner, FALSE);
    Start();
    EXPECT_TRUE(Run(object, Ok(), RequestOver(owner))) << LastFailure();
    EXPECT_EQ(IsWindowEnabled(owner), 0);
    api.terminate();
}

TEST_F(LibraryDialogWindowsTest, TheHostKeepsPaintingAndItsTimersRun)
{
    const XmpObject object;
    const HWND owner = host.MakeWindow();
    SetTimer(owner, 1, 10, nullptr);
    Start();
    int paints = 0;
    int ticks = 0;
    const auto hook = CallbackHook::Install(kLateCallback, [&] {
        paints = paintsOfTheHost;
        ticks = ticksOfTheHost;
        InvalidateRect(owner, nullptr, TRUE);
    });
    EXPECT_TRUE(Run(object, Busy(), RequestOver(owner))) << LastFailure();
    EXPECT_TRUE(hook->HasRun());
    EXPECT_GT(paintsOfTheHost, paints);
    EXPECT_GT(ticksOfTheHost, ticks);
    KillTimer(owner, 1);
    api.terminate();
}

// A host may hand over the control that was clicked; its whole window waits.
TEST_F(LibraryDialogWindowsTest, AChildStandsForItsWindow)
{
    const XmpObject object;
    const HWND owner = host.MakeWindow();
    const HWND child = WindowsHost::MakeChild(owner);
    Start();
    bool isEnabled = true;
    std::size_t owned = 0;
    const auto hook = CallbackHook::Install(kLateCallback, [&] {
        isEnabled = IsWindowEnabled(owner) != 0;
        owned = WindowsHost::OwnedBy(owner).size();
    });
    EXPECT_TRUE(Run(object, Busy(), RequestOver(child))) << LastFailure();
    EXPECT_TRUE(hook->HasRun());
    EXPECT_FALSE(isEnabled);
    EXPECT_EQ(owned, 1U);
    EXPECT_NE(IsWindowEnabled(owner), 0);
    EXPECT_NE(IsWindowEnabled(child), 0);
    api.terminate();
}

TEST_F(LibraryDialogWindowsTest, AnOwnerThatDoesNotExistCountsAsNone)
{
    const XmpObject object;
    const HWND gone = host.MakeWindow();
    DestroyWindow(gone);
    Start();
    for (const HWND owner : {gone, reinterpret_cast<HWND>(1), reinterpret_cast<HWND>(0x1FFFFFFE),
                             reinterpret_cast<HWND>(~std::uintptr_t{0})}) {
        const std::string title = std::to_string(reinterpret_cast<std::uintptr_t>(owner));
        SCOPED_TRACE(title);
        EXPECT_TRUE(Run(object, Title(title), RequestOver(owner))) << LastFailure();
        EXPECT_EQ(object.Text("dc:title[@x-default]"), title);
    }
    api.terminate();
}

TEST_F(LibraryDialogWindowsTest, TheTextIsTheTitle)
{
    const XmpObject object;
    Start();
    const char* const text = "Größe ✓.jpg";
    bool hasTitle = false;
    const auto hook = CallbackHook::Install(
        kLateCallback, [&] { hasTitle = FindWindowW(nullptr, Wide(text).c_str()) != nullptr; });
    EXPECT_TRUE(Run(object, Busy(), RequestOver(nullptr, text))) << LastFailure();
    EXPECT_TRUE(hook->HasRun());
    EXPECT_TRUE(hasTitle);
    api.terminate();
    EXPECT_EQ(FindWindowW(nullptr, Wide(text).c_str()), nullptr);
}

// The host's loop must see that it is to end; the dialog is cancelled.
TEST_F(LibraryDialogWindowsTest, TheEndOfTheHostReachesItsLoop)
{
    const XmpObject object;
    const HWND owner = host.MakeWindow();
    Start();
    const auto hook = CallbackHook::Install(kLateCallback, [] { PostQuitMessage(7); });
    EXPECT_FALSE(Run(object, Busy(), RequestOver(owner)));
    EXPECT_TRUE(hook->HasRun());
    EXPECT_EQ(object.Bytes(), kSamplePacket);
    MSG message = {};
    EXPECT_NE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE), 0);
    EXPECT_EQ(message.wParam, 7U);
    EXPECT_NE(IsWindowEnabled(owner), 0);
    EXPECT_TRUE(Run(object, Title("Next"), RequestOver(owner))) << LastFailure();
    api.terminate();
}

TEST_F(LibraryDialogWindowsTest, WhatIsTypedArrivesAndControlReturnConfirms)
{
    const XmpObject object;
    const HWND owner = host.MakeWindow();
    Start();
    const MetadataDialogRequest request = RequestOver(owner, "Typing 1");
    {
        const Typist typist("Typing 1", L"Größe 大", VK_RETURN);
        EXPECT_TRUE(api.doDialog(object.Get(), &request)) << LastFailure();
    }
    EXPECT_EQ(object.Text("photoshop:Headline"), "Größe 大");
    EXPECT_TRUE(WindowsHost::WaitFor([&] { return GetForegroundWindow() == owner; }));
    api.terminate();
}

TEST_F(LibraryDialogWindowsTest, EscapeCancelsWhatWasTyped)
{
    const XmpObject object;
    const HWND owner = host.MakeWindow();
    Start();
    const MetadataDialogRequest request = RequestOver(owner, "Typing 2");
    {
        const Typist typist("Typing 2", L"never", VK_ESCAPE);
        EXPECT_FALSE(api.doDialog(object.Get(), &request));
        EXPECT_EQ(LastFailure(), "");
    }
    EXPECT_EQ(object.Bytes(), kSamplePacket);
    EXPECT_TRUE(WindowsHost::WaitFor([&] { return GetForegroundWindow() == owner; }));
    api.terminate();
}

}  // namespace
}  // namespace kivtests
