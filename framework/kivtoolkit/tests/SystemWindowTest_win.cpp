// The dialog's window as Windows sees it.

#include "framework/kivtoolkit/src/SystemWindow.h"

#include "framework/kivtoolkit/tests/ScriptedDialog.h"

// Behind all others: it defines macros of common words.
#include <wx/msw/private.h>

namespace kivtoolkit::tests {
namespace {

using SystemWindowOnWindows = ToolkitTest;

TEST_F(SystemWindowOnWindows, CanBeResizedDownToItsLeastSizeAndHasNoGrip)
{
    ScriptedDialog dialog("");
    bool wasOpen = false;
    dialog.Then([&](auto&, auto&) {
        HWND window = static_cast<HWND>(ScriptedDialog::Window().GetHandle());
        EXPECT_NE(GetWindowLongPtrW(window, GWL_STYLE) & WS_THICKFRAME, 0);
        EXPECT_EQ(FindWindowExW(window, nullptr, L"SCROLLBAR", nullptr), nullptr);
        MINMAXINFO limits = {};
        SendMessageW(window, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
        EXPECT_GE(limits.ptMinTrackSize.x, 640);
        EXPECT_GE(limits.ptMinTrackSize.y, 440);
        EXPECT_LT(limits.ptMinTrackSize.x, 700);
        EXPECT_LT(limits.ptMinTrackSize.y, 520);
        wasOpen = true;
    });
    dialog.Show();
    EXPECT_TRUE(wasOpen);
}

TEST_F(SystemWindowOnWindows, AnotherScreensScaleChangesNothing)
{
    ScriptedDialog dialog("");
    dialog.Then([](auto&, auto&) {
        DialogWindow& window = ScriptedDialog::Window();
        const wxRect before = window.GetRect();
        const int field = window.Side().Search().Control().GetSize().y;
        RECT suggested = {10, 10, 2000, 1500};
        SendMessageW(static_cast<HWND>(window.GetHandle()), WM_DPICHANGED, MAKEWPARAM(192, 192),
                     reinterpret_cast<LPARAM>(&suggested));
        EXPECT_EQ(window.GetRect(), before);
        EXPECT_EQ(window.Side().Search().Control().GetSize().y, field);
    });
    dialog.Show();
    EXPECT_TRUE(dialog.failures.empty());
}

}  // namespace
}  // namespace kivtoolkit::tests
