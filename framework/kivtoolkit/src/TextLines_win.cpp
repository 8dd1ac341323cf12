// Text as the fields draw it: through GDI, like theirs, so that it has the same letters and widths
// and borrows from other fonts in the same way. Lines are counted by a field out of sight.

#include "framework/kivtoolkit/src/NativeText.h"

#include "framework/kivtoolkit/src/WxPainter.h"

#include <wx/graphics.h>
#include <wx/msw/private.h>
#include <wx/settings.h>

#include <objidl.h>

#include <gdiplus.h>

#include <kivcore/Locale.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace kivtoolkit {

namespace {

constexpr double kPointsPerInch = 72;
constexpr double kUsualResolution = 96;

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

void ForgetNativeStyles() noexcept
{
    if (Kept().measure != nullptr) {
        DestroyWindow(Kept().measure);
    }
    Kept() = {};
}

}  // namespace kivtoolkit
