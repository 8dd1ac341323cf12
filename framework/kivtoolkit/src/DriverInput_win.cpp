// Input for scripts: messages to our own windows, as the system would send them, with the state of
// the keys set for this thread alone.

#include "framework/kivtoolkit/src/SystemWindow.h"

#include <wx/evtloop.h>
#include <wx/msw/private.h>

#include <array>
#include <stdexcept>
#include <string>
#include <utility>

namespace kivtoolkit {

namespace {

using kivmetadataui::DriverKey;
using kivmetadataui::DriverKeyPress;

constexpr LPARAM kOnce = 1;
constexpr LPARAM kExtendedKey = LPARAM{1} << 24;
constexpr LPARAM kAltIsDown = LPARAM{1} << 29;
constexpr LPARAM kWasDown = LPARAM{1} << 30;
constexpr LPARAM kGoesUp = LPARAM{1} << 31;

struct KeyRow {
    DriverKey key;
    WORD code;
    int toolkitCode;
    bool isExtended;
    wchar_t character;  // 0 where the key has none
};

constexpr KeyRow kKeyRows[] = {
    {DriverKey::kEnter, VK_RETURN, WXK_RETURN, false, L'\r'},
    {DriverKey::kEscape, VK_ESCAPE, WXK_ESCAPE, false, 0x1B},
    {DriverKey::kTab, VK_TAB, WXK_TAB, false, L'\t'},
    {DriverKey::kBackspace, VK_BACK, WXK_BACK, false, L'\b'},
    {DriverKey::kDelete, VK_DELETE, WXK_DELETE, true, 0},
    {DriverKey::kSpace, VK_SPACE, WXK_SPACE, false, L' '},
    {DriverKey::kLeft, VK_LEFT, WXK_LEFT, true, 0},
    {DriverKey::kRight, VK_RIGHT, WXK_RIGHT, true, 0},
    {DriverKey::kUp, VK_UP, WXK_UP, true, 0},
    {DriverKey::kDown, VK_DOWN, WXK_DOWN, true, 0},
    {DriverKey::kHome, VK_HOME, WXK_HOME, true, 0},
    {DriverKey::kEnd, VK_END, WXK_END, true, 0},
    {DriverKey::kPageUp, VK_PRIOR, WXK_PAGEUP, true, 0},
    {DriverKey::kPageDown, VK_NEXT, WXK_PAGEDOWN, true, 0},
};

// A key and what goes with it.
struct Stroke {
    WORD code = 0;        // 0 for a character without a key
    int toolkitCode = 0;  // as the toolkit names the key
    bool isExtended = false;
    bool control = false;
    bool shift = false;
    bool alt = false;
    std::wstring characters;
};

// The keys that are held, for this thread and as long as it lives.
class HeldKeys {
public:
    explicit HeldKeys(const Stroke& stroke)
    {
        GetKeyboardState(before_.data());
        std::array<BYTE, 256> state = before_;
        const auto hold = [&](int both, int left, int right, bool isDown) {
            const BYTE value = isDown ? 0x80 : 0;
            state[static_cast<std::size_t>(both)] = value;
            state[static_cast<std::size_t>(left)] = value;
            state[static_cast<std::size_t>(right)] = 0;
        };
        hold(VK_CONTROL, VK_LCONTROL, VK_RCONTROL, stroke.control);
        hold(VK_SHIFT, VK_LSHIFT, VK_RSHIFT, stroke.shift);
        hold(VK_MENU, VK_LMENU, VK_RMENU, stroke.alt);
        SetKeyboardState(state.data());
    }
    HeldKeys(const HeldKeys&) = delete;
    HeldKeys& operator=(const HeldKeys&) = delete;
    ~HeldKeys() { SetKeyboardState(before_.data()); }

private:
    std::array<BYTE, 256> before_{};
};

HWND HandleOf(const wxWindow& window)
{
    return static_cast<HWND>(window.GetHandle());
}

// Where the desktop did not give the window the focus, it gets that of its thread.
void EnsureActive(wxTopLevelWindow& window)
{
    HWND handle = HandleOf(window);
    if (GetActiveWindow() != handle) {
        SetActiveWindow(handle);
    }
}

// The toolkit sees real keys before the window does, by a hook that these messages do not pass.
bool IsTakenByDialog(const Stroke& stroke)
{
    wxWindow* focus = wxWindow::FindFocus();
    if (focus == nullptr || stroke.code == 0) {
        return false;
    }
    wxKeyEvent event(wxEVT_CHAR_HOOK);
    event.SetEventObject(focus);
    event.SetId(focus->GetId());
    event.m_keyCode = stroke.toolkitCode;
    event.m_uniChar =
        static_cast<wxChar>(stroke.toolkitCode < WXK_START ? stroke.toolkitCode : WXK_NONE);
    event.SetControlDown(stroke.control);
    event.SetShiftDown(stroke.shift);
    event.SetAltDown(stroke.alt);
    event.m_rawCode = stroke.code;
    return focus->GetEventHandler()->ProcessEvent(event) && !event.IsNextEventAllowed();
}

// The loop may hand a key on by itself, the way dialogs of the system do.
bool IsTakenByLoop(HWND target, UINT message, LPARAM data, WORD code)
{
    auto* loop = dynamic_cast<wxGUIEventLoop*>(wxEventLoopBase::GetActive());
    MSG native = {};
    native.hwnd = target;
    native.message = message;
    native.wParam = code;
    native.lParam = data;
    if (loop == nullptr || !loop->PreProcessMessage(&native)) {
        return false;
    }
    // The characters of the key wait in the queue then; what is typed next must not overtake them.
    constexpr std::array<std::pair<UINT, UINT>, 2> kCharacters = {
        {{WM_CHAR, WM_DEADCHAR}, {WM_SYSCHAR, WM_SYSDEADCHAR}}};
    for (const auto& [first, last] : kCharacters) {
        while (IsWindow(target) != FALSE &&
               PeekMessageW(&native, target, first, last, PM_REMOVE) != FALSE) {
            DispatchMessageW(&native);
        }
    }
    return true;
}

void Send(wxTopLevelWindow& window, const Stroke& stroke)
{
    if (!window.IsShown()) {
        throw std::runtime_error("the dialog has no window");
    }
    EnsureActive(window);
    const HeldKeys held(stroke);
    HWND target = GetFocus();
    if (target == nullptr ||
        (target != HandleOf(window) && IsChild(HandleOf(window), target) == FALSE)) {
        target = HandleOf(window);
    }
    if (IsTakenByDialog(stroke)) {
        return;
    }
    // With Ctrl, Alt is the key of a third level and no menu's.
    const bool isForMenus = stroke.alt && !stroke.control;
    const LPARAM scan = static_cast<LPARAM>(MapVirtualKeyW(stroke.code, MAPVK_VK_TO_VSC)) << 16;
    const LPARAM data =
        kOnce | scan | (stroke.isExtended ? kExtendedKey : 0) | (stroke.alt ? kAltIsDown : 0);
    const UINT down = isForMenus ? WM_SYSKEYDOWN : WM_KEYDOWN;
    if (stroke.code != 0) {
        if (IsTakenByLoop(target, down, data, stroke.code)) {
            return;
        }
        SendMessageW(target, down, stroke.code, data);
    }
    for (const wchar_t unit : stroke.characters) {
        if (IsWindow(target) != FALSE) {
            SendMessageW(target, isForMenus ? WM_SYSCHAR : WM_CHAR, unit, data);
        }
    }
    if (stroke.code != 0 && IsWindow(target) != FALSE) {
        SendMessageW(target, isForMenus ? WM_SYSKEYUP : WM_KEYUP, stroke.code,
                     data | kWasDown | kGoesUp);
    }
}

// What a key with Ctrl gives: letters are numbered from 1.
std::wstring WithControl(char32_t character)
{
    const bool isLetter =
        (character >= U'a' && character <= U'z') || (character >= U'A' && character <= U'Z');
    return isLetter ? std::wstring(1, static_cast<wchar_t>(character & 0x1F)) : std::wstring();
}

Stroke StrokeOf(char32_t character)
{
    Stroke stroke;
    if (character >= 0x10000) {
        const char32_t rest = character - 0x10000;
        stroke.characters = {static_cast<wchar_t>(0xD800 + (rest >> 10)),
                             static_cast<wchar_t>(0xDC00 + (rest & 0x3FF))};
        return stroke;
    }
    const auto unit = static_cast<wchar_t>(character);
    stroke.characters = unit;
    const SHORT key = VkKeyScanW(unit);
    const int levels = HIBYTE(key);
    if (key == -1 || (levels & ~1) != 0) {
        return stroke;
    }
    stroke.code = LOBYTE(key);
    stroke.shift = (levels & 1) != 0;
    // The toolkit names letters and digits by their upper case, and other keys by what they give.
    stroke.toolkitCode = unit >= L'a' && unit <= L'z' ? unit - L'a' + L'A' : unit;
    return stroke;
}

}  // namespace

void ClickAt(wxWindow& window, const wxPoint& at)
{
    HWND handle = HandleOf(window);
    if (IsWindowVisible(handle) == FALSE) {
        throw std::runtime_error("what is to be clicked is not in sight");
    }
    EnsureActive(*static_cast<wxTopLevelWindow*>(wxGetTopLevelParent(&window)));
    const LPARAM place = MAKELPARAM(at.x, at.y);
    SendMessageW(handle, WM_MOUSEMOVE, 0, place);
    SendMessageW(handle, WM_LBUTTONDOWN, MK_LBUTTON, place);
    if (IsWindow(handle) != FALSE) {
        SendMessageW(handle, WM_LBUTTONUP, 0, place);
    }
    if (IsWindow(handle) != FALSE) {
        SendMessageW(handle, WM_MOUSELEAVE, 0, 0);
    }
}

void PressKeyIn(wxTopLevelWindow& window, const DriverKeyPress& press)
{
    Stroke stroke;
    const KeyRow* row = nullptr;
    for (const KeyRow& candidate : kKeyRows) {
        row = candidate.key == press.key ? &candidate : row;
    }
    if (row != nullptr) {
        stroke.code = row->code;
        stroke.toolkitCode = row->toolkitCode;
        stroke.isExtended = row->isExtended;
        if (row->character != 0) {
            stroke.characters = row->character;
        }
    } else {
        stroke = StrokeOf(press.character);
        if (press.control) {
            stroke.characters = WithControl(press.character);
        }
    }
    stroke.control = press.control;
    stroke.shift = press.shift || stroke.shift;
    stroke.alt = press.alt;
    Send(window, stroke);
}

void TypeCharacterIn(wxTopLevelWindow& window, char32_t character)
{
    if (character == U'\n') {
        DriverKeyPress enter;
        enter.key = DriverKey::kEnter;
        PressKeyIn(window, enter);
        return;
    }
    Send(window, StrokeOf(character));
}

}  // namespace kivtoolkit
