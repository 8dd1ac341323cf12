// Plain EDIT controls. They are opaque, so they are given the colour of their ground, and what lies
// under an empty one is drawn into it. Other text goes through GDI, as theirs does: it has the same
// letters and widths then, and borrows from other fonts in the same way.

#include "framework/kivtoolkit/src/NativeText.h"

#include "framework/kivtoolkit/src/Look.h"
#include "framework/kivtoolkit/src/Texts.h"
#include "framework/kivtoolkit/src/WxPainter.h"

#include <wx/bitmap.h>
#include <wx/dcmemory.h>
#include <wx/graphics.h>
#include <wx/msw/private.h>
#include <wx/settings.h>

#include <objidl.h>

#include <gdiplus.h>

#include <kivcore/Locale.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <utility>

namespace kivtoolkit {

namespace {

constexpr double kPointsPerInch = 72;
constexpr double kUsualResolution = 96;
constexpr WXWPARAM kSelectAll = 1;  // Ctrl+A as a character

// Faces by language, the first installed one counts. Others have the face of the system's messages.
struct FaceRow {
    kivcore::UStringView language;
    std::array<const wchar_t*, 3> faces;
};

constexpr FaceRow kFaceRows[] = {
    {u"ja", {L"Yu Gothic UI", L"Meiryo UI", L"Noto Sans CJK JP"}},
    {u"ko", {L"Malgun Gothic", L"Noto Sans CJK KR", nullptr}},
    {u"zh_TW", {L"Microsoft JhengHei UI", L"Noto Sans CJK TC", nullptr}},
    {u"zh_HK", {L"Microsoft JhengHei UI", L"Noto Sans CJK HK", nullptr}},
    {u"zh", {L"Microsoft YaHei UI", L"Noto Sans CJK SC", nullptr}},
};

class ScreenDc {
public:
    ScreenDc() : dc_(GetDC(nullptr)) {}
    ScreenDc(const ScreenDc&) = delete;
    ScreenDc& operator=(const ScreenDc&) = delete;
    ~ScreenDc() { ReleaseDC(nullptr, dc_); }
    HDC Get() const noexcept { return dc_; }

private:
    HDC dc_;
};

double Resolution()
{
    const int resolution = GetDeviceCaps(ScreenDc().Get(), LOGPIXELSY);
    return resolution > 0 ? resolution : kUsualResolution;
}

bool IsInstalled(const std::wstring& face)
{
    LOGFONTW wanted = {};
    wanted.lfCharSet = DEFAULT_CHARSET;
    if (face.size() >= LF_FACESIZE) {
        return false;
    }
    std::copy(face.begin(), face.end(), wanted.lfFaceName);
    bool found = false;
    EnumFontFamiliesExW(
        ScreenDc().Get(), &wanted,
        [](const LOGFONTW*, const TEXTMETRICW*, DWORD, LPARAM data) {
            *reinterpret_cast<bool*>(data) = true;
            return 0;
        },
        reinterpret_cast<LPARAM>(&found), 0);
    return found;
}

std::wstring InterfaceFace(const wxFont& systemFont)
{
    const kivcore::UString language = kivcore::Locale::ApplicationLanguage();
    for (const FaceRow& row : kFaceRows) {
        if (language.compare(0, row.language.size(), row.language) != 0) {
            continue;
        }
        for (const wchar_t* face : row.faces) {
            if (face != nullptr && IsInstalled(face)) {
                return face;
            }
        }
    }
    return systemFont.GetFaceName().ToStdWstring();
}

// What all dialogs share while the toolkit is up.
struct KeptObjects {
    HWND measure = nullptr;  // breaks texts into lines as the fields in sight do
};

KeptObjects& Kept()
{
    static auto& kept = *new KeptObjects;
    return kept;
}

// Lines as the control wants them.
std::wstring WithSystemLineEnds(kivcore::UStringView text)
{
    std::wstring result;
    result.reserve(text.size());
    for (const char16_t unit : text) {
        if (unit == u'\n') {
            result += L'\r';
        }
        result += static_cast<wchar_t>(unit);
    }
    return result;
}

// True for a text so short that it fits into one line whatever its letters are: long lists are
// measured without a control for each of their texts.
bool FitsSurely(const wxFont& font, kivcore::UStringView text, int width)
{
    constexpr double kWidestLetter = 1.5;  // font sizes
    const double size = font.GetFractionalPointSize() * PixelsPerPoint();
    return static_cast<double>(text.size()) * size * kWidestLetter <= width &&
           std::all_of(text.begin(), text.end(),
                       [](char16_t unit) { return unit >= u' ' && unit < 0x300; });
}

// Ideographs and kana may stand at the beginning of a line, closing signs may not.
bool BreaksBefore(char16_t unit)
{
    constexpr kivcore::UStringView kClosing =
        u"\u3001\u3002\u300D\u300F\u3011\u30FC\uFF01\uFF09"
        u"\uFF0C\uFF0E\uFF1A\uFF1B\uFF1F";
    const bool isWide = (unit >= 0x2E80 && unit < 0xA000) || (unit >= 0xAC00 && unit < 0xD7B0) ||
                        (unit >= 0xF900 && unit < 0xFB00) || (unit >= 0xFF00 && unit < 0xFFF0);
    return isWide && kClosing.find(unit) == kivcore::UStringView::npos;
}

bool IsLowSurrogate(char16_t unit)
{
    return unit >= 0xDC00 && unit < 0xE000;
}

// Where the line that begins at `start` has to end, so that it fits; at least one character.
std::size_t LineEnd(kivcore::UStringView text, const wxArrayDouble& widths, std::size_t start,
                    int width)
{
    const double begin = start > 0 ? widths[start - 1] : 0;
    std::size_t end = start;
    while (end < text.size() && widths[end] - begin <= width) {
        ++end;
    }
    if (end == text.size() || text[end] == u' ') {
        return end;
    }
    for (std::size_t at = end; at > start; --at) {
        if (text[at - 1] == u' ' || BreaksBefore(text[at])) {
            return at;
        }
    }
    end = std::max(end, start + 1);
    return end > start + 1 && end < text.size() && IsLowSurrogate(text[end]) ? end - 1 : end;
}

// A device context of the screen's kind with a font in it.
class FontDc {
public:
    explicit FontDc(const wxFont& font) : before_(SelectObject(screen_.Get(), font.GetHFONT())) {}
    FontDc(const FontDc&) = delete;
    FontDc& operator=(const FontDc&) = delete;
    ~FontDc() { SelectObject(screen_.Get(), before_); }
    HDC Get() const noexcept { return screen_.Get(); }

private:
    ScreenDc screen_;
    HGDIOBJ before_;
};

wxArrayDouble WidthsOf(const wxFont& font, const wchar_t* text, std::size_t length)
{
    std::vector<int> widths(length);
    const FontDc dc(font);
    SIZE size = {};
    wxArrayDouble result;
    if (length > 0 && GetTextExtentExPointW(dc.Get(), text, static_cast<int>(length), 0, nullptr,
                                            widths.data(), &size) != FALSE) {
        result.reserve(length);
        for (const int width : widths) {
            result.push_back(width);
        }
    }
    return result;
}

void WrapParagraph(const wxFont& font, kivcore::UStringView text, int width,
                   std::vector<kivcore::UString>& lines)
{
    const std::wstring wide(text.begin(), text.end());
    const wxArrayDouble widths = WidthsOf(font, wide.data(), wide.size());
    if (widths.size() < text.size()) {
        lines.emplace_back(text);
        return;
    }
    std::size_t start = 0;
    do {
        const std::size_t end = LineEnd(text, widths, start, width);
        kivcore::UStringView line = text.substr(start, end - start);
        while (!line.empty() && line.back() == u' ') {
            line.remove_suffix(1);
        }
        lines.emplace_back(line);
        start = end;
        while (start < text.size() && text[start] == u' ') {
            ++start;
        }
    } while (start < text.size());
}

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

HWND MeasureField(const wxFont& font, int width)
{
    HWND& field = Kept().measure;
    if (field == nullptr) {
        field = CreateWindowExW(0, L"EDIT", L"", WS_CHILD | ES_MULTILINE | ES_AUTOVSCROLL, 0, 0, 10,
                                10, HWND_MESSAGE, nullptr, nullptr, nullptr);
    }
    SendMessageW(field, WM_SETFONT, reinterpret_cast<WPARAM>(font.GetHFONT()), FALSE);
    SendMessageW(field, EM_SETMARGINS, EC_LEFTMARGIN | EC_RIGHTMARGIN, 0);
    SetWindowPos(field, nullptr, 0, 0, std::max(1, width), NativeLinesHeight(font, 1),
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    return field;
}

}  // namespace

wxFont InterfaceFont(kivui::ui::FontWeight weight)
{
    wxFont font = wxSystemSettings::GetFont(wxSYS_DEFAULT_GUI_FONT);
    font.SetStyle(wxFONTSTYLE_NORMAL);
    const std::wstring face = InterfaceFace(font);
    // GDI+ knows bold and not bold; what lies between is a face of its own here.
    const wchar_t* suffix = L"";
    int number = wxFONTWEIGHT_NORMAL;
    if (weight == kivui::ui::FontWeight::kMedium) {
        suffix = L" Medium";
    } else if (weight == kivui::ui::FontWeight::kSemibold) {
        suffix = L" Semibold";
        number = wxFONTWEIGHT_BOLD;
    }
    if (*suffix != L'\0' && IsInstalled(face + suffix)) {
        font.SetNumericWeight(wxFONTWEIGHT_NORMAL);
        font.SetFaceName(face + suffix);
    } else {
        font.SetNumericWeight(number);
        font.SetFaceName(face);
    }
    return font;
}

double PixelsPerPoint()
{
    return Resolution() / kPointsPerInch;
}

ScreenScale ScaleOfScreen()
{
    // What the process sees as a pixel is the toolkit's pixel too; a process that does not know of
    // scales is scaled by the system, and sees the usual resolution.
    ScreenScale scale;
    scale.wanted = Resolution() / kUsualResolution;
    return scale;
}

kivui::ui::Size MeasureLine(wxGraphicsContext&, const wxFont& font, const wxString& text)
{
    const FontDc dc(font);
    SIZE size = {};
    GetTextExtentPoint32W(dc.Get(), text.wc_str(), static_cast<int>(text.length()), &size);
    TEXTMETRICW metrics = {};
    GetTextMetricsW(dc.Get(), &metrics);
    return {static_cast<double>(size.cx), static_cast<double>(metrics.tmHeight)};
}

wxArrayDouble BeginningWidths(wxGraphicsContext&, const wxFont& font, const wxString& text)
{
    return WidthsOf(font, text.wc_str(), text.length());
}

void DrawLine(wxGraphicsContext& context, const wxFont& font, const wxColour& color,
              const wxString& text, const wxPoint& at)
{
    if (color.Alpha() != wxALPHA_OPAQUE) {
        context.SetFont(font, color);
        context.DrawText(text, at.x, at.y);
        return;
    }
    // The device context below knows nothing of where the one above has moved its origin to.
    wxDouble left = 0;
    wxDouble top = 0;
    context.GetTransform().Get(nullptr, nullptr, nullptr, nullptr, &left, &top);
    auto& graphics = *static_cast<Gdiplus::Graphics*>(context.GetNativeContext());
    const HDC dc = graphics.GetHDC();
    const int saved = SaveDC(dc);
    SelectObject(dc, font.GetHFONT());
    SetBkMode(dc, TRANSPARENT);
    SetTextAlign(dc, TA_LEFT | TA_TOP | TA_NOUPDATECP);
    SetTextColor(dc, color.GetPixel());
    ExtTextOutW(dc, at.x + static_cast<int>(left), at.y + static_cast<int>(top), 0, nullptr,
                text.wc_str(), static_cast<UINT>(text.length()), nullptr);
    RestoreDC(dc, saved);
    graphics.ReleaseHDC(dc);
}

std::vector<kivcore::UString> WrapText(const wxFont& font, kivcore::UStringView text, int width)
{
    if (FitsSurely(font, text, width)) {
        return {kivcore::UString(text)};
    }
    std::vector<kivcore::UString> lines;
    for (std::size_t start = 0;;) {
        const std::size_t end = std::min(text.find(u'\n', start), text.size());
        WrapParagraph(font, text.substr(start, end - start), width, lines);
        if (end == text.size()) {
            return lines;
        }
        start = end + 1;
    }
}

int NativeLinesHeight(const wxFont& font, int lines)
{
    const FontDc dc(font);
    TEXTMETRICW metrics = {};
    GetTextMetricsW(dc.Get(), &metrics);
    return static_cast<int>(metrics.tmHeight) * lines;
}

int NativeLineCount(const wxFont& font, kivcore::UStringView text, int width)
{
    if (FitsSurely(font, text, width)) {
        return 1;
    }
    HWND field = MeasureField(font, width);
    SetWindowTextW(field, WithSystemLineEnds(text).c_str());
    const auto count = static_cast<int>(SendMessageW(field, EM_GETLINECOUNT, 0, 0));
    SetWindowTextW(field, L"");
    return std::max(1, count);
}

int NativeTextHeight(const wxFont& font, kivcore::UStringView text, int width, int mostLines)
{
    // All lines of this control have one height.
    return NativeLinesHeight(font, std::min(mostLines, NativeLineCount(font, text, width)));
}

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

void ForgetNativeStyles() noexcept
{
    if (Kept().measure != nullptr) {
        DestroyWindow(Kept().measure);
    }
    Kept() = {};
}

}  // namespace kivtoolkit
