// The buttons of the dialog: labelled ones, quiet ones, and those that show only an icon.

#pragma once

#include "framework/kivtoolkit/src/OwnControl.h"

#include <functional>
#include <string_view>

namespace kivtoolkit {

class PushButton : public OwnControl {
public:
    PushButton(Look& look, wxWindow& parent, kivui::ui::ThemeColor ground,
               kivui::ui::ButtonKind kind, std::function<void()> clicked);

    void SetLabelText(const kivcore::UString& label);
    /// The size that the label needs.
    wxSize WantedSize();
    /// A small icon behind the label: it opens something.
    void SetIcon(std::string_view icon) { icon_ = icon; }

protected:
    void Draw(const kivui::ui::Drawing& drawing, const kivui::ui::Rect& rect) override;
    void Click(const wxPoint& at) override;

private:
    kivui::ui::ButtonKind kind_;
    std::string_view icon_;
    kivcore::UString label_;
    std::function<void()> clicked_;
};

class IconButton : public OwnControl {
public:
    /// `icon` is a name in kivui's icon cache that stands as long as the button.
    IconButton(Look& look, wxWindow& parent, kivui::ui::ThemeColor ground, std::string_view icon,
               const kivcore::UString& name, std::function<void()> clicked);

protected:
    void Draw(const kivui::ui::Drawing& drawing, const kivui::ui::Rect& rect) override;
    void Click(const wxPoint& at) override;

private:
    std::string_view icon_;
    std::function<void()> clicked_;
};

}  // namespace kivtoolkit
