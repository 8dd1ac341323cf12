#include "framework/kivtoolkit/src/OwnControl.h"

#include "framework/kivtoolkit/src/Texts.h"

#include <wx/tooltip.h>

namespace kivtoolkit {

namespace ui = kivui::ui;

OwnControl::OwnControl(Look& look, wxWindow& parent, AccessibleRole role, ui::ThemeColor ground)
    : look_(look), role_(role)
{
    Create(&parent, wxID_ANY, wxDefaultPosition, wxSize(1, 1), wxWANTS_CHARS | wxBORDER_NONE);
    BindAll(ground);
}

int OwnControl::Ring() const
{
    return look_.Px(ui::metrics::kFocusWidth);
}

void OwnControl::Place(const wxRect& rect)
{
    wxRect area = rect;
    area.Inflate(Ring());
    SetSize(area);
}

wxRect OwnControl::VisibleRect() const
{
    wxRect area = GetRect();
    return area.Deflate(Ring());
}

ui::Rect OwnControl::DrawnRect() const
{
    wxRect area = GetClientRect();
    return FromWx(area.Deflate(Ring()));
}

void OwnControl::SetWords(const kivcore::UString& name, const kivcore::UString& description)
{
    name_ = name;
    DescribeControl(*this, role_, name, description);
    if (GetToolTip() != nullptr) {
        ShowNameAsTooltip();
    }
}

void OwnControl::ShowNameAsTooltip()
{
    SetToolTip(ToWx(name_));
}

void OwnControl::SetDisabled(bool isDisabled)
{
    if (state_.disabled != isDisabled) {
        state_.disabled = isDisabled;
        Refresh();
    }
}

void OwnControl::SetChanged(bool isChanged)
{
    if (state_.changed != isChanged) {
        state_.changed = isChanged;
        Refresh();
    }
}

void OwnControl::Point(const wxPoint&, bool) {}

bool OwnControl::PressKey(const wxKeyEvent&)
{
    return false;
}

void OwnControl::BindAll(ui::ThemeColor ground)
{
    BindPainting(look_, *this, ground, [this](const ui::Drawing& drawing, const ui::Rect&) {
        Draw(drawing, DrawnRect());
    });
    BindContained(look_, *this, wxEVT_ENTER_WINDOW, [this](wxMouseEvent& event) {
        state_.hovered = true;
        Point(event.GetPosition(), true);
        Refresh();
    });
    BindContained(look_, *this, wxEVT_LEAVE_WINDOW, [this](wxMouseEvent& event) {
        state_.hovered = false;
        state_.pressed = false;
        Point(event.GetPosition(), false);
        Refresh();
    });
    BindContained(look_, *this, wxEVT_MOTION,
                  [this](wxMouseEvent& event) { Point(event.GetPosition(), true); });
    const auto press = [this](wxMouseEvent& event) {
        if (state_.disabled) {
            return;
        }
        if (takesFocus_) {
            SetFocus();
        }
        Point(event.GetPosition(), true);
        state_.pressed = true;
        Refresh();
    };
    BindContained(look_, *this, wxEVT_LEFT_DOWN, press);
    BindContained(look_, *this, wxEVT_LEFT_DCLICK, press);
    BindContained(look_, *this, wxEVT_LEFT_UP, [this](wxMouseEvent& event) {
        const bool wasPressed = state_.pressed;
        state_.pressed = false;
        Refresh();
        if (wasPressed && !state_.disabled && GetClientRect().Contains(event.GetPosition())) {
            Click(event.GetPosition());
        }
    });
    const auto focus = [this](wxFocusEvent& event) {
        event.Skip();
        state_.focused = event.GetEventType() == wxEVT_SET_FOCUS;
        FocusMoved();
        Refresh();
    };
    BindContained(look_, *this, wxEVT_SET_FOCUS, focus);
    BindContained(look_, *this, wxEVT_KILL_FOCUS, focus);
    BindContained(look_, *this, wxEVT_KEY_DOWN, [this](wxKeyEvent& event) {
        if (state_.disabled || PressKey(event)) {
            return;
        }
        const int key = event.GetKeyCode();
        const bool clicks = key == WXK_SPACE || key == WXK_RETURN || key == WXK_NUMPAD_ENTER;
        if (clicks && !event.HasAnyModifiers()) {
            const wxRect area = GetClientRect();
            Click(wxPoint(area.x + area.width / 2, area.y + area.height / 2));
            return;
        }
        event.Skip();
    });
}

}  // namespace kivtoolkit
