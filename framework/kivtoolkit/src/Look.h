// What all parts of one dialog's window share: colours, scale, direction, and the door through
// which every callback of the toolkit goes.

#pragma once

#include "framework/kivmetadataui/src/ToolkitModule.h"
#include "framework/kivtoolkit/src/WxPainter.h"

#include <wx/dcmemory.h>
#include <wx/event.h>
#include <wx/gdicmn.h>
#include <wx/window.h>

#include <kivui/Controls.h>

#include <functional>
#include <utility>

namespace kivtoolkit {

class Look {
public:
    /// `scale` in the toolkit's pixels per design unit. Takes the theme in force, which stands as
    /// long as the dialog.
    Look(kivmetadataui::ShownDialog& dialog, double scale, bool mirrored)
        : dialog_(&dialog), theme_(kivui::ui::Theme::Get()), scale_(scale), mirrored_(mirrored)
    {
    }
    Look(const Look&) = delete;
    Look& operator=(const Look&) = delete;

    double Scale() const noexcept { return scale_; }
    bool IsMirrored() const noexcept { return mirrored_; }
    const kivui::ui::Theme& Theme() const noexcept { return theme_; }
    kivmetadataui::DialogModel& Model() noexcept { return dialog_->Model(); }

    /// Design units as whole pixels.
    int Px(double units) const;
    int LineHeight(kivui::ui::TextRole role);
    const wxFont& Font(kivui::ui::TextRole role);

    kivui::ui::Drawing On(kivui::ui::Painter& painter) const;
    /// For measuring only.
    kivui::ui::Drawing Measuring() { return On(measuring_.Get()); }

    /// The part of the window that is being drawn, in its pixels.
    const wxRect& DrawnPart() const noexcept { return drawnPart_; }
    void SetDrawnPart(const wxRect& part) noexcept { drawnPart_ = part; }

    /// Runs a callback so that nothing passes the toolkit's frames.
    void Contain(const std::function<void()>& callback) noexcept
    {
        if (dialog_ != nullptr) {
            dialog_->Run(callback);
        }
    }
    /// The same for one that may change something: what it left to be done follows at once.
    void Run(const std::function<void()>& callback) noexcept;
    /// Nothing runs any more: the dialog goes, and windows that cannot be taken down stay.
    void Detach() noexcept { dialog_ = nullptr; }
    /// Runs behind every callback, contained like it.
    void SetAfterCallback(std::function<void()> after) { after_ = std::move(after); }

private:
    kivmetadataui::ShownDialog* dialog_;
    const kivui::ui::Theme& theme_;
    double scale_;
    bool mirrored_;
    MeasuringPainter measuring_;
    wxRect drawnPart_;
    std::function<void()> after_;
};

/// Binds `handler` to an event of `window`, contained. Both live at least as long as `window`.
template <class Event, class Handler>
void BindContained(Look& look, wxEvtHandler& window, const wxEventTypeTag<Event>& type,
                   Handler handler)
{
    window.Bind(type, [&look, handler = std::move(handler)](Event& event) {
        look.Run([&] { handler(event); });
    });
}

wxRect ToWx(const kivui::ui::Rect& rect);
kivui::ui::Rect FromWx(const wxRect& rect);

/// Binds `draw` to the painting of `window` and to DrawInto: it gets the drawing and the whole
/// client area.
void BindPainting(Look& look, wxWindow& window, kivui::ui::ThemeColor ground,
                  std::function<void(const kivui::ui::Drawing&, const kivui::ui::Rect&)> draw);

/// Draws what BindPainting has bound, not the windows inside `window`: its own pixel `from` comes
/// to the beginning of `dc`, as does what lies right and below of it, `size` pixels in all.
void DrawInto(wxWindow& window, wxMemoryDC& dc, const wxPoint& from, const wxSize& size);

}  // namespace kivtoolkit
