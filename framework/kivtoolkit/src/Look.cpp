#include "framework/kivtoolkit/src/Look.h"

#include <wx/dcbuffer.h>

#include <cmath>
#include <memory>

namespace kivtoolkit {

namespace ui = kivui::ui;

namespace {

class DrawIntoEvent;
const wxEventTypeTag<DrawIntoEvent> kDrawInto(wxNewEventType());

class DrawIntoEvent : public wxEvent {
public:
    DrawIntoEvent(wxMemoryDC& target, const wxRect& wanted)
        : wxEvent(0, kDrawInto), dc(target), part(wanted)
    {
    }
    wxEvent* Clone() const override { return new DrawIntoEvent(dc, part); }

    wxMemoryDC& dc;
    wxRect part;
};

}  // namespace

int Look::Px(double units) const
{
    return static_cast<int>(ui::SnapUnits(units, scale_));
}

int Look::LineHeight(ui::TextRole role)
{
    return static_cast<int>(ui::LineHeight(Measuring(), role));
}

const wxFont& Look::Font(ui::TextRole role)
{
    return FontFor(ui::StyleOfText(Measuring(), role));
}

ui::Drawing Look::On(ui::Painter& painter) const
{
    return {painter, theme_, scale_, mirrored_};
}

void Look::Run(const std::function<void()>& callback) noexcept
{
    Contain(callback);
    if (after_) {
        Contain(after_);
    }
}

wxRect ToWx(const ui::Rect& rect)
{
    const ui::Rect snapped = ui::SnapRect(rect);
    return {static_cast<int>(snapped.x), static_cast<int>(snapped.y),
            static_cast<int>(snapped.width), static_cast<int>(snapped.height)};
}

ui::Rect FromWx(const wxRect& rect)
{
    return {static_cast<double>(rect.x), static_cast<double>(rect.y),
            static_cast<double>(rect.width), static_cast<double>(rect.height)};
}

void BindPainting(Look& look, wxWindow& window, ui::ThemeColor ground,
                  std::function<void(const ui::Drawing&, const ui::Rect&)> draw)
{
    window.SetBackgroundStyle(wxBG_STYLE_PAINT);
    const auto paint = [&look, &window, ground, draw = std::move(draw)](wxGraphicsContext& context,
                                                                        const wxRect& part) {
        WxPainter painter(context);
        const ui::Rect area = FromWx(window.GetClientRect());
        const ui::Drawing drawing = look.On(painter);
        look.SetDrawnPart(part);
        painter.Fill(area, 0, drawing.Color(ground));
        draw(drawing, area);
    };
    window.Bind(wxEVT_PAINT, [&look, &window, paint](wxPaintEvent&) {
        // Outside the contained part: the toolkit insists on one for each event.
        wxAutoBufferedPaintDC dc(&window);
        look.Contain([&] {
            const std::unique_ptr<wxGraphicsContext> context(
                wxGraphicsContext::CreateFromUnknownDC(dc));
            paint(*context, window.GetUpdateRegion().GetBox());
        });
    });
    window.Bind(kDrawInto, [&look, paint](DrawIntoEvent& event) {
        look.Contain([&] {
            const std::unique_ptr<wxGraphicsContext> context(wxGraphicsContext::Create(event.dc));
            context->Translate(-event.part.x, -event.part.y);
            context->Clip(event.part.x, event.part.y, event.part.width, event.part.height);
            paint(*context, event.part);
        });
    });
}

void DrawInto(wxWindow& window, wxMemoryDC& dc, const wxPoint& from, const wxSize& size)
{
    DrawIntoEvent event(dc, wxRect(from, size));
    window.GetEventHandler()->ProcessEvent(event);
}

}  // namespace kivtoolkit
