// Base of the own-drawn controls: hover, press, focus, keys, and the words for assistive
// technology. A control's window is larger than what is seen of it by the room for the focus ring.

#pragma once

#include "framework/kivtoolkit/src/Accessible.h"
#include "framework/kivtoolkit/src/Look.h"

#include <wx/window.h>

#include <kivcore/UString.h>

namespace kivtoolkit {

class OwnControl : public wxWindow {
public:
    /// `ground` is what the control stands on.
    OwnControl(Look& look, wxWindow& parent, AccessibleRole role, kivui::ui::ThemeColor ground);

    /// Moves the control so that what is seen of it fills `rect`.
    void Place(const wxRect& rect);
    /// What is seen, in pixels of the parent.
    wxRect VisibleRect() const;
    /// What is seen, in pixels of the control.
    kivui::ui::Rect DrawnRect() const;

    void SetWords(const kivcore::UString& name, const kivcore::UString& description = {});
    /// The name as a tooltip too, where the label is an icon.
    void ShowNameAsTooltip();
    const kivcore::UString& Words() const noexcept { return name_; }

    void SetDisabled(bool isDisabled);
    void SetChanged(bool isChanged);
    bool IsDisabled() const noexcept { return state_.disabled; }
    /// Takes the control out of the tab order; it still can be clicked.
    void SetTakesFocus(bool takesFocus) { takesFocus_ = takesFocus; }

    bool AcceptsFocus() const override { return takesFocus_ && !state_.disabled; }
    bool AcceptsFocusFromKeyboard() const override { return AcceptsFocus(); }

protected:
    virtual void Draw(const kivui::ui::Drawing& drawing, const kivui::ui::Rect& rect) = 0;
    /// A click ended inside, at `at` in the control's pixels.
    virtual void Click(const wxPoint& at) = 0;
    /// The pointer moved inside, or left (`inside` false).
    virtual void Point(const wxPoint& at, bool inside);
    /// True if the key was used. Space and Enter count as a click in the middle otherwise.
    virtual bool PressKey(const wxKeyEvent& key);
    virtual void FocusMoved() {}

    Look& look_;
    kivui::ui::ControlState state_;

private:
    void BindAll(kivui::ui::ThemeColor ground);
    int Ring() const;

    AccessibleRole role_;
    kivcore::UString name_;
    bool takesFocus_ = true;
};

}  // namespace kivtoolkit
