// What a plain Win32 host finds during and after dialogs: its window waits below and keeps
// painting, and nothing of the process changes.

#include <array>
#include <clocale>
#include <cstdint>
#include <cwchar>
#include <filesystem>
#include <functional>
#include <iostream>
#include <string>
#include <utility>

#include "framework/kivtoolkit/tests/GuestHost.h"
#include "tests/ProcessCounts.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace kivtoolkit::tests {
namespace {

namespace fs = std::filesystem;
using kivmetadataui::DialogDriver;

constexpr int kRounds = 50;
constexpr std::size_t kHeapGrowth = 256 * 1024;
constexpr UINT_PTR kTimer = 1;
constexpr wchar_t kClassName[] = L"KivToolkitGuestTest";

// A window with a text field that has the focus. A timer makes it paint all the time.
class HostWindow {
public:
    HostWindow()
    {
        WNDCLASSW type = {};
        type.lpfnWndProc = OnMessage;
        type.hInstance = GetModuleHandleW(nullptr);
        type.lpszClassName = kClassName;
        RegisterClassW(&type);
        window_ = CreateWindowExW(0, kClassName, L"Host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 40, 50,
                                  600, 500, nullptr, nullptr, type.hInstance, this);
        field_ = CreateWindowExW(0, L"EDIT", L"", WS_CHILD | WS_VISIBLE, 10, 10, 200, 30, window_,
                                 nullptr, type.hInstance, nullptr);
        SetTimer(window_, kTimer, 20, nullptr);
        SetForegroundWindow(window_);
        SetFocus(field_);
    }
    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;
    ~HostWindow()
    {
        Destroy();
        UnregisterClassW(kClassName, GetModuleHandleW(nullptr));
    }

    void Destroy()
    {
        if (window_ != nullptr) {
            KillTimer(window_, kTimer);
            DestroyWindow(std::exchange(window_, nullptr));
        }
    }

    HWND Window() const { return window_; }
    HWND Field() const { return field_; }
    int Paints() const { return paints_; }
    int Inputs() const { return inputs_; }
    /// Runs at each tick, from within whatever loop is running.
    std::function<void()> tick;

private:
    static LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM first, LPARAM second)
    {
        if (message == WM_NCCREATE) {
            const auto* made = reinterpret_cast<const CREATESTRUCTW*>(second);
            SetWindowLongPtrW(window, GWLP_USERDATA,
                              reinterpret_cast<LONG_PTR>(made->lpCreateParams));
        }
        auto* self = reinterpret_cast<HostWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        switch (message) {
            case WM_PAINT: {
                PAINTSTRUCT paint;
                BeginPaint(window, &paint);
                EndPaint(window, &paint);
                ++self->paints_;
                return 0;
            }
            case WM_TIMER:
                InvalidateRect(window, nullptr, FALSE);
                if (self->tick) {
                    self->tick();
                }
                return 0;
            case WM_LBUTTONDOWN:
            case WM_KEYDOWN:
                ++self->inputs_;
                return 0;
            default:
                return DefWindowProcW(window, message, first, second);
        }
    }

    HWND window_ = nullptr;
    HWND field_ = nullptr;
    int paints_ = 0;
    int inputs_ = 0;
};

// The dialog of this thread that `owner` owns; null where there is none.
HWND DialogOver(HWND owner)
{
    struct Search {
        HWND owner;
        HWND found;
    } search = {owner, nullptr};
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND window, LPARAM data) {
            auto& wanted = *reinterpret_cast<Search*>(data);
            if (IsWindowVisible(window) != FALSE && GetWindow(window, GW_OWNER) == wanted.owner) {
                wanted.found = window;
            }
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.found;
}

std::wstring Environment()
{
    wchar_t* const block = GetEnvironmentStringsW();
    wchar_t* end = block;
    while (*end != L'\0') {
        end += std::wcslen(end) + 1;
    }
    std::wstring all(block, end);
    FreeEnvironmentStringsW(block);
    return all;
}

TEST(GuestOnWindows, TheHostsWindowWaitsPaintsAndGetsTheFocusBack)
{
    HostWindow window;
    GuestHost host;
    for (const bool confirms : {true, false}) {
        SCOPED_TRACE(confirms);
        ASSERT_EQ(GetFocus(), window.Field());
        const int paintsBefore = window.Paints();
        bool wasDisabled = false;
        bool wasOwned = false;
        window.tick = [&] {
            if (DialogOver(window.Window()) != nullptr) {
                wasOwned = true;
                wasDisabled = wasDisabled || IsWindowEnabled(window.Window()) == FALSE;
            }
        };
        DialogDriver driver;
        for (int i = 0; i < 5; ++i) {
            driver.TypeValue("photoshop:Headline", "typed " + std::to_string(i)).WaitUntilPainted();
        }
        if (confirms) {
            driver.PressOk();
        } else {
            driver.PressCancel();
        }
        EXPECT_EQ(host.ShowDialog(std::move(driver), window.Window()), confirms)
            << GuestHost::Failure();
        EXPECT_TRUE(wasOwned);
        EXPECT_TRUE(wasDisabled);
        EXPECT_GE(window.Paints(), paintsBefore + 3) << "it kept painting";
        EXPECT_NE(IsWindowEnabled(window.Window()), FALSE);
        EXPECT_EQ(GetActiveWindow(), window.Window());
        EXPECT_EQ(GetFocus(), window.Field()) << "the very field, not only the window";
        EXPECT_EQ(DialogOver(window.Window()), nullptr);
        EXPECT_EQ(window.Inputs(), 0) << "what the script types is for the dialog alone";
    }
    EXPECT_EQ(host.Title(), "typed 4");
}

