// Plain EDIT controls. They are opaque, so they are given the colour of their ground, and what lies
// under an empty one is drawn into it.

#include "framework/kivtoolkit/src/NativeText.h"

#include "framework/kivtoolkit/src/Look.h"
#include "framework/kivtoolkit/src/WxPainter.h"

#include <wx/bitmap.h>
#include <wx/dcmemory.h>
#include <wx/msw/private.h>

#include <algorithm>
#include <functional>
#include <utility>

namespace kivtoolkit {

namespace {

constexpr WXWPARAM kSelectAll = 1;  // Ctrl+A as a character

class TextField : public wxTextCtrl {
public:
    TextField(wxWindow& parent, TextShape shape, bool mirrored)
        : shape_(shape), isMirrored_(mirrored)
    {
        Create(&parent, wxID_ANY, wxString(), wxDefaultPosition, wxSize(10, 10), StyleBits());
        SendMessageW(GetHwnd(), EM_SETLIMITTEXT, 0, 0);  // as long as it can be
    }

    bool IsComposing() const noexcept { return isComposing_; }
    void SetWatcher(std::function<void()> changed) { composingChanged_ = std::move(changed); }
    bool HasOneLine() const noexcept { return shape_ == TextShape::kLine; }

    WXLRESULT MSWWindowProc(WXUINT message, WXWPARAM wParam, WXLPARAM lParam) override
    {
        switch (message) {
            case WM_PAINT:
                if (wParam == 0 && IsBlank()) {
                    PaintBlank();
                    return 0;
                }
                break;
            case WM_ERASEBKGND:
                if (IsBlank()) {
                    return 1;  // PaintBlank covers everything
                }
                break;
            case WM_CHAR:
                if (wParam == kSelectAll) {
                    SendMessageW(GetHwnd(), EM_SETSEL, 0, -1);
                    return 0;
                }
                break;
            case EM_SETSEL:
                if (!IsFocused()) {
                    caret_ = {wParam, lParam};
                    return 0;
                }
                break;
            case EM_SCROLLCARET:
                if (!IsFocused()) {
                    return 0;
                }
                break;
            case WM_IME_STARTCOMPOSITION:
                SetComposing(true);
                break;
            case WM_IME_ENDCOMPOSITION:
                SetComposing(false);
                break;
            default:
                break;
        }
        const WXLRESULT result = wxTextCtrl::MSWWindowProc(message, wParam, lParam);
        if (message == WM_SIZE && IsFocused() && !HasOneLine()) {
            ShowFromFirstLine();
        } else if (message == WM_KILLFOCUS) {
            PutCaretAway();
        } else if (message == WM_SETFOCUS && GetKeyState(VK_LBUTTON) >= 0) {
            SendMessageW(GetHwnd(), EM_SETSEL, caret_.first, caret_.second);
            SendMessageW(GetHwnd(), EM_SCROLLCARET, 0, 0);
        }
        if (message != WM_GETTEXTLENGTH && message != WM_NCDESTROY && message != WM_DESTROY) {
            NoteBlank();
        }
        return result;
    }

protected:
    WXDWORD MSWGetStyle(long style, WXDWORD* extraStyle) const override
    {
        WXDWORD bits = wxTextCtrl::MSWGetStyle(style, extraStyle);
        // The text scrolls, but the system's bars are as bright as ever.
        bits &= ~static_cast<WXDWORD>(WS_VSCROLL);
        if (shape_ != TextShape::kLine) {
            bits |= ES_AUTOVSCROLL;
        }
        if (isMirrored_) {
            bits |= ES_RIGHT;
            if (extraStyle != nullptr) {
                *extraStyle |= WS_EX_RTLREADING | WS_EX_RIGHT;
            }
        }
        return bits;
    }

private:
    long StyleBits() const noexcept
    {
        switch (shape_) {
            case TextShape::kLines:
                return wxBORDER_NONE | wxTE_MULTILINE;
            case TextShape::kReadOnlyLines:
                return wxBORDER_NONE | wxTE_MULTILINE | wxTE_READONLY;
            case TextShape::kLine:
                break;
        }
        return wxBORDER_NONE | wxTE_PROCESS_ENTER;
    }

