// A picture of our own windows, drawn once more into memory: what we draw by the handlers of their
// painting, native text by the message that asks for it.

#include "framework/kivtoolkit/src/SystemWindow.h"

#include "framework/kivtoolkit/src/Look.h"
#include "framework/kivtoolkit/src/Texts.h"

#include <wx/bitmap.h>
#include <wx/dcmemory.h>
#include <wx/msw/private.h>
#include <wx/textctrl.h>

#include <objidl.h>

#include <gdiplus.h>

#include <kivcore/StringConversion.h>
#include <kivui/GdiPlus.h>

#include <stdexcept>
#include <string>

namespace kivtoolkit {

namespace {

constexpr CLSID kPngEncoder = {
    0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

// `window` and what lies in it, from the lowest to the topmost; `corner` is its place in `target`.
void DrawAll(wxWindow& window, wxMemoryDC& target, const wxPoint& corner)
{
    const wxSize size = window.GetClientSize();
    if (size.x <= 0 || size.y <= 0) {
        return;
    }
    wxBitmap picture(size, 24);
    wxMemoryDC dc(picture);
    auto* text = dynamic_cast<wxTextCtrl*>(&window);
    if (text != nullptr && !text->IsEmpty()) {
        HWND handle = static_cast<HWND>(text->GetHandle());
        const auto paper = reinterpret_cast<WPARAM>(dc.GetHDC());
        SendMessageW(handle, WM_ERASEBKGND, paper, 0);
        SendMessageW(handle, WM_PRINTCLIENT, paper, PRF_CLIENT);
    } else if (text != nullptr) {
        DrawInto(*text->GetParent(), dc, text->GetPosition(), size);
    } else {
        DrawInto(window, dc, wxPoint(0, 0), size);
    }
    HWND child = GetWindow(static_cast<HWND>(window.GetHandle()), GW_CHILD);
    child = child != nullptr ? GetWindow(child, GW_HWNDLAST) : nullptr;
    for (; child != nullptr; child = GetWindow(child, GW_HWNDPREV)) {
        wxWindow* inner = wxFindWinFromHandle(child);
        if (inner != nullptr && inner->IsShown()) {
            DrawAll(*inner, dc, inner->GetPosition());
        }
    }
    target.Blit(corner, size, &dc, wxPoint(0, 0));
}

[[noreturn]] void Fail(const std::string& path, int status)
{
    throw std::runtime_error(
        Utf8Text("$$$/Kiv/Dialog/Failure/Screenshot=The picture cannot be written: ^0",
                 kivcore::string::UTF8to16(path + ": " + std::to_string(status))));
}

}  // namespace

void WriteScreenshot(wxWindow& window, const std::string& path)
{
    const wxSize size = window.GetClientSize();
    wxBitmap picture(size, 24);
    {
        wxMemoryDC dc(picture);
        DrawAll(window, dc, wxPoint(0, 0));
    }
    const kivui::utility::StartupShutdownGdiPlus running;
    Gdiplus::Bitmap bitmap(static_cast<HBITMAP>(picture.GetHBITMAP()), nullptr);
    const kivcore::UString name = kivcore::string::UTF8to16(path);
    const std::wstring file(name.begin(), name.end());
    const Gdiplus::Status status = bitmap.Save(file.c_str(), &kPngEncoder, nullptr);
    if (status != Gdiplus::Ok) {
        Fail(path, static_cast<int>(status));
    }
}

}  // namespace kivtoolkit