TEST(GuestOnWindows, AWindowThatTheHostDisabledStaysDisabled)
{
    HostWindow window;
    EnableWindow(window.Window(), FALSE);
    GuestHost host;
    EXPECT_TRUE(host.ShowDialog(TypeTitle("x"), window.Window())) << GuestHost::Failure();
    EXPECT_EQ(IsWindowEnabled(window.Window()), FALSE);
}

TEST(Guest, AParentThatDoesNotExistCountsAsNone)
{
    GuestHost host;
    for (const std::uintptr_t number : {std::uintptr_t{1}, std::uintptr_t{0x7FFFFFF}}) {
        const std::string title = "x" + std::to_string(number);
        EXPECT_TRUE(host.ShowDialog(TypeTitle(title), reinterpret_cast<HWND>(number)));
        EXPECT_EQ(host.Title(), title);
    }
    // Nor is the desktop anybody's window to disable.
    EXPECT_TRUE(host.ShowDialog(TypeTitle("y"), GetDesktopWindow()));
    EXPECT_NE(IsWindowEnabled(GetDesktopWindow()), FALSE);
}

TEST(GuestOnWindows, ARequestToEndTheProgramCancelsAndReachesTheHost)
{
    HostWindow window;
    GuestHost host;
    bool isAsked = false;
    window.tick = [&] {
        if (!isAsked && DialogOver(window.Window()) != nullptr) {
            isAsked = true;
            PostQuitMessage(77);
        }
    };
    DialogDriver driver;
    for (int i = 0; i < 50; ++i) {
        driver.TypeValue("photoshop:Headline", "late " + std::to_string(i)).WaitUntilPainted();
    }
    EXPECT_FALSE(host.ShowDialog(std::move(driver.PressOk()), window.Window()));
    EXPECT_TRUE(isAsked);
    EXPECT_EQ(host.Title(), "old");
    EXPECT_NE(IsWindowEnabled(window.Window()), FALSE);
    MSG message = {};
    ASSERT_NE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE), FALSE);
    EXPECT_EQ(message.wParam, 77U);
    EXPECT_EQ(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE), FALSE) << "only once";
    // And the next dialog works.
    window.tick = {};
    EXPECT_TRUE(host.ShowDialog(TypeTitle("x"), window.Window())) << GuestHost::Failure();
}

TEST(GuestOnWindows, ADialogWhoseOwnerIsDestroyedIsCancelled)
{
    HostWindow window;
    GuestHost host;
    bool isGone = false;
    window.tick = [&] {
        if (!isGone && DialogOver(window.Window()) != nullptr) {
            isGone = true;
            window.Destroy();
        }
    };
    DialogDriver driver;
    for (int i = 0; i < 50; ++i) {
        driver.TypeValue("photoshop:Headline", "late " + std::to_string(i)).WaitUntilPainted();
    }
    EXPECT_FALSE(host.ShowDialog(std::move(driver.PressOk()), window.Window()));
    EXPECT_TRUE(isGone);
    EXPECT_EQ(host.Title(), "old");
    EXPECT_TRUE(host.ShowDialog(TypeTitle("x"))) << GuestHost::Failure();
}

TEST(Guest, NothingOfTheProcessChanges)
{
    std::setlocale(LC_ALL, "C");
    SetErrorMode(SEM_NOGPFAULTERRORBOX);
    const UINT errorMode = GetErrorMode();
    const DPI_AWARENESS awareness =
        GetAwarenessFromDpiAwarenessContext(GetThreadDpiAwarenessContext());
    const std::wstring environment = Environment();
    const fs::path folder = fs::current_path();
    std::array<BYTE, 256> keys{};
    GetKeyboardState(keys.data());
    {
        GuestHost host;
        bool wasOpen = false;
        host.whileOpen = [&] {
            wasOpen = true;
            EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
            EXPECT_EQ(GetAwarenessFromDpiAwarenessContext(GetThreadDpiAwarenessContext()),
                      awareness);
        };
        EXPECT_TRUE(host.ShowDialog(TypeTitle("SHIFTED x")));
        EXPECT_TRUE(wasOpen);
    }
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
    EXPECT_EQ(GetErrorMode(), errorMode);
    EXPECT_EQ(GetAwarenessFromDpiAwarenessContext(GetThreadDpiAwarenessContext()), awareness);
    EXPECT_EQ(Environment(), environment);
    EXPECT_EQ(fs::current_path(), folder);
    std::array<BYTE, 256> keysAfterwards{};
    GetKeyboardState(keysAfterwards.data());
    EXPECT_EQ(keysAfterwards, keys);
}

TEST(Guest, ManyRoundsLeaveNothingOpen)
{
    // The source of the count counts.
    const std::size_t before = kivtests::OpenHandles();
    std::array<HANDLE, 10> events{};
    for (HANDLE& event : events) {
        event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    }
    EXPECT_EQ(kivtests::OpenHandles(), before + events.size());
    for (HANDLE event : events) {
        CloseHandle(event);
    }

    HostWindow window;
    const auto round = [&](int number) {
        GuestHost host;
        EXPECT_TRUE(host.ShowDialog(TypeTitle(std::to_string(number)), window.Window()));
    };
    round(1);
    round(2);
    const std::size_t handles = kivtests::OpenHandles();
    std::size_t halfway = 0;
    for (int i = 0; i < kRounds; ++i) {
        round(i + 3);
        if (i + 1 == kRounds / 2) {
            halfway = kivtests::HeapInUse();
        }
    }
    EXPECT_LE(kivtests::OpenHandles(), handles);
    const std::size_t end = kivtests::HeapInUse();
    std::cout << "heap at half-way " << halfway << ", at the end " << end << "\n";
    EXPECT_LE(end, halfway + kHeapGrowth);
}

}  // namespace
}  // namespace kivtoolkit::tests