    bool IsBlank() const { return !isComposing_ && GetWindowTextLengthW(GetHwnd()) == 0; }

    void PaintBlank()
    {
        PAINTSTRUCT paint;
        const HDC screen = BeginPaint(GetHwnd(), &paint);
        const wxSize size = GetClientSize();
        if (size.x > 0 && size.y > 0) {
            wxBitmap picture(size, 24);
            wxMemoryDC dc(picture);
            DrawInto(*GetParent(), dc, GetPosition(), size);
            BitBlt(screen, 0, 0, size.x, size.y, static_cast<HDC>(dc.GetHDC()), 0, 0, SRCCOPY);
        }
        EndPaint(GetHwnd(), &paint);
    }

    // What shows through goes when the first character comes, and comes back with the last one.
    void NoteBlank()
    {
        const bool isBlank = IsBlank();
        if (isBlank != wasBlank_) {
            wasBlank_ = isBlank;
            InvalidateRect(GetHwnd(), nullptr, TRUE);
        }
    }

    // What was scrolled away while there was little room does not come back by itself.
    void ShowFromFirstLine()
    {
        const LRESULT first = SendMessageW(GetHwnd(), EM_GETFIRSTVISIBLELINE, 0, 0);
        SendMessageW(GetHwnd(), EM_LINESCROLL, 0, -first);
        SendMessageW(GetHwnd(), EM_SCROLLCARET, 0, 0);
    }

    // The control shows where its caret is, but who only reads wants to see the beginning: without
    // the focus the caret stands there, and comes back with it.
    void PutCaretAway()
    {
        DWORD from = 0;
        DWORD to = 0;
        SendMessageW(GetHwnd(), EM_GETSEL, reinterpret_cast<WPARAM>(&from),
                     reinterpret_cast<LPARAM>(&to));
        caret_ = {from, static_cast<LPARAM>(to)};
        MSWDefWindowProc(EM_SETSEL, 0, 0);
        MSWDefWindowProc(EM_SCROLLCARET, 0, 0);
    }
    bool IsFocused() const { return ::GetFocus() == GetHwnd(); }

    void SetComposing(bool isComposing)
    {
        isComposing_ = isComposing;
        if (composingChanged_) {
            composingChanged_();
        }
    }

    TextShape shape_;
    bool isMirrored_;
    bool isComposing_ = false;
    bool wasBlank_ = true;
    std::pair<WPARAM, LPARAM> caret_{0, 0};  // while there is no focus
    std::function<void()> composingChanged_;
};

}  // namespace

wxTextCtrl* NewNativeText(wxWindow& parent, TextShape shape, bool mirrored)
{
    return new TextField(parent, shape, mirrored);
}

wxRect NativeTextRect(const wxTextCtrl& text, const wxRect& rect)
{
    if (!static_cast<const TextField&>(text).HasOneLine()) {
        return rect;
    }
    wxRect line = rect;
    line.height = std::min(rect.height, NativeLinesHeight(text.GetFont(), 1));
    line.y += (rect.height - line.height) / 2;
    return line;
}

void StyleNativeText(wxTextCtrl& text, const NativeTextStyle& style)
{
    text.SetFont(FontFor(style.font));
    text.SetForegroundColour(ToWx(style.font.color));
    text.SetBackgroundColour(ToWx(style.ground));
    SendMessageW(static_cast<HWND>(text.GetHWND()), EM_SETMARGINS, EC_LEFTMARGIN | EC_RIGHTMARGIN,
                 0);
}

bool IsComposing(const wxTextCtrl& text)
{
    return static_cast<const TextField&>(text).IsComposing();
}

void WatchComposing(wxTextCtrl& text, std::function<void()> changed)
{
    static_cast<TextField&>(text).SetWatcher(std::move(changed));
}

}  // namespace kivtoolkit
